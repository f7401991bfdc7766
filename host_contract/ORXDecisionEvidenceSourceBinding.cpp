#include <ravo-orx/host_contract/ORXDecisionEvidenceSourceBinding.h>

#include <ravo-orx/core/ORXABILane.h>
#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

ORXDecisionEvidenceSourceBinding::ORXDecisionEvidenceSourceBinding(std::string orxABILane,
                                                                   ORXDigest artifactBytesDigest,
                                                                   ORXDigest interfaceDescriptorDigest,
                                                                   ORXDigest packageIdentityDigest,
                                                                   ORXDigest verifiedArtifactDigest)
    : orxABILane_(std::move(orxABILane)),
      artifactBytesDigest_(std::move(artifactBytesDigest)),
      interfaceDescriptorDigest_(std::move(interfaceDescriptorDigest)),
      packageIdentityDigest_(std::move(packageIdentityDigest)),
      verifiedArtifactDigest_(std::move(verifiedArtifactDigest)) {
  if (!orxIsAdmittedABILane(orxABILane_)) {
    throw ORXError::invalid("orx.v051.decision_evidence_invalid", "ORX ABI lane is invalid");
  }
}

}  // namespace ravo::orx
