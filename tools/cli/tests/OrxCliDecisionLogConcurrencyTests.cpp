// A log written by eight threads deciding at once on one runtime verifies whole and replays exactly.

#include <gtest/gtest.h>

#include <thread>

#include <ravo-orx/runtime/OrxDecisionLogSinks.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include "tools/cli/tests/OrxCliToolRunner.h"

namespace ravo::orx {

namespace {

using namespace orx_cli_test;

TEST(RavoOrxDecisionLogConcurrency, EightThreadsWriteALogThatVerifiesAndReplaysCompletely) {
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  const Scratch scratch("ravo-orx-log-threads-");
  const auto log = scratch.path / "threads.jsonl";
  constexpr int kThreads = 8;
  constexpr int kRounds = 250;
  {
    OrxDecisionLogOptions options;
    options.sink = std::make_shared<OrxDecisionLogFileSink>(log, OrxDecisionLogFileSync::none);
    options.blockRecords = 64;
    options.bufferRecords = 256;  // small, so threads do wait for room
    options.whenFull = OrxDecisionLogWhenFull::block;
    OrxPolicyRuntime runtime(kRoot / "artifacts", options);
    ASSERT_FALSE(runtime.loadError());
    std::vector<std::jthread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        for (int i = 0; i < kRounds; ++i) {
          runtime.authorize({1 + (t + i) % 3, 1 + i % 9, 63, 1000, 900000, i % 700, 600, 1});
          runtime.correctSync({(t * 37 + i) % 900 - 450, 20, 5, 10000, 100, 0, 500, 50});
        }
      });
    }
  }
  setOrxLogSink({});
  const std::string total = std::to_string(2 * kThreads * kRounds);
  const auto verified = run({"log", "verify", log.string()}, "");
  EXPECT_EQ(verified.status, 0) << verified;
  EXPECT_NE(verified.out.find("records " + total + " sealed, 0 declared dropped"), std::string::npos) << verified;
  const auto replayed = run({"log", "replay", log.string(), "--artifacts", (kRoot / "artifacts").string()}, "");
  EXPECT_EQ(replayed.status, 0) << replayed;
  EXPECT_NE(replayed.out.find("replayed " + total + " records: " + total + " reproduced exactly"), std::string::npos)
      << replayed;
}

}  // namespace

}  // namespace ravo::orx
