#include <gtest/gtest.h>

#include <functional>

#include <ravo-orx/contracts/actions/RavoDefaultActionSafeguard.h>
#include <ravo-orx/contracts/actions/RavoHostGrantActionGate.h>
#include "contracts/actions/tests/RavoActionBrokerTestSupport.h"

namespace ravo::orx {

namespace {

using namespace ravo_test;
using Outcome = RavoActionReceiptOutcome;
using Origin = RavoActionProposalOrigin;
using Level = RavoActionGateLevel;

// Actions without a stable target that exercise the safeguard and the gate requirement.
RavoApplicationActionManifest testManifest() {
  auto action = [](const char* id, RavoScenarioRiskClass risk, RavoScenarioConfirmationPolicy confirmation,
                   RavoActionGateRequirement gate,
                   std::vector<RavoScenarioCapability> capabilities = {RavoScenarioCapability("ravo.ui.navigate")}) {
    return RavoApplicationActionDescriptor({.id = RavoApplicationActionID(id),
                                            .applicationID = RavoApplicationID("ravo.test"),
                                            .requestedCapabilities = std::move(capabilities),
                                            .risk = risk,
                                            .confirmation = confirmation,
                                            .minimumGate = gate});
  };
  using Risk = RavoScenarioRiskClass;
  using Policy = RavoScenarioConfirmationPolicy;
  using Gate = RavoActionGateRequirement;
  return RavoApplicationActionManifest(
      RavoApplicationID("ravo.test"), "Test", "1.0.0",
      {action("ravo.test.medium", Risk::medium, Policy::none, Gate::hostGrant),
       action("ravo.test.high", Risk::high, Policy::none, Gate::hostGrant),
       action("ravo.test.verified", Risk::none, Policy::none, Gate::orxVerified),
       action("ravo.test.confirmed", Risk::low, Policy::perExecution, Gate::hostGrant),
       action("ravo.test.two", Risk::none, Policy::none, Gate::hostGrant,
              {RavoScenarioCapability("ravo.ui.navigate"), RavoScenarioCapability::mediaTransport()})});
}

enum class GateMode { host, verified, deny, throws };
enum class HandlerMode { completes, throws, absent };

std::unique_ptr<const RavoActionGateChecking> makeGate(GateMode mode) {
  switch (mode) {
    case GateMode::host: return std::make_unique<RavoHostGrantActionGate>();
    case GateMode::verified: return std::make_unique<ScriptedGate>(RavoActionGateResult::allow(Level::orxVerified, "orx.verified_admission"));
    case GateMode::deny: return std::make_unique<ScriptedGate>(RavoActionGateResult::deny("orx.action_mapping_unavailable"));
    case GateMode::throws: return std::make_unique<ScriptedGate>(std::nullopt);
  }
  return nullptr;
}

struct GivenConfirmation {
  const char* action;
  std::optional<std::string> target;
  std::int64_t generation = 3;
  std::chrono::seconds lifetime = 30s;
};

struct Scenario {
  const char* name;
  const char* action = "ravo.player.pause";
  std::optional<std::string> target = "t1";
  RavoActionArguments arguments = {};
  Origin origin = Origin::userInterface;
  std::function<void(RavoActionGrant::Fields&)> changeGrant = nullptr;
  bool installGrant = true;
  std::int64_t generation = 3;
  std::chrono::seconds executedAfter = 0s;  // the caller's time, after the grant was installed
  std::optional<GivenConfirmation> confirmation = std::nullopt;
  GateMode gate = GateMode::host;
  HandlerMode handler = HandlerMode::completes;
  // Expected receipt.
  Outcome outcome = Outcome::blocked;
  const char* reason = "";
  std::optional<Level> level = std::nullopt;
  bool consumesUse = true;
};

TEST(RavoActionExecutionBroker, AnswersEveryProposalWithTheReceiptOfTheFirstFailingStep) {
  auto volume = [](double level) { return RavoActionArguments{{"level", RavoActionValue::number(level)}}; };
  const Scenario scenarios[] = {
      {.name = "completes", .outcome = Outcome::completed, .reason = "handler.done", .level = Level::hostGrant},
      {.name = "unknown action", .action = "ravo.player.rewind", .reason = "broker.unknown_action", .consumesUse = false},
      {.name = "invalid arguments", .action = "ravo.player.volume.set", .arguments = volume(1.5),
       .reason = "broker.invalid_arguments", .consumesUse = false},
      {.name = "valid volume", .action = "ravo.player.volume.set", .arguments = volume(0.3),
       .outcome = Outcome::completed, .reason = "handler.done", .level = Level::hostGrant},
      {.name = "missing target", .target = std::nullopt, .reason = "broker.stable_target_required", .consumesUse = false},
      {.name = "navigation with target", .action = "ravo.ui.home.open", .reason = "broker.stable_target_required",
       .consumesUse = false},
      {.name = "no grant", .installGrant = false, .reason = "broker.grant_scope_mismatch", .consumesUse = false},
      {.name = "grant expires now", .executedAfter = 60s, .reason = "broker.grant_scope_mismatch", .consumesUse = false},
      {.name = "other generation", .generation = 4, .reason = "broker.grant_scope_mismatch", .consumesUse = false},
      {.name = "action not granted", .changeGrant = [](auto& g) { g.allowedActionIDs = {RavoPlayerActionIDs::setVolume()}; },
       .reason = "broker.grant_scope_mismatch", .consumesUse = false},
      {.name = "capability not granted", .action = "ravo.player.volume.set", .arguments = volume(0.3),
       .changeGrant = [](auto& g) { g.allowedCapabilities = {RavoScenarioCapability::mediaTransport()}; },
       .reason = "broker.grant_scope_mismatch", .consumesUse = false},
      {.name = "both capabilities granted", .action = "ravo.test.two", .target = std::nullopt,
       .outcome = Outcome::completed, .reason = "handler.done", .level = Level::hostGrant},
      {.name = "one of two capabilities granted", .action = "ravo.test.two", .target = std::nullopt,
       .changeGrant = [](auto& g) { g.allowedCapabilities = {RavoScenarioCapability("ravo.ui.navigate")}; },
       .reason = "broker.grant_scope_mismatch", .consumesUse = false},
      {.name = "target not granted", .target = "t2", .reason = "broker.target_out_of_scope", .consumesUse = false},
      {.name = "stale confirmation generation", .confirmation = GivenConfirmation{"ravo.player.pause", "t1", 2},
       .reason = "broker.stale_confirmation", .consumesUse = false},
      {.name = "expired confirmation", .confirmation = GivenConfirmation{"ravo.player.pause", "t1", 3, 0s},
       .reason = "broker.stale_confirmation", .consumesUse = false},
      {.name = "gate denies", .gate = GateMode::deny, .reason = "orx.action_mapping_unavailable"},
      {.name = "gate throws", .gate = GateMode::throws, .reason = "gate.failed"},
      {.name = "model needs verification", .origin = Origin::appleIntelligence,
       .reason = "broker.orx_verification_required:host.grant.checked", .level = Level::hostGrant},
      {.name = "Kolto needs verification", .origin = Origin::kolto,
       .reason = "broker.orx_verification_required:host.grant.checked", .level = Level::hostGrant},
      {.name = "external model needs verification", .origin = Origin::externalModel,
       .reason = "broker.orx_verification_required:host.grant.checked", .level = Level::hostGrant},
      {.name = "MCP needs verification", .origin = Origin::mcp,
       .reason = "broker.orx_verification_required:host.grant.checked", .level = Level::hostGrant},
      {.name = "router completes at host level", .origin = Origin::deterministicRouter, .outcome = Outcome::completed,
       .reason = "handler.done", .level = Level::hostGrant},
      {.name = "app intent completes at host level", .origin = Origin::appIntent, .outcome = Outcome::completed,
       .reason = "handler.done", .level = Level::hostGrant},
      {.name = "verified model", .origin = Origin::mcp, .gate = GateMode::verified, .outcome = Outcome::completed,
       .reason = "handler.done", .level = Level::orxVerified},
      {.name = "action needs verification", .action = "ravo.test.verified", .target = std::nullopt,
       .reason = "broker.orx_verification_required:host.grant.checked", .level = Level::hostGrant},
      {.name = "medium risk", .action = "ravo.test.medium", .target = std::nullopt,
       .reason = "safeguard.confirmation_required", .level = Level::hostGrant},
      {.name = "medium risk confirmed", .action = "ravo.test.medium", .target = std::nullopt,
       .confirmation = GivenConfirmation{"ravo.test.medium", std::nullopt}, .outcome = Outcome::completed,
       .reason = "handler.done", .level = Level::hostGrant},
      {.name = "confirmation of another target", .action = "ravo.test.confirmed", .target = std::nullopt,
       .confirmation = GivenConfirmation{"ravo.test.confirmed", "t1"}, .reason = "safeguard.confirmation_required",
       .level = Level::hostGrant},
      {.name = "high risk", .action = "ravo.test.high", .target = std::nullopt,
       .confirmation = GivenConfirmation{"ravo.test.high", std::nullopt},
       .reason = "safeguard.high_risk_requires_independent_controller", .level = Level::hostGrant},
      {.name = "no handler", .handler = HandlerMode::absent, .reason = "broker.handler_unavailable",
       .level = Level::hostGrant},
      {.name = "handler throws", .handler = HandlerMode::throws, .outcome = Outcome::failed, .reason = "handler.failed",
       .level = Level::hostGrant},
  };

  for (const auto& s : scenarios) {
    SCOPED_TRACE(s.name);
    RavoActionExecutionBroker broker({RavoApplicationActionCatalog::ravoPlayer(), testManifest()}, makeGate(s.gate),
                                     std::make_unique<RavoDefaultActionSafeguard>(fixedNow), fixedNow);
    for (const auto& action : broker.installedActions()) {
      if (s.handler == HandlerMode::absent) break;
      broker.registerHandler(action.id(), [&](const RavoActionProposal&) -> RavoActionHandlerResult {
        if (s.handler == HandlerMode::throws) throw std::runtime_error("device gone");
        return {"done", "Done."};
      });
    }
    auto fields = grantFields(1);
    if (s.changeGrant) s.changeGrant(fields);
    RavoActionGrant grant(fields);
    if (s.installGrant) broker.install(grant);

    std::optional<RavoActionConfirmation> confirmation;
    if (s.confirmation) {
      confirmation.emplace(RavoUUID::random(), RavoApplicationActionID(s.confirmation->action), s.confirmation->target,
                           s.confirmation->generation, kNow + s.confirmation->lifetime);
    }
    RavoActionProposal proposal(RavoUUID::random(), RavoApplicationActionID(s.action), s.target, s.arguments, s.origin);
    auto receipt = broker.execute(proposal, grant.id(), s.generation, confirmation, kNow + s.executedAfter);

    EXPECT_EQ(receipt.outcome(), s.outcome);
    EXPECT_EQ(receipt.reasonCode(), s.reason);
    EXPECT_EQ(receipt.gateLevel(), s.level);
    EXPECT_EQ(receipt.proposalID(), proposal.id());
    EXPECT_EQ(receipt.actionID(), proposal.actionID());
    EXPECT_EQ(receipt.stableTargetID(), s.target);
    EXPECT_EQ(receipt.grantID().has_value(), std::string_view(s.reason) != "broker.unknown_action");

    // The grant has one use: a second, valid execution tells whether this one spent it.
    if (s.installGrant && !s.changeGrant) {
      auto probe = broker.execute(pauseProposal(), grant.id(), 3, std::nullopt, kNow);
      EXPECT_EQ(probe.reasonCode() == "broker.grant_scope_mismatch", s.consumesUse) << probe.reasonCode();
    }
  }
}

TEST(RavoActionExecutionBroker, SetUpRefusesConflictsUnknownActionsAndInvalidGrants) {
  auto makeBroker = [](std::vector<RavoApplicationActionManifest> manifests) {
    return std::make_unique<RavoActionExecutionBroker>(manifests, std::make_unique<RavoHostGrantActionGate>(),
                                                       std::make_unique<RavoDefaultActionSafeguard>(fixedNow), fixedNow);
  };
  auto expectCode = [](RavoActionBrokerError::Code code, const std::function<void()>& operation) {
    try {
      operation();
      ADD_FAILURE() << "no error";
    } catch (const RavoActionBrokerError& error) {
      EXPECT_EQ(error.code(), code) << error.what();
    }
  };
  using Code = RavoActionBrokerError::Code;
  const auto& player = RavoApplicationActionCatalog::ravoPlayer();

  expectCode(Code::duplicateAction, [&] { makeBroker({player, player}); });

  auto broker = makeBroker({testManifest()});
  broker->install(player);
  broker->install(player);  // an equal declaration is accepted again
  EXPECT_EQ(broker->installedActions().size(), 15u);

  // A changed declaration stops the installation at that action; the actions before it stay installed.
  auto changed = RavoApplicationActionDescriptor({.id = RavoApplicationActionID("ravo.test.medium"),
                                                  .applicationID = RavoApplicationID("ravo.test"), .title = "Changed"});
  auto fresh = RavoApplicationActionDescriptor({.id = RavoApplicationActionID("ravo.test.alpha")});
  auto late = RavoApplicationActionDescriptor({.id = RavoApplicationActionID("ravo.test.zulu")});
  expectCode(Code::duplicateAction, [&] {
    broker->install(RavoApplicationActionManifest(RavoApplicationID("ravo.test"), "Test", "2.0.0", {changed, fresh, late}));
  });
  EXPECT_EQ(broker->installedActions().size(), 16u);
  EXPECT_EQ(broker->installedActions().front().id().rawValue(), "ravo.player.next");

  // An unknown action is the broker's error whatever the handler, an empty one included.
  for (RavoActionHandler handler : {RavoActionHandler([](auto&) { return RavoActionHandlerResult("", ""); }),
                                    RavoActionHandler()}) {
    expectCode(Code::unknownAction,
               [&] { broker->registerHandler(RavoApplicationActionID("ravo.player.rewind"), std::move(handler)); });
  }

  EXPECT_THROW(broker->registerHandler(RavoPlayerActionIDs::pause(), RavoActionHandler()), std::invalid_argument);

  const std::function<void(RavoActionGrant::Fields&)> invalidGrants[] = {
      [](auto& g) { g.generation = -1; },
      [](auto& g) { g.maxUses = 0; },
      [](auto& g) { g.expiresAt = kNow; },
  };
  for (const auto& change : invalidGrants) {
    auto fields = grantFields(1);
    change(fields);
    expectCode(Code::invalidGrant, [&] { broker->install(RavoActionGrant(fields)); });
  }
}

TEST(RavoActionExecutionBroker, RevokingOrReplacingAGrantResetsWhatItAllows) {
  RavoActionExecutionBroker broker({RavoApplicationActionCatalog::ravoPlayer()}, std::make_unique<RavoHostGrantActionGate>(),
                                   std::make_unique<RavoDefaultActionSafeguard>(fixedNow), fixedNow);
  broker.registerHandler(RavoPlayerActionIDs::pause(), [](auto&) { return RavoActionHandlerResult("paused", ""); });
  RavoActionGrant grant(grantFields(1));
  broker.install(grant);
  EXPECT_EQ(broker.execute(pauseProposal(), grant.id(), 3, std::nullopt, kNow).reasonCode(), "handler.paused");
  EXPECT_EQ(broker.execute(pauseProposal(), grant.id(), 3, std::nullopt, kNow).reasonCode(), "broker.grant_scope_mismatch");
  broker.install(grant);  // the same id again: a fresh set of uses
  EXPECT_EQ(broker.execute(pauseProposal(), grant.id(), 3, std::nullopt, kNow).reasonCode(), "handler.paused");
  broker.install(grant);
  broker.revoke(grant.id());
  broker.revoke(grant.id());  // absent: no effect
  EXPECT_EQ(broker.execute(pauseProposal(), grant.id(), 3, std::nullopt, kNow).reasonCode(), "broker.grant_scope_mismatch");
}

}  // namespace

}  // namespace ravo::orx
