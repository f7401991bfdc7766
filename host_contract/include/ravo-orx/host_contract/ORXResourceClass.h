#pragma once
// A class of resource a budget or grant scope speaks of: a discriminant of "orx.host::ResourceClass"
// (0-5). Ordered by discriminant. The discriminants stay unnamed here: which resource each one stands
// for is agreed between the host and its policies, and naming them would fix that agreement in the
// contract.

#include <compare>
#include <cstdint>

#include <ravo-orx/core/ORXEnumValue.h>
#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

class ORXResourceClass {
 public:
  // Throws "orx.decision.enum_discriminant_invalid" outside 0-5.
  explicit ORXResourceClass(std::int32_t discriminant);

  std::int32_t discriminant() const { return value_.discriminant(); }
  const ORXEnumValue& value() const { return value_; }
  ORXCanonicalValue canonicalValue() const { return value_.canonicalValue(); }

  friend bool operator==(const ORXResourceClass& a, const ORXResourceClass& b) { return a.value_ == b.value_; }
  friend auto operator<=>(const ORXResourceClass& a, const ORXResourceClass& b) {
    return a.discriminant() <=> b.discriminant();
  }

 private:
  ORXEnumValue value_;
};

}  // namespace ravo::orx
