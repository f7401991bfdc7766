// Cost of one decision on the bundled policies (lock, argument packing, module call, validation) and
// the heap allocations it makes, counted by replacing the global operator new.

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "checks/OrxRuntimeCheckCatalog.h"
#include "runtime/OrxPolicyRuntime.h"

namespace {
std::atomic<std::uint64_t> allocations{0};
}  // namespace

// These replace the global allocation functions as a pair, so malloc/free match; g++ cannot see that.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"

void* operator new(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

OrxPolicyRuntime& bundledRuntime() {
  static OrxPolicyRuntime runtime(std::filesystem::path("artifacts"));
  return runtime;
}

template <class Decide>
void measure(benchmark::State& state, Decide decide) {
  auto& runtime = bundledRuntime();
  const auto before = allocations.load();
  for (auto _ : state) benchmark::DoNotOptimize(decide(runtime));
  state.counters["allocs/decision"] =
      benchmark::Counter(static_cast<double>(allocations.load() - before) / static_cast<double>(state.iterations()));
}

void BM_Authorize(benchmark::State& state) {
  measure(state, [](OrxPolicyRuntime& r) { return r.authorize(orx_check_facts::controllerCommand); });
}
void BM_CorrectSync(benchmark::State& state) {
  measure(state, [](OrxPolicyRuntime& r) { return r.correctSync(orx_check_facts::syncSmallDrift); });
}
void BM_DecideCinemaAdmission(benchmark::State& state) {
  measure(state, [](OrxPolicyRuntime& r) { return r.decideCinemaAdmission(orx_check_facts::cinemaMeasured); });
}
BENCHMARK(BM_Authorize);
BENCHMARK(BM_CorrectSync);
BENCHMARK(BM_DecideCinemaAdmission);
BENCHMARK(BM_Authorize)->Threads(2)->Name("BM_Authorize/contended");

}  // namespace
