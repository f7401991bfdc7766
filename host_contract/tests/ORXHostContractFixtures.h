#pragma once
// Fully populated host-contract records shared by the tests, the golden vectors and the fuzz seeds.

#include <string>

#include <ravo-orx/core/ORXPackageIdentity.h>
#include <ravo-orx/core/ORXVerifiedArtifact.h>
#include <ravo-orx/host_contract/ORXCanonicalTypedInput.h>
#include <ravo-orx/host_contract/ORXDecisionEvidenceRecord.h>
#include <ravo-orx/host_contract/ORXDecisionIntent.h>
#include <ravo-orx/host_contract/ORXEffectReceipt.h>
#include <ravo-orx/host_contract/ORXGrantSet.h>
#include <ravo-orx/host_contract/ORXPolicyArtifact.h>
#include <ravo-orx/host_contract/ORXTrustedDecisionEvidence.h>

namespace ravo::orx {

namespace orx_fixtures {

// "sha256:" followed by 64 copies of `digit`.
inline ORXDigest digest(char digit) { return ORXDigest("sha256:" + std::string(64, digit)); }

inline ORXGenerationFence fence(std::int64_t epoch = 7) { return ORXGenerationFence("host.playback", epoch, digest('f')); }

inline ORXDeadline deadline() { return ORXDeadline::some(ORXDeadlineValue("host.monotonic", 5000, 1000)); }

inline ORXGrantScope scope() {
  return ORXGrantScope({"media.seek", "media.pause"}, 3, {ORXResourceClass(2), ORXResourceClass(0)}, "player.local");
}

inline std::vector<ORXBudget> budgets() { return {ORXBudget(10, ORXResourceClass(2)), ORXBudget(0, ORXResourceClass(0))}; }

inline ORXDecisionIntent intent() {
  const auto f64 = ORXFlatTypeReference::primitive(ORXPrimitiveType::f64);
  return ORXDecisionIntent(
      budgets(), deadline(), "media.pause", fence(), digest('1'), {"ravo.player.transport", "ravo.audio.level"},
      {ORXArgument("volume", ORXTypedValue::i32(7)),
       ORXArgument("level", ORXTypedValue::option(f64, ORXTypedValue::f64(ORXFloatRepresentation::bits("3ff0000000000000"))))},
      scope());
}

inline ORXCanonicalTypedInput typedInput() {
  return ORXCanonicalTypedInput({ORXCapabilityObservation(
      fence(), digest('2'), digest('3'), "player.state", ORXTypedValue::i64(-42),
      ORXEnumValue(2, "orx.host::ObservationPrecision"), digest('4'), ORXEnumValue(1, "orx.host::SourceClass"))});
}

inline ORXGrantSet grantSet() {
  return ORXGrantSet({ORXCapabilityGrant(budgets(), "ravo.player.transport", digest('5'), deadline(), fence(), digest('6'),
                                         "host.user", digest('7'), scope())});
}

inline ORXPolicyArtifact policy() { return ORXPolicyArtifact("ravo.player-authz", digest('8'), digest('9'), "1.2.0"); }

inline ORXVerifiedArtifact verifiedArtifact() { return ORXVerifiedArtifact("0.11", digest('c'), digest('d')); }

inline ORXPackageIdentity packageIdentity() {
  return ORXPackageIdentity("0.11", digest('a'), digest('b'), verifiedArtifact().digest());
}

inline ORXDecisionEvidenceComponents components() {
  return ORXDecisionEvidenceComponents(typedInput(), grantSet(), intent(), packageIdentity(), policy(), verifiedArtifact());
}

// Evidence for `outcome` bound to components(), with the authority shape that outcome requires.
inline ORXDecisionEvidenceRecord evidence(ORXDecisionOutcome outcome) {
  const bool deny = outcome == ORXDecisionOutcome::deny;
  return ORXDecisionEvidenceRecord(
      "0.11", typedInput().digest(), deadline(), outcome,
      deny ? std::vector<ORXBudget>{} : std::vector<ORXBudget>{ORXBudget(5, ORXResourceClass(2))},
      deny ? ORXOptionalGrantScope::none() : ORXOptionalGrantScope::some(scope()), fence(), grantSet().digest(),
      intent().digest(), packageIdentity().digest(), policy().digest(), "ravo.player-authz",
      deny ? ORXOptionalFailureReason::some(ORXFailureReason::budgetExceeded) : ORXOptionalFailureReason::none(),
      budgets(), scope(), verifiedArtifact().digest());
}

inline ORXTrustedDecisionEvidence trusted(const ORXDecisionEvidenceRecord& record) {
  return ORXTrustedDecisionEvidence(
      record.canonicalBytes(), record.digest(), record.generationFence(),
      std::string(ORXDecisionEvidenceRecord::contractVersion), record.intentDigest(),
      ORXDecisionEvidenceSourceBinding("0.11", digest('c'), digest('a'), packageIdentity().digest(),
                                       verifiedArtifact().digest()));
}

inline ORXEffectReceipt receipt(ORXReceiptOutcome outcome = ORXReceiptOutcome::executed,
                                ORXOptionalFailureReason reason = ORXOptionalFailureReason::none()) {
  return ORXEffectReceipt({ORXBudget(3, ORXResourceClass(2))}, trusted(evidence(ORXDecisionOutcome::allow)), reason,
                          fence(), digest('e'), intent().digest(), outcome, digest('0'), {digest('4'), digest('2')},
                          ORXTerminalState::completed);
}

}  // namespace orx_fixtures

}  // namespace ravo::orx
