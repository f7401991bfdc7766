#include <ravo-orx/prove/SymbolicNumbers.h>

#include <ravo-orx/prove/SymbolicFold.h>

namespace ravo::orx::internal {

namespace {

using wabt::Opcode;

z3::expr constant(const z3::expr& like, std::uint64_t value) {
  return like.ctx().bv_val(static_cast<std::uint64_t>(value), like.get_sort().bv_size());
}

z3::expr never(const z3::expr& like) { return like.ctx().bool_val(false); }

SymbolicResult total(const z3::expr& value) { return {folded(value), never(value)}; }

// A shift or rotation count: the low bits of the operand, modulo the width.
z3::expr count(const z3::expr& operand) {
  return folded(operand & constant(operand, operand.get_sort().bv_size() - 1));
}

z3::expr rotated(const z3::expr& value, const z3::expr& by, bool left) {
  const Z3_ast made = left ? Z3_mk_ext_rotate_left(value.ctx(), value, count(by))
                           : Z3_mk_ext_rotate_right(value.ctx(), value, count(by));
  return z3::expr(value.ctx(), made);
}

z3::expr bit(const z3::expr& value, unsigned index) { return value.extract(index, index) == value.ctx().bv_val(1, 1); }

z3::expr leadingZeros(const z3::expr& value) {
  const unsigned width = value.get_sort().bv_size();
  z3::expr zeros = constant(value, width);
  for (unsigned i = 0; i < width; ++i) zeros = z3::ite(bit(value, i), constant(value, width - 1 - i), zeros);
  return zeros;
}

z3::expr trailingZeros(const z3::expr& value) {
  const unsigned width = value.get_sort().bv_size();
  z3::expr zeros = constant(value, width);
  for (unsigned i = width; i-- > 0;) zeros = z3::ite(bit(value, i), constant(value, i), zeros);
  return zeros;
}

z3::expr populationCount(const z3::expr& value) {
  const unsigned width = value.get_sort().bv_size();
  z3::expr ones = constant(value, 0);
  for (unsigned i = 0; i < width; ++i) ones = ones + z3::zext(value.extract(i, i), width - 1);
  return ones;
}

// The low `bits` of the value, sign-extended back to its width.
z3::expr signExtendedLow(const z3::expr& value, unsigned bits) {
  return z3::sext(value.extract(bits - 1, 0), value.get_sort().bv_size() - bits);
}

SymbolicResult division(const z3::expr& left, const z3::expr& right, Opcode opcode) {
  const z3::expr zero = constant(right, 0);
  const unsigned width = left.get_sort().bv_size();
  const z3::expr divisorZero = folded(right == zero);
  switch (opcode) {
    case Opcode::I32DivS:
    case Opcode::I64DivS: {
      const z3::expr minimum = constant(left, std::uint64_t{1} << (width - 1));
      const z3::expr overflow = folded(left == minimum && right == constant(right, ~std::uint64_t{0}));
      return {folded(left / right), anyOf(divisorZero, overflow)};
    }
    case Opcode::I32DivU:
    case Opcode::I64DivU: return {folded(z3::udiv(left, right)), divisorZero};
    case Opcode::I32RemS:
    case Opcode::I64RemS: return {folded(z3::srem(left, right)), divisorZero};
    default: return {folded(z3::urem(left, right)), divisorZero};
  }
}

// Over constant operands, the instruction's value and trap are constants too.
std::optional<SymbolicResult> evaluatedWhenConstant(std::optional<SymbolicResult> result, bool constantOperands) {
  if (result && constantOperands) result = SymbolicResult{result->value.simplify(), result->traps.simplify()};
  return result;
}

std::optional<SymbolicResult> unary(Opcode opcode, const z3::expr& operand) {
  switch (opcode) {
    case Opcode::I32Eqz:
    case Opcode::I64Eqz: return total(symbolicFlag(negation(symbolicTruth(operand))));
    case Opcode::I32Clz:
    case Opcode::I64Clz: return total(leadingZeros(operand));
    case Opcode::I32Ctz:
    case Opcode::I64Ctz: return total(trailingZeros(operand));
    case Opcode::I32Popcnt:
    case Opcode::I64Popcnt: return total(populationCount(operand));
    case Opcode::I32WrapI64: return total(operand.extract(31, 0));
    case Opcode::I64ExtendI32S: return total(z3::sext(operand, 32));
    case Opcode::I64ExtendI32U: return total(z3::zext(operand, 32));
    case Opcode::I32Extend8S:
    case Opcode::I64Extend8S: return total(signExtendedLow(operand, 8));
    case Opcode::I32Extend16S:
    case Opcode::I64Extend16S: return total(signExtendedLow(operand, 16));
    case Opcode::I64Extend32S: return total(signExtendedLow(operand, 32));
    default: return std::nullopt;
  }
}

// The condition of a comparison's 1 or 0, or nothing for any other value.
std::optional<z3::expr> flagCondition(const z3::expr& value) {
  if (!value.is_app() || value.decl().decl_kind() != Z3_OP_ITE || !value.arg(1).is_numeral() ||
      !value.arg(2).is_numeral() || value.arg(1).get_numeral_uint64() != 1 || value.arg(2).get_numeral_uint64() != 0) {
    return std::nullopt;
  }
  return value.arg(0);
}

// i32.and, i32.or and i32.xor of two comparisons' 1 or 0 are the comparisons combined: the solver then
// sees the conditions a policy tests rather than arithmetic on bits.
std::optional<SymbolicResult> combinedFlags(Opcode opcode, const z3::expr& left, const z3::expr& right) {
  const auto a = flagCondition(left), b = flagCondition(right);
  if (!a || !b) return std::nullopt;
  switch (opcode) {
    case Opcode::I32And: return total(symbolicFlag(allOf(*a, *b)));
    case Opcode::I32Or: return total(symbolicFlag(anyOf(*a, *b)));
    case Opcode::I32Xor: return total(symbolicFlag(folded(*a != *b)));
    default: return std::nullopt;
  }
}

std::optional<SymbolicResult> binary(Opcode opcode, const z3::expr& left, const z3::expr& right) {
  if (auto combined = combinedFlags(opcode, left, right)) return combined;
  switch (opcode) {
    case Opcode::I32Add:
    case Opcode::I64Add: return total(left + right);
    case Opcode::I32Sub:
    case Opcode::I64Sub: return total(left - right);
    case Opcode::I32Mul:
    case Opcode::I64Mul: return total(left * right);
    case Opcode::I32DivS:
    case Opcode::I64DivS:
    case Opcode::I32DivU:
    case Opcode::I64DivU:
    case Opcode::I32RemS:
    case Opcode::I64RemS:
    case Opcode::I32RemU:
    case Opcode::I64RemU: return division(left, right, opcode);
    case Opcode::I32And:
    case Opcode::I64And: return total(left & right);
    case Opcode::I32Or:
    case Opcode::I64Or: return total(left | right);
    case Opcode::I32Xor:
    case Opcode::I64Xor: return total(left ^ right);
    case Opcode::I32Shl:
    case Opcode::I64Shl: return total(z3::shl(left, count(right)));
    case Opcode::I32ShrS:
    case Opcode::I64ShrS: return total(z3::ashr(left, count(right)));
    case Opcode::I32ShrU:
    case Opcode::I64ShrU: return total(z3::lshr(left, count(right)));
    case Opcode::I32Rotl:
    case Opcode::I64Rotl: return total(rotated(left, right, /*left=*/true));
    case Opcode::I32Rotr:
    case Opcode::I64Rotr: return total(rotated(left, right, /*left=*/false));
    case Opcode::I32Eq:
    case Opcode::I64Eq: return total(symbolicFlag(folded(left == right)));
    case Opcode::I32Ne:
    case Opcode::I64Ne: return total(symbolicFlag(folded(left != right)));
    case Opcode::I32LtS:
    case Opcode::I64LtS: return total(symbolicFlag(folded(left < right)));
    case Opcode::I32LtU:
    case Opcode::I64LtU: return total(symbolicFlag(folded(z3::ult(left, right))));
    case Opcode::I32GtS:
    case Opcode::I64GtS: return total(symbolicFlag(folded(left > right)));
    case Opcode::I32GtU:
    case Opcode::I64GtU: return total(symbolicFlag(folded(z3::ugt(left, right))));
    case Opcode::I32LeS:
    case Opcode::I64LeS: return total(symbolicFlag(folded(left <= right)));
    case Opcode::I32LeU:
    case Opcode::I64LeU: return total(symbolicFlag(folded(z3::ule(left, right))));
    case Opcode::I32GeS:
    case Opcode::I64GeS: return total(symbolicFlag(folded(left >= right)));
    case Opcode::I32GeU:
    case Opcode::I64GeU: return total(symbolicFlag(folded(z3::uge(left, right))));
    default: return std::nullopt;
  }
}

}  // namespace

z3::expr symbolicTruth(const z3::expr& value) {
  if (const auto condition = flagCondition(value)) return *condition;
  return folded(value != constant(value, 0));
}

std::optional<SymbolicResult> symbolicUnary(Opcode opcode, const z3::expr& operand) {
  return evaluatedWhenConstant(unary(opcode, operand), isConstant(operand));
}

std::optional<SymbolicResult> symbolicBinary(Opcode opcode, const z3::expr& left, const z3::expr& right) {
  return evaluatedWhenConstant(binary(opcode, left, right), isConstant(left) && isConstant(right));
}

}  // namespace ravo::orx::internal
