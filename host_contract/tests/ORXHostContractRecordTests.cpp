#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "core/tests/ORXTestSupport.h"
#include "host_contract/tests/ORXHostContractFixtures.h"

namespace ravo::orx {

namespace {

using namespace orx_fixtures;

struct Refusal {
  const char* what;
  std::function<void()> build;
  std::string description;
};

void expectRefusals(const std::vector<Refusal>& refusals) {
  for (const auto& refusal : refusals) EXPECT_TRUE(orxThrows(refusal.build, refusal.description)) << refusal.what;
}

TEST(ORXHostContractRecords, ConstructorsRefuseInvalidContent) {
  const auto i32 = ORXFlatTypeReference::primitive(ORXPrimitiveType::i32);
  const ORXTypedValue value = ORXTypedValue::i32(1);
  const ORXEnumValue precision(0, "orx.host::ObservationPrecision");
  const ORXEnumValue source(0, "orx.host::SourceClass");
  auto observation = [&](ORXEnumValue p, ORXEnumValue s, std::string type, char id = '3') {
    return ORXCapabilityObservation(fence(), digest('2'), digest(id), std::move(type), value, std::move(p), digest('4'),
                                    std::move(s));
  };
  auto argumentIntent = [&](std::vector<ORXArgument> arguments) {
    ORXDecisionIntent(budgets(), deadline(), "media.pause", fence(), digest('1'), {}, std::move(arguments), scope());
  };
  auto grant = [&](std::string capability, std::string issuer, char id = '6') {
    return ORXCapabilityGrant({}, std::move(capability), digest('5'), ORXDeadline::none(), fence(), digest(id),
                              std::move(issuer), digest('7'), scope());
  };
  expectRefusals({
      {"resource class 6", [] { ORXResourceClass(6); },
       "orx.decision.enum_discriminant_invalid: closed enum discriminant is invalid"},
      {"resource class -1", [] { ORXResourceClass(-1); },
       "orx.decision.enum_discriminant_invalid: closed enum discriminant is invalid"},
      {"unqualified fence domain", [] { ORXGenerationFence("playback", 0, digest('f')); },
       "orx.v051.value_invalid: generation domain must be qualified"},
      {"negative epoch", [] { ORXGenerationFence("host.playback", -1, digest('f')); },
       "orx.v051.typed_value_invalid: generation epoch must be nonnegative"},
      {"bad clock domain", [] { ORXDeadlineValue("Host.clock", 1, 1); },
       "orx.v051.value_invalid: deadline clock domain must begin with lowercase ASCII"},
      {"negative deadline", [] { ORXDeadlineValue("host.monotonic", 1, -1); },
       "orx.v051.deadline_invalid: deadline values must be nonnegative"},
      {"negative limit", [] { ORXBudget(-1, ORXResourceClass(0)); },
       "orx.v051.typed_value_invalid: budget limit must be nonnegative"},
      {"unqualified effect type", [] { ORXGrantScope({"play"}, 1, {}, "t.c"); },
       "orx.v051.value_invalid: effect types must be qualified"},
      {"repeated effect type", [] { ORXGrantScope({"a.b", "a.b"}, 1, {}, "t.c"); },
       "orx.v051.collection_duplicate: effect types has duplicate semantic keys"},
      {"zero uses", [] { ORXGrantScope({}, 0, {}, "t.c"); }, "orx.v051.typed_value_invalid: max uses must be positive"},
      {"repeated resource class", [] { ORXGrantScope({}, 1, {ORXResourceClass(1), ORXResourceClass(1)}, "t.c"); },
       "orx.v051.collection_duplicate: resource classes have duplicate discriminants"},
      {"unqualified target class", [] { ORXGrantScope({}, 1, {}, "tc"); },
       "orx.v051.value_invalid: target class must be qualified"},
      {"swapped observation enums", [&] { observation(source, precision, "player.state"); },
       "orx.v051.typed_value_invalid: observation enums have invalid types"},
      {"precision twice", [&] { observation(precision, precision, "player.state"); },
       "orx.v051.typed_value_invalid: observation enums have invalid types"},
      {"source class twice", [&] { observation(source, source, "player.state"); },
       "orx.v051.typed_value_invalid: observation enums have invalid types"},
      {"unqualified observation type", [&] { observation(precision, source, "state"); },
       "orx.v051.value_invalid: observation type must be qualified"},
      {"repeated observation", [&] {
         ORXCanonicalTypedInput({observation(precision, source, "a.b"), observation(precision, source, "c.d")});
       },
       "orx.v051.collection_duplicate: observations have duplicate observation IDs"},
      {"capitalised argument", [&] { ORXArgument("Volume", value); },
       "orx.v051.value_invalid: argument name must begin with lowercase ASCII"},
      {"repeated budget class", [] { ORXDecisionIntent::uniqueBudgets({ORXBudget(1, ORXResourceClass(1)), ORXBudget(2, ORXResourceClass(1))}); },
       "orx.v051.collection_duplicate: budgets have duplicate resource classes"},
      {"unqualified intent effect", [] {
         ORXDecisionIntent({}, ORXDeadline::none(), "pause", fence(), digest('1'), {}, {}, scope());
       },
       "orx.v051.value_invalid: effect type must be qualified"},
      {"unqualified capability", [] {
         ORXDecisionIntent({}, ORXDeadline::none(), "media.pause", fence(), digest('1'), {"transport"}, {}, scope());
       },
       "orx.v051.value_invalid: required capabilities must be qualified"},
      {"repeated argument", [&] { argumentIntent({ORXArgument("volume", value), ORXArgument("volume", ORXTypedValue::i32(2))}); },
       "orx.v051.collection_duplicate: typed arguments have duplicate names"},
      {"unqualified grant capability", [&] { grant("transport", "host.user"); },
       "orx.v051.value_invalid: capability must be qualified"},
      {"unqualified issuer", [&] { grant("a.b", "user"); }, "orx.v051.value_invalid: issuer class must be qualified"},
      {"repeated grant", [&] { ORXGrantSet({grant("a.b", "c.d"), grant("e.f", "g.h")}); },
       "orx.v051.collection_duplicate: grants have duplicate grant IDs"},
      {"empty policy version", [] { ORXPolicyArtifact("ravo.authz", digest('8'), digest('9'), ""); },
       "orx.v051.policy_invalid: policy version is required"},
      {"unqualified policy", [] { ORXPolicyArtifact("authz", digest('8'), digest('9'), "1"); },
       "orx.v051.value_invalid: policy identity must be qualified"},
      {"option of the wrong type", [&] {
         ORXArgument("level", ORXTypedValue::option(i32, ORXTypedValue::boolean(true))).canonicalValue();
       },
       "orx.v051.typed_value_invalid: typed value does not match expected type"},
  });
}

TEST(ORXHostContractRecords, NormaliseSoThatEqualContentHashesAlike) {
  const ORXGrantScope scoped = scope();
  EXPECT_EQ(scoped.effectTypes(), (std::vector<std::string>{"media.pause", "media.seek"}));
  EXPECT_EQ(scoped.resourceClasses(), (std::vector<ORXResourceClass>{ORXResourceClass(0), ORXResourceClass(2)}));

  const ORXDecisionIntent reordered(
      {budgets()[1], budgets()[0]}, deadline(), "media.pause", fence(), digest('1'),
      {"ravo.audio.level", "ravo.player.transport"},
      {intent().typedArguments()[1], intent().typedArguments()[0]},
      ORXGrantScope({"media.pause", "media.seek"}, 3, {ORXResourceClass(0), ORXResourceClass(2)}, "player.local"));
  EXPECT_EQ(reordered, intent());
  EXPECT_EQ(reordered.digest(), intent().digest());
  EXPECT_EQ(intent().typedArguments().front().name(), "level");

  const auto changedGrant = ORXGrantSet({ORXCapabilityGrant(budgets(), "ravo.player.transport", digest('9'), deadline(),
                                                            fence(), digest('6'), "host.user", digest('7'), scope())});
  EXPECT_NE(changedGrant.digest(), grantSet().digest());
  EXPECT_EQ(ORXCanonicalTypedInput({}).canonicalValue().canonicalString(), "{\"observations\":[]}");
  EXPECT_EQ(ORXDeadline::none().canonicalValue().canonicalString(), "{\"tag\":\"none\",\"type\":\"option<orx.host::Deadline>\"}");
  EXPECT_EQ(ORXBudget(3, ORXResourceClass(1)).canonicalValue().canonicalString(),
            "{\"limit\":{\"decimal\":\"3\",\"type\":\"i64\"},\"resource_class\":{\"discriminant\":1,\"type\":\"orx.host::"
            "ResourceClass\"}}");
  EXPECT_LT(ORXResourceClass(1), ORXResourceClass(3));
}

TEST(ORXEffectReceipt, BindsTheTrustedEvidence) {
  const auto evidence = trusted(orx_fixtures::evidence(ORXDecisionOutcome::allow));
  const auto bindingMismatch = "orx.v051.receipt_binding_invalid: EffectReceipt must bind the trusted evidence intent and generation";
  auto build = [&](ORXDigest intentID, ORXGenerationFence generation, ORXReceiptOutcome outcome,
                   ORXOptionalFailureReason reason, std::vector<ORXDigest> refs) {
    return ORXEffectReceipt({}, evidence, reason, std::move(generation), digest('e'), std::move(intentID), outcome,
                            digest('0'), std::move(refs), ORXTerminalState::failed);
  };
  const auto none = ORXOptionalFailureReason::none();
  const auto hostFailure = ORXOptionalFailureReason::some(ORXFailureReason::hostFailure);
  const ORXDigest intentID = intent().digest();
  expectRefusals({
      {"other intent", [&] { build(digest('1'), fence(), ORXReceiptOutcome::executed, none, {}); }, bindingMismatch},
      {"other epoch", [&] { build(intentID, fence(8), ORXReceiptOutcome::executed, none, {}); }, bindingMismatch},
      {"repeated reference", [&] { build(intentID, fence(), ORXReceiptOutcome::failed, none, {digest('2'), digest('2')}); },
       "orx.v051.collection_duplicate: redacted observation references have duplicate digests"},
      {"executed with a reason", [&] { build(intentID, fence(), ORXReceiptOutcome::executed, hostFailure, {}); },
       "orx.v051.receipt_invalid: executed receipt cannot carry a failure reason"},
  });
  EXPECT_NO_THROW(build(intentID, fence(), ORXReceiptOutcome::failed, hostFailure, {}));

  const ORXEffectReceipt built = receipt();
  EXPECT_EQ(built.redactedObservationRefs(), (std::vector<ORXDigest>{digest('2'), digest('4')}));
  EXPECT_EQ(built.decisionEvidenceDigest(), evidence.digest());
  EXPECT_NO_THROW(built.validateBinding(evidence, intentID, fence()));
  const auto mismatch = "orx.v051.receipt_binding_invalid: EffectReceipt decision, intent, or generation binding mismatches";
  const auto otherEvidence = trusted(orx_fixtures::evidence(ORXDecisionOutcome::deny));
  EXPECT_TRUE(orxThrows([&] { built.validateBinding(otherEvidence, intentID, fence()); }, mismatch));
  EXPECT_TRUE(orxThrows([&] { built.validateBinding(evidence, digest('1'), fence()); }, mismatch));
  EXPECT_TRUE(orxThrows([&] { built.validateBinding(evidence, intentID, fence(8)); }, mismatch));
  const ORXGenerationFence otherFenceID("host.playback", 7, digest('e'));
  EXPECT_TRUE(orxThrows([&] { built.validateBinding(evidence, intentID, otherFenceID); }, mismatch));
  EXPECT_NE(receipt(ORXReceiptOutcome::notAttempted).canonicalValue().canonicalString().find(
                "\"outcome\":{\"discriminant\":4,\"type\":\"orx.host::ReceiptOutcome\"}"),
            std::string::npos);
}

}  // namespace

}  // namespace ravo::orx
