#pragma once
// The artifact bytes a verifier accepted, by digest, with the digest of the verifier's evidence. It
// exists only for an accepted verification, and its canonical value says so ("verifier_disposition":
// "accepted" is hashed too). Hashed under "ORX_VERIFIED_ARTIFACT_V1".

#include <string>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

class RAVO_ORX_API ORXVerifiedArtifact {
 public:
  // Throws "orx.v051.verified_artifact_invalid" when the lane is not admitted.
  ORXVerifiedArtifact(std::string orxABILane, ORXDigest artifactBytesDigest, ORXDigest verifierEvidenceDigest);

  const std::string& orxABILane() const { return orxABILane_; }
  const ORXDigest& artifactBytesDigest() const { return artifactBytesDigest_; }
  const ORXDigest& verifierEvidenceDigest() const { return verifierEvidenceDigest_; }

  ORXCanonicalValue canonicalValue() const;
  ORXDigest digest() const { return ORXDigest::domain(ORXDigestDomain::verifiedArtifact, canonicalValue()); }

  friend bool operator==(const ORXVerifiedArtifact&, const ORXVerifiedArtifact&) = default;

 private:
  std::string orxABILane_;
  ORXDigest artifactBytesDigest_;
  ORXDigest verifierEvidenceDigest_;
};

}  // namespace ravo::orx
