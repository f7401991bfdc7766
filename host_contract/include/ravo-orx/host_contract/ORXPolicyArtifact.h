#pragma once
// The policy that decides: its qualified identity, version and the digests of its interface and source.
// Hashed under "ORX_POLICY_ARTIFACT_V1".

#include <string>

#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

class ORXPolicyArtifact {
 public:
  // Throws unless the identity is a qualified identifier and the version is non-empty.
  ORXPolicyArtifact(std::string policyIdentity, ORXDigest policyInterfaceDigest, ORXDigest policySourceDigest,
                    std::string policyVersion);

  const std::string& policyIdentity() const { return policyIdentity_; }
  const ORXDigest& policyInterfaceDigest() const { return policyInterfaceDigest_; }
  const ORXDigest& policySourceDigest() const { return policySourceDigest_; }
  const std::string& policyVersion() const { return policyVersion_; }
  ORXCanonicalValue canonicalValue() const;
  ORXDigest digest() const { return ORXDigest::domain(ORXDigestDomain::policy, canonicalValue()); }

  friend bool operator==(const ORXPolicyArtifact&, const ORXPolicyArtifact&) = default;

 private:
  std::string policyIdentity_;
  ORXDigest policyInterfaceDigest_;
  ORXDigest policySourceDigest_;
  std::string policyVersion_;
};

}  // namespace ravo::orx
