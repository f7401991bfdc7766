#include <gtest/gtest.h>

#include <string>

#include "core/tests/ORXTestSupport.h"
#include <ravo-orx/host_contract/ORXDecision.h>
#include "host_contract/tests/ORXHostContractFixtures.h"

namespace ravo::orx {

namespace {

using namespace orx_fixtures;

const std::string kEvidenceInvalid = "orx.v051.decision_evidence_invalid: ";
const std::string kNoncanonical = "orx.v051.decision_evidence_noncanonical: ";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

TEST(ORXDecision, ReasonGoesWithDenyOnly) {
  const std::string refusal = kEvidenceInvalid + "deny requires a reason and allow/limit require none";
  EXPECT_TRUE(orxThrows([] { ORXDecision(ORXDecisionOutcome::deny, std::nullopt, digest('1'), fence()); }, refusal));
  EXPECT_TRUE(orxThrows(
      [] { ORXDecision(ORXDecisionOutcome::allow, ORXFailureReason::budgetExceeded, digest('1'), fence()); }, refusal));
  EXPECT_TRUE(orxThrows(
      [] { ORXDecision(ORXDecisionOutcome::limit, ORXFailureReason::hostFailure, digest('1'), fence()); }, refusal));
  EXPECT_NO_THROW(ORXDecision(ORXDecisionOutcome::deny, ORXFailureReason::hostFailure, digest('1'), fence()));
  EXPECT_NO_THROW(ORXDecision(ORXDecisionOutcome::limit, std::nullopt, digest('1'), fence()));
}

TEST(ORXDecisionEvidenceRecord, AuthorityShapeMustFitTheOutcome) {
  const auto scoped = ORXOptionalGrantScope::some(scope());
  const auto unscoped = ORXOptionalGrantScope::none();
  const auto reason = ORXOptionalFailureReason::some(ORXFailureReason::grantMissing);
  const auto noReason = ORXOptionalFailureReason::none();
  const std::vector<ORXBudget> someBudgets{ORXBudget(1, ORXResourceClass(0))};
  struct Case {
    const char* what;
    ORXDecisionOutcome outcome;
    std::vector<ORXBudget> effectiveBudgets;
    ORXOptionalGrantScope effectiveScope;
    ORXOptionalFailureReason reason;
    bool valid;
  };
  const Case cases[] = {
      {"allow", ORXDecisionOutcome::allow, someBudgets, scoped, noReason, true},
      {"limit without budgets", ORXDecisionOutcome::limit, {}, scoped, noReason, true},
      {"deny", ORXDecisionOutcome::deny, {}, unscoped, reason, true},
      {"allow without scope", ORXDecisionOutcome::allow, {}, unscoped, noReason, false},
      {"allow with reason", ORXDecisionOutcome::allow, {}, scoped, reason, false},
      {"deny with scope", ORXDecisionOutcome::deny, {}, scoped, reason, false},
      {"deny with budgets", ORXDecisionOutcome::deny, someBudgets, unscoped, reason, false},
      {"deny without reason", ORXDecisionOutcome::deny, {}, unscoped, noReason, false},
  };
  for (const auto& c : cases) {
    auto build = [&] {
      return ORXDecisionEvidenceRecord("0.12", digest('1'), ORXDeadline::none(), c.outcome, c.effectiveBudgets,
                                       c.effectiveScope, fence(), digest('2'), digest('3'), digest('4'), digest('5'),
                                       "ravo.authz", c.reason, {}, scope(), digest('6'));
    };
    if (c.valid) {
      const auto record = build();
      EXPECT_EQ(ORXDecisionEvidenceRecord::parseCanonicalBytes(record.canonicalBytes()), record) << c.what;
      EXPECT_EQ(record.trustLevel(), ORXDecisionEvidenceTrustLevel::schemaOnly);
    } else {
      EXPECT_TRUE(orxThrows(build, kEvidenceInvalid + "DecisionEvidence authority shape is invalid")) << c.what;
    }
  }
  EXPECT_TRUE(orxThrows(
      [&] {
        ORXDecisionEvidenceRecord("0.9", digest('1'), ORXDeadline::none(), ORXDecisionOutcome::allow, {}, scoped,
                                  fence(), digest('2'), digest('3'), digest('4'), digest('5'), "ravo.authz", noReason,
                                  {}, scope(), digest('6'));
      },
      kEvidenceInvalid + "ORX ABI lane is invalid"));
  EXPECT_TRUE(orxThrows([] { ORXDecisionEvidenceSourceBinding("0.13", digest('1'), digest('2'), digest('3'), digest('4')); },
                        kEvidenceInvalid + "ORX ABI lane is invalid"));
}

// The fields of allow evidence that the component binding compares with more than one component; the
// defaults are those of evidence(allow).
struct BoundFields {
  std::string lane = "0.11";
  ORXDigest packageIdentityDigest = packageIdentity().digest();
  ORXDigest verifiedArtifactDigest = verifiedArtifact().digest();
  std::string policyIdentity = "ravo.player-authz";
  std::vector<ORXBudget> requestedBudgets = budgets();
  ORXGrantScope requestedScope = scope();
  ORXGenerationFence generationFence = fence();
};

ORXDecisionEvidenceRecord allowEvidence(const BoundFields& f) {
  return ORXDecisionEvidenceRecord(f.lane, typedInput().digest(), deadline(), ORXDecisionOutcome::allow,
                                   {ORXBudget(5, ORXResourceClass(2))}, ORXOptionalGrantScope::some(scope()),
                                   f.generationFence, grantSet().digest(), intent().digest(), f.packageIdentityDigest,
                                   policy().digest(), f.policyIdentity, ORXOptionalFailureReason::none(),
                                   f.requestedBudgets, f.requestedScope, f.verifiedArtifactDigest);
}

// Each case breaks exactly one comparison of the binding: the evidence names the changed component's
// digest wherever that digest is compared too.
TEST(ORXDecisionEvidenceRecord, ComponentBindingCatchesAnyChangedComponent) {
  EXPECT_NO_THROW(allowEvidence({}).validateDiagnosticComponents(components()));
  EXPECT_EQ(allowEvidence({}), evidence(ORXDecisionOutcome::allow));
  const std::string mismatch = kEvidenceInvalid + "DecisionEvidence component binding mismatch";
  const ORXVerifiedArtifact otherArtifact("0.11", digest('c'), digest('e'));
  const ORXVerifiedArtifact artifactInLane12("0.12", digest('c'), digest('d'));
  const ORXPackageIdentity identityOfOtherArtifact("0.11", digest('a'), digest('b'), otherArtifact.digest());
  const ORXPackageIdentity identityInLane12("0.12", digest('a'), digest('b'), verifiedArtifact().digest());
  const ORXPackageIdentity identityOfLane12Artifact("0.11", digest('a'), digest('b'), artifactInLane12.digest());
  const ORXDecisionIntent otherIntent({}, deadline(), "media.pause", fence(), digest('1'), {}, {}, scope());
  const ORXPolicyArtifact otherPolicy("ravo.player-authz", digest('8'), digest('9'), "1.2.1");
  const ORXGrantScope otherScope({"media.seek"}, 3, {ORXResourceClass(2)}, "player.local");
  struct Case {
    const char* what;
    ORXDecisionEvidenceRecord record;
    ORXDecisionEvidenceComponents components;
  };
  const Case cases[] = {
      {"typed input", allowEvidence({}),
       {ORXCanonicalTypedInput({}), grantSet(), intent(), packageIdentity(), policy(), verifiedArtifact()}},
      {"grant set", allowEvidence({}), {typedInput(), ORXGrantSet({}), intent(), packageIdentity(), policy(), verifiedArtifact()}},
      {"intent", allowEvidence({}), {typedInput(), grantSet(), otherIntent, packageIdentity(), policy(), verifiedArtifact()}},
      {"package identity", allowEvidence({}),
       {typedInput(), grantSet(), intent(), identityOfOtherArtifact, policy(), verifiedArtifact()}},
      {"policy", allowEvidence({}), {typedInput(), grantSet(), intent(), packageIdentity(), otherPolicy, verifiedArtifact()}},
      {"verified artifact", allowEvidence({}),
       {typedInput(), grantSet(), intent(), packageIdentity(), policy(), otherArtifact}},
      {"identity's artifact digest", allowEvidence({.packageIdentityDigest = identityOfOtherArtifact.digest()}),
       {typedInput(), grantSet(), intent(), identityOfOtherArtifact, policy(), verifiedArtifact()}},
      {"identity's lane", allowEvidence({.packageIdentityDigest = identityInLane12.digest()}),
       {typedInput(), grantSet(), intent(), identityInLane12, policy(), verifiedArtifact()}},
      {"artifact's lane",
       allowEvidence({.packageIdentityDigest = identityOfLane12Artifact.digest(),
                      .verifiedArtifactDigest = artifactInLane12.digest()}),
       {typedInput(), grantSet(), intent(), identityOfLane12Artifact, policy(), artifactInLane12}},
      {"evidence lane", allowEvidence({.lane = "0.12"}), components()},
      {"policy identity", allowEvidence({.policyIdentity = "ravo.sync"}), components()},
      {"requested budgets", allowEvidence({.requestedBudgets = {}}), components()},
      {"requested scope", allowEvidence({.requestedScope = otherScope}), components()},
      {"generation fence", allowEvidence({.generationFence = fence(8)}), components()},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(orxThrows([&] { c.record.validateDiagnosticComponents(c.components); }, mismatch)) << c.what;
  }
}

TEST(ORXDecisionEvidenceRecord, StrictReaderRefusesAllButItsOwnBytes) {
  const std::string allow = evidence(ORXDecisionOutcome::allow).canonicalValue().canonicalString();
  const std::string deny = evidence(ORXDecisionOutcome::deny).canonicalValue().canonicalString();
  const std::string budget0 = R"({"limit":{"decimal":"0","type":"i64"},"resource_class":{"discriminant":0,"type":"orx.host::ResourceClass"}})";
  const std::string budget10 = R"({"limit":{"decimal":"10","type":"i64"},"resource_class":{"discriminant":2,"type":"orx.host::ResourceClass"}})";
  const std::string epoch = R"("epoch":{"decimal":"7","type":"i64"})";
  const std::string noReason = R"("reason":{"tag":"none","type":"option<orx.host::FailureReason>"})";
  struct Case {
    const char* what;
    std::string bytes;
    std::string description;
  };
  const Case cases[] = {
      {"invalid UTF-8", replaced(allow, "player.local", "player.\xff"), kEvidenceInvalid + "DecisionEvidence bytes must be UTF-8"},
      {"not JSON", "{", "orx.v051.parse_invalid: object key must be a JSON string"},
      {"added space", replaced(allow, ",", ", "), kNoncanonical + "DecisionEvidence bytes are not canonical"},
      {"escaped solidus", replaced(allow, "1.0.0", "1.0\\/0"), kNoncanonical + "DecisionEvidence bytes are not canonical"},
      {"descending budgets", replaced(allow, budget0 + "," + budget10, budget10 + "," + budget0),
       kNoncanonical + "DecisionEvidence record does not round-trip canonically"},
      {"not an object", "[]", kEvidenceInvalid + "DecisionEvidence must be an object"},
      {"missing key", replaced(allow, "\"orx_abi_lane\":\"0.11\",", ""),
       kEvidenceInvalid + "DecisionEvidence has an unknown or missing field"},
      {"old contract", replaced(allow, "1.0.0-candidate.1", "1.0.0"), kEvidenceInvalid + "Host Contract version is not accepted"},
      {"digest not a string", replaced(allow, "\"intent_digest\":\"" + intent().digest().value() + "\"", "\"intent_digest\":1"),
       kEvidenceInvalid + "intent_digest must be a string"},
      {"unknown key", replaced(allow, "\"verified_artifact_digest\"", "\"zz\":1,\"verified_artifact_digest\""),
       kNoncanonical + "DecisionEvidence bytes are not canonical"},
      {"extra key", replaced(allow, "\"canonical_typed_input_digest\"", "\"a\":1,\"canonical_typed_input_digest\""),
       kEvidenceInvalid + "DecisionEvidence has an unknown or missing field"},
      {"bad digest", replaced(allow, "sha256:ffff", "sha256:FFFF"),
       "orx.v051.digest_invalid: digest must be sha256: followed by 64 lowercase hex digits"},
      {"plus epoch", replaced(allow, epoch, R"("epoch":{"decimal":"+7","type":"i64"})"), kEvidenceInvalid + "i64 is not canonical"},
      {"zero-led epoch", replaced(allow, epoch, R"("epoch":{"decimal":"07","type":"i64"})"), kEvidenceInvalid + "i64 is not canonical"},
      {"epoch of type i32", replaced(allow, epoch, R"("epoch":{"decimal":"7","type":"i32"})"), kEvidenceInvalid + "i64 is not canonical"},
      {"epoch as a number", replaced(allow, epoch, R"("epoch":{"decimal":7,"type":"i64"})"), kEvidenceInvalid + "i64 is not canonical"},
      {"bare epoch", replaced(allow, epoch, R"("epoch":7)"), kEvidenceInvalid + "i64 must be an object"},
      {"negative epoch", replaced(allow, epoch, R"("epoch":{"decimal":"-7","type":"i64"})"),
       "orx.v051.typed_value_invalid: generation epoch must be nonnegative"},
      {"outcome of another enum", replaced(allow, "\"type\":\"orx.host::DecisionOutcome\"", "\"type\":\"orx.host::TerminalState\""),
       kEvidenceInvalid + "orx.host::DecisionOutcome is invalid"},
      {"outcome out of range", replaced(allow, "{\"discriminant\":0,\"type\":\"orx.host::DecisionOutcome\"}", "{\"discriminant\":3,\"type\":\"orx.host::DecisionOutcome\"}"),
       "orx.decision.enum_discriminant_invalid: closed enum discriminant is invalid"},
      {"outcome beyond 32 bits", replaced(allow, "{\"discriminant\":0,\"type\":\"orx.host::DecisionOutcome\"}", "{\"discriminant\":4294967296,\"type\":\"orx.host::DecisionOutcome\"}"),
       kEvidenceInvalid + "orx.host::DecisionOutcome is invalid"},
      {"outcome below 32 bits", replaced(allow, "{\"discriminant\":0,\"type\":\"orx.host::DecisionOutcome\"}", "{\"discriminant\":-4294967296,\"type\":\"orx.host::DecisionOutcome\"}"),
       kEvidenceInvalid + "orx.host::DecisionOutcome is invalid"},
      {"reason without tag", replaced(allow, noReason, R"("reason":{"type":"option<orx.host::FailureReason>"})"),
       kEvidenceInvalid + "option<orx.host::FailureReason> is not canonical"},
      {"reason with unknown tag", replaced(allow, noReason, R"("reason":{"tag":"nil","type":"option<orx.host::FailureReason>"})"),
       kEvidenceInvalid + "option<orx.host::FailureReason> is not canonical"},
      {"none with a value", replaced(allow, noReason, R"("reason":{"tag":"none","type":"option<orx.host::FailureReason>","value":1})"),
       kEvidenceInvalid + "option<orx.host::FailureReason> is not canonical"},
      {"reason under another type", replaced(allow, noReason, R"("reason":{"tag":"none","type":"option<orx.host::Deadline>"})"),
       kEvidenceInvalid + "option<orx.host::FailureReason> is not canonical"},
      {"budgets not an array", replaced(allow, "\"effective_budgets\":[", "\"effective_budgets\":{\"a\":["),
       "orx.v051.parse_invalid: unexpected JSON byte"},
      {"budgets an object", replaced(deny, "\"effective_budgets\":[]", "\"effective_budgets\":{}"), kEvidenceInvalid + "budgets must be an array"},
      {"budget with extra key", replaced(deny, "\"effective_budgets\":[]", "\"effective_budgets\":[{}]"),
       kEvidenceInvalid + "Budget has an unknown or missing field"},
      {"effect types not an array", replaced(allow, "\"effect_types\":[\"media.pause\",\"media.seek\"]", "\"effect_types\":\"media.pause\""),
       kEvidenceInvalid + "GrantScope collections are invalid"},
      {"effect type not a string", replaced(allow, "\"effect_types\":[\"media.pause\",", "\"effect_types\":[1,"),
       kEvidenceInvalid + "effect type must be a string"},
      {"lane not a string", replaced(allow, "\"orx_abi_lane\":\"0.11\"", "\"orx_abi_lane\":11"), kEvidenceInvalid + "orx_abi_lane must be a string"},
      {"lane 0.9", replaced(allow, "\"orx_abi_lane\":\"0.11\"", "\"orx_abi_lane\":\"0.9\""), kEvidenceInvalid + "ORX ABI lane is invalid"},
      {"repeated key in sorted order", replaced(allow, "\"deadline\":", "\"contract_version\":"),
       "orx.v051.collection_duplicate: canonical object repeats key 'contract_version'"},
      {"deny carrying a scope", replaced(allow, "{\"discriminant\":0,\"type\":\"orx.host::DecisionOutcome\"}", "{\"discriminant\":1,\"type\":\"orx.host::DecisionOutcome\"}"),
       kEvidenceInvalid + "DecisionEvidence authority shape is invalid"},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(orxThrows([&] { ORXDecisionEvidenceRecord::parseCanonicalBytes(c.bytes); }, c.description)) << c.what;
  }
  EXPECT_EQ(ORXDecisionEvidenceRecord::parseCanonicalBytes(allow), evidence(ORXDecisionOutcome::allow));
  EXPECT_EQ(ORXDecisionEvidenceRecord::parseCanonicalBytes(deny), evidence(ORXDecisionOutcome::deny));
}

}  // namespace

}  // namespace ravo::orx
