#include <ravo-orx/prove/OrxDivisionAbstraction.h>

#include <string>

namespace ravo::orx::internal {

namespace {

bool isDivision(Z3_decl_kind kind) {
  switch (kind) {
    case Z3_OP_BUDIV:
    case Z3_OP_BUDIV_I:
    case Z3_OP_BUREM:
    case Z3_OP_BUREM_I:
    case Z3_OP_BSDIV:
    case Z3_OP_BSDIV_I:
    case Z3_OP_BSREM:
    case Z3_OP_BSREM_I: return true;
    default: return false;
  }
}

z3::expr magnitude(const z3::expr& value) { return z3::ite(value < 0, -value, value); }

std::uint64_t allOnes(unsigned width) { return width >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << width) - 1; }

}  // namespace

OrxDivisionAbstraction::OrxDivisionAbstraction(z3::context& context)
    : context_(context), lemmas_(context.bool_val(true)) {}

const OrxDivisionAbstraction::Division& OrxDivisionAbstraction::division(const z3::expr& dividend,
                                                                         const z3::expr& divisor) {
  const auto key = std::pair{dividend.id(), divisor.id()};
  if (const auto known = byOperands_.find(key); known != byOperands_.end()) return divisions_[known->second];
  const unsigned width = dividend.get_sort().bv_size();
  const std::string name = "division" + std::to_string(divisions_.size());
  const z3::expr quotient = context_.bv_const((name + ".quotient").c_str(), width);
  const z3::expr remainder = context_.bv_const((name + ".remainder").c_str(), width);
  const z3::expr& n = dividend;
  const z3::expr& d = divisor;
  const z3::expr some = d != 0;
  // The solver's own meaning of a division by zero (the module traps before using it).
  lemmas_ = lemmas_ && z3::implies(d == 0, quotient == context_.bv_val(allOnes(width), width) && remainder == n) &&
            z3::implies(some, z3::ule(quotient, n) && z3::ult(remainder, d) && z3::ule(remainder, n)) &&
            z3::implies(some && z3::ult(n, d), quotient == 0 && remainder == n) &&
            z3::implies(some && z3::uge(n, d), z3::uge(quotient, 1)) &&
            z3::implies(d == 1, quotient == n && remainder == 0);
  byOperands_.emplace(key, divisions_.size());
  divisions_.push_back({dividend, divisor, quotient, remainder});
  return divisions_.back();
}

z3::expr OrxDivisionAbstraction::replaced(Z3_decl_kind kind, const z3::expr& dividend, const z3::expr& divisor) {
  switch (kind) {
    case Z3_OP_BUDIV:
    case Z3_OP_BUDIV_I: return division(dividend, divisor).quotient;
    case Z3_OP_BUREM:
    case Z3_OP_BUREM_I: return division(dividend, divisor).remainder;
    default: break;
  }
  // Signed: the unsigned division of the magnitudes, its quotient negative when the signs differ and
  // its remainder taking the dividend's sign (a magnitude of INT_MIN is 2^(w-1) read unsigned).
  const Division& unsignedDivision = division(magnitude(dividend), magnitude(divisor));
  if (kind == Z3_OP_BSDIV || kind == Z3_OP_BSDIV_I) {
    const z3::expr& q = unsignedDivision.quotient;
    return z3::ite((dividend < 0) != (divisor < 0), -q, q);
  }
  const z3::expr& r = unsignedDivision.remainder;
  return z3::ite(dividend < 0, -r, r);
}

z3::expr OrxDivisionAbstraction::abstracted(const z3::expr& formula) {
  // Rebuilt bottom-up without recursion: a formula of a long unrolled loop is deep.
  std::vector<std::pair<z3::expr, bool>> pending{{formula, false}};
  while (!pending.empty()) {
    auto [term, operandsDone] = pending.back();
    pending.pop_back();
    if (replacements_.count(term.id())) continue;
    if (!term.is_app() || term.num_args() == 0) {
      replacements_.emplace(term.id(), term);
      continue;
    }
    if (!operandsDone) {
      pending.emplace_back(term, true);
      for (unsigned i = 0; i < term.num_args(); ++i) {
        if (!replacements_.count(term.arg(i).id())) pending.emplace_back(term.arg(i), false);
      }
      continue;
    }
    z3::expr_vector operands(context_);
    bool changed = false;
    for (unsigned i = 0; i < term.num_args(); ++i) {
      const z3::expr& operand = replacements_.at(term.arg(i).id());
      changed = changed || !z3::eq(operand, term.arg(i));
      operands.push_back(operand);
    }
    const Z3_decl_kind kind = term.decl().decl_kind();
    if (isDivision(kind) && !operands[1].is_numeral()) {
      replacements_.emplace(term.id(), replaced(kind, operands[0], operands[1]));
    } else {
      replacements_.emplace(term.id(), changed ? term.decl()(operands) : term);
    }
  }
  return replacements_.at(formula.id()) && lemmas_;
}

std::optional<z3::expr> OrxDivisionAbstraction::refinement(const z3::model& model) const {
  std::optional<z3::expr> lemmas;
  for (const Division& division : divisions_) {
    const unsigned width = division.dividend.get_sort().bv_size();
    const std::uint64_t n = model.eval(division.dividend, true).get_numeral_uint64();
    const std::uint64_t d = model.eval(division.divisor, true).get_numeral_uint64();
    if (d == 0) continue;  // fixed by the lemmas
    const std::uint64_t quotient = n / d;
    const std::uint64_t remainder = n % d;
    if (model.eval(division.quotient, true).get_numeral_uint64() == quotient &&
        model.eval(division.remainder, true).get_numeral_uint64() == remainder) {
      continue;
    }
    // For every n and d != 0: n >= k*d exactly when n / d >= k, computed without overflow in twice the
    // width; and when the quotient is k, the remainder is n - k*d.
    const z3::expr some = division.divisor != 0;
    const z3::expr wideN = z3::zext(division.dividend, width);
    const z3::expr wideD = z3::zext(division.divisor, width);
    const z3::expr k = context_.bv_val(quotient, 2 * width);
    const z3::expr next = context_.bv_val(quotient, 2 * width) + context_.bv_val(1, 2 * width);
    const z3::expr exact = context_.bv_val(quotient, width);
    z3::expr refined = z3::implies(some && z3::uge(wideN, k * wideD), z3::uge(division.quotient, exact)) &&
                       z3::implies(some && z3::ult(wideN, next * wideD), z3::ule(division.quotient, exact)) &&
                       z3::implies(some && division.quotient == exact,
                                   division.remainder == division.dividend - exact * division.divisor);
    lemmas = lemmas ? *lemmas && refined : refined;
  }
  return lemmas;
}

}  // namespace ravo::orx::internal
