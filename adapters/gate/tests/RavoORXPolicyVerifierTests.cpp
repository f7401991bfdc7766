#include <gtest/gtest.h>

#include <ravo-orx/adapters/gate/RavoORXActionGateAdapter.h>
#include <ravo-orx/adapters/gate/RavoORXGate.h>
#include <ravo-orx/adapters/gate/RavoORXPolicyVerifier.h>
#include <ravo-orx/contracts/actions/RavoDefaultActionSafeguard.h>
#include "contracts/actions/tests/RavoActionBrokerTestSupport.h"

namespace ravo::orx {

namespace {

using namespace ravo_test;

RavoORXShadowCandidate candidate(RavoORXEffect effect, std::int32_t actionCode, std::int64_t epoch = 3) {
  return RavoORXGate::shadowCandidate(RavoORXActionProposal(RavoORXCapability::mediaTransport, effect,
                                                            RavoORXResource::playback,
                                                            RavoORXProposalSource::appleIntelligence, actionCode,
                                                            "ravo.playback.transport", "t1"),
                                      epoch);
}

RavoActionGrant grant(std::vector<RavoScenarioCapability> capabilities, std::chrono::milliseconds lifetime = 60s,
                      std::int64_t maxUses = 1) {
  auto fields = grantFields(maxUses);
  fields.allowedCapabilities = std::move(capabilities);
  fields.expiresAt = kNow + lifetime;
  return RavoActionGrant(fields);
}

const RavoScenarioCapability& navigate() {
  static const RavoScenarioCapability capability("ravo.ui.navigate");
  return capability;
}

std::shared_ptr<OrxPolicyRuntime> bundledRuntime() {
  static const auto runtime = std::make_shared<OrxPolicyRuntime>(std::filesystem::path("artifacts"));
  return runtime;
}

TEST(RavoORXPolicyVerifier, DrawsTheAuthorizationFactsFromCandidateAndGrant) {
  const auto transport = RavoScenarioCapability::mediaTransport();
  const auto volume = RavoScenarioCapability::audioVolume();
  auto tampered = [] {
    auto c = candidate(RavoORXEffect::transport, 10);
    return RavoORXShadowCandidate(c.generation(), c.proposalDigest(), c.canonicalInput(), c.intent(),
                                  c.proposalDigest());
  };
  // A hand-built candidate whose source is not the gate's: the module sees an unpaired role.
  auto fromSource = [](std::int32_t sourceClass) {
    auto c = candidate(RavoORXEffect::transport, 10);
    const ORXDecisionIntent& i = c.intent();
    ORXDecisionIntent intent(i.budgets(), i.deadline(), i.effectType(), i.generation(), i.provenance(),
                             i.requiredCapabilities(),
                             {ORXArgument("action_code", ORXTypedValue::i32(10)),
                              ORXArgument("source_class",
                                          ORXTypedValue::enumeration(ORXEnumValue(sourceClass, "orx.host::SourceClass")))},
                             i.requestedScope());
    const ORXDigest digest = intent.digest();
    return RavoORXShadowCandidate(c.generation(), c.proposalDigest(), c.canonicalInput(), std::move(intent), digest);
  };
  struct Case {
    const char* name;
    RavoORXShadowCandidate candidate;
    RavoActionGrant grant;
    std::optional<AuthorizationFacts> facts;
  };
  const Case cases[] = {
      {"pause", candidate(RavoORXEffect::transport, 10), grant({transport, volume, navigate()}),
       AuthorizationFacts{2, 2, 1 | 2 | 4 | 32, 0, 60'000, 0, 1, 1}},
      {"remote pause", candidate(RavoORXEffect::transport, 1), grant({transport}),
       AuthorizationFacts{2, 2, 1 | 4, 0, 60'000, 0, 1, 1}},
      {"resume", candidate(RavoORXEffect::transport, 11), grant({transport}),
       AuthorizationFacts{2, 1, 1 | 4, 0, 60'000, 0, 1, 1}},
      {"remote resume", candidate(RavoORXEffect::transport, 2), grant({transport}),
       AuthorizationFacts{2, 1, 1 | 4, 0, 60'000, 0, 1, 1}},
      {"previous", candidate(RavoORXEffect::transport, 13), grant({volume}, 5s, 7),
       AuthorizationFacts{2, 5, 2, 0, 5'000, 0, 7, 1}},
      {"volume", candidate(RavoORXEffect::volume, 14), grant({}, -1s), AuthorizationFacts{2, 4, 0, 0, -1'000, 0, 1, 1}},
      {"navigation", candidate(RavoORXEffect::navigate, 24), grant({navigate()}, 60s, std::int64_t{1} << 40),
       AuthorizationFacts{2, 6, 32, 0, 60'000, 0, 2'147'483'647, 1}},
      {"source class 1", fromSource(1), grant({transport}), AuthorizationFacts{0, 2, 1 | 4, 0, 60'000, 0, 1, 1}},
      {"source class 3", fromSource(3), grant({transport}), AuthorizationFacts{0, 2, 1 | 4, 0, 60'000, 0, 1, 1}},
      {"source class 2 by hand", fromSource(2), grant({transport}), AuthorizationFacts{2, 2, 1 | 4, 0, 60'000, 0, 1, 1}},
      {"unknown transport code", candidate(RavoORXEffect::transport, 14), grant({transport}), std::nullopt},
      {"unknown navigation code", candidate(RavoORXEffect::navigate, 25), grant({navigate()}), std::nullopt},
      {"effect without a command", candidate(RavoORXEffect::mediaPlay, 10), grant({transport}), std::nullopt},
      {"other generation", candidate(RavoORXEffect::transport, 10, 4), grant({transport}), std::nullopt},
      {"intent digest not the intent's", tampered(), grant({transport}), std::nullopt},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(RavoORXPolicyVerifier::authorizationFacts(c.candidate, c.grant, kNow), c.facts) << c.name;
  }
}

// The bundled authorization module decides; the expectations follow its rules.
TEST(RavoORXPolicyVerifier, AdmitsWhatTheBundledAuthorizationModuleAllows) {
  ASSERT_TRUE(bundledRuntime()->isAuthorizationAvailable()) << bundledRuntime()->loadError().value_or("");
  const auto transport = RavoScenarioCapability::mediaTransport();
  auto missing = std::make_shared<OrxPolicyRuntime>(std::filesystem::path("adapters/gate/tests/no-artifacts"));
  struct Case {
    const char* name;
    std::shared_ptr<OrxPolicyRuntime> runtime;
    RavoORXShadowCandidate candidate;
    RavoActionGrant grant;
    bool admitted;
  };
  const Case cases[] = {
      {"pause under a transport grant", bundledRuntime(), candidate(RavoORXEffect::transport, 10), grant({transport}),
       true},
      {"next track, a controller's command", bundledRuntime(), candidate(RavoORXEffect::transport, 12), grant({transport}),
       true},
      {"navigation under a navigation grant", bundledRuntime(), candidate(RavoORXEffect::navigate, 20),
       grant({navigate()}), true},
      {"pause without the transport grant", bundledRuntime(), candidate(RavoORXEffect::transport, 10),
       grant({navigate()}), false},
      {"expired grant", bundledRuntime(), candidate(RavoORXEffect::transport, 10), grant({transport}, 0s), false},
      {"no command", bundledRuntime(), candidate(RavoORXEffect::transport, 99), grant({transport}), false},
      {"no authorization module", missing, candidate(RavoORXEffect::transport, 10), grant({transport}), false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(RavoORXPolicyVerifier(c.runtime, fixedNow)(c.candidate, c.grant), c.admitted) << c.name;
  }
  EXPECT_THROW(RavoORXPolicyVerifier(nullptr), std::invalid_argument);
}

TEST(RavoORXPolicyVerifier, LetsAModelProposalThroughTheBrokerWithTheBundledPolicy) {
  struct Case {
    const char* name;
    std::shared_ptr<OrxPolicyRuntime> runtime;
    const char* reason;
  };
  const Case cases[] = {
      {"bundled policy", bundledRuntime(), "handler.paused"},
      {"no policy", std::make_shared<OrxPolicyRuntime>(std::filesystem::path("adapters/gate/tests/no-artifacts")),
       "broker.orx_verification_required:orx.shadow_canonicalized"},
  };
  for (const auto& c : cases) {
    RavoActionExecutionBroker broker(
        {RavoApplicationActionCatalog::ravoPlayer()},
        std::make_unique<RavoORXActionGateAdapter>(RavoORXPolicyVerifier(c.runtime, fixedNow)),
        std::make_unique<RavoDefaultActionSafeguard>(fixedNow), fixedNow);
    broker.registerHandler(RavoPlayerActionIDs::pause(), [](auto&) { return RavoActionHandlerResult("paused", ""); });
    const RavoActionGrant installed(grantFields(1));
    broker.install(installed);
    auto receipt = broker.execute(pauseProposal(RavoActionProposalOrigin::appleIntelligence), installed.id(), 3,
                                  std::nullopt, kNow);
    EXPECT_EQ(receipt.reasonCode(), c.reason) << c.name;
  }
}

}  // namespace

}  // namespace ravo::orx
