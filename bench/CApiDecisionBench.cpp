// A decision through the C API against the same decision through the C++ API, both from the shared
// library libravo-orx, on the bundled artifacts (run from the repository root). The facts change on
// every iteration as the optimizer sees them, so neither side can be folded to a constant.

#include <benchmark/benchmark.h>

#include <cstdlib>

#include <ravo-orx/orx.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>

namespace {

using namespace ravo::orx;

orx_runtime* cRuntime() {
  static orx_runtime* runtime = [] {
    orx_runtime* opened = nullptr;
    if (orx_runtime_open("artifacts", &opened) != ORX_OK) std::abort();
    return opened;
  }();
  return runtime;
}

OrxPolicyRuntime& cppRuntime() {
  static OrxPolicyRuntime runtime("artifacts");
  return runtime;
}

void BM_Authorize_Cpp(benchmark::State& state) {
  auto& runtime = cppRuntime();
  AuthorizationFacts facts{2, 6, 63, 1000, 900000, 0, 600, 1};
  for (auto _ : state) {
    benchmark::DoNotOptimize(facts);
    benchmark::DoNotOptimize(runtime.authorizeWithSource(facts));
  }
}

void BM_Authorize_CApi(benchmark::State& state) {
  orx_runtime* runtime = cRuntime();
  orx_authorization_facts facts{2, 6, 63, 1000, 900000, 0, 600, 1};
  orx_authorization_decision decision;
  for (auto _ : state) {
    benchmark::DoNotOptimize(facts);
    orx_authorize(runtime, &facts, &decision);
    benchmark::DoNotOptimize(decision);
  }
}

void BM_Sync_Cpp(benchmark::State& state) {
  auto& runtime = cppRuntime();
  SyncFacts facts{501, 20, 5, 10000, 100, 0, 500, 50};
  for (auto _ : state) {
    benchmark::DoNotOptimize(facts);
    benchmark::DoNotOptimize(runtime.correctSyncWithSource(facts));
  }
}

void BM_Sync_CApi(benchmark::State& state) {
  orx_runtime* runtime = cRuntime();
  orx_sync_facts facts{501, 20, 5, 10000, 100, 0, 500, 50};
  orx_sync_decision decision;
  for (auto _ : state) {
    benchmark::DoNotOptimize(facts);
    orx_correct_sync(runtime, &facts, &decision);
    benchmark::DoNotOptimize(decision);
  }
}

void BM_Cinema_Cpp(benchmark::State& state) {
  auto& runtime = cppRuntime();
  CinemaAdmissionFacts facts{2400, 6000, 500, 50, 0, 0, 20, 30, 40, 10, 10, 50, 8};
  for (auto _ : state) {
    benchmark::DoNotOptimize(facts);
    benchmark::DoNotOptimize(runtime.decideCinemaAdmissionWithSource(facts));
  }
}

void BM_Cinema_CApi(benchmark::State& state) {
  orx_runtime* runtime = cRuntime();
  orx_cinema_admission_facts facts{2400, 6000, 500, 50, 0, 0, 20, 30, 40, 10, 10, 50, 8};
  orx_cinema_admission_decision decision;
  for (auto _ : state) {
    benchmark::DoNotOptimize(facts);
    orx_decide_cinema_admission(runtime, &facts, &decision);
    benchmark::DoNotOptimize(decision);
  }
}

BENCHMARK(BM_Authorize_Cpp);
BENCHMARK(BM_Authorize_CApi);
BENCHMARK(BM_Sync_Cpp);
BENCHMARK(BM_Sync_CApi);
BENCHMARK(BM_Cinema_Cpp);
BENCHMARK(BM_Cinema_CApi);

}  // namespace
