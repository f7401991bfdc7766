#pragma once
// A decision as the host acts on it: the outcome, the reason of a deny, the digest of its evidence and
// the generation it belongs to.

#include <optional>

#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/host_contract/ORXDecisionOutcome.h>
#include <ravo-orx/host_contract/ORXFailureReason.h>
#include <ravo-orx/host_contract/ORXGenerationFence.h>

namespace ravo::orx {

class ORXDecision {
 public:
  // Throws unless a deny carries a reason and an allow or limit carries none.
  ORXDecision(ORXDecisionOutcome outcome, std::optional<ORXFailureReason> reason, ORXDigest evidenceDigest,
              ORXGenerationFence generation);

  ORXDecisionOutcome outcome() const { return outcome_; }
  const std::optional<ORXFailureReason>& reason() const { return reason_; }
  const ORXDigest& evidenceDigest() const { return evidenceDigest_; }
  const ORXGenerationFence& generation() const { return generation_; }

  friend bool operator==(const ORXDecision&, const ORXDecision&) = default;

 private:
  ORXDecisionOutcome outcome_;
  std::optional<ORXFailureReason> reason_;
  ORXDigest evidenceDigest_;
  ORXGenerationFence generation_;
};

}  // namespace ravo::orx
