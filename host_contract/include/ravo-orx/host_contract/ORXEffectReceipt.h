#pragma once
// What the host did about a decision: outcome, terminal state, budgets consumed, an optional failure
// reason and the observations involved (by digest only, so no observed value is revealed). Built only
// from trusted evidence for the same intent and generation, whose digest it carries. Hashed under
// "ORX_EFFECT_RECEIPT_V1".

#include <vector>

#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/host_contract/ORXBudget.h>
#include <ravo-orx/host_contract/ORXFailureReason.h>
#include <ravo-orx/host_contract/ORXGenerationFence.h>
#include <ravo-orx/host_contract/ORXReceiptOutcome.h>
#include <ravo-orx/host_contract/ORXTerminalState.h>
#include <ravo-orx/host_contract/ORXTrustedDecisionEvidence.h>

namespace ravo::orx {

class ORXEffectReceipt {
 public:
  ORXEffectReceipt(std::vector<ORXBudget> consumedBudgets, const ORXTrustedDecisionEvidence& trustedDecisionEvidence,
                   ORXOptionalFailureReason failureReason, ORXGenerationFence generation, ORXDigest hostExecutionID,
                   ORXDigest intentID, ORXReceiptOutcome outcome, ORXDigest receiptID,
                   std::vector<ORXDigest> redactedObservationRefs, ORXTerminalState terminalState);

  const std::vector<ORXBudget>& consumedBudgets() const { return consumedBudgets_; }
  const ORXDigest& decisionEvidenceDigest() const { return decisionEvidenceDigest_; }
  const ORXOptionalFailureReason& failureReason() const { return failureReason_; }
  const ORXGenerationFence& generation() const { return generation_; }
  const ORXDigest& hostExecutionID() const { return hostExecutionID_; }
  const ORXDigest& intentID() const { return intentID_; }
  ORXReceiptOutcome outcome() const { return outcome_; }
  const ORXDigest& receiptID() const { return receiptID_; }
  const std::vector<ORXDigest>& redactedObservationRefs() const { return redactedObservationRefs_; }
  ORXTerminalState terminalState() const { return terminalState_; }

  ORXCanonicalValue canonicalValue() const;
  ORXDigest digest() const { return ORXDigest::domain(ORXDigestDomain::effectReceipt, canonicalValue()); }

  // Re-checks a stored receipt: it must carry the evidence's digest and name the given intent and
  // generation, which must also be the evidence's.
  void validateBinding(const ORXTrustedDecisionEvidence& trustedDecisionEvidence, const ORXDigest& intentID,
                       const ORXGenerationFence& generation) const;

  friend bool operator==(const ORXEffectReceipt&, const ORXEffectReceipt&) = default;

 private:
  std::vector<ORXBudget> consumedBudgets_;
  ORXDigest decisionEvidenceDigest_;
  ORXOptionalFailureReason failureReason_;
  ORXGenerationFence generation_;
  ORXDigest hostExecutionID_;
  ORXDigest intentID_;
  ORXReceiptOutcome outcome_;
  ORXDigest receiptID_;
  std::vector<ORXDigest> redactedObservationRefs_;
  ORXTerminalState terminalState_;
};

}  // namespace ravo::orx
