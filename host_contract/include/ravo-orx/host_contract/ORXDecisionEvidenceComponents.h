#pragma once
// The full records behind the digests a decision evidence record carries, for checking that binding.

#include <ravo-orx/core/ORXPackageIdentity.h>
#include <ravo-orx/core/ORXVerifiedArtifact.h>
#include <ravo-orx/host_contract/ORXCanonicalTypedInput.h>
#include <ravo-orx/host_contract/ORXDecisionIntent.h>
#include <ravo-orx/host_contract/ORXGrantSet.h>
#include <ravo-orx/host_contract/ORXPolicyArtifact.h>

namespace ravo::orx {

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

}  // namespace ravo::orx
