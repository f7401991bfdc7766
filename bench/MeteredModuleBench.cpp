// Cost of metered code on each execution tier: one `decide` of the metered loop module summing 1..n,
// for n = 0 (the call alone) and larger n; items per second are loop iterations per second, so the
// cost of one metered iteration is the difference between two rows divided by n. The reference is the
// same module translated to native code as it is, without fuel: what metering costs natively.

#include <benchmark/benchmark.h>

#include <stdexcept>
#include <string>

#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/engine/OrxModuleInstance.h>
#include "runtime/tests/MeteredTestModules.h"

namespace ravo::orx {

using namespace internal;

namespace {

OrxModuleInstance& interpreted() {
  static const auto module = [] {
    const auto bytes = readArtifactFile(std::string(ORX_METERED_TEST_MODULES) + "/metered_loop.wasm");
    OrxInstantiationFailure failure;
    auto instance = instantiateInterpretedModule(bytes.data(), bytes.size(), failure);
    if (!instance) throw std::runtime_error("metered_loop does not instantiate: " + failure.detail);
    return instance;
  }();
  return *module;
}

OrxModuleInstance& native(const char* name) {
  static const auto metered = precompiledTestModule("metered_loop");
  static const auto unmetered = precompiledTestModule("unmetered_loop");
  return *(std::string_view(name) == "metered_loop" ? metered : unmetered).instance;
}

void run(benchmark::State& state, OrxModuleInstance& module) {
  const std::int32_t iterations = static_cast<std::int32_t>(state.range(0));
  for (auto _ : state) {
    const auto call = module.invoke(&iterations, 1);
    benchmark::DoNotOptimize(call.emitted);
    if (call.error) state.SkipWithError(call.error->c_str());
  }
  state.SetItemsProcessed(state.iterations() * iterations);
}

void BM_MeteredLoopInterpreted(benchmark::State& state) { run(state, interpreted()); }
void BM_MeteredLoopPrecompiled(benchmark::State& state) { run(state, native("metered_loop")); }
void BM_LoopNativeWithoutFuel(benchmark::State& state) { run(state, native("unmetered_loop")); }

}  // namespace

BENCHMARK(BM_MeteredLoopInterpreted)->Arg(0)->Arg(1'000)->Arg(40'000);
BENCHMARK(BM_MeteredLoopPrecompiled)->Arg(0)->Arg(1'000)->Arg(40'000);
BENCHMARK(BM_LoopNativeWithoutFuel)->Arg(0)->Arg(1'000)->Arg(40'000);

}  // namespace ravo::orx
