// Every decision says where it came from: the module's validated answer ("policy") or the fail-safe
// path that replaced it. The plain calls give the same decision without the source.

#include <gtest/gtest.h>

#include <string>

#include "runtime/OrxLog.h"
#include "runtime/OrxPolicyRuntime.h"
#include "runtime/tests/PuppetModules.h"

namespace {

using Source = OrxDecisionSource;

TEST(OrxDecisionSource, CaseNames) {
  EXPECT_EQ(orxCaseName(Source::policy), "policy");
  EXPECT_EQ(orxCaseName(Source::moduleUnavailable), "moduleUnavailable");
  EXPECT_EQ(orxCaseName(Source::trap), "trap");
  EXPECT_EQ(orxCaseName(Source::invalidOutput), "invalidOutput");
}

TEST(OrxDecisionSource, EachPathOfEachDecisionNamesItsSource) {
  using Reason = OrxAuthorizationReason;
  const OrxAuthorizationDecision denied{false, Reason::runtimeUnavailable, 0};
  const OrxAuthorizationDecision invalid{false, Reason::invalidResult, 0};
  const OrxSyncDecision hold{OrxSyncAction::hold, 1000, 0, 1};
  const OrxCinemaAdmissionDecision metalFX{OrxCinemaAdmissionRoute::metalFXOnly, 0, 0,
                                           OrxCinemaAdmissionReason::invalidFacts};
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  OrxPolicyDecider puppets(puppetModules());
  OrxPolicyDecider empty(OrxPolicyModules{});

  struct AuthorizationCase {
    const char* name;
    OrxPolicyDecider& decider;
    AuthorizationFacts facts;
    OrxSourcedDecision<OrxAuthorizationDecision> expected;
  };
  const AuthorizationCase authorizations[] = {
      {"answered", puppets, kAllowedAuthorization, {{true, Reason::allowed, 3}, Source::policy}},
      {"no module", empty, kAllowedAuthorization, {denied, Source::moduleUnavailable}},
      {"trap", puppets, kTrappingAuthorization, {denied, Source::trap}},
      {"command not echoed", puppets, kUnechoedAuthorization, {invalid, Source::invalidOutput}},
  };
  for (const auto& c : authorizations) {
    EXPECT_EQ(c.decider.authorizeWithSource(c.facts), c.expected) << c.name;
    EXPECT_EQ(c.decider.authorize(c.facts), c.expected.decision) << c.name;
  }

  struct SyncCase {
    const char* name;
    OrxPolicyDecider& decider;
    SyncFacts facts;
    OrxSourcedDecision<OrxSyncDecision> expected;
  };
  const SyncCase syncs[] = {
      {"answered", puppets, kNudgeSync, {{OrxSyncAction::nudge, 967, 0, 3}, Source::policy}},
      {"no module", empty, kNudgeSync, {hold, Source::moduleUnavailable}},
      {"trap", puppets, kTrappingSync, {hold, Source::trap}},
      {"rate outside the band", puppets, kOutOfBandSync, {hold, Source::invalidOutput}},
  };
  for (const auto& c : syncs) {
    EXPECT_EQ(c.decider.correctSyncWithSource(c.facts), c.expected) << c.name;
    EXPECT_EQ(c.decider.correctSync(c.facts), c.expected.decision) << c.name;
  }

  struct CinemaCase {
    const char* name;
    OrxPolicyDecider& decider;
    CinemaAdmissionFacts facts;
    OrxSourcedDecision<OrxCinemaAdmissionDecision> expected;
  };
  const CinemaCase cinemas[] = {
      {"answered", puppets, kFullFrameCinema,
       {{OrxCinemaAdmissionRoute::fullFrameML, 0, 272, OrxCinemaAdmissionReason::liveSafe}, Source::policy}},
      {"no module", empty, kFullFrameCinema, {metalFX, Source::moduleUnavailable}},
      {"trap", puppets, kTrappingCinema, {metalFX, Source::trap}},
      {"MetalFX claiming live-safe", puppets, kLiveSafeMetalFXCinema, {metalFX, Source::invalidOutput}},
  };
  for (const auto& c : cinemas) {
    EXPECT_EQ(c.decider.decideCinemaAdmissionWithSource(c.facts), c.expected) << c.name;
    EXPECT_EQ(c.decider.decideCinemaAdmission(c.facts), c.expected.decision) << c.name;
  }
  setOrxLogSink({});
  // Each fail-safe path above ran twice (with and without its source) on one of the two deciders.
  EXPECT_EQ(puppets.failureCount(), 12u);
  EXPECT_EQ(empty.failureCount(), 6u);
}

TEST(OrxDecisionSource, ARuntimeWhoseArtifactsDidNotLoadAnswersModuleUnavailable) {
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  OrxPolicyRuntime runtime(std::filesystem::path("/nonexistent/artifacts"));
  setOrxLogSink({});
  EXPECT_EQ(runtime.authorizeWithSource(kAllowedAuthorization).source, Source::moduleUnavailable);
  EXPECT_EQ(runtime.correctSyncWithSource(kNudgeSync).source, Source::moduleUnavailable);
  EXPECT_EQ(runtime.decideCinemaAdmissionWithSource(kFullFrameCinema).source, Source::moduleUnavailable);
}

}  // namespace
