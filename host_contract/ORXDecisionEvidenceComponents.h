#pragma once
// The full records behind the digests a decision evidence record carries, for checking that binding.

#include "core/ORXPackageIdentity.h"
#include "core/ORXVerifiedArtifact.h"
#include "host_contract/ORXCanonicalTypedInput.h"
#include "host_contract/ORXDecisionIntent.h"
#include "host_contract/ORXGrantSet.h"
#include "host_contract/ORXPolicyArtifact.h"

class ORXDecisionEvidenceComponents {
 public:
  ORXDecisionEvidenceComponents(ORXCanonicalTypedInput canonicalTypedInput, ORXGrantSet grantSet,
                                ORXDecisionIntent intent, ORXPackageIdentity packageIdentity,
                                ORXPolicyArtifact policyArtifact, ORXVerifiedArtifact verifiedArtifact)
      : canonicalTypedInput_(std::move(canonicalTypedInput)),
        grantSet_(std::move(grantSet)),
        intent_(std::move(intent)),
        packageIdentity_(std::move(packageIdentity)),
        policyArtifact_(std::move(policyArtifact)),
        verifiedArtifact_(std::move(verifiedArtifact)) {}

  const ORXCanonicalTypedInput& canonicalTypedInput() const { return canonicalTypedInput_; }
  const ORXGrantSet& grantSet() const { return grantSet_; }
  const ORXDecisionIntent& intent() const { return intent_; }
  const ORXPackageIdentity& packageIdentity() const { return packageIdentity_; }
  const ORXPolicyArtifact& policyArtifact() const { return policyArtifact_; }
  const ORXVerifiedArtifact& verifiedArtifact() const { return verifiedArtifact_; }

  friend bool operator==(const ORXDecisionEvidenceComponents&, const ORXDecisionEvidenceComponents&) = default;

 private:
  ORXCanonicalTypedInput canonicalTypedInput_;
  ORXGrantSet grantSet_;
  ORXDecisionIntent intent_;
  ORXPackageIdentity packageIdentity_;
  ORXPolicyArtifact policyArtifact_;
  ORXVerifiedArtifact verifiedArtifact_;
};
