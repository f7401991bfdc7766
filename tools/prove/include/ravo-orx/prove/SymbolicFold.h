#pragma once
// Building formulas that stay small: boolean connectives and choices that fold constants as they are
// made, and operations over numerals evaluated at once. A policy's code is mostly constants flowing
// through locals (addresses, loop counters, table entries), so folding here keeps each unrolled loop
// and each memory access concrete wherever the code is, and the solver sees only what depends on
// the facts.

#include <z3++.h>

namespace ravo::orx::internal {

// An instruction's value, and the condition under which it traps instead.
struct SymbolicResult {
  z3::expr value;
  z3::expr traps;
};

// The formula in another context: a question is asked in a context of its own (OrxProofSolver).
inline z3::expr translated(const z3::expr& formula, z3::context& into) {
  z3::expr_vector from(formula.ctx());
  from.push_back(formula);
  return z3::expr_vector(into, from)[0];
}

inline bool isConstant(const z3::expr& e) { return e.is_numeral() || e.is_true() || e.is_false(); }

inline z3::expr allOf(const z3::expr& a, const z3::expr& b) {
  if (a.is_false() || b.is_true()) return a;
  if (b.is_false() || a.is_true()) return b;
  if (z3::eq(a, b)) return a;
  return a && b;
}

inline z3::expr anyOf(const z3::expr& a, const z3::expr& b) {
  if (a.is_true() || b.is_false()) return a;
  if (b.is_true() || a.is_false()) return b;
  if (z3::eq(a, b)) return a;
  return a || b;
}

inline z3::expr negation(const z3::expr& a) {
  if (a.is_true()) return a.ctx().bool_val(false);
  if (a.is_false()) return a.ctx().bool_val(true);
  if (a.is_app() && a.decl().decl_kind() == Z3_OP_NOT) return a.arg(0);
  return !a;
}

// `condition ? whenTrue : whenFalse`
inline z3::expr choose(const z3::expr& condition, const z3::expr& whenTrue, const z3::expr& whenFalse) {
  if (condition.is_true() || z3::eq(whenTrue, whenFalse)) return whenTrue;
  if (condition.is_false()) return whenFalse;
  return z3::ite(condition, whenTrue, whenFalse);
}

// The 32-bit 1 or 0 of a condition, as comparisons produce it.
inline z3::expr symbolicFlag(const z3::expr& condition) {
  z3::context& context = condition.ctx();
  return choose(condition, context.bv_val(1, 32), context.bv_val(0, 32));
}

// The operation evaluated when all its operands are constants; otherwise as it is.
inline z3::expr folded(const z3::expr& operation) {
  if (!operation.is_app() || isConstant(operation)) return operation;
  for (unsigned i = 0; i < operation.num_args(); ++i) {
    if (!isConstant(operation.arg(i))) return operation;
  }
  return operation.simplify();
}

}  // namespace ravo::orx::internal
