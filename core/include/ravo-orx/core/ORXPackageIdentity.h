#pragma once
// A compiled policy package: the ABI lane it was built for and the digests of its interface descriptor,
// its manifest and its verified artifact. Hashed under "ORX_PACKAGE_IDENTITY_V1".

#include <string>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

class RAVO_ORX_API ORXPackageIdentity {
 public:
  // Throws "orx.v051.package_identity_invalid" when the lane is not admitted.
  ORXPackageIdentity(std::string orxABILane, ORXDigest interfaceDescriptorDigest, ORXDigest manifestDigest,
                     ORXDigest verifiedArtifactDigest);

  const std::string& orxABILane() const { return orxABILane_; }
  const ORXDigest& interfaceDescriptorDigest() const { return interfaceDescriptorDigest_; }
  const ORXDigest& manifestDigest() const { return manifestDigest_; }
  const ORXDigest& verifiedArtifactDigest() const { return verifiedArtifactDigest_; }

  ORXCanonicalValue canonicalValue() const;
  ORXDigest digest() const { return ORXDigest::domain(ORXDigestDomain::packageIdentity, canonicalValue()); }

  friend bool operator==(const ORXPackageIdentity&, const ORXPackageIdentity&) = default;

 private:
  std::string orxABILane_;
  ORXDigest interfaceDescriptorDigest_;
  ORXDigest manifestDigest_;
  ORXDigest verifiedArtifactDigest_;
};

}  // namespace ravo::orx
