// Cost of validating a scenario draft at the node limit: 256 valid nodes (a manual trigger, then
// conditions and control steps, every eighth one a volume action with a checked binding) joined by
// about two thousand edges, so that every step of validation runs in full.

#include <benchmark/benchmark.h>

#include <ravo-orx/contracts/scenarios/RavoScenarioBuiltInCatalog.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioCatalog.h>

namespace ravo::orx {

namespace {

constexpr size_t kFanOut = 8;  // each node feeds the next eight

RavoScenarioDraft largeDraft() {
  const char* const passThrough[] = {"ravo.condition.time-window", "ravo.control.wait", "ravo.control.sequence"};
  std::vector<RavoScenarioNodeInstance> nodes;
  for (int n = 0; n < static_cast<int>(RavoScenarioCatalog::maximumNodeCount); ++n) {
    RavoUUID id = RavoUUID::random();
    if (n == 0) {
      nodes.emplace_back(id, RavoScenarioNodeTypeID("ravo.trigger.manual"), "1.0.0", std::vector<std::string>{});
    } else if (n % 8 == 0) {
      nodes.emplace_back(id, RavoScenarioNodeTypeID("ravo.player.volume.set"), "1.0.0",
                         std::vector<std::string>{"player.main"},
                         RavoScenarioActionBinding({{"level", RavoActionValue::number(0.3)}}));
    } else {
      nodes.emplace_back(id, RavoScenarioNodeTypeID(passThrough[n % 3]), "1.0.0", std::vector<std::string>{});
    }
  }
  std::vector<RavoScenarioEdge> edges;
  for (size_t from = 0; from < nodes.size(); ++from) {
    for (size_t to = from + 1; to <= from + kFanOut && to < nodes.size(); ++to) {
      edges.emplace_back(nodes[from].id(), "event", nodes[to].id(), "event");
    }
  }
  RavoScenarioGraph graph(std::move(nodes), std::move(edges), {RavoScenarioCapability::audioVolume()});
  return {RavoUUID::random(), "Bench", std::move(graph), RavoScenarioActivationRequest::notRequested,
          RavoScenarioLifecycle::draft};
}

void BM_ValidateFullGraph(benchmark::State& state) {
  const RavoScenarioDraft draft = largeDraft();
  const auto& definitions = RavoScenarioBuiltInCatalog::definitions();
  if (!RavoScenarioCatalog::validate(draft, definitions).empty()) {
    state.SkipWithError("the benchmark graph should be valid");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(RavoScenarioCatalog::validate(draft, definitions));
  state.counters["edges"] = static_cast<double>(draft.graph().edges().size());
}
BENCHMARK(BM_ValidateFullGraph)->Unit(benchmark::kMicrosecond);

}  // namespace

}  // namespace ravo::orx
