#pragma once
// The authority already held: grants sorted by grant ID, unique. Hashed under "ORX_GRANT_SET_V1".

#include <vector>

#include <ravo-orx/host_contract/ORXCapabilityGrant.h>

namespace ravo::orx {

class ORXGrantSet {
 public:
  explicit ORXGrantSet(std::vector<ORXCapabilityGrant> grants);

  const std::vector<ORXCapabilityGrant>& grants() const { return grants_; }
  // {"grants": [...]}
  ORXCanonicalValue canonicalValue() const;
  ORXDigest digest() const { return ORXDigest::domain(ORXDigestDomain::grantSet, canonicalValue()); }

  friend bool operator==(const ORXGrantSet&, const ORXGrantSet&) = default;

 private:
  std::vector<ORXCapabilityGrant> grants_;
};

}  // namespace ravo::orx
