#include "host_contract/ORXGrantScope.h"

#include "core/ORXError.h"
#include "core/ORXValidation.h"
#include "host_contract/ORXCanonicalForm.h"
#include "host_contract/ORXSortedUnique.h"

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
