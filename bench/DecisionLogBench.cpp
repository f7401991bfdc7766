// What a decision pays for the decision log, on the precompiled tier: the same authorization without a
// log and with each sink. The decision path is measured with the buffer never full (the log is flushed
// outside the timing every half buffer), so it is the copy into the buffer that is measured, not the
// log's thread; "Sustained" lets the log's thread keep up (the decision waits for room), so its time
// is the whole cost per logged decision on this machine. Allocations are counted on the deciding
// thread only: the log's own thread allocates as it renders.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <unistd.h>

#include "bench/AllocationCounter.h"
#include <ravo-orx/checks/OrxRuntimeCheckCatalog.h>
#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/runtime/OrxDecisionLogSinks.h>
#include <ravo-orx/runtime/OrxDecisionLogWriter.h>
#include <ravo-orx/runtime/OrxPolicyDecider.h>

namespace ravo::orx {

using namespace internal;

namespace {

constexpr std::size_t kBuffer = 1 << 16;

std::unique_ptr<LoadedModule> authorization() {
  std::ifstream in("artifacts/player_authz.wasm", std::ios::binary);
  return loadModule("player_authz", std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), {}));
}

class NullSink final : public OrxDecisionLogSink {
 public:
  void write(std::string_view, OrxDecisionLogLineType) override {}
};

enum class Sink { none, ring, file, callback };

std::shared_ptr<OrxDecisionLogSink> makeSink(Sink sink) {
  switch (sink) {
    case Sink::none: return nullptr;
    case Sink::ring: return std::make_shared<OrxDecisionLogRingSink>(4096);
    case Sink::callback: return std::make_shared<OrxDecisionLogCallbackSink>([](std::string_view, OrxDecisionLogLineType) {});
    case Sink::file: {
      const auto path = std::filesystem::temp_directory_path() / ("orx-log-bench-" + std::to_string(::getpid()));
      std::filesystem::remove(path);
      return std::make_shared<OrxDecisionLogFileSink>(path, OrxDecisionLogFileSync::none);
    }
  }
  return nullptr;
}

void measure(benchmark::State& state, Sink sink, bool sustained) {
  OrxPolicyDecider decider(OrxPolicyModules{authorization(), nullptr, nullptr});
  std::unique_ptr<OrxDecisionLogWriter> writer;
  if (auto made = makeSink(sink)) {
    OrxDecisionLogOptions options;
    options.sink = std::move(made);
    options.bufferRecords = kBuffer;
    options.whenFull = sustained ? OrxDecisionLogWhenFull::block : OrxDecisionLogWhenFull::drop;
    writer = std::make_unique<OrxDecisionLogWriter>(std::move(options));
    decider.setRecorder(writer.get());
  }
  AuthorizationFacts facts = orx_check_facts::controllerCommand;
  const auto before = orxBenchAllocations;
  std::size_t sinceFlush = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(facts);
    benchmark::DoNotOptimize(decider.authorize(facts));
    if (writer && !sustained && ++sinceFlush == kBuffer / 2) {
      state.PauseTiming();
      writer->flush();
      sinceFlush = 0;
      state.ResumeTiming();
    }
  }
  state.counters["allocs/decision"] =
      benchmark::Counter(static_cast<double>(orxBenchAllocations - before) / static_cast<double>(state.iterations()));
  if (writer) {
    writer->flush();
    state.counters["dropped"] = static_cast<double>(writer->dropped());
  }
  decider.setRecorder(nullptr);
}

void BM_Authorize_NoLog(benchmark::State& s) { measure(s, Sink::none, false); }
void BM_Authorize_RingLog(benchmark::State& s) { measure(s, Sink::ring, false); }
void BM_Authorize_FileLog(benchmark::State& s) { measure(s, Sink::file, false); }
void BM_Authorize_CallbackLog(benchmark::State& s) { measure(s, Sink::callback, false); }
void BM_Authorize_RingLog_Sustained(benchmark::State& s) { measure(s, Sink::ring, true); }
void BM_Authorize_FileLog_Sustained(benchmark::State& s) { measure(s, Sink::file, true); }

BENCHMARK(BM_Authorize_NoLog);
BENCHMARK(BM_Authorize_RingLog);
BENCHMARK(BM_Authorize_FileLog);
BENCHMARK(BM_Authorize_CallbackLog);
BENCHMARK(BM_Authorize_RingLog_Sustained)->UseRealTime();
BENCHMARK(BM_Authorize_FileLog_Sustained)->UseRealTime();

}  // namespace

}  // namespace ravo::orx
