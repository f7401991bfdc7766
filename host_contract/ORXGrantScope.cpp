#include <ravo-orx/host_contract/ORXGrantScope.h>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXValidation.h>
#include <ravo-orx/host_contract/ORXCanonicalForm.h>
#include <ravo-orx/host_contract/ORXSortedUnique.h>

namespace ravo::orx {

ORXGrantScope::ORXGrantScope(std::vector<std::string> effectTypes, std::int64_t maxUses,
                             std::vector<ORXResourceClass> resourceClasses, std::string targetClass)
    : effectTypes_(ORXValidation::sortedUniqueASCII(std::move(effectTypes), "effect types", true)),
      maxUses_(maxUses) {
  if (maxUses_ < 1) throw ORXError::invalid("orx.v051.typed_value_invalid", "max uses must be positive");
  resourceClasses_ = orxSortedUnique(std::move(resourceClasses), [](const ORXResourceClass& c) { return c.discriminant(); },
                                     "resource classes have duplicate discriminants");
  targetClass_ = ORXValidation::asciiIdentifier(targetClass, true, "target class");
}

ORXCanonicalValue ORXGrantScope::canonicalValue() const {
  return ORXCanonicalValue::object({
      {"effect_types", ORXCanonicalForm::texts(effectTypes_)},
      {"max_uses", ORXCanonicalForm::i64(maxUses_)},
      {"resource_classes", ORXCanonicalForm::array(resourceClasses_)},
      {"target_class", ORXCanonicalForm::text(targetClass_)},
  });
}

}  // namespace ravo::orx
