#include <ravo-orx/core/ORXEnumValue.h>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXValidation.h>

namespace ravo::orx {

ORXEnumValue::ORXEnumValue(std::int32_t discriminant, std::string typeID, const ORXClosedEnumContext& context,
                           std::optional<std::string_view> expectedTypeID, bool requireErrorEnum)
    : discriminant_(discriminant), typeID_(ORXValidation::qualifiedEnumTypeID(typeID, "enum type")) {
  const ORXClosedEnumSchema* schema = context.schema(typeID_);
  const bool valid = (!expectedTypeID || *expectedTypeID == typeID_) && schema &&
                     (!requireErrorEnum || schema->kind() == ORXClosedEnumKind::errorEnum) &&
                     schema->allowedDiscriminants().contains(discriminant);
  if (!valid) throw ORXError::invalid("orx.decision.enum_discriminant_invalid", "closed enum discriminant is invalid");
}

ORXCanonicalValue ORXEnumValue::canonicalValue() const {
  return ORXCanonicalValue::object({
      {"discriminant", ORXCanonicalValue::integer(discriminant_)},
      {"type", ORXCanonicalValue::string(typeID_)},
  });
}

}  // namespace ravo::orx
