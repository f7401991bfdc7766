// The host accepts a module's answer only when the emitted record repeats it under the module's tag
// with every field in range; anything else is a fail-safe decision counted exactly once.

#include <gtest/gtest.h>

#include <mutex>
#include <vector>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/runtime/OrxLog.h>
#include "runtime/tests/PuppetModules.h"

namespace ravo::orx {

using namespace internal;

namespace {

enum Mode : std::int32_t { emits = 0, silent = 1, traps = 2, emitsTwice = 3, emitsFour = 4, emitsSix = 5 };

struct Record {
  Mode mode;
  std::int32_t e0, e1, e2, e3, e4;  // the emitted record
  std::int32_t result;
};

// The facts that make the puppet answer `record`; `command` is the authorization echo field.
AuthorizationFacts authorizationFacts(const Record& r, std::int32_t command) {
  return {r.mode, command, r.e0, r.e1, r.e2, r.e3, r.e4, r.result};
}
SyncFacts syncFacts(const Record& r) { return {r.mode, 0, r.e0, r.e1, r.e2, r.e3, r.e4, r.result}; }
CinemaAdmissionFacts cinemaFacts(const Record& r) {
  return {r.mode, 0, r.e0, r.e1, r.e2, r.e3, r.e4, r.result, 0, 0, 0, 0, 0};
}

class CapturedLog {
 public:
  CapturedLog() {
    setOrxLogSink([this](OrxLogLevel level, std::string_view message) {
      std::lock_guard guard(lock_);
      lines_.push_back((level == OrxLogLevel::error ? "error: " : "") + std::string(message));
    });
  }
  ~CapturedLog() { setOrxLogSink({}); }
  std::vector<std::string> lines() {
    std::lock_guard guard(lock_);
    return lines_;
  }

 private:
  std::mutex lock_;
  std::vector<std::string> lines_;
};

// The fail-safe answers, stated as the values the host and the modules exchange.
constexpr OrxAuthorizationDecision invalid{false, OrxAuthorizationReason{101}, 0};
constexpr OrxAuthorizationDecision unavailable{false, OrxAuthorizationReason{100}, 0};
constexpr OrxSyncDecision hold{OrxSyncAction{0}, 1000, 0, 1};
constexpr OrxCinemaAdmissionDecision metalFX{OrxCinemaAdmissionRoute{0}, 0, 0, OrxCinemaAdmissionReason{6}};

TEST(OrxPolicyDecisions, FailSafeAnswersAndRawValuesAreFixed) {
  EXPECT_EQ(OrxAuthorizationDecision::invalid(), invalid);
  EXPECT_EQ(OrxAuthorizationDecision::runtimeUnavailable(), unavailable);
  EXPECT_EQ(OrxSyncDecision::hold(), hold);
  EXPECT_EQ(OrxCinemaAdmissionDecision::metalFXOnly(), metalFX);
  struct Case {
    std::int32_t raw;
    std::string_view authorization, sync, route, cinemaReason;
  };
  const Case cases[] = {
      {-1, "", "", "", ""},
      {0, "allowed", "hold", "metalFXOnly", "liveSafe"},
      {1, "unpaired", "nudge", "fullFrameML", "thermalOrMemory"},
      {2, "tokenExpired", "seek", "sparseAnchorResearch", "sourceReservoir"},
      {3, "rateLimited", "", "calibration", "nonMLOverBudget"},
      {4, "missingGrant", "", "measurementRequired", "sparseResearch"},
      {5, "notController", "", "", "calibration"},
      {6, "unknownCommand", "", "", "invalidFacts"},
      {7, "needsAdmin", "", "", ""},
      {8, "", "", "", ""},
      {99, "", "", "", ""},
      {100, "runtimeUnavailable", "", "", ""},
      {101, "invalidResult", "", "", ""},
      {102, "", "", "", ""},
  };
  auto name = [](auto value) { return value ? orxCaseName(*value) : std::string_view(); };
  for (const auto& c : cases) {
    EXPECT_EQ(name(orxAuthorizationReason(c.raw)), c.authorization) << c.raw;
    EXPECT_EQ(name(orxSyncAction(c.raw)), c.sync) << c.raw;
    EXPECT_EQ(name(orxCinemaAdmissionRoute(c.raw)), c.route) << c.raw;
    EXPECT_EQ(name(orxCinemaAdmissionReason(c.raw)), c.cinemaReason) << c.raw;
  }
}

TEST(OrxPolicyDecisions, AuthorizationAcceptsOnlyAnEchoedTaggedRecordInRange) {
  using R = OrxAuthorizationReason;
  struct Case {
    const char* name;
    Record record;
    std::int32_t command;
    OrxAuthorizationDecision expected;
  };
  const Case cases[] = {
      {"allowed", {emits, 5201, 1, 6, 0, 3, 1}, 6, {true, R::allowed, 3}},
      {"denied, reason not cross-checked", {emits, 5201, 0, 6, 0, 3, 0}, 6, {false, R::allowed, 3}},
      {"policy version 1", {emits, 5201, 0, 6, 5, 1, 0}, 6, {false, R::notController, 1}},
      {"policy version 10000", {emits, 5201, 0, 6, 5, 10000, 0}, 6, {false, R::notController, 10000}},
      {"only the last emit counts", {emitsTwice, 5201, 1, 6, 0, 3, 1}, 6, {true, R::allowed, 3}},
      {"policy version 0", {emits, 5201, 1, 6, 0, 0, 1}, 6, invalid},
      {"policy version 10001", {emits, 5201, 1, 6, 0, 10001, 1}, 6, invalid},
      {"wrong tag", {emits, 5301, 1, 6, 0, 3, 1}, 6, invalid},
      {"record disagrees with the result", {emits, 5201, 1, 6, 0, 3, 0}, 6, invalid},
      {"result outside 0 and 1", {emits, 5201, 2, 6, 0, 3, 2}, 6, invalid},
      {"result -1", {emits, 5201, -1, 6, 0, 3, -1}, 6, invalid},
      {"command not echoed", {emits, 5201, 1, 7, 0, 3, 1}, 6, invalid},
      {"unknown reason", {emits, 5201, 0, 6, 8, 3, 0}, 6, invalid},
      {"four values", {emitsFour, 5201, 1, 6, 0, 3, 1}, 6, invalid},
      {"six values", {emitsSix, 5201, 1, 6, 0, 3, 1}, 6, invalid},
      {"no emission", {silent, 5201, 1, 6, 0, 3, 1}, 6, invalid},
      {"trap", {traps, 5201, 1, 6, 0, 3, 1}, 6, unavailable},
  };
  OrxPolicyDecider decider(puppetModules());
  CapturedLog log;
  std::uint64_t expectedFailures = 0;
  for (const auto& c : cases) {
    const bool failSafe = c.expected == invalid || c.expected == unavailable;
    EXPECT_EQ(decider.authorize(authorizationFacts(c.record, c.command)), c.expected) << c.name;
    expectedFailures += failSafe ? 1 : 0;
    EXPECT_EQ(decider.failureCount(), expectedFailures) << c.name;
  }
  EXPECT_EQ(log.lines(), std::vector<std::string>{"error: ORX authorization trapped; denying command: "
                                                  "RuntimeError: unreachable executed"});
}

TEST(OrxPolicyDecisions, SyncAcceptsOnlyConsistentOutputInsideTheBand) {
  using A = OrxSyncAction;
  struct Case {
    const char* name;
    Record record;
    OrxSyncDecision expected;
  };
  const Case cases[] = {
      {"hold", {emits, 5301, 0, 1000, 0, 0, 0}, {A::hold, 1000, 0, 0}},
      {"nudge anywhere in the band", {emits, 5301, 1, 967, 0, 3, 1}, {A::nudge, 967, 0, 3}},
      {"nudge at the band edge", {emits, 5301, 1, 1050, 0, 5, 1}, {A::nudge, 1050, 0, 5}},
      {"seek by any correction within a day", {emits, 5301, 2, 1000, -86400000, 4, 2}, {A::seek, 1000, -86400000, 4}},
      {"hold off 1000", {emits, 5301, 0, 1001, 0, 0, 0}, hold},
      {"hold with a correction", {emits, 5301, 0, 1000, 1, 0, 0}, hold},
      {"nudge with a correction", {emits, 5301, 1, 967, 5, 3, 1}, hold},
      {"nudge outside the band", {emits, 5301, 1, 949, 0, 3, 1}, hold},
      {"seek off rate 1000", {emits, 5301, 2, 999, -2000, 4, 2}, hold},
      {"seek beyond a day", {emits, 5301, 2, 1000, 86400001, 4, 2}, hold},
      {"reason 6", {emits, 5301, 1, 967, 0, 6, 1}, hold},
      {"reason -1", {emits, 5301, 1, 967, 0, -1, 1}, hold},
      {"unknown action", {emits, 5301, 3, 1000, 0, 0, 3}, hold},
      {"wrong tag", {emits, 5201, 1, 967, 0, 3, 1}, hold},
      {"four values", {emitsFour, 5301, 1, 967, 0, 3, 1}, hold},
      {"six values", {emitsSix, 5301, 1, 967, 0, 3, 1}, hold},
      {"no emission", {silent, 5301, 1, 967, 0, 3, 1}, hold},
      {"trap", {traps, 5301, 1, 967, 0, 3, 1}, hold},
  };
  OrxPolicyDecider decider(puppetModules());
  CapturedLog log;
  std::uint64_t expectedFailures = 0;
  for (const auto& c : cases) {
    EXPECT_EQ(decider.correctSync(syncFacts(c.record)), c.expected) << c.name;
    expectedFailures += c.expected == hold ? 1 : 0;
    EXPECT_EQ(decider.failureCount(), expectedFailures) << c.name;
  }
  EXPECT_EQ(log.lines().at(0), "error: ORX sync correction trapped; holding: RuntimeError: unreachable executed");
}

TEST(OrxPolicyDecisions, CinemaAcceptsOnlyRoutesThatAgreeWithTheirFields) {
  using Route = OrxCinemaAdmissionRoute;
  using Reason = OrxCinemaAdmissionReason;
  struct Case {
    const char* name;
    Record record;
    OrxCinemaAdmissionDecision expected;
  };
  const Case cases[] = {
      {"full frame", {emits, 5401, 1, 0, 272, 0, 1}, {Route::fullFrameML, 0, 272, Reason::liveSafe}},
      {"sparse every second frame", {emits, 5401, 2, 2, 272, 4, 2}, {Route::sparseAnchorResearch, 2, 272, Reason::sparseResearch}},
      {"MetalFX for thermal reasons", {emits, 5401, 0, 0, 1000000, 1, 0}, {Route::metalFXOnly, 0, 1000000, Reason::thermalOrMemory}},
      {"measurement", {emits, 5401, 4, 0, 0, 6, 4}, {Route::measurementRequired, 0, 0, Reason::invalidFacts}},
      {"sparse every frame", {emits, 5401, 2, 1, 272, 4, 2}, metalFX},
      {"sparse beyond 10000", {emits, 5401, 2, 10001, 272, 4, 2}, metalFX},
      {"MetalFX claiming live-safe", {emits, 5401, 0, 0, 272, 0, 0}, metalFX},
      {"full frame with an interval", {emits, 5401, 1, 2, 272, 0, 1}, metalFX},
      {"calibration with another reason", {emits, 5401, 3, 0, 272, 4, 3}, metalFX},
      {"negative budget", {emits, 5401, 1, 0, -1, 0, 1}, metalFX},
      {"budget beyond the range", {emits, 5401, 1, 0, 1000001, 0, 1}, metalFX},
      {"unknown reason", {emits, 5401, 0, 0, 272, 7, 0}, metalFX},
      {"unknown route", {emits, 5401, 5, 0, 272, 0, 5}, metalFX},
      {"wrong tag", {emits, 5301, 1, 0, 272, 0, 1}, metalFX},
      {"four values", {emitsFour, 5401, 1, 0, 272, 0, 1}, metalFX},
      {"six values", {emitsSix, 5401, 1, 0, 272, 0, 1}, metalFX},
      {"trap", {traps, 5401, 1, 0, 272, 0, 1}, metalFX},
  };
  OrxPolicyDecider decider(puppetModules());
  CapturedLog log;
  for (const auto& c : cases) EXPECT_EQ(decider.decideCinemaAdmission(cinemaFacts(c.record)), c.expected) << c.name;
  EXPECT_EQ(decider.failureCount(), 13u);
  EXPECT_EQ(log.lines().at(0), "error: ORX Cinema admission trapped; retaining MetalFX: RuntimeError: unreachable executed");
}

// A decide that returns nothing counts as route -1 for cinema (so even a record that would be a good
// metalFXOnly answer is refused) and as a denial for authorization (so a denying record is accepted).
TEST(OrxPolicyDecisions, ADecideThatReturnsNothingCountsAsEachKindsOwnResult) {
  auto voidModule = [](int arity, const std::string& record) {
    std::string params;
    for (int i = 0; i < arity; ++i) params += " i32";
    return loadModule("void", assembleWat(R"wat((module
      (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
      (func (export "decide") (param)wat" + params + R"wat()
        (drop (call $emit )wat" + record + R"wat()))))wat"));
  };
  for (const std::string route : {"-1", "0"}) {
    OrxPolicyModules modules;
    modules.cinemaAdmission = voidModule(13, "(i32.const 5401) (i32.const " + route + ") (i32.const 0) (i32.const 0) (i32.const 1)");
    OrxPolicyDecider decider(std::move(modules));
    EXPECT_EQ(decider.decideCinemaAdmissionWithSource({}),
              (OrxSourcedDecision<OrxCinemaAdmissionDecision>{metalFX, OrxDecisionSource::invalidOutput}))
        << "route " << route;
  }
  OrxPolicyModules modules;
  modules.authorization = voidModule(8, "(i32.const 5201) (i32.const 0) (i32.const 6) (i32.const 5) (i32.const 3)");
  OrxPolicyDecider decider(std::move(modules));
  EXPECT_EQ(decider.authorizeWithSource({0, 6, 0, 0, 0, 0, 0, 0}),
            (OrxSourcedDecision<OrxAuthorizationDecision>{{false, OrxAuthorizationReason::notController, 3},
                                                          OrxDecisionSource::policy}));
}

// The kinds' table says where an accepted record holds each decision field, for the prover and the
// tools: the decider must take every field from exactly there.
TEST(OrxPolicyDecisions, AnAcceptedRecordGivesEachFieldTheValueTheKindsTableNames) {
  struct Case {
    OrxDecisionKindID kind;
    Record record;
  };
  const Case cases[] = {
      {OrxDecisionKindID::authorization, {emits, 5201, 1, 6, 0, 3, 1}},
      {OrxDecisionKindID::authorization, {emits, 5201, 0, 6, 5, 10000, 0}},
      {OrxDecisionKindID::sync, {emits, 5301, 1, 967, 0, 3, 1}},
      {OrxDecisionKindID::sync, {emits, 5301, 2, 1000, -86400000, 4, 2}},
      {OrxDecisionKindID::cinemaAdmission, {emits, 5401, 2, 2, 272, 4, 2}},
      {OrxDecisionKindID::cinemaAdmission, {emits, 5401, 0, 0, 1000000, 1, 0}},
  };
  OrxPolicyDecider decider(puppetModules());
  for (const auto& c : cases) {
    std::array<std::int32_t, kOrxMaxDecisionFields> fields{};
    switch (c.kind) {
      case OrxDecisionKindID::authorization: fields = orxDecisionFieldValues(decider.authorize(authorizationFacts(c.record, 6))); break;
      case OrxDecisionKindID::sync: fields = orxDecisionFieldValues(decider.correctSync(syncFacts(c.record))); break;
      case OrxDecisionKindID::cinemaAdmission: fields = orxDecisionFieldValues(decider.decideCinemaAdmission(cinemaFacts(c.record))); break;
    }
    const std::int32_t emitted[] = {c.record.e0, c.record.e1, c.record.e2, c.record.e3, c.record.e4};
    const auto& decisionFields = orxDecisionKind(c.kind).decisionFields;
    for (std::size_t f = 0; f < decisionFields.size(); ++f) {
      EXPECT_EQ(fields[f], emitted[decisionFields[f].emittedIndex]) << decisionFields[f].name << " of " << c.record.e0;
    }
  }
  EXPECT_EQ(decider.failureCount(), 0u);
}

TEST(OrxPolicyDecisions, WithoutModulesEveryDecisionIsTheCountedFailSafe) {
  OrxPolicyDecider decider(OrxPolicyModules{});
  EXPECT_EQ(decider.statusDescription(), "ORX unavailable \u00B7 native safe mode");
  EXPECT_EQ(decider.authorize({}), unavailable);
  EXPECT_EQ(decider.correctSync({}), hold);
  EXPECT_EQ(decider.decideCinemaAdmission({}), metalFX);
  EXPECT_EQ(decider.failureCount(), 3u);
}

TEST(OrxPolicyDecisions, StatusNamesEachModuleByItsDigest) {
  OrxPolicyModules one;
  one.sync = puppetModule(8);
  const std::string sync = one.sync->digest().substr(0, 8);
  EXPECT_EQ(OrxPolicyDecider(std::move(one)).statusDescription(),
            "ORX partial \u00B7 authz unavailable / sync " + sync + " / cinema unavailable");
  OrxPolicyModules all = puppetModules();
  const std::string expected = "ORX active \u00B7 " + all.authorization->digest().substr(0, 8) + " / " +
                               all.sync->digest().substr(0, 8) + " / " + all.cinemaAdmission->digest().substr(0, 8);
  EXPECT_EQ(OrxPolicyDecider(std::move(all)).statusDescription(), expected);
}

}  // namespace

}  // namespace ravo::orx
