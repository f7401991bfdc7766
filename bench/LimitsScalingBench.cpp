// How reading and validating untrusted input grows with its size: canonical JSON, decision evidence
// and application JSON from 1 MiB to 100 MiB, objects of many members, scenario validation up to the
// node limit and home inventories up to 10^5 devices. Each series reports its fitted complexity.

#include <benchmark/benchmark.h>

#include <ravo-orx/contracts/scenarios/RavoScenarioBuiltInCatalog.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioCatalog.h>
#include <ravo-orx/contracts/services/RavoHomeInventoryValidator.h>
#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/host_contract/ORXDecisionEvidenceRecord.h>
#include "limits/HostileInputs.h"

namespace ravo::orx {

namespace {

using namespace hostile_inputs;

// Sizes in bytes: 1, 4, 16 and 64 MiB, then 100 MiB.
void documentSizes(benchmark::internal::Benchmark* bench) {
  bench->RangeMultiplier(4)->Range(1 << 20, 64 << 20)->Arg(kHundredMegabytes);
  bench->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);
}

void setBytes(benchmark::State& state, std::size_t bytes) {
  state.SetComplexityN(static_cast<std::int64_t>(bytes));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

void BM_CanonicalJSONParse(benchmark::State& state) {
  const std::string text = arrayOfRecords(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(ORXCanonicalJSON::parse(text));
  setBytes(state, text.size());
}
BENCHMARK(BM_CanonicalJSONParse)->Apply(documentSizes);

// Canonical bytes that only fail at decoding, after the parse and the byte-exact re-serialization.
void BM_DecisionEvidenceRead(benchmark::State& state) {
  const std::string bytes = documentWithLongString(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    try {
      ORXDecisionEvidenceRecord::parseCanonicalBytes(bytes);
      state.SkipWithError("the evidence should be refused");
    } catch (const ORXError&) {
    }
  }
  setBytes(state, bytes.size());
}
BENCHMARK(BM_DecisionEvidenceRead)->Apply(documentSizes);

void BM_ApplicationJSONParse(benchmark::State& state) {
  const std::string text = arrayOfRecords(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(parseRavoJSON(text));
  setBytes(state, text.size());
}
BENCHMARK(BM_ApplicationJSONParse)->Apply(documentSizes);

// One object of n members: linear through parseRavoJSON, quadratic through the library's own
// builder for ordered objects (kept here, at small sizes, to show the difference).
void BM_ObjectMembers(benchmark::State& state, RavoJSON (*parse)(const std::string&)) {
  const std::string text = objectWithMembers(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(parse(text));
  state.SetComplexityN(state.range(0));
}
BENCHMARK_CAPTURE(BM_ObjectMembers, parseRavoJSON, [](const std::string& text) { return parseRavoJSON(text); })
    ->RangeMultiplier(8)
    ->Range(1 << 10, 1 << 20)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(BM_ObjectMembers, libraryOrderedParse, [](const std::string& text) { return RavoJSON::parse(text); })
    ->RangeMultiplier(2)
    ->Range(1 << 10, 1 << 14)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oNSquared);

// A manual trigger followed by a chain of wait steps: n nodes, n - 1 edges, all valid.
RavoScenarioDraft chainDraft(std::size_t nodeCount) {
  std::vector<RavoScenarioNodeInstance> nodes;
  std::vector<RavoScenarioEdge> edges;
  for (std::size_t n = 0; n < nodeCount; ++n) {
    nodes.emplace_back(RavoUUID::random(), RavoScenarioNodeTypeID(n == 0 ? "ravo.trigger.manual" : "ravo.control.wait"),
                       "1.0.0", std::vector<std::string>{});
    if (n > 0) edges.emplace_back(nodes[n - 1].id(), "event", nodes[n].id(), "event");
  }
  return {RavoUUID::random(), "Chain", RavoScenarioGraph(std::move(nodes), std::move(edges), {}),
          RavoScenarioActivationRequest::notRequested, RavoScenarioLifecycle::draft};
}

void BM_ScenarioValidation(benchmark::State& state) {
  const RavoScenarioDraft draft = chainDraft(static_cast<std::size_t>(state.range(0)));
  const auto& definitions = RavoScenarioBuiltInCatalog::definitions();
  if (!RavoScenarioCatalog::validate(draft, definitions).empty()) {
    state.SkipWithError("the chain should be valid");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(RavoScenarioCatalog::validate(draft, definitions));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ScenarioValidation)
    ->RangeMultiplier(4)
    ->Range(16, 256)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity(benchmark::oN);

std::string inventoryJSON(std::size_t deviceCount) {
  std::vector<RavoHomeInventoryDevice> devices;
  for (std::size_t i = 0; i < deviceCount; ++i) {
    devices.emplace_back("light." + std::to_string(i), RavoHomeInventoryDeviceKind::light, "Lamp", "Hall",
                         std::vector{RavoHomeInventoryCapability::power}, true);
  }
  return RavoHomeInventorySnapshot(RavoHomeProviderID("home.local"), RavoTimePoint{}, std::move(devices)).toJSON().dump();
}

// Up to the device limit every device is checked; beyond it the count alone decides.
void BM_HomeInventoryValidation(benchmark::State& state) {
  const std::string text = inventoryJSON(static_cast<std::size_t>(state.range(0)));
  const auto snapshot = RavoHomeInventorySnapshot::fromJSON(parseRavoJSON(text));
  for (auto _ : state) benchmark::DoNotOptimize(RavoHomeInventoryValidator::validate(snapshot));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_HomeInventoryValidation)
    ->RangeMultiplier(4)
    ->Range(8, 512)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity(benchmark::oN);

// What a provider's oversized inventory costs from text to verdict: 10^2 to 10^5 devices.
void BM_HomeInventoryDecodeAndValidation(benchmark::State& state) {
  const std::string text = inventoryJSON(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        RavoHomeInventoryValidator::validate(RavoHomeInventorySnapshot::fromJSON(parseRavoJSON(text))));
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_HomeInventoryDecodeAndValidation)
    ->RangeMultiplier(10)
    ->Range(100, 100'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

}  // namespace

}  // namespace ravo::orx
