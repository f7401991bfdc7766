#pragma once
// How far decision evidence is trusted: a record read or built by anyone is only schema-checked; evidence
// handed over at the trusted runtime boundary carries its bytes, digest and source binding.

#include <ravo-orx/core/ORXRawValue.h>

namespace ravo::orx {

enum class ORXDecisionEvidenceTrustLevel { schemaOnly, trustedRuntimeBoundary };

template <>
struct ORXRawValueTable<ORXDecisionEvidenceTrustLevel> {
  static constexpr std::array<std::pair<ORXDecisionEvidenceTrustLevel, std::string_view>, 2> entries{{
      {ORXDecisionEvidenceTrustLevel::schemaOnly, "schemaOnly"},
      {ORXDecisionEvidenceTrustLevel::trustedRuntimeBoundary, "trustedRuntimeBoundary"},
  }};
};

}  // namespace ravo::orx
