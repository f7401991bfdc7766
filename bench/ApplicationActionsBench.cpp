// Costs of the paths a voice command or an assistant request takes through the application actions:
// folding text, resolving an utterance, shortlisting actions for a model and executing through the broker.

#include <benchmark/benchmark.h>

#include <ravo-orx/contracts/actions/RavoActionExecutionBroker.h>
#include <ravo-orx/contracts/actions/RavoActionIntentResolver.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>
#include <ravo-orx/contracts/actions/RavoCapabilityFabric.h>
#include <ravo-orx/contracts/actions/RavoDefaultActionSafeguard.h>
#include <ravo-orx/contracts/actions/RavoHostGrantActionGate.h>
#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

const char* const kUtterances[] = {"  ПАУЗА ", "stop the music please", "громкость 40%", "открой музыку",
                                   "play something relaxing"};

void BM_NormalizeText(benchmark::State& state) {
  for (auto _ : state) {
    for (const char* text : kUtterances) benchmark::DoNotOptimize(ravoNormalizedText(text));
  }
  state.SetItemsProcessed(state.iterations() * std::size(kUtterances));
}
BENCHMARK(BM_NormalizeText);

void BM_ResolveIntent(benchmark::State& state) {
  const auto& descriptors = RavoApplicationActionCatalog::descriptors();
  for (auto _ : state) {
    for (const char* text : kUtterances) {
      benchmark::DoNotOptimize(
          RavoActionIntentResolver::resolve(text, RavoActionProposalOrigin::deterministicRouter, descriptors));
    }
  }
  state.SetItemsProcessed(state.iterations() * std::size(kUtterances));
}
BENCHMARK(BM_ResolveIntent);

void BM_Shortlist(benchmark::State& state) {
  const auto& fabric = RavoCapabilityFabric::builtIn();
  for (auto _ : state) benchmark::DoNotOptimize(fabric.shortlist("поставь музыку на паузу", 5));
}
BENCHMARK(BM_Shortlist);

void BM_BrokerExecute(benchmark::State& state) {
  RavoActionExecutionBroker broker(RavoApplicationActionCatalog::builtInManifests(),
                                   std::make_unique<RavoHostGrantActionGate>(),
                                   std::make_unique<RavoDefaultActionSafeguard>());
  broker.registerHandler(RavoPlayerActionIDs::pause(), [](const RavoActionProposal&) {
    return RavoActionHandlerResult("paused", "");
  });
  auto now = ravoWallClockNow();
  RavoActionGrant grant({.id = RavoUUID::random(),
                         .allowedActionIDs = {RavoPlayerActionIDs::pause()},
                         .allowedCapabilities = {RavoScenarioCapability::mediaTransport()},
                         .allowedStableTargetIDs = {"t1"},
                         .expiresAt = now + std::chrono::hours(1),
                         .maxUses = std::numeric_limits<std::int64_t>::max()});
  broker.install(grant);
  RavoActionProposal proposal(RavoUUID::random(), RavoPlayerActionIDs::pause(), "t1", {},
                              RavoActionProposalOrigin::userInterface);
  for (auto _ : state) benchmark::DoNotOptimize(broker.execute(proposal, grant.id(), 0, std::nullopt, now));
}
BENCHMARK(BM_BrokerExecute);

}  // namespace

}  // namespace ravo::orx
