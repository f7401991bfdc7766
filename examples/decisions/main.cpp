// The three decisions of the policy runtime, taken from the installed artifacts, and what each
// fail-safe answer looks like when the modules cannot be trusted to answer.

#include <cstdio>
#include <filesystem>
#include <string>

#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include <ravo-orx/runtime/OrxVersion.h>

using namespace ravo::orx;

namespace {

void print(const char* what, const OrxSourcedDecision<OrxAuthorizationDecision>& answer) {
  const auto& d = answer.decision;
  std::printf("%-28s allowed=%d reason=%s policyVersion=%d source=%s\n", what, d.isAllowed,
              std::string(orxCaseName(d.reason)).c_str(), d.policyVersion,
              std::string(orxCaseName(answer.source)).c_str());
}

void print(const char* what, const OrxSourcedDecision<OrxSyncDecision>& answer) {
  const auto& d = answer.decision;
  std::printf("%-28s action=%s rateX1000=%d correctionMilliseconds=%d reason=%d source=%s\n", what,
              std::string(orxCaseName(d.action)).c_str(), d.rateX1000, d.correctionMilliseconds, d.reason,
              std::string(orxCaseName(answer.source)).c_str());
}

void print(const char* what, const OrxSourcedDecision<OrxCinemaAdmissionDecision>& answer) {
  const auto& d = answer.decision;
  std::printf("%-28s route=%s sparseAnchorIntervalFrames=%d safeBudgetTenthsMilliseconds=%d reason=%s source=%s\n",
              what, std::string(orxCaseName(d.route)).c_str(), d.sparseAnchorIntervalFrames,
              d.safeBudgetTenthsMilliseconds, std::string(orxCaseName(d.reason)).c_str(),
              std::string(orxCaseName(answer.source)).c_str());
}

// A paired controller (role 2) asks to show a surface on the main screen (command 6) with a live
// token (1 s old of 15 min) and its rate limit untouched.
constexpr AuthorizationFacts kMainScreenCommand{.role = 2,
                                                .command = 6,
                                                .grantFlags = 63,
                                                .tokenAgeMilliseconds = 1000,
                                                .tokenTTLMilliseconds = 900000,
                                                .rateUsed = 0,
                                                .rateLimit = 600,
                                                .controlMode = 1};
// Playback is 66 ms ahead with a 50 ms tolerance: a small drift, nudged by a rate change.
constexpr SyncFacts kSmallDrift{.driftMilliseconds = 66,
                                .roundTripMilliseconds = 20,
                                .jitterMilliseconds = 5,
                                .bufferAheadMilliseconds = 10000,
                                .rateX100 = 100,
                                .stallCount = 0,
                                .syncAgeMilliseconds = 500,
                                .toleranceMilliseconds = 50};
// 25 fps in and out, 5 s buffered, a model measured at 8.0 ms per frame over 3 samples.
constexpr CinemaAdmissionFacts kMeasuredModel{.sourceFPSX100 = 2500,
                                              .targetFPSX100 = 2500,
                                              .sourceReservoirMilliseconds = 5000,
                                              .headroom = 0,
                                              .thermalState = 0,
                                              .memoryPressure = 0,
                                              .bridgeTenthsMilliseconds = 20,
                                              .temporalTenthsMilliseconds = 0,
                                              .interpolationTenthsMilliseconds = 0,
                                              .metalFXTenthsMilliseconds = 50,
                                              .finalDetailTenthsMilliseconds = 20,
                                              .modelTenthsMilliseconds = 80,
                                              .modelSampleCount = 3};

struct Answers {
  OrxSourcedDecision<OrxAuthorizationDecision> authorization;
  OrxSourcedDecision<OrxSyncDecision> sync;
  OrxSourcedDecision<OrxCinemaAdmissionDecision> cinema;
};

Answers decideAll(OrxPolicyRuntime& runtime, const char* title) {
  Answers answers{runtime.authorizeWithSource(kMainScreenCommand), runtime.correctSyncWithSource(kSmallDrift),
                  runtime.decideCinemaAdmissionWithSource(kMeasuredModel)};
  std::printf("%s\n", title);
  print("  authorization", answers.authorization);
  print("  sync correction", answers.sync);
  print("  cinema admission", answers.cinema);
  return answers;
}

}  // namespace

int main() {
  std::printf("Ravo ORX %s\n", std::string(kRavoORXVersion).c_str());

  // No directory named: the runtime finds the artifacts installed with the library.
  OrxPolicyRuntime runtime;
  if (runtime.loadError()) {
    std::fprintf(stderr, "artifacts did not load: %s\n", runtime.loadError()->c_str());
    return 1;
  }
  std::printf("%s\n", runtime.statusDescription().c_str());
  const auto policy = decideAll(runtime, "the installed policy decides:");

  // A runtime whose artifacts are missing answers every decision with its fail-safe decision, and says
  // so in the source. The log sink receives the runtime's reasons (here they go to standard output).
  setOrxLogSink([](OrxLogLevel, std::string_view message) {
    std::printf("log: %.*s\n", static_cast<int>(message.size()), message.data());
  });
  OrxPolicyRuntime unavailable(std::filesystem::path("/nonexistent/ravo-orx-artifacts"));
  setOrxLogSink({});
  const auto failSafe = decideAll(unavailable, "without artifacts, the fail-safe answers:");

  // Digests of the canonical core identify what was decided, e.g. in a log of decisions.
  std::printf("status digest %s\n", ORXDigest::raw(runtime.statusDescription()).value().c_str());

  const bool expected =
      policy.authorization.source == OrxDecisionSource::policy && policy.authorization.decision.isAllowed &&
      policy.sync.source == OrxDecisionSource::policy && policy.sync.decision.action == OrxSyncAction::nudge &&
      policy.cinema.source == OrxDecisionSource::policy &&
      policy.cinema.decision.route == OrxCinemaAdmissionRoute::fullFrameML &&
      failSafe.authorization.decision == OrxAuthorizationDecision::runtimeUnavailable() &&
      failSafe.sync.decision == OrxSyncDecision::hold() &&
      failSafe.cinema.decision == OrxCinemaAdmissionDecision::metalFXOnly() &&
      failSafe.cinema.source == OrxDecisionSource::moduleUnavailable;
  return expected ? 0 : 1;
}
