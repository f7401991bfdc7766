#pragma once
// The record kinds that carry a domain digest. The raw value is the tag hashed in front of the record's
// canonical bytes, so a digest of one kind can never pass for a digest of another.

#include <ravo-orx/core/ORXRawValue.h>

namespace ravo::orx {

enum class ORXDigestDomain {
  canonicalTypedInput,
  grantSet,
  intent,
  packageIdentity,
  policy,
  verifiedArtifact,
  decisionEvidence,
  effectReceipt,
};

template <>
struct ORXRawValueTable<ORXDigestDomain> {
  static constexpr std::array<std::pair<ORXDigestDomain, std::string_view>, 8> entries{{
      {ORXDigestDomain::canonicalTypedInput, "ORX_CANONICAL_TYPED_INPUT_V1"},
      {ORXDigestDomain::grantSet, "ORX_GRANT_SET_V1"},
      {ORXDigestDomain::intent, "ORX_DECISION_INTENT_V1"},
      {ORXDigestDomain::packageIdentity, "ORX_PACKAGE_IDENTITY_V1"},
      {ORXDigestDomain::policy, "ORX_POLICY_ARTIFACT_V1"},
      {ORXDigestDomain::verifiedArtifact, "ORX_VERIFIED_ARTIFACT_V1"},
      {ORXDigestDomain::decisionEvidence, "ORX_DECISION_EVIDENCE_V1"},
      {ORXDigestDomain::effectReceipt, "ORX_EFFECT_RECEIPT_V1"},
  }};
};

}  // namespace ravo::orx
