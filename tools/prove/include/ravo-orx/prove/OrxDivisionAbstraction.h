#pragma once
// Divisions by a divisor that depends on the facts, made affordable to the solver. Bit-blasted, a
// 64-bit division is a circuit that a SAT solver cannot see through: proving that a quotient stays
// under 10,000 took minutes. Each such division (signed ones through their magnitudes) is replaced by
// a fresh quotient and remainder bound only by lemmas true of every division (q <= n, r < d, q = 0
// when n < d, ...): a formula unsatisfiable with them is unsatisfiable with the real divisions. A
// model of the abstraction whose quotients are all right is a model of the real formula; one with a
// wrong quotient is ruled out by refinements, lemmas about the right quotient for that model's
// operands that hold for every division (n >= k*d implies q >= k, q = k implies r = n - k*d), and the
// solver is asked again.

#include <cstddef>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include <z3++.h>

namespace ravo::orx::internal {

class OrxDivisionAbstraction {
 public:
  explicit OrxDivisionAbstraction(z3::context& context);

  // The formula with every division by a non-constant divisor replaced, and the lemmas that bound the
  // replacements. The same division gets the same replacement in every formula.
  z3::expr abstracted(const z3::expr& formula);

  // Lemmas that rule out the model's wrong quotients and remainders; nothing when every division has
  // its right value in the model, which then satisfies the formula before abstraction.
  std::optional<z3::expr> refinement(const z3::model& model) const;

  std::size_t divisions() const { return divisions_.size(); }

 private:
  // An unsigned division n / d of the abstraction, with its quotient and remainder.
  struct Division {
    z3::expr dividend;  // in terms of the abstraction
    z3::expr divisor;
    z3::expr quotient;
    z3::expr remainder;
  };

  // The replacement of one division term whose operands are already replaced.
  z3::expr replaced(Z3_decl_kind kind, const z3::expr& dividend, const z3::expr& divisor);
  // The unsigned division of these operands (made with its lemmas when new).
  const Division& division(const z3::expr& dividend, const z3::expr& divisor);

  z3::context& context_;
  std::vector<Division> divisions_;
  std::map<std::pair<unsigned, unsigned>, std::size_t> byOperands_;  // (dividend id, divisor id)
  std::map<unsigned, z3::expr> replacements_;                         // by the id of the term replaced
  z3::expr lemmas_;                                                   // of every division so far
};

}  // namespace ravo::orx::internal
