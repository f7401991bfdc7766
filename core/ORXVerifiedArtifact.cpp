#include <ravo-orx/core/ORXVerifiedArtifact.h>

#include <ravo-orx/core/ORXABILane.h>
#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

ORXVerifiedArtifact::ORXVerifiedArtifact(std::string orxABILane, ORXDigest artifactBytesDigest,
                                         ORXDigest verifierEvidenceDigest)
    : orxABILane_(std::move(orxABILane)),
      artifactBytesDigest_(std::move(artifactBytesDigest)),
      verifierEvidenceDigest_(std::move(verifierEvidenceDigest)) {
  if (!orxIsAdmittedABILane(orxABILane_)) {
    throw ORXError::invalid("orx.v051.verified_artifact_invalid", "ORX ABI lane is not admitted");
  }
}

ORXCanonicalValue ORXVerifiedArtifact::canonicalValue() const {
  return ORXCanonicalValue::object({
      {"artifact_bytes_digest", ORXCanonicalValue::string(artifactBytesDigest_.value())},
      {"orx_abi_lane", ORXCanonicalValue::string(orxABILane_)},
      {"verifier_disposition", ORXCanonicalValue::string("accepted")},
      {"verifier_evidence_digest", ORXCanonicalValue::string(verifierEvidenceDigest_.value())},
  });
}

}  // namespace ravo::orx
