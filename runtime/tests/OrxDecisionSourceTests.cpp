// Every decision says where it came from: the module's validated answer ("policy") or the fail-safe
// path that replaced it. The plain calls give the same decision without the source.

#include <gtest/gtest.h>

#include <cstddef>

#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include "runtime/tests/PuppetModules.h"

namespace ravo::orx {

using namespace internal;

namespace {

using Source = OrxDecisionSource;

TEST(OrxDecisionSource, CaseNames) {
  EXPECT_EQ(orxCaseName(Source::policy), "policy");
  EXPECT_EQ(orxCaseName(Source::moduleUnavailable), "moduleUnavailable");
  EXPECT_EQ(orxCaseName(Source::trap), "trap");
  EXPECT_EQ(orxCaseName(Source::invalidOutput), "invalidOutput");
}

template <class Facts, class Decision>
struct Case {
  const char* name;
  OrxPolicyDecider* decider;
  Facts facts;
  OrxSourcedDecision<Decision> expected;
};

// Each case through the sourced call and the plain one, which must give the same decision.
template <class Facts, class Decision, std::size_t N>
void expectCases(const Case<Facts, Decision> (&cases)[N],
                 OrxSourcedDecision<Decision> (OrxPolicyDecider::*withSource)(const Facts&),
                 Decision (OrxPolicyDecider::*plain)(const Facts&)) {
  for (const auto& c : cases) {
    EXPECT_EQ((c.decider->*withSource)(c.facts), c.expected) << c.name;
    EXPECT_EQ((c.decider->*plain)(c.facts), c.expected.decision) << c.name;
  }
}

TEST(OrxDecisionSource, EachPathOfEachDecisionNamesItsSource) {
  using Reason = OrxAuthorizationReason;
  using CinemaReason = OrxCinemaAdmissionReason;
  const OrxAuthorizationDecision denied{false, Reason::runtimeUnavailable, 0};
  const OrxAuthorizationDecision invalid{false, Reason::invalidResult, 0};
  const OrxSyncDecision hold{OrxSyncAction::hold, 1000, 0, 1};
  const OrxCinemaAdmissionDecision metalFX{OrxCinemaAdmissionRoute::metalFXOnly, 0, 0, CinemaReason::invalidFacts};
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  OrxPolicyDecider puppets(puppetModules());
  OrxPolicyDecider empty(OrxPolicyModules{});

  const Case<AuthorizationFacts, OrxAuthorizationDecision> authorizations[] = {
      {"answered", &puppets, kAllowedAuthorization, {{true, Reason::allowed, 3}, Source::policy}},
      {"no module", &empty, kAllowedAuthorization, {denied, Source::moduleUnavailable}},
      {"trap", &puppets, kTrappingAuthorization, {denied, Source::trap}},
      {"command not echoed", &puppets, kUnechoedAuthorization, {invalid, Source::invalidOutput}},
  };
  expectCases(authorizations, &OrxPolicyDecider::authorizeWithSource, &OrxPolicyDecider::authorize);

  const Case<SyncFacts, OrxSyncDecision> syncs[] = {
      {"answered", &puppets, kNudgeSync, {{OrxSyncAction::nudge, 967, 0, 3}, Source::policy}},
      {"no module", &empty, kNudgeSync, {hold, Source::moduleUnavailable}},
      {"trap", &puppets, kTrappingSync, {hold, Source::trap}},
      {"rate outside the band", &puppets, kOutOfBandSync, {hold, Source::invalidOutput}},
  };
  expectCases(syncs, &OrxPolicyDecider::correctSyncWithSource, &OrxPolicyDecider::correctSync);

  const Case<CinemaAdmissionFacts, OrxCinemaAdmissionDecision> cinemas[] = {
      {"answered", &puppets, kFullFrameCinema,
       {{OrxCinemaAdmissionRoute::fullFrameML, 0, 272, CinemaReason::liveSafe}, Source::policy}},
      {"no module", &empty, kFullFrameCinema, {metalFX, Source::moduleUnavailable}},
      {"trap", &puppets, kTrappingCinema, {metalFX, Source::trap}},
      {"MetalFX claiming live-safe", &puppets, kLiveSafeMetalFXCinema, {metalFX, Source::invalidOutput}},
  };
  expectCases(cinemas, &OrxPolicyDecider::decideCinemaAdmissionWithSource, &OrxPolicyDecider::decideCinemaAdmission);
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

}  // namespace ravo::orx
