// An assistant model proposes to pause playback. The broker checks the proposal against its grant,
// asks the Orx gate (whose verifier asks the installed authorization policy), weighs the risk with the
// default safeguard and calls the handler; the receipt says how it ended.

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>

#include <ravo-orx/adapters/gate/RavoORXActionGateAdapter.h>
#include <ravo-orx/adapters/gate/RavoORXPolicyVerifier.h>
#include <ravo-orx/contracts/actions/RavoActionExecutionBroker.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>
#include <ravo-orx/contracts/actions/RavoDefaultActionSafeguard.h>
#include <ravo-orx/contracts/actions/RavoPlayerActionIDs.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>

using namespace ravo::orx;

int main() {
  using namespace std::chrono_literals;
  // One runtime for the whole application, shared by everything that decides.
  auto runtime = std::make_shared<OrxPolicyRuntime>();
  if (runtime->loadError()) {
    std::fprintf(stderr, "artifacts did not load: %s\n", runtime->loadError()->c_str());
    return 1;
  }

  // The gate admits at the verified level only what the authorization policy allows; proposals from
  // assistant models need that level.
  RavoActionExecutionBroker broker({RavoApplicationActionCatalog::ravoPlayer()},
                                   std::make_unique<RavoORXActionGateAdapter>(RavoORXPolicyVerifier(runtime)),
                                   std::make_unique<RavoDefaultActionSafeguard>());

  // The handler performs the action; its result code becomes the receipt's reason ("handler.paused").
  std::atomic<int> pauses = 0;
  broker.registerHandler(RavoPlayerActionIDs::pause(), [&pauses](const RavoActionProposal& proposal) {
    ++pauses;
    return RavoActionHandlerResult("paused", "paused " + proposal.stableTargetID().value_or("playback"));
  });

  // The host grants the assistant one pause of the living-room player for the next minute, at the
  // current generation of its state.
  const std::int64_t generation = 3;
  const RavoActionGrant grant({.id = RavoUUID::random(),
                               .generation = generation,
                               .allowedActionIDs = {RavoPlayerActionIDs::pause()},
                               .allowedCapabilities = {RavoScenarioCapability::mediaTransport()},
                               .allowedStableTargetIDs = {"living-room"},
                               .expiresAt = ravoWallClockNow() + 60s,
                               .maxUses = 1});
  broker.install(grant);

  const RavoActionProposal proposal(RavoUUID::random(), RavoPlayerActionIDs::pause(), "living-room", {},
                                    RavoActionProposalOrigin::externalModel);
  const auto receipt = broker.execute(proposal, grant.id(), generation, std::nullopt, ravoWallClockNow());
  std::printf("receipt: %s\n", receipt.toJSON().dump().c_str());

  // The grant had one use: a second execution is refused with a receipt, never an exception.
  const auto again = broker.execute(proposal, grant.id(), generation, std::nullopt, ravoWallClockNow());
  std::printf("second attempt: %s\n", again.reasonCode().c_str());

  const bool completed = receipt.outcome() == RavoActionReceiptOutcome::completed &&
                         receipt.reasonCode() == "handler.paused" &&
                         receipt.gateLevel() == RavoActionGateLevel::orxVerified && pauses == 1 &&
                         again.outcome() == RavoActionReceiptOutcome::blocked;
  return completed ? 0 : 1;
}
