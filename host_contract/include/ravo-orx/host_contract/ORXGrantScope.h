#pragma once
// What a grant allows: which effect types, how many uses, on which resource classes and which target
// class. Lists are normalised (sorted, unique), so equal sets give equal bytes. ORXOptionalGrantScope
// is the optional form a decision record carries.

#include <cstdint>
#include <string>
#include <vector>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/host_contract/ORXHostOption.h>
#include <ravo-orx/host_contract/ORXResourceClass.h>

namespace ravo::orx {

class ORXGrantScope {
 public:
  ORXGrantScope(std::vector<std::string> effectTypes, std::int64_t maxUses,
                std::vector<ORXResourceClass> resourceClasses, std::string targetClass);

  const std::vector<std::string>& effectTypes() const { return effectTypes_; }
  std::int64_t maxUses() const { return maxUses_; }
  const std::vector<ORXResourceClass>& resourceClasses() const { return resourceClasses_; }
  const std::string& targetClass() const { return targetClass_; }
  // {"effect_types", "max_uses" (i64), "resource_classes", "target_class"}
  ORXCanonicalValue canonicalValue() const;

  friend bool operator==(const ORXGrantScope&, const ORXGrantScope&) = default;

 private:
  std::vector<std::string> effectTypes_;
  std::int64_t maxUses_;
  std::vector<ORXResourceClass> resourceClasses_;
  std::string targetClass_;
};

template <>
struct ORXHostOptionTraits<ORXGrantScope> {
  static constexpr std::string_view typeText = "option<orx.host::GrantScope>";
  static ORXCanonicalValue encode(const ORXGrantScope& scope) { return scope.canonicalValue(); }
};

using ORXOptionalGrantScope = ORXHostOption<ORXGrantScope>;

}  // namespace ravo::orx
