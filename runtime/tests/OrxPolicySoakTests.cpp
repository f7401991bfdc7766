// A long run of decisions on two threads, alternating the bundled modules with faulty ones (a trap, a
// missing emit, a short emit, on each of the three decisions). Every bundled answer must stay exact,
// every fault must be counted exactly once, and resident memory must not grow once the run has warmed
// up. ORX_SOAK_DECISIONS sets the length (default 10,000,000); sanitizer runs use a shorter one.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include "runtime/tests/PuppetModules.h"

namespace ravo::orx {

using namespace internal;

namespace {

std::uint64_t soakDecisions() {
  const char* text = std::getenv("ORX_SOAK_DECISIONS");
  return text ? std::strtoull(text, nullptr, 10) : 10'000'000;
}

// Resident set size from /proc/self/status, in KiB.
std::uint64_t residentKiB() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmRSS:", 0) == 0) return std::strtoull(line.c_str() + 6, nullptr, 10);
  }
  return 0;
}

struct SoakRun {
  OrxPolicyRuntime& bundled;
  OrxPolicyDecider& faulty;
  OrxAuthorizationDecision expectedAuthorization;
  OrxSyncDecision expectedSync;
  OrxCinemaAdmissionDecision expectedCinema;

  static constexpr AuthorizationFacts kAuthorization{3, 2, 0xFF, 1000, 900000, 0, 600, 1};
  static constexpr SyncFacts kSync{66, 20, 5, 10000, 100, 0, 500, 50};
  static constexpr CinemaAdmissionFacts kCinema{2400, 6000, 1000, 60, 0, 0, 11, 15, 24, 30, 20, 150, 30};
  // Modes of the puppet modules that each make the decision fail: trap, no emit, emit of four values.
  static constexpr std::int32_t kFaultModes[] = {2, 1, 4};

  // Decision `i` of a thread: even ones on the bundled modules, odd ones on a faulty module; the
  // decision kind and the fault rotate. Returns false when a bundled answer differs.
  bool decide(std::uint64_t i) {
    const auto kind = (i / 2) % 3;
    if (i % 2 == 0) {
      switch (kind) {
        case 0: return bundled.authorize(kAuthorization) == expectedAuthorization;
        case 1: return bundled.correctSync(kSync) == expectedSync;
        default: return bundled.decideCinemaAdmission(kCinema) == expectedCinema;
      }
    }
    const std::int32_t mode = kFaultModes[(i / 6) % 3];
    switch (kind) {
      case 0: faulty.authorize({mode, 1, 5201, 1, 1, 0, 7, 1}); break;
      case 1: faulty.correctSync({mode, 0, 5202, 1, 1000, 0, 0, 0}); break;
      default: faulty.decideCinemaAdmission({mode, 0, 5203, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0}); break;
    }
    return true;
  }

  // Runs decisions [begin, end) of each of two threads; returns the number of wrong bundled answers.
  std::uint64_t run(std::uint64_t begin, std::uint64_t end) {
    std::uint64_t wrong[2] = {0, 0};
    {
      std::vector<std::jthread> threads;
      for (int t = 0; t < 2; ++t) {
        threads.emplace_back([&, t] {
          for (auto i = begin; i < end; ++i) wrong[t] += decide(i) ? 0 : 1;
        });
      }
    }
    return wrong[0] + wrong[1];
  }
};

TEST(OrxPolicySoak, AlternatingGoodAndFaultyModulesCountEveryFaultAndKeepMemoryFlat) {
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  OrxPolicyRuntime bundled(std::filesystem::path("artifacts"));
  ASSERT_FALSE(bundled.loadError()) << *bundled.loadError();
  OrxPolicyDecider faulty(puppetModules());
  SoakRun soak{bundled, faulty, bundled.authorize(SoakRun::kAuthorization), bundled.correctSync(SoakRun::kSync),
               bundled.decideCinemaAdmission(SoakRun::kCinema)};
  ASSERT_EQ(bundled.failureCount(), 0u);
  ASSERT_TRUE(soak.expectedAuthorization.isAllowed);

  // Both threads run each index, so a range of n indices makes 2n decisions, half of them faulty.
  const std::uint64_t perThread = soakDecisions() / 2;
  const std::uint64_t warmUp = std::min<std::uint64_t>(perThread, 60'000);
  EXPECT_EQ(soak.run(0, warmUp), 0u);
  const auto residentBefore = residentKiB();
  EXPECT_EQ(soak.run(warmUp, perThread), 0u);
  const auto residentAfter = residentKiB();
  setOrxLogSink({});

  EXPECT_EQ(bundled.failureCount(), 0u);
  EXPECT_EQ(faulty.failureCount(), perThread);
  std::cout << "soak: " << 2 * perThread << " decisions on 2 threads, " << faulty.failureCount()
            << " faults counted; resident memory " << residentBefore << " KiB after warm-up, " << residentAfter
            << " KiB at the end\n";
  // A leak of even a few bytes per faulty decision would show as megabytes; allocator noise stays small.
  EXPECT_LT(residentAfter, residentBefore + 2048) << "resident memory grew during the soak";
}

}  // namespace

}  // namespace ravo::orx
