#pragma once
// A discriminant of a closed enum, checked against a registry when constructed: every value that exists
// is a known discriminant of a known schema.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/core/ORXClosedEnumContext.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

class RAVO_ORX_API ORXEnumValue {
 public:
  // Throws "orx.decision.enum_discriminant_invalid" when the identity differs from `expectedTypeID`,
  // has no schema in `context`, is not an error enum although one is required, or does not allow the
  // discriminant; an invalid identity fails its own identity check first.
  ORXEnumValue(std::int32_t discriminant, std::string typeID,
               const ORXClosedEnumContext& context = ORXClosedEnumContext::host(),
               std::optional<std::string_view> expectedTypeID = std::nullopt, bool requireErrorEnum = false);

  std::int32_t discriminant() const { return discriminant_; }
  const std::string& typeID() const { return typeID_; }
  // {"discriminant": n, "type": identity}
  ORXCanonicalValue canonicalValue() const;

  friend bool operator==(const ORXEnumValue&, const ORXEnumValue&) = default;

 private:
  std::int32_t discriminant_;
  std::string typeID_;
};

}  // namespace ravo::orx
