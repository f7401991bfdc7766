#pragma once
// A nonnegative limit on one resource class. A limit of 0 is valid (nothing may be spent).

#include <cstdint>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/host_contract/ORXResourceClass.h>

namespace ravo::orx {

class ORXBudget {
 public:
  ORXBudget(std::int64_t limit, ORXResourceClass resourceClass);

  std::int64_t limit() const { return limit_; }
  const ORXResourceClass& resourceClass() const { return resourceClass_; }
  // {"limit" (i64), "resource_class" (enum object)}
  ORXCanonicalValue canonicalValue() const;

  friend bool operator==(const ORXBudget&, const ORXBudget&) = default;

 private:
  std::int64_t limit_;
  ORXResourceClass resourceClass_;
};

}  // namespace ravo::orx
