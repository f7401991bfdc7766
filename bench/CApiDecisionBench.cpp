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

template <auto decide, class Facts>
void cppDecisions(benchmark::State& state, Facts facts) {
  auto& runtime = cppRuntime();
  for (auto _ : state) {
    benchmark::DoNotOptimize(facts);
    benchmark::DoNotOptimize((runtime.*decide)(facts));
  }
}

template <class Decision, auto decide, class Facts>
void cDecisions(benchmark::State& state, Facts facts) {
  orx_runtime* runtime = cRuntime();
  Decision decision;
  for (auto _ : state) {
    benchmark::DoNotOptimize(facts);
    decide(runtime, &facts, &decision);
    benchmark::DoNotOptimize(decision);
  }
}

// Registered by name: the benchmark macros take no template arguments.
const bool registered = [] {
  using benchmark::RegisterBenchmark;
  RegisterBenchmark("BM_Authorize_Cpp", cppDecisions<&OrxPolicyRuntime::authorizeWithSource, AuthorizationFacts>,
                    AuthorizationFacts{2, 6, 63, 1000, 900000, 0, 600, 1});
  RegisterBenchmark("BM_Authorize_CApi", cDecisions<orx_authorization_decision, orx_authorize, orx_authorization_facts>,
                    orx_authorization_facts{2, 6, 63, 1000, 900000, 0, 600, 1});
  RegisterBenchmark("BM_Sync_Cpp", cppDecisions<&OrxPolicyRuntime::correctSyncWithSource, SyncFacts>,
                    SyncFacts{501, 20, 5, 10000, 100, 0, 500, 50});
  RegisterBenchmark("BM_Sync_CApi", cDecisions<orx_sync_decision, orx_correct_sync, orx_sync_facts>,
                    orx_sync_facts{501, 20, 5, 10000, 100, 0, 500, 50});
  RegisterBenchmark("BM_Cinema_Cpp",
                    cppDecisions<&OrxPolicyRuntime::decideCinemaAdmissionWithSource, CinemaAdmissionFacts>,
                    CinemaAdmissionFacts{2400, 6000, 500, 50, 0, 0, 20, 30, 40, 10, 10, 50, 8});
  RegisterBenchmark("BM_Cinema_CApi",
                    cDecisions<orx_cinema_admission_decision, orx_decide_cinema_admission, orx_cinema_admission_facts>,
                    orx_cinema_admission_facts{2400, 6000, 500, 50, 0, 0, 20, 30, 40, 10, 10, 50, 8});
  return true;
}();

}  // namespace
