#pragma once
// The full records behind the digests a decision evidence record carries, for checking that binding.

#include "core/ORXPackageIdentity.h"
#include "core/ORXVerifiedArtifact.h"
#include "host_contract/ORXCanonicalTypedInput.h"
#include "host_contract/ORXDecisionIntent.h"
#include "host_contract/ORXGrantSet.h"
#include "host_contract/ORXPolicyArtifact.h"

struct ORXDecisionEvidenceComponents {
  ORXCanonicalTypedInput canonicalTypedInput;
  ORXGrantSet grantSet;
  ORXDecisionIntent intent;
  ORXPackageIdentity packageIdentity;
  ORXPolicyArtifact policyArtifact;
  ORXVerifiedArtifact verifiedArtifact;

  friend bool operator==(const ORXDecisionEvidenceComponents&, const ORXDecisionEvidenceComponents&) = default;
};
