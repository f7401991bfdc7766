#include <ravo-orx/host_contract/ORXDecisionEvidenceRecord.h>

#include <ravo-orx/core/ORXABILane.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXValidation.h>
#include <ravo-orx/host_contract/ORXCanonicalForm.h>

namespace ravo::orx {

namespace {

ORXError evidenceInvalid(const char* message) {
  return ORXError::invalid("orx.v051.decision_evidence_invalid", message);
}

}  // namespace

ORXDecisionEvidenceRecord::ORXDecisionEvidenceRecord(
    std::string orxABILane, ORXDigest canonicalTypedInputDigest, ORXDeadline deadline,
    ORXDecisionOutcome decisionOutcome, std::vector<ORXBudget> effectiveBudgets, ORXOptionalGrantScope effectiveScope,
    ORXGenerationFence generationFence, ORXDigest grantSetDigest, ORXDigest intentDigest,
    ORXDigest packageIdentityDigest, ORXDigest policyDigest, std::string policyIdentity,
    ORXOptionalFailureReason reason, std::vector<ORXBudget> requestedBudgets, ORXGrantScope requestedScope,
    ORXDigest verifiedArtifactDigest)
    : orxABILane_(std::move(orxABILane)),
      canonicalTypedInputDigest_(std::move(canonicalTypedInputDigest)),
      deadline_(std::move(deadline)),
      decisionOutcome_(decisionOutcome),
      effectiveScope_(std::move(effectiveScope)),
      generationFence_(std::move(generationFence)),
      grantSetDigest_(std::move(grantSetDigest)),
      intentDigest_(std::move(intentDigest)),
      packageIdentityDigest_(std::move(packageIdentityDigest)),
      policyDigest_(std::move(policyDigest)),
      reason_(std::move(reason)),
      requestedScope_(std::move(requestedScope)),
      verifiedArtifactDigest_(std::move(verifiedArtifactDigest)) {
  if (!orxIsAdmittedABILane(orxABILane_)) throw evidenceInvalid("ORX ABI lane is invalid");
  effectiveBudgets_ = ORXDecisionIntent::uniqueBudgets(std::move(effectiveBudgets));
  policyIdentity_ = ORXValidation::asciiIdentifier(policyIdentity, true, "policy identity");
  requestedBudgets_ = ORXDecisionIntent::uniqueBudgets(std::move(requestedBudgets));
  const bool validShape = decisionOutcome_ == ORXDecisionOutcome::deny
                              ? !effectiveScope_.hasValue() && reason_.hasValue() && effectiveBudgets_.empty()
                              : effectiveScope_.hasValue() && !reason_.hasValue();
  if (!validShape) throw evidenceInvalid("DecisionEvidence authority shape is invalid");
}

ORXCanonicalValue ORXDecisionEvidenceRecord::canonicalValue() const {
  return ORXCanonicalValue::object({
      {"canonical_typed_input_digest", ORXCanonicalForm::digest(canonicalTypedInputDigest_)},
      {"contract_version", ORXCanonicalForm::text(contractVersion)},
      {"deadline", deadline_.canonicalValue()},
      {"decision_outcome", orxHostEnumValue(decisionOutcome_).canonicalValue()},
      {"effective_budgets", ORXCanonicalForm::array(effectiveBudgets_)},
      {"effective_scope", effectiveScope_.canonicalValue()},
      {"generation_fence", generationFence_.canonicalValue()},
      {"grant_set_digest", ORXCanonicalForm::digest(grantSetDigest_)},
      {"intent_digest", ORXCanonicalForm::digest(intentDigest_)},
      {"orx_abi_lane", ORXCanonicalForm::text(orxABILane_)},
      {"package_identity_digest", ORXCanonicalForm::digest(packageIdentityDigest_)},
      {"policy_digest", ORXCanonicalForm::digest(policyDigest_)},
      {"policy_identity", ORXCanonicalForm::text(policyIdentity_)},
      {"reason", reason_.canonicalValue()},
      {"requested_budgets", ORXCanonicalForm::array(requestedBudgets_)},
      {"requested_scope", requestedScope_.canonicalValue()},
      {"verified_artifact_digest", ORXCanonicalForm::digest(verifiedArtifactDigest_)},
  });
}

void ORXDecisionEvidenceRecord::validateDiagnosticComponents(const ORXDecisionEvidenceComponents& components) const {
  const auto& identity = components.packageIdentity();
  const auto& artifact = components.verifiedArtifact();
  const auto& intent = components.intent();
  const auto& policy = components.policyArtifact();
  const bool bound = orxABILane_ == identity.orxABILane() && orxABILane_ == artifact.orxABILane() &&
                     canonicalTypedInputDigest_ == components.canonicalTypedInput().digest() &&
                     grantSetDigest_ == components.grantSet().digest() && intentDigest_ == intent.digest() &&
                     packageIdentityDigest_ == identity.digest() && policyDigest_ == policy.digest() &&
                     verifiedArtifactDigest_ == artifact.digest() &&
                     verifiedArtifactDigest_ == identity.verifiedArtifactDigest() &&
                     policyIdentity_ == policy.policyIdentity() && requestedBudgets_ == intent.budgets() &&
                     requestedScope_ == intent.requestedScope() && generationFence_ == intent.generation();
  if (!bound) throw evidenceInvalid("DecisionEvidence component binding mismatch");
}

}  // namespace ravo::orx
