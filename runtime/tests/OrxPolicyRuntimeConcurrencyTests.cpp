// Eight threads deciding at once on one runtime: every answer is right and every failure is counted.

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include "runtime/tests/PuppetModules.h"

namespace ravo::orx {

using namespace internal;

namespace {

TEST(OrxPolicyRuntimeConcurrency, EightThreadsGetCorrectAnswersAndAnExactFailureCount) {
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  OrxPolicyRuntime bundled(std::filesystem::path("artifacts"));
  ASSERT_FALSE(bundled.loadError()) << *bundled.loadError();
  OrxPolicyDecider puppets(puppetModules());

  constexpr int kThreads = 8;
  constexpr int kRounds = 300;
  std::vector<int> wrong(kThreads, 0);
  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        for (int i = 0; i < kRounds; ++i) {
          // Each thread's own command is echoed back; a decision that saw another thread's emission
          // would carry the wrong command and be refused.
          const std::int32_t command = 1 + (t + i) % 5;
          auto allowed = bundled.authorize({3, command, 0xFF, 1000, 900000, 0, 600, 1});
          if (!allowed.isAllowed || allowed.reason != OrxAuthorizationReason::allowed) ++wrong[t];
          auto sync = bundled.correctSync({66, 20, 5, 10000, 100, 0, 500, 50});
          if (sync.action != OrxSyncAction::nudge || sync.rateX1000 != 967) ++wrong[t];
          // Alternate a good answer and a trap on a shared decider.
          auto echoed = puppets.authorize({0, command, 5201, 1, command, 0, 7, 1});
          if (!echoed.isAllowed || echoed.policyVersion != 7) ++wrong[t];
          puppets.authorize({2, command, 0, 0, 0, 0, 0, 0});
        }
      });
    }
  }
  setOrxLogSink({});
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(wrong[t], 0) << "thread " << t;
  EXPECT_EQ(bundled.failureCount(), 0u);
  EXPECT_EQ(puppets.failureCount(), static_cast<std::uint64_t>(kThreads * kRounds));
}

// Comparing failureCount() around a call cannot tell whose call failed once threads share a decider;
// the source returned with each decision can.
TEST(OrxPolicyRuntimeConcurrency, EightThreadsEachGetTheSourceOfTheirOwnDecision) {
  using Source = OrxDecisionSource;
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  OrxPolicyDecider puppets(puppetModules());
  OrxPolicyDecider empty(OrxPolicyModules{});
  struct Path {
    OrxPolicyDecider* decider;
    AuthorizationFacts authorization;
    SyncFacts sync;
    CinemaAdmissionFacts cinema;
    Source source;
  };
  const Path paths[] = {
      {&puppets, kAllowedAuthorization, kNudgeSync, kFullFrameCinema, Source::policy},
      {&puppets, kTrappingAuthorization, kTrappingSync, kTrappingCinema, Source::trap},
      {&puppets, kUnechoedAuthorization, kOutOfBandSync, kLiveSafeMetalFXCinema, Source::invalidOutput},
      {&empty, kAllowedAuthorization, kNudgeSync, kFullFrameCinema, Source::moduleUnavailable},
  };

  constexpr int kThreads = 8;
  constexpr int kRounds = 200;
  std::vector<int> wrong(kThreads, 0);
  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        for (int i = 0; i < kRounds; ++i) {
          // Threads start at different paths, so neighbours interleave different outcomes.
          const Path& path = paths[(t + i) % 4];
          wrong[t] += path.decider->authorizeWithSource(path.authorization).source != path.source;
          wrong[t] += path.decider->correctSyncWithSource(path.sync).source != path.source;
          wrong[t] += path.decider->decideCinemaAdmissionWithSource(path.cinema).source != path.source;
        }
      });
    }
  }
  setOrxLogSink({});
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(wrong[t], 0) << "thread " << t;
  // A quarter of all rounds took each path; traps and invalid outputs count on the puppets.
  constexpr std::uint64_t kRoundsPerPath = kThreads * kRounds / 4;
  EXPECT_EQ(puppets.failureCount(), 2 * 3 * kRoundsPerPath);
  EXPECT_EQ(empty.failureCount(), 3 * kRoundsPerPath);
}

}  // namespace

}  // namespace ravo::orx
