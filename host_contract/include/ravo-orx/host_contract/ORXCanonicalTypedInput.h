#pragma once
// The facts a decision may depend on: capability observations, sorted by observation ID and unique.
// Hashed under "ORX_CANONICAL_TYPED_INPUT_V1".

#include <vector>

#include <ravo-orx/host_contract/ORXCapabilityObservation.h>

namespace ravo::orx {

class ORXCanonicalTypedInput {
 public:
  explicit ORXCanonicalTypedInput(std::vector<ORXCapabilityObservation> observations);

  const std::vector<ORXCapabilityObservation>& observations() const { return observations_; }
  // {"observations": [...]}
  ORXCanonicalValue canonicalValue() const;
  ORXDigest digest() const { return ORXDigest::domain(ORXDigestDomain::canonicalTypedInput, canonicalValue()); }

  friend bool operator==(const ORXCanonicalTypedInput&, const ORXCanonicalTypedInput&) = default;

 private:
  std::vector<ORXCapabilityObservation> observations_;
};

}  // namespace ravo::orx
