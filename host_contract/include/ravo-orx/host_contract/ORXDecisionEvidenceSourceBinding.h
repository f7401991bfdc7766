#pragma once
// Which package and artifact produced a piece of trusted evidence.

#include <string>

#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

class ORXDecisionEvidenceSourceBinding {
 public:
  // Throws "orx.v051.decision_evidence_invalid" when the lane is not admitted.
  ORXDecisionEvidenceSourceBinding(std::string orxABILane, ORXDigest artifactBytesDigest,
                                   ORXDigest interfaceDescriptorDigest, ORXDigest packageIdentityDigest,
                                   ORXDigest verifiedArtifactDigest);

  const std::string& orxABILane() const { return orxABILane_; }
  const ORXDigest& artifactBytesDigest() const { return artifactBytesDigest_; }
  const ORXDigest& interfaceDescriptorDigest() const { return interfaceDescriptorDigest_; }
  const ORXDigest& packageIdentityDigest() const { return packageIdentityDigest_; }
  const ORXDigest& verifiedArtifactDigest() const { return verifiedArtifactDigest_; }

  friend bool operator==(const ORXDecisionEvidenceSourceBinding&, const ORXDecisionEvidenceSourceBinding&) = default;

 private:
  std::string orxABILane_;
  ORXDigest artifactBytesDigest_;
  ORXDigest interfaceDescriptorDigest_;
  ORXDigest packageIdentityDigest_;
  ORXDigest verifiedArtifactDigest_;
};

}  // namespace ravo::orx
