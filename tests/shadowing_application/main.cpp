// Takes the three decisions with the application's own look-alike names in scope.

#include <cstdio>
#include <string>

#define APP_OWN_HEADERS
#include "core/ORXDigest.h"
#include "runtime/LoadedModule.h"
#include "runtime/OrxPolicyRuntime.h"
#include "runtime/RuntimeError.h"
#undef APP_OWN_HEADERS

#include <ravo-orx/runtime/OrxPolicyRuntime.h>

// The application's own trap handler, as a program with its own wasm2c runtime has: the package's
// runtime must neither call it nor clash with it.
extern "C" void wasm_rt_trap(int) { std::puts("application trap handler called"); }

// An enumeration of the application's own, for its own rawValue.
enum class AppMode { idle, playing };

int main() {
  namespace orx = ravo::orx;
  const RuntimeError ownError;
  const LoadedModule ownModule;
  orx::OrxPolicyRuntime runtime;
  if (runtime.loadError()) {
    std::printf("load error: %s\n", runtime.loadError()->c_str());
    return 1;
  }
  const auto authorization = runtime.authorizeWithSource(
      {.role = 2, .command = 6, .grantFlags = 63, .tokenAgeMilliseconds = 1000, .tokenTTLMilliseconds = 900000,
       .rateUsed = 0, .rateLimit = 600, .controlMode = 1});
  const auto sync = runtime.correctSyncWithSource({.driftMilliseconds = 501, .roundTripMilliseconds = 20,
                                                  .jitterMilliseconds = 5, .bufferAheadMilliseconds = 10000,
                                                  .rateX100 = 100, .stallCount = 0, .syncAgeMilliseconds = 500,
                                                  .toleranceMilliseconds = 50});
  const auto cinema = runtime.decideCinemaAdmissionWithSource(
      {.sourceFPSX100 = 2500, .targetFPSX100 = 2500, .sourceReservoirMilliseconds = 5000, .headroom = 0,
       .thermalState = 2, .memoryPressure = 0, .bridgeTenthsMilliseconds = 20, .temporalTenthsMilliseconds = 0,
       .interpolationTenthsMilliseconds = 0, .metalFXTenthsMilliseconds = 50, .finalDetailTenthsMilliseconds = 20,
       .modelTenthsMilliseconds = 80, .modelSampleCount = 3});
  const bool ok = authorization.source == orx::OrxDecisionSource::policy && authorization.decision.isAllowed &&
                  sync.source == orx::OrxDecisionSource::policy && sync.decision.action == orx::OrxSyncAction::seek &&
                  sync.decision.correctionMilliseconds == -501 && cinema.source == orx::OrxDecisionSource::policy &&
                  cinema.decision.route == orx::OrxCinemaAdmissionRoute::metalFXOnly &&
                  ownError.message == "the application's own RuntimeError" && ownModule.id == 7 &&
                  rawValue(AppMode::playing) == -1 && orx::rawValue(orx::OrxSyncAction::seek) == 2;
  std::printf("authz %s / sync %s %d / cinema %s: %s\n", std::string(orx::orxCaseName(authorization.source)).c_str(),
              std::string(orx::orxCaseName(sync.decision.action)).c_str(), sync.decision.correctionMilliseconds,
              std::string(orx::orxCaseName(cinema.decision.route)).c_str(), ok ? "as expected" : "WRONG");
  return ok ? 0 : 1;
}
