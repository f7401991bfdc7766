#include <ravo-orx/core/ORXPackageIdentity.h>

#include <ravo-orx/core/ORXABILane.h>
#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

ORXPackageIdentity::ORXPackageIdentity(std::string orxABILane, ORXDigest interfaceDescriptorDigest,
                                       ORXDigest manifestDigest, ORXDigest verifiedArtifactDigest)
    : orxABILane_(std::move(orxABILane)),
      interfaceDescriptorDigest_(std::move(interfaceDescriptorDigest)),
      manifestDigest_(std::move(manifestDigest)),
      verifiedArtifactDigest_(std::move(verifiedArtifactDigest)) {
  if (!orxIsAdmittedABILane(orxABILane_)) {
    throw ORXError::invalid("orx.v051.package_identity_invalid", "ORX ABI lane is not admitted");
  }
}

ORXCanonicalValue ORXPackageIdentity::canonicalValue() const {
  return ORXCanonicalValue::object({
      {"interface_descriptor_digest", ORXCanonicalValue::string(interfaceDescriptorDigest_.value())},
      {"manifest_digest", ORXCanonicalValue::string(manifestDigest_.value())},
      {"orx_abi_lane", ORXCanonicalValue::string(orxABILane_)},
      {"verified_artifact_digest", ORXCanonicalValue::string(verifiedArtifactDigest_.value())},
  });
}

}  // namespace ravo::orx
