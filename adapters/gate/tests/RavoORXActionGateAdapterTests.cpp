#include <gtest/gtest.h>

#include <stdexcept>

#include <ravo-orx/adapters/gate/RavoORXActionGateAdapter.h>
#include <ravo-orx/adapters/gate/RavoORXGate.h>
#include <ravo-orx/contracts/actions/RavoDefaultActionSafeguard.h>
#include "contracts/actions/tests/RavoActionBrokerTestSupport.h"

namespace ravo::orx {

namespace {

using namespace ravo_test;
using Origin = RavoActionProposalOrigin;

const RavoApplicationActionDescriptor& pauseDescriptor() {
  return *RavoApplicationActionCatalog::descriptor(RavoPlayerActionIDs::pause());
}

// The pause action with other capabilities, effects or target class.
RavoApplicationActionDescriptor pauseWith(std::vector<RavoScenarioCapability> capabilities,
                                          std::vector<std::string> effects,
                                          std::string targetClass = "ravo.playback.transport") {
  auto fields = RavoApplicationActionDescriptor::Fields{.id = RavoPlayerActionIDs::pause(),
                                                        .requestedCapabilities = std::move(capabilities),
                                                        .effectTypes = std::move(effects),
                                                        .requiresStableTarget = true,
                                                        .targetClass = std::move(targetClass),
                                                        .actionCode = 10};
  return RavoApplicationActionDescriptor(std::move(fields));
}

RavoActionProposal proposal(Origin origin, std::optional<std::string> target = "t1") {
  return RavoActionProposal(RavoUUID::random(), RavoPlayerActionIDs::pause(), std::move(target), {}, origin);
}

TEST(RavoORXActionGateAdapter, MapsOnlyDescriptorsWithOneKnownCapabilityAndEffect) {
  const RavoScenarioCapability transport("ravo.media.transport");
  const std::string effect = "ravo.effect.media.transport";
  struct Case {
    const char* name;
    RavoApplicationActionDescriptor descriptor;
    bool mapped;
  };
  const Case cases[] = {
      {"built-in pause", pauseDescriptor(), true},
      {"two capabilities", pauseWith({transport, RavoScenarioCapability("ravo.audio.volume")}, {effect}), false},
      {"unknown capability", pauseWith({RavoScenarioCapability("ravo.home.control")}, {effect}), false},
      {"no capability", pauseWith({}, {effect}), false},
      {"two effects", pauseWith({transport}, {effect, "ravo.effect.audio.volume"}), false},
      {"unknown effect", pauseWith({transport}, {"ravo.effect.home.control"}), false},
      {"no effect", pauseWith({transport}, {}), false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(RavoORXActionGateAdapter::actionProposal(c.descriptor, proposal(Origin::userInterface)).has_value(),
              c.mapped)
        << c.name;
    if (!c.mapped) {
      EXPECT_EQ(RavoORXActionGateAdapter().evaluate(c.descriptor, proposal(Origin::userInterface),
                                                    RavoActionGrant(grantFields(1))),
                RavoActionGateResult::deny("orx.action_mapping_unavailable"))
          << c.name;
    }
  }
}

TEST(RavoORXActionGateAdapter, ProposalTakesItsSourceFromTheOriginAndItsTargetFromTheProposal) {
  struct Case {
    Origin origin;
    std::optional<std::string> stableTarget;
    RavoORXProposalSource source;
    const char* targetIdentifier;
  };
  const Case cases[] = {
      {Origin::deterministicRouter, "t1", RavoORXProposalSource::deterministicRouter, "t1"},
      {Origin::userInterface, "t1", RavoORXProposalSource::userInterface, "t1"},
      {Origin::appIntent, "t1", RavoORXProposalSource::userInterface, "t1"},
      {Origin::appleIntelligence, "t1", RavoORXProposalSource::appleIntelligence, "t1"},
      {Origin::kolto, "t1", RavoORXProposalSource::deterministicRouter, "t1"},
      {Origin::externalModel, "t1", RavoORXProposalSource::deterministicRouter, "t1"},
      {Origin::mcp, "t1", RavoORXProposalSource::deterministicRouter, "t1"},
      {Origin::userInterface, std::nullopt, RavoORXProposalSource::userInterface, "ravo.player.pause"},
  };
  for (const auto& c : cases) {
    auto mapped = RavoORXActionGateAdapter::actionProposal(pauseDescriptor(), proposal(c.origin, c.stableTarget));
    ASSERT_TRUE(mapped);
    EXPECT_EQ(*mapped, RavoORXActionProposal(RavoORXCapability::mediaTransport, RavoORXEffect::transport,
                                             RavoORXResource::playback, c.source, 10, "ravo.playback.transport",
                                             c.targetIdentifier))
        << orxRawValue(c.origin);
  }
  auto withTarget = RavoORXActionGateAdapter::actionProposal(pauseDescriptor(), proposal(Origin::userInterface));
  auto withoutTarget =
      RavoORXActionGateAdapter::actionProposal(pauseDescriptor(), proposal(Origin::userInterface, std::nullopt));
  EXPECT_NE(RavoORXGate::shadowCandidate(*withTarget, 3).proposalDigest(),
            RavoORXGate::shadowCandidate(*withoutTarget, 3).proposalDigest());
}

TEST(RavoORXActionGateAdapter, AdmitsAtTheLevelTheVerifierGrantsAndNeverThrows) {
  const auto verified = RavoActionGateResult::allow(RavoActionGateLevel::orxVerified, "orx.verified_admission");
  const auto shadow = RavoActionGateResult::allow(RavoActionGateLevel::hostGrant, "orx.shadow_canonicalized");
  struct Case {
    const char* name;
    RavoORXAdmissionVerifier verifier;
    RavoApplicationActionDescriptor descriptor;
    std::int64_t generation;
    RavoActionGateResult expected;
    bool asksVerifier;
  };
  auto answering = [](bool answer) { return [answer](const auto&, const auto&) { return answer; }; };
  const Case cases[] = {
      {"no verifier", {}, pauseDescriptor(), 3, shadow, false},
      {"verifier admits", answering(true), pauseDescriptor(), 3, verified, true},
      {"verifier refuses", answering(false), pauseDescriptor(), 3, shadow, true},
      {"verifier throws an exception", [](const auto&, const auto&) -> bool { throw std::runtime_error("down"); },
       pauseDescriptor(), 3, shadow, true},
      {"verifier throws a non-exception", [](const auto&, const auto&) -> bool { throw 42; }, pauseDescriptor(), 3,
       shadow, true},
      {"negative generation", answering(true), pauseDescriptor(), -1,
       RavoActionGateResult::deny("orx.canonicalization_failed"), false},
      {"capitalised target class", answering(true),
       pauseWith({RavoScenarioCapability("ravo.media.transport")}, {"ravo.effect.media.transport"}, "Ravo.Target"), 3,
       RavoActionGateResult::deny("orx.canonicalization_failed"), false},
  };
  for (const auto& c : cases) {
    auto fields = grantFields(1);
    fields.generation = c.generation;
    const RavoActionGrant grant(fields);
    const auto request = proposal(Origin::appleIntelligence);
    std::optional<RavoORXShadowCandidate> seen;
    std::optional<RavoActionGrant> seenGrant;
    RavoORXAdmissionVerifier recording;
    if (c.verifier) {
      recording = [&](const RavoORXShadowCandidate& candidate, const RavoActionGrant& given) {
        seen = candidate;
        seenGrant = given;
        return c.verifier(candidate, given);
      };
    }
    RavoORXActionGateAdapter gate(recording);
    RavoActionGateResult result = RavoActionGateResult::deny("not evaluated");
    ASSERT_NO_THROW(result = gate.evaluate(c.descriptor, request, grant)) << c.name;
    EXPECT_EQ(result, c.expected) << c.name;
    EXPECT_EQ(seen.has_value(), c.asksVerifier) << c.name;
    if (seen) {
      auto expected = RavoORXGate::shadowCandidate(
          *RavoORXActionGateAdapter::actionProposal(c.descriptor, request), c.generation);
      EXPECT_EQ(*seen, expected) << c.name;
      EXPECT_EQ(*seenGrant, grant) << c.name;
    }
  }
}

// The adapter behind the real broker, with the default safeguard and a handler for pause.
TEST(RavoORXActionGateAdapter, ModelProposalsPassTheBrokerOnlyWhenVerified) {
  struct Case {
    const char* name;
    RavoORXAdmissionVerifier verifier;
    Origin origin;
    std::vector<RavoApplicationActionManifest> manifests;
    RavoActionReceiptOutcome outcome;
    const char* reason;
    std::optional<RavoActionGateLevel> level;
  };
  const auto player = RavoApplicationActionCatalog::ravoPlayer();
  const auto unmappable = RavoApplicationActionManifest(
      RavoPlayerActionIDs::application(), "Ravo Player", "1.0.0",
      {pauseWith({RavoScenarioCapability("ravo.media.transport")}, {"ravo.effect.home.control"})});
  auto answering = [](bool answer) { return [answer](const auto&, const auto&) { return answer; }; };
  const Case cases[] = {
      {"model, no verifier", {}, Origin::appleIntelligence, {player}, RavoActionReceiptOutcome::blocked,
       "broker.orx_verification_required:orx.shadow_canonicalized", RavoActionGateLevel::hostGrant},
      {"model, verifier refuses", answering(false), Origin::externalModel, {player}, RavoActionReceiptOutcome::blocked,
       "broker.orx_verification_required:orx.shadow_canonicalized", RavoActionGateLevel::hostGrant},
      {"model, verifier admits", answering(true), Origin::appleIntelligence, {player},
       RavoActionReceiptOutcome::completed, "handler.paused", RavoActionGateLevel::orxVerified},
      {"person, no verifier", {}, Origin::userInterface, {player}, RavoActionReceiptOutcome::completed,
       "handler.paused", RavoActionGateLevel::hostGrant},
      {"unmappable action", answering(true), Origin::appleIntelligence, {unmappable},
       RavoActionReceiptOutcome::blocked, "orx.action_mapping_unavailable", std::nullopt},
  };
  for (const auto& c : cases) {
    RavoActionExecutionBroker broker(c.manifests, std::make_unique<RavoORXActionGateAdapter>(c.verifier),
                                     std::make_unique<RavoDefaultActionSafeguard>(fixedNow), fixedNow);
    broker.registerHandler(RavoPlayerActionIDs::pause(), [](auto&) { return RavoActionHandlerResult("paused", ""); });
    const RavoActionGrant grant(grantFields(1));
    broker.install(grant);
    auto receipt = broker.execute(proposal(c.origin), grant.id(), 3, std::nullopt, kNow);
    EXPECT_EQ(receipt.outcome(), c.outcome) << c.name;
    EXPECT_EQ(receipt.reasonCode(), c.reason) << c.name;
    EXPECT_EQ(receipt.gateLevel(), c.level) << c.name;
  }
}

}  // namespace

}  // namespace ravo::orx
