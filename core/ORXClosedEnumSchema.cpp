#include "core/ORXClosedEnumSchema.h"

#include "core/ORXError.h"
#include "core/ORXValidation.h"

ORXClosedEnumSchema::ORXClosedEnumSchema(std::string typeID, ORXClosedEnumKind kind,
                                         std::set<std::int32_t> allowedDiscriminants)
    : typeID_(ORXValidation::qualifiedEnumTypeID(typeID, "enum type")),
      kind_(kind),
      allowedDiscriminants_(std::move(allowedDiscriminants)) {
  if (allowedDiscriminants_.empty()) throw ORXError::invalid("orx.v051.typed_value_invalid", "closed enum has no cases");
}
