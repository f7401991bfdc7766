// Cost of the scenario graph digest per edge, and of reading a graph's JSON text, on graphs of 256
// nodes (every fourth one an action node with a number argument) and a growing number of edges: the
// time per edge should stay flat as the graph grows.
//
//   ravo_scenario_digest_bench --benchmark_filter=BM_ScenarioGraphDigest   per-edge digest cost
//   ravo_scenario_digest_bench --benchmark_filter=BM_ReadScenarioGraph     reading cost per byte
//
// Rows named "Through…" or "With…" are the former ways, measured in the same run for the ratio.

#include <benchmark/benchmark.h>

#include <random>

#include <ravo-orx/contracts/scenarios/RavoScenarioCanonicalizer.h>

namespace ravo::orx {

namespace {

RavoScenarioGraph graphWithEdges(std::size_t edgeCount) {
  std::mt19937_64 random(20);
  const auto randomUUID = [&] {
    RavoUUID::Bytes bytes;
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return RavoUUID(bytes);
  };
  std::vector<RavoScenarioNodeInstance> nodes;
  for (int n = 0; n < 256; ++n) {
    if (n % 4 == 0) {
      nodes.emplace_back(randomUUID(), RavoScenarioNodeTypeID("ravo.player.volume.set"), "1.0.0",
                         std::vector<std::string>{"player.main"},
                         RavoScenarioActionBinding({{"level", RavoActionValue::number(n % 8 ? 0.2 : 1.0)}}));
    } else {
      nodes.emplace_back(randomUUID(), RavoScenarioNodeTypeID("ravo.trigger.voice"), "1.0.0", std::vector<std::string>{});
    }
  }
  std::vector<RavoScenarioEdge> edges;
  edges.reserve(edgeCount);
  for (std::size_t e = 0; e < edgeCount; ++e) {
    edges.emplace_back(nodes[random() % nodes.size()].id(), "event", nodes[random() % nodes.size()].id(),
                       "event" + std::to_string(e % 5));
  }
  return RavoScenarioGraph(std::move(nodes), std::move(edges), {RavoScenarioCapability::audioVolume()});
}

void perEdge(benchmark::State& state, std::size_t edges) {
  state.SetComplexityN(static_cast<benchmark::IterationCount>(edges));
  state.counters["edges"] = static_cast<double>(edges);
  state.counters["per_edge"] = benchmark::Counter(static_cast<double>(edges),
                                                  benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_ScenarioGraphDigest(benchmark::State& state) {
  const RavoScenarioGraph graph = graphWithEdges(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(RavoScenarioCanonicalizer::digest(graph));
  perEdge(state, graph.edges().size());
}
BENCHMARK(BM_ScenarioGraphDigest)->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);

// The text alone, without hashing it.
void BM_ScenarioGraphText(benchmark::State& state) {
  const RavoScenarioGraph graph = graphWithEdges(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(RavoScenarioCanonicalizer::encodedGraph(graph));
  perEdge(state, graph.edges().size());
}
BENCHMARK(BM_ScenarioGraphText)->Arg(200000)->Unit(benchmark::kMillisecond);

// Reference in the same run: the text as it was made before, through a sorted nlohmann document.
void BM_ScenarioGraphTextThroughDocument(benchmark::State& state) {
  const RavoScenarioGraph graph = graphWithEdges(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(nlohmann::json(graph.toJSON()).dump());
  perEdge(state, graph.edges().size());
}
BENCHMARK(BM_ScenarioGraphTextThroughDocument)->Arg(200000)->Unit(benchmark::kMillisecond);

// Decoding the graph from its text, written with two-space indents.
template <class Decode>
void readGraph(benchmark::State& state, Decode decode) {
  const std::string text = graphWithEdges(static_cast<std::size_t>(state.range(0))).toJSON().dump(2);
  for (auto _ : state) benchmark::DoNotOptimize(decode(text));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
  state.counters["per_byte"] = benchmark::Counter(static_cast<double>(text.size()),
                                                  benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// What `ravo-orx scenario digest` reads with: the edges straight from the text.
void BM_ReadScenarioGraphText(benchmark::State& state) {
  readGraph(state, [](const std::string& text) { return RavoScenarioGraph::fromJSONText(text); });
}
BENCHMARK(BM_ReadScenarioGraphText)->Arg(200000)->Unit(benchmark::kMillisecond);

// Through a document read by parseRavoJSON, as every application record is.
void BM_ReadScenarioGraph(benchmark::State& state) {
  readGraph(state, [](const std::string& text) { return RavoScenarioGraph::fromJSON(parseRavoJSON(text)); });
}
BENCHMARK(BM_ReadScenarioGraph)->Arg(200000)->Unit(benchmark::kMillisecond);

// Reference in the same run: a document built by nlohmann's own parser.
void BM_ReadScenarioGraphWithNlohmannParser(benchmark::State& state) {
  readGraph(state, [](const std::string& text) { return RavoScenarioGraph::fromJSON(RavoJSON::parse(text)); });
}
BENCHMARK(BM_ReadScenarioGraphWithNlohmannParser)->Arg(200000)->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace ravo::orx
