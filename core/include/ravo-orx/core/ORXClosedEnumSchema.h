#pragma once
// A closed enumeration declared by schema: its `module::Type` identity, whether it is an error enum,
// and the 32-bit discriminants it allows. Case names are not part of the schema.

#include <cstdint>
#include <set>
#include <string>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXRawValue.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

enum class ORXClosedEnumKind { enumeration, errorEnum };

template <>
struct ORXRawValueTable<ORXClosedEnumKind> {
  static constexpr std::array<std::pair<ORXClosedEnumKind, std::string_view>, 2> entries{{
      {ORXClosedEnumKind::enumeration, "enum"},
      {ORXClosedEnumKind::errorEnum, "error_enum"},
  }};
};

class RAVO_ORX_API ORXClosedEnumSchema {
 public:
  // Throws when the identity is invalid or no discriminant is allowed.
  ORXClosedEnumSchema(std::string typeID, ORXClosedEnumKind kind, std::set<std::int32_t> allowedDiscriminants);

  const std::string& typeID() const { return typeID_; }
  ORXClosedEnumKind kind() const { return kind_; }
  const std::set<std::int32_t>& allowedDiscriminants() const { return allowedDiscriminants_; }

  friend bool operator==(const ORXClosedEnumSchema&, const ORXClosedEnumSchema&) = default;

 private:
  std::string typeID_;
  ORXClosedEnumKind kind_;
  std::set<std::int32_t> allowedDiscriminants_;
};

}  // namespace ravo::orx
