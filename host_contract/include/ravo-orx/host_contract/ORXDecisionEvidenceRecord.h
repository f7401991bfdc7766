#pragma once
// The canonical record of a decision: the outcome and the authority it confers (effective budgets and
// scope), bound by digest to the intent, typed input, grant set, policy, package identity and verified
// artifact that produced it. Hashed under "ORX_DECISION_EVIDENCE_V1"; its bytes are read back only when
// they are exactly its own canonical bytes.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/host_contract/ORXBudget.h>
#include <ravo-orx/host_contract/ORXDeadline.h>
#include <ravo-orx/host_contract/ORXDecisionEvidenceComponents.h>
#include <ravo-orx/host_contract/ORXDecisionEvidenceTrustLevel.h>
#include <ravo-orx/host_contract/ORXDecisionOutcome.h>
#include <ravo-orx/host_contract/ORXFailureReason.h>
#include <ravo-orx/host_contract/ORXGenerationFence.h>
#include <ravo-orx/host_contract/ORXGrantScope.h>

namespace ravo::orx {

class ORXDecisionEvidenceRecord {
 public:
  static constexpr std::string_view contractVersion = "orx.host-contract/1.0.0-candidate.1";

  // Throws for an unadmitted lane, repeated budget classes, an invalid policy identity, or an authority
  // shape that does not fit the outcome (allow and limit confer a scope and give no reason; deny confers
  // no scope and no budgets and gives a reason).
  ORXDecisionEvidenceRecord(std::string orxABILane, ORXDigest canonicalTypedInputDigest, ORXDeadline deadline,
                            ORXDecisionOutcome decisionOutcome, std::vector<ORXBudget> effectiveBudgets,
                            ORXOptionalGrantScope effectiveScope, ORXGenerationFence generationFence,
                            ORXDigest grantSetDigest, ORXDigest intentDigest, ORXDigest packageIdentityDigest,
                            ORXDigest policyDigest, std::string policyIdentity, ORXOptionalFailureReason reason,
                            std::vector<ORXBudget> requestedBudgets, ORXGrantScope requestedScope,
                            ORXDigest verifiedArtifactDigest);

  // The strict reader: refuses any bytes that are not exactly the canonical bytes of a valid record.
  static ORXDecisionEvidenceRecord parseCanonicalBytes(std::span<const std::uint8_t> bytes);
  static ORXDecisionEvidenceRecord parseCanonicalBytes(std::string_view bytes);

  const std::string& orxABILane() const { return orxABILane_; }
  const ORXDigest& canonicalTypedInputDigest() const { return canonicalTypedInputDigest_; }
  const ORXDeadline& deadline() const { return deadline_; }
  ORXDecisionOutcome decisionOutcome() const { return decisionOutcome_; }
  const std::vector<ORXBudget>& effectiveBudgets() const { return effectiveBudgets_; }
  const ORXOptionalGrantScope& effectiveScope() const { return effectiveScope_; }
  const ORXGenerationFence& generationFence() const { return generationFence_; }
  const ORXDigest& grantSetDigest() const { return grantSetDigest_; }
  const ORXDigest& intentDigest() const { return intentDigest_; }
  const ORXDigest& packageIdentityDigest() const { return packageIdentityDigest_; }
  const ORXDigest& policyDigest() const { return policyDigest_; }
  const std::string& policyIdentity() const { return policyIdentity_; }
  const ORXOptionalFailureReason& reason() const { return reason_; }
  const std::vector<ORXBudget>& requestedBudgets() const { return requestedBudgets_; }
  const ORXGrantScope& requestedScope() const { return requestedScope_; }
  const ORXDigest& verifiedArtifactDigest() const { return verifiedArtifactDigest_; }
  ORXDecisionEvidenceTrustLevel trustLevel() const { return ORXDecisionEvidenceTrustLevel::schemaOnly; }

  ORXCanonicalValue canonicalValue() const;
  std::vector<std::uint8_t> canonicalBytes() const { return canonicalValue().canonicalData(); }
  ORXDigest digest() const { return ORXDigest::domain(ORXDigestDomain::decisionEvidence, canonicalValue()); }

  // Throws "DecisionEvidence component binding mismatch" unless every digest, lane, identity, budget
  // list, scope and fence of the record matches the given components.
  void validateDiagnosticComponents(const ORXDecisionEvidenceComponents& components) const;

  friend bool operator==(const ORXDecisionEvidenceRecord&, const ORXDecisionEvidenceRecord&) = default;

 private:
  std::string orxABILane_;
  ORXDigest canonicalTypedInputDigest_;
  ORXDeadline deadline_;
  ORXDecisionOutcome decisionOutcome_;
  std::vector<ORXBudget> effectiveBudgets_;
  ORXOptionalGrantScope effectiveScope_;
  ORXGenerationFence generationFence_;
  ORXDigest grantSetDigest_;
  ORXDigest intentDigest_;
  ORXDigest packageIdentityDigest_;
  ORXDigest policyDigest_;
  std::string policyIdentity_;
  ORXOptionalFailureReason reason_;
  std::vector<ORXBudget> requestedBudgets_;
  ORXGrantScope requestedScope_;
  ORXDigest verifiedArtifactDigest_;
};

}  // namespace ravo::orx
