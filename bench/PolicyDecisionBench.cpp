// Cost of one decision (lock, argument packing, module call, validation) on each execution tier, next
// to a floor: plain C++ functions with the same rules under the same kind of mutex, written only for
// this comparison. Heap allocations are counted by replacing the global operator new.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <mutex>
#include <new>

#include "bench/AllocationCounter.h"
#include <ravo-orx/checks/OrxRuntimeCheckCatalog.h>
#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/runtime/OrxPolicyDecider.h>

namespace ravo::orx {

using namespace internal;

namespace {

std::vector<std::uint8_t> artifact(const std::string& module) {
  std::ifstream in("artifacts/" + module + ".wasm", std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

OrxPolicyDecider& decider(bool precompiled) {
  auto make = [](bool allowPrecompiled) {
    return OrxPolicyModules{loadModule("player_authz", artifact("player_authz"), allowPrecompiled),
                            loadModule("sync_correction", artifact("sync_correction"), allowPrecompiled),
                            loadModule("cinema_admission", artifact("cinema_admission"), allowPrecompiled)};
  };
  static OrxPolicyDecider interpreted(make(false));
  static OrxPolicyDecider native(make(true));
  return precompiled ? native : interpreted;
}

// The floor: the bundled policies' rules as C++, for the three benchmark facts' paths and their order.
std::mutex floorLock;

OrxAuthorizationDecision floorAuthorize(const AuthorizationFacts& f) {
  std::lock_guard guard(floorLock);
  using R = OrxAuthorizationReason;
  if (f.role < 1 || f.role > 3) return {false, R::unpaired, 3};
  if (f.tokenAgeMilliseconds < 0 || f.tokenAgeMilliseconds >= f.tokenTTLMilliseconds) return {false, R::tokenExpired, 3};
  static constexpr int kRules[] = {0, 0x10001, 0x10001, 0x10001, 0x10002, 0x20004, 0x20020, 0x20004, 0x30040, 0x30080};
  const int rule = f.command >= 1 && f.command <= 9 ? kRules[f.command] : 0;
  if (!rule) return {false, R::unknownCommand, 3};
  if (f.rateUsed < 0 || f.rateUsed >= f.rateLimit) return {false, R::rateLimited, 3};
  if (!(f.grantFlags & rule & 0xFFFF)) return {false, R::missingGrant, 3};
  if (f.role < 3 && ((rule >> 16) == 3 || f.controlMode == 2)) return {false, R::needsAdmin, 3};
  if ((f.controlMode != 1 && f.controlMode != 2) || f.role < (rule >> 16)) return {false, R::notController, 3};
  return {true, R::allowed, 3};
}

OrxSyncDecision floorCorrectSync(const SyncFacts& f) {
  std::lock_guard guard(floorLock);
  if (f.toleranceMilliseconds <= 0 || f.rateX100 <= 0 || f.roundTripMilliseconds < 0 || f.jitterMilliseconds < 0 ||
      f.bufferAheadMilliseconds < 0 || f.stallCount < 0 || f.syncAgeMilliseconds < 0 ||
      f.driftMilliseconds < -86400000 || f.driftMilliseconds > 86400000) {
    return {OrxSyncAction::hold, 1000, 0, 5};
  }
  if (f.syncAgeMilliseconds > 5000 || f.roundTripMilliseconds > 1000 || f.jitterMilliseconds > f.toleranceMilliseconds) {
    return {OrxSyncAction::hold, 1000, 0, 1};
  }
  const int distance = std::abs(f.driftMilliseconds);
  if (distance <= f.toleranceMilliseconds) return {OrxSyncAction::hold, 1000, 0, 0};
  if (distance > 500) return {OrxSyncAction::seek, 1000, -f.driftMilliseconds, 4};
  if (f.driftMilliseconds < 0 && (f.stallCount > 0 || f.bufferAheadMilliseconds < 1000)) {
    return {OrxSyncAction::hold, 1000, 0, 2};
  }
  const int delta = std::min(distance / 2, 50);
  return {OrxSyncAction::nudge, f.driftMilliseconds > 0 ? 1000 - delta : 1000 + delta, 0, 3};
}

OrxCinemaAdmissionDecision floorDecideCinemaAdmission(const CinemaAdmissionFacts& f) {
  std::lock_guard guard(floorLock);
  using Route = OrxCinemaAdmissionRoute;
  using Reason = OrxCinemaAdmissionReason;
  if (f.sourceFPSX100 <= 0 || f.targetFPSX100 <= 0 || f.headroom < 0 || f.headroom > 50 || f.thermalState < 0 ||
      f.thermalState > 3 || f.memoryPressure < 0 || f.memoryPressure > 2 || f.sourceReservoirMilliseconds < 0 ||
      std::min({f.bridgeTenthsMilliseconds, f.temporalTenthsMilliseconds, f.interpolationTenthsMilliseconds,
                f.metalFXTenthsMilliseconds, f.finalDetailTenthsMilliseconds, f.modelTenthsMilliseconds,
                f.modelSampleCount}) < 0) {
    return {Route::measurementRequired, 0, 0, Reason::invalidFacts};
  }
  const int budget = 1000000 / f.targetFPSX100 * (68 - f.headroom) / 100;
  if (f.thermalState >= 2 || f.memoryPressure >= 2) return {Route::metalFXOnly, 0, budget, Reason::thermalOrMemory};
  if (f.sourceReservoirMilliseconds < 2000) return {Route::metalFXOnly, 0, budget, Reason::sourceReservoir};
  const long long perFrame = 0LL + f.bridgeTenthsMilliseconds + f.temporalTenthsMilliseconds +
                             f.interpolationTenthsMilliseconds + f.finalDetailTenthsMilliseconds;
  if (perFrame + f.metalFXTenthsMilliseconds > budget) return {Route::metalFXOnly, 0, budget, Reason::nonMLOverBudget};
  if (f.modelSampleCount < 3) return {Route::calibration, 0, budget, Reason::calibration};
  if (perFrame + f.modelTenthsMilliseconds <= budget) return {Route::fullFrameML, 0, budget, Reason::liveSafe};
  const long long spare = budget - perFrame;
  if (spare <= 0) return {Route::metalFXOnly, 0, budget, Reason::nonMLOverBudget};
  const long long interval = std::min((f.modelTenthsMilliseconds + spare - 1) / spare, 10000LL);
  return {Route::sparseAnchorResearch, static_cast<std::int32_t>(interval), budget, Reason::sparseResearch};
}

// Every side gets its facts through a copy the compiler must assume changes on each iteration: with the
// catalogue's constexpr facts in view, g++ folds a floor's rules into a constant and leaves only its lock.
template <class Facts, class Decide>
void measure(benchmark::State& state, const Facts& facts, Decide decide) {
  Facts opaque = facts;
  const auto before = orxBenchAllocations;
  for (auto _ : state) {
    benchmark::DoNotOptimize(opaque);
    benchmark::DoNotOptimize(decide(opaque));
  }
  if (state.thread_index() == 0) {
    state.counters["allocs/decision"] = benchmark::Counter(static_cast<double>(orxBenchAllocations - before) /
                                                           static_cast<double>(state.iterations()));
  }
}

using namespace orx_check_facts;

void BM_Authorize_Floor(benchmark::State& s) { measure(s, controllerCommand, floorAuthorize); }
void BM_Authorize_Interpreted(benchmark::State& s) {
  measure(s, controllerCommand, [&runtime = decider(false)](const auto& facts) { return runtime.authorize(facts); });
}
void BM_Authorize_Precompiled(benchmark::State& s) {
  measure(s, controllerCommand, [&runtime = decider(true)](const auto& facts) { return runtime.authorize(facts); });
}
void BM_Sync_Floor(benchmark::State& s) { measure(s, syncSmallDrift, floorCorrectSync); }
void BM_Sync_Interpreted(benchmark::State& s) {
  measure(s, syncSmallDrift, [&runtime = decider(false)](const auto& facts) { return runtime.correctSync(facts); });
}
void BM_Sync_Precompiled(benchmark::State& s) {
  measure(s, syncSmallDrift, [&runtime = decider(true)](const auto& facts) { return runtime.correctSync(facts); });
}
void BM_Cinema_Floor(benchmark::State& s) { measure(s, cinemaMeasured, floorDecideCinemaAdmission); }
void BM_Cinema_Interpreted(benchmark::State& s) {
  measure(s, cinemaMeasured, [&runtime = decider(false)](const auto& facts) { return runtime.decideCinemaAdmission(facts); });
}
void BM_Cinema_Precompiled(benchmark::State& s) {
  measure(s, cinemaMeasured, [&runtime = decider(true)](const auto& facts) { return runtime.decideCinemaAdmission(facts); });
}

BENCHMARK(BM_Authorize_Floor);
BENCHMARK(BM_Authorize_Interpreted);
BENCHMARK(BM_Authorize_Precompiled);
BENCHMARK(BM_Authorize_Precompiled)->Threads(2)->Name("BM_Authorize_Precompiled/contended");
BENCHMARK(BM_Sync_Floor);
BENCHMARK(BM_Sync_Interpreted);
BENCHMARK(BM_Sync_Precompiled);
BENCHMARK(BM_Sync_Precompiled)->Threads(2)->Name("BM_Sync_Precompiled/contended");
BENCHMARK(BM_Cinema_Floor);
BENCHMARK(BM_Cinema_Interpreted);
BENCHMARK(BM_Cinema_Precompiled);
BENCHMARK(BM_Cinema_Precompiled)->Threads(2)->Name("BM_Cinema_Precompiled/contended");

}  // namespace

}  // namespace ravo::orx
