#pragma once
// A registry of closed enum schemas by identity. host() is the process-wide registry of the seven host
// enums, built once on first use.

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/core/ORXClosedEnumSchema.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

class RAVO_ORX_API ORXClosedEnumContext {
 public:
  // Throws ORXError::duplicate when two schemas share an identity.
  explicit ORXClosedEnumContext(const std::vector<ORXClosedEnumSchema>& schemas);

  static const ORXClosedEnumContext& host();

  // The schema of `typeID`, or null.
  const ORXClosedEnumSchema* schema(std::string_view typeID) const;
  const std::map<std::string, ORXClosedEnumSchema, std::less<>>& schemas() const { return schemas_; }

  friend bool operator==(const ORXClosedEnumContext&, const ORXClosedEnumContext&) = default;

 private:
  std::map<std::string, ORXClosedEnumSchema, std::less<>> schemas_;
};

}  // namespace ravo::orx
