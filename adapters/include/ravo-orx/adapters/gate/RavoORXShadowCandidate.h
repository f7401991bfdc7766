#pragma once
// The host-contract form of one action proposal: the generation it belongs to, the digest of the
// proposal, the typed input policy would read and the decision intent with its digest. Built by
// RavoORXGate, which checks every part; held here as given.

#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/host_contract/ORXCanonicalTypedInput.h>
#include <ravo-orx/host_contract/ORXDecisionIntent.h>
#include <ravo-orx/host_contract/ORXGenerationFence.h>

namespace ravo::orx {

class RavoORXShadowCandidate {
 public:
  RavoORXShadowCandidate(ORXGenerationFence generation, ORXDigest proposalDigest,
                         ORXCanonicalTypedInput canonicalInput, ORXDecisionIntent intent, ORXDigest intentDigest)
      : generation_(std::move(generation)),
        proposalDigest_(std::move(proposalDigest)),
        canonicalInput_(std::move(canonicalInput)),
        intent_(std::move(intent)),
        intentDigest_(std::move(intentDigest)) {}

  const ORXGenerationFence& generation() const { return generation_; }
  const ORXDigest& proposalDigest() const { return proposalDigest_; }
  const ORXCanonicalTypedInput& canonicalInput() const { return canonicalInput_; }
  const ORXDecisionIntent& intent() const { return intent_; }
  const ORXDigest& intentDigest() const { return intentDigest_; }

  friend bool operator==(const RavoORXShadowCandidate&, const RavoORXShadowCandidate&) = default;

 private:
  ORXGenerationFence generation_;
  ORXDigest proposalDigest_;
  ORXCanonicalTypedInput canonicalInput_;
  ORXDecisionIntent intent_;
  ORXDigest intentDigest_;
};

}  // namespace ravo::orx
