#pragma once
// The two value domains a manifest's property is evaluated in (OrxPolicyProperty::holds): the
// prover's formulas, where facts and decision fields are 32-bit vectors widened to 64 bits so that
// sums never wrap, and a replayed decision's plain integers.

#include <cstddef>
#include <cstdint>
#include <span>
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

struct OrxConcretePropertyDomain {
  std::span<const std::int32_t> facts;
  std::span<const std::int32_t> fields;

  std::int64_t constant(std::int64_t value) const { return value; }
  std::int64_t fact(std::size_t index) const { return facts[index]; }
  std::int64_t field(std::size_t index) const { return fields[index]; }
  bool truth(bool value) const { return value; }
};

}  // namespace ravo::orx::internal
