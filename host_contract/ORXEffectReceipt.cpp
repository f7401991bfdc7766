#include <ravo-orx/host_contract/ORXEffectReceipt.h>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/host_contract/ORXCanonicalForm.h>
#include <ravo-orx/host_contract/ORXDecisionIntent.h>
#include <ravo-orx/host_contract/ORXSortedUnique.h>

namespace ravo::orx {

namespace {

constexpr const char* kBindingInvalid = "orx.v051.receipt_binding_invalid";

}  // namespace

ORXEffectReceipt::ORXEffectReceipt(std::vector<ORXBudget> consumedBudgets,
                                   const ORXTrustedDecisionEvidence& trustedDecisionEvidence,
                                   ORXOptionalFailureReason failureReason, ORXGenerationFence generation,
                                   ORXDigest hostExecutionID, ORXDigest intentID, ORXReceiptOutcome outcome,
                                   ORXDigest receiptID, std::vector<ORXDigest> redactedObservationRefs,
                                   ORXTerminalState terminalState)
    : consumedBudgets_(ORXDecisionIntent::uniqueBudgets(std::move(consumedBudgets))),
      decisionEvidenceDigest_(trustedDecisionEvidence.digest()),
      failureReason_(std::move(failureReason)),
      generation_(std::move(generation)),
      hostExecutionID_(std::move(hostExecutionID)),
      intentID_(std::move(intentID)),
      outcome_(outcome),
      receiptID_(std::move(receiptID)),
      terminalState_(terminalState) {
  if (intentID_ != trustedDecisionEvidence.intentID() || generation_ != trustedDecisionEvidence.generation()) {
    throw ORXError::invalid(kBindingInvalid, "EffectReceipt must bind the trusted evidence intent and generation");
  }
  redactedObservationRefs_ = orxSortedUnique(
      std::move(redactedObservationRefs), [](const ORXDigest& d) -> const ORXDigest& { return d; },
      "redacted observation references have duplicate digests");
  if (outcome_ == ORXReceiptOutcome::executed && failureReason_.hasValue()) {
    throw ORXError::invalid("orx.v051.receipt_invalid", "executed receipt cannot carry a failure reason");
  }
}

ORXCanonicalValue ORXEffectReceipt::canonicalValue() const {
  ORXCanonicalValue::Array references;
  for (const auto& reference : redactedObservationRefs_) references.push_back(ORXCanonicalForm::digest(reference));
  return ORXCanonicalValue::object({
      {"consumed_budgets", ORXCanonicalForm::array(consumedBudgets_)},
      {"decision_evidence_digest", ORXCanonicalForm::digest(decisionEvidenceDigest_)},
      {"failure_reason", failureReason_.canonicalValue()},
      {"generation", generation_.canonicalValue()},
      {"host_execution_id", ORXCanonicalForm::digest(hostExecutionID_)},
      {"intent_id", ORXCanonicalForm::digest(intentID_)},
      {"outcome", orxHostEnumValue(outcome_).canonicalValue()},
      {"receipt_id", ORXCanonicalForm::digest(receiptID_)},
      {"redacted_observation_refs", ORXCanonicalValue::array(std::move(references))},
      {"terminal_state", orxHostEnumValue(terminalState_).canonicalValue()},
  });
}

void ORXEffectReceipt::validateBinding(const ORXTrustedDecisionEvidence& trustedDecisionEvidence,
                                       const ORXDigest& intentID, const ORXGenerationFence& generation) const {
  const bool bound = decisionEvidenceDigest_ == trustedDecisionEvidence.digest() && intentID_ == intentID &&
                     intentID_ == trustedDecisionEvidence.intentID() && generation_ == generation &&
                     generation_ == trustedDecisionEvidence.generation();
  if (!bound) {
    throw ORXError::invalid(kBindingInvalid, "EffectReceipt decision, intent, or generation binding mismatches");
  }
}

}  // namespace ravo::orx
