#pragma once
// The value domain in which the prover evaluates a manifest's property (OrxPolicyProperty::holds): its
// formulas, where facts and decision fields are 32-bit vectors widened to 64 bits so that sums never
// wrap, as they never do over the plain integers of OrxPolicyProperty::holdsFor.

#include <cstddef>
#include <cstdint>
#include <vector>

#include <z3++.h>

namespace ravo::orx::internal {

struct OrxSymbolicPropertyDomain {
  const std::vector<z3::expr>& facts;
  const std::vector<z3::expr>& fields;

  z3::expr constant(std::int64_t value) const { return facts.front().ctx().bv_val(value, 64); }
  z3::expr fact(std::size_t index) const { return z3::sext(facts[index], 32); }
  z3::expr field(std::size_t index) const { return z3::sext(fields[index], 32); }
  z3::expr truth(bool value) const { return facts.front().ctx().bool_val(value); }
};

}  // namespace ravo::orx::internal
