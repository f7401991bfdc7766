#pragma once
// A named typed argument of a decision intent.

#include <string>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXTypedValue.h>

namespace ravo::orx {

class ORXArgument {
 public:
  // Throws unless `name` is an unqualified identifier.
  ORXArgument(std::string name, ORXTypedValue value);

  const std::string& name() const { return name_; }
  const ORXTypedValue& value() const { return value_; }
  // {"name", "value"}; throws what the value's encoding throws.
  ORXCanonicalValue canonicalValue() const;

  friend bool operator==(const ORXArgument&, const ORXArgument&) = default;

 private:
  std::string name_;
  ORXTypedValue value_;
};

}  // namespace ravo::orx
