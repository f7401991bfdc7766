// The decision log through the C API: the callback sink receives each record and its seal, the head is
// the seal's domain digest (computed here through the C API's own digest), the file sink continues a
// log across runtimes, and every misuse has its status.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include <ravo-orx/orx.h>

namespace {

namespace fs = std::filesystem;

struct Lines {
  std::vector<std::string> text;
  std::vector<int32_t> seals;
};

void keepLine(void* context, const char* line, size_t length, int32_t is_seal) {
  auto* lines = static_cast<Lines*>(context);
  lines->text.emplace_back(line, length);
  lines->seals.push_back(is_seal);
}

const orx_authorization_facts kController{2, 6, 63, 1000, 900000, 0, 600, 1};

TEST(OrxCApiDecisionLog, TheCallbackSinkGetsEachLineAndTheHeadIsTheLastSealsDigest) {
  Lines lines;
  orx_decision_log_options options{};
  options.callback = keepLine;
  options.context = &lines;
  orx_runtime* runtime = nullptr;
  ASSERT_EQ(orx_runtime_open_with_log("artifacts", &options, &runtime), ORX_OK) << orx_last_error();
  orx_authorization_decision decision{};
  ASSERT_EQ(orx_authorize(runtime, &kController, &decision), ORX_OK);
  ASSERT_EQ(orx_runtime_log_flush(runtime), ORX_OK);
  ASSERT_EQ(lines.text.size(), 2u);
  EXPECT_EQ(lines.seals, (std::vector<int32_t>{0, 1}));
  EXPECT_NE(lines.text[0].find("\"kind\":\"authz\""), std::string::npos) << lines.text[0];
  char head[ORX_DIGEST_TEXT_SIZE];
  char expected[ORX_DIGEST_TEXT_SIZE];
  ASSERT_EQ(orx_runtime_log_head(runtime, head), ORX_OK);
  ASSERT_EQ(orx_domain_digest("ORX_DECISION_LOG_SEAL_V1", lines.text[1].data(), lines.text[1].size(), expected), ORX_OK);
  EXPECT_STREQ(head, expected);
  uint64_t written = 0, dropped = 0, lost = 0;
  EXPECT_EQ(orx_runtime_log_counts(runtime, &written, &dropped, &lost), ORX_OK);
  EXPECT_EQ(written, 1u);
  EXPECT_EQ(dropped + lost, 0u);
  orx_runtime_close(runtime);
}

TEST(OrxCApiDecisionLog, TheFileSinkContinuesALogAcrossRuntimes) {
  const auto file = fs::temp_directory_path() / ("orx-capi-log-" + std::to_string(::getpid()));
  fs::remove(file);
  for (int session = 0; session < 2; ++session) {
    orx_decision_log_options options{};
    const std::string path = file.string();
    options.file = path.c_str();
    options.file_sync = ORX_LOG_SYNC_AFTER_SEAL;
    orx_runtime* runtime = nullptr;
    ASSERT_EQ(orx_runtime_open_with_log("artifacts", &options, &runtime), ORX_OK) << orx_last_error();
    orx_authorization_decision decision{};
    orx_authorize(runtime, &kController, &decision);
    orx_runtime_close(runtime);
  }
  std::ifstream in(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_NE(lines[2].find("\"sequence\":1,"), std::string::npos) << lines[2];
  EXPECT_NE(lines[3].find("\"block\":1,"), std::string::npos) << lines[3];
  fs::remove(file);
}

// A callback that holds the log's thread on its first line until the test opens it, so the buffer fills.
struct HeldSink {
  std::mutex lock;
  std::condition_variable changed;
  bool entered = false, open = false;

  static void line(void* context, const char*, size_t, int32_t) {
    auto* sink = static_cast<HeldSink*>(context);
    std::unique_lock guard(sink->lock);
    sink->entered = true;
    sink->changed.notify_all();
    sink->changed.wait(guard, [&] { return sink->open; });
  }
  void waitUntilEntered() {
    std::unique_lock guard(lock);
    changed.wait(guard, [&] { return entered; });
  }
  void release() {
    std::lock_guard guard(lock);
    open = true;
    changed.notify_all();
  }
};

// With a buffer of two records held full, "drop" lets decisions go on and counts what it dropped (not
// as lost: nothing failed to be written), and "block" holds the deciding thread until there is room.
TEST(OrxCApiDecisionLog, AFullBufferDropsOrBlocksAsAsked) {
  for (const orx_log_when_full whenFull : {ORX_LOG_WHEN_FULL_DROP, ORX_LOG_WHEN_FULL_BLOCK}) {
    const bool blocks = whenFull == ORX_LOG_WHEN_FULL_BLOCK;
    HeldSink sink;
    orx_decision_log_options options{};
    options.callback = HeldSink::line;
    options.context = &sink;
    options.buffer_records = 2;
    options.when_full = whenFull;
    orx_runtime* runtime = nullptr;
    ASSERT_EQ(orx_runtime_open_with_log("artifacts", &options, &runtime), ORX_OK) << orx_last_error();
    orx_authorization_decision decision{};
    orx_authorize(runtime, &kController, &decision);
    sink.waitUntilEntered();
    std::atomic<int> decided = 0;
    std::thread deciding([&] {
      for (int i = 0; i < 5; ++i, ++decided) orx_authorize(runtime, &kController, &decision);
    });
    if (blocks) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      EXPECT_EQ(decided.load(), 2) << "decisions went on with no room for their records";
    } else {
      deciding.join();
    }
    sink.release();
    if (deciding.joinable()) deciding.join();
    ASSERT_EQ(orx_runtime_log_flush(runtime), ORX_OK);
    uint64_t written = 0, dropped = 0, lost = 0;
    EXPECT_EQ(orx_runtime_log_counts(runtime, &written, &dropped, &lost), ORX_OK);
    EXPECT_EQ(written, blocks ? 6u : 3u) << whenFull;
    EXPECT_EQ(dropped, blocks ? 0u : 3u) << whenFull;
    EXPECT_EQ(lost, 0u) << whenFull;
    orx_runtime_close(runtime);
  }
}

TEST(OrxCApiDecisionLog, MisuseGivesItsStatus) {
  orx_runtime* runtime = nullptr;
  orx_decision_log_options none{};
  orx_decision_log_options tooLong{};
  tooLong.callback = keepLine;
  tooLong.block_records = 5000;
  orx_decision_log_options missingFolder{};
  missingFolder.file = "/nonexistent-folder/log.jsonl";
  const struct {
    const char* what;
    const orx_decision_log_options* options;
    orx_status status;
    const char* message;
  } cases[] = {
      {"no options", nullptr, ORX_STATUS_NULL_ARGUMENT, "runtime or log is NULL"},
      {"no sink", &none, ORX_STATUS_INVALID_INPUT, "a decision log needs a file or a callback"},
      {"a block too long", &tooLong, ORX_STATUS_INVALID_INPUT, "a decision log block holds 1 to 4096 records"},
      {"a file that cannot be made", &missingFolder, ORX_STATUS_INVALID_INPUT, "/nonexistent-folder/log.jsonl: "},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(orx_runtime_open_with_log("artifacts", c.options, &runtime), c.status) << c.what;
    EXPECT_EQ(runtime, nullptr) << c.what;
    EXPECT_NE(std::string(orx_last_error()).find(c.message), std::string::npos) << c.what << ": " << orx_last_error();
  }
  ASSERT_EQ(orx_runtime_open("artifacts", &runtime), ORX_OK);
  char head[ORX_DIGEST_TEXT_SIZE];
  uint64_t a, b, c;
  EXPECT_EQ(orx_runtime_log_flush(runtime), ORX_STATUS_UNAVAILABLE);
  EXPECT_EQ(orx_runtime_log_head(runtime, head), ORX_STATUS_UNAVAILABLE);
  EXPECT_EQ(orx_runtime_log_counts(runtime, &a, &b, &c), ORX_STATUS_UNAVAILABLE);
  EXPECT_EQ(orx_runtime_log_flush(nullptr), ORX_STATUS_NULL_ARGUMENT);
  orx_runtime_close(runtime);
}

}  // namespace
