#include <ravo-orx/core/ORXClosedEnumSchema.h>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXValidation.h>

namespace ravo::orx {

ORXClosedEnumSchema::ORXClosedEnumSchema(std::string typeID, ORXClosedEnumKind kind,
                                         std::set<std::int32_t> allowedDiscriminants)
    : typeID_(ORXValidation::qualifiedEnumTypeID(typeID, "enum type")),
      kind_(kind),
      allowedDiscriminants_(std::move(allowedDiscriminants)) {
  if (allowedDiscriminants_.empty()) throw ORXError::invalid("orx.v051.typed_value_invalid", "closed enum has no cases");
}

}  // namespace ravo::orx
