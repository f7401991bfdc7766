#pragma once
// Decision evidence as handed over at the trusted runtime boundary: its canonical bytes, digest,
// generation, contract version, intent and source binding. The runtime vouches for these fields, so
// they are stored as given.

#include <cstdint>
#include <string>
#include <vector>

#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/host_contract/ORXDecisionEvidenceSourceBinding.h>
#include <ravo-orx/host_contract/ORXDecisionEvidenceTrustLevel.h>
#include <ravo-orx/host_contract/ORXGenerationFence.h>

namespace ravo::orx {

class ORXTrustedDecisionEvidence {
 public:
  ORXTrustedDecisionEvidence(std::vector<std::uint8_t> canonicalBytes, ORXDigest digest, ORXGenerationFence generation,
                             std::string hostContractVersion, ORXDigest intentID,
                             ORXDecisionEvidenceSourceBinding sourceBinding)
      : canonicalBytes_(std::move(canonicalBytes)),
        digest_(std::move(digest)),
        generation_(std::move(generation)),
        hostContractVersion_(std::move(hostContractVersion)),
        intentID_(std::move(intentID)),
        sourceBinding_(std::move(sourceBinding)) {}

  const std::vector<std::uint8_t>& canonicalBytes() const { return canonicalBytes_; }
  const ORXDigest& digest() const { return digest_; }
  const ORXGenerationFence& generation() const { return generation_; }
  const std::string& hostContractVersion() const { return hostContractVersion_; }
  const ORXDigest& intentID() const { return intentID_; }
  const ORXDecisionEvidenceSourceBinding& sourceBinding() const { return sourceBinding_; }
  ORXDecisionEvidenceTrustLevel trustLevel() const { return ORXDecisionEvidenceTrustLevel::trustedRuntimeBoundary; }

  friend bool operator==(const ORXTrustedDecisionEvidence&, const ORXTrustedDecisionEvidence&) = default;

 private:
  std::vector<std::uint8_t> canonicalBytes_;
  ORXDigest digest_;
  ORXGenerationFence generation_;
  std::string hostContractVersion_;
  ORXDigest intentID_;
  ORXDecisionEvidenceSourceBinding sourceBinding_;
};

}  // namespace ravo::orx
