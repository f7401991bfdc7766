// One runtime handle shared by threads, as the header allows: decisions from every thread equal the
// single-threaded answer while another thread opens failing runtimes (whose load errors are logged
// and become that thread's last error) and swaps the log callback.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <ravo-orx/orx.h>

namespace {

TEST(OrxCApiConcurrency, SharedRuntimeDecidesAlikeWhileOtherThreadsFailAndLog) {
  orx_runtime* runtime = nullptr;
  ASSERT_EQ(orx_runtime_open("artifacts", &runtime), ORX_OK);  // tests run in the repository root
  const orx_sync_facts facts{501, 20, 5, 10000, 100, 0, 500, 50};
  orx_sync_decision expected;
  ASSERT_EQ(orx_correct_sync(runtime, &facts, &expected), ORX_OK);

  std::atomic<int> mismatches = 0;
  std::atomic<int> logged = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i) {
        orx_sync_decision got;
        orx_correct_sync(runtime, &facts, &got);
        if (got.action != expected.action || got.correctionMilliseconds != expected.correctionMilliseconds ||
            got.source != ORX_SOURCE_POLICY) {
          ++mismatches;
        }
      }
    });
  }
  threads.emplace_back([&] {
    for (int i = 0; i < 20; ++i) {
      orx_set_log_callback(
          [](void* context, orx_log_level, const char*, size_t) { ++*static_cast<std::atomic<int>*>(context); },
          &logged);
      orx_runtime* failing = nullptr;
      if (orx_runtime_open("no-such-directory", &failing) != ORX_STATUS_UNAVAILABLE ||
          std::string(orx_last_error()).find("evidence.json") == std::string::npos) {
        ++mismatches;
      }
      orx_runtime_close(failing);
      orx_set_log_callback(nullptr, nullptr);
    }
  });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(mismatches, 0);
  EXPECT_EQ(logged, 20);
  orx_runtime_close(runtime);
}

}  // namespace
