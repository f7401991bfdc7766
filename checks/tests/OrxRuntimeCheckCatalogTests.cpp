#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>

#include <ravo-orx/checks/AlteredEvidenceRuntime.h>
#include <ravo-orx/checks/OrxRuntimeCheckCatalog.h>
#include <ravo-orx/runtime/OrxLog.h>
#include "runtime/tests/ArtifactCopy.h"

namespace ravo::orx {

namespace {

namespace fs = std::filesystem;

// For its lifetime, TMPDIR names `temporary` and the runtime's log is silent.
class QuietScratchTemporary {
 public:
  explicit QuietScratchTemporary(const fs::path& temporary) {
    const char* previous = std::getenv("TMPDIR");
    if (previous) saved_ = previous;
    ::setenv("TMPDIR", temporary.c_str(), 1);
    setOrxLogSink([](OrxLogLevel, std::string_view) {});
  }
  ~QuietScratchTemporary() {
    setOrxLogSink({});
    saved_ ? ::setenv("TMPDIR", saved_->c_str(), 1) : ::unsetenv("TMPDIR");
  }

 private:
  std::optional<std::string> saved_;
};

// Runs the catalog with TMPDIR pointed at `temporary`; returns each check's failure by name.
std::map<std::string, std::optional<std::string>> runCatalog(const fs::path& artifacts, const fs::path& temporary) {
  const QuietScratchTemporary quiet(temporary);
  OrxPolicyRuntime runtime(artifacts);
  std::map<std::string, std::optional<std::string>> results;
  for (const auto& entry : orxRuntimeCheckCatalog(runtime, artifacts)) results[entry.name] = entry.check();
  return results;
}

class OrxRuntimeCheckCatalog : public ::testing::Test {
 protected:
  void SetUp() override {
    scratch = fs::temp_directory_path() / ("orx-catalog-" + std::to_string(::getpid()));
    fs::create_directories(scratch);
  }
  void TearDown() override { fs::remove_all(scratch); }
  fs::path scratch;
};

TEST_F(OrxRuntimeCheckCatalog, BundledArtifactsPassEveryCheckAndLeaveNothingBehind) {
  const auto results = runCatalog("artifacts", scratch);
  ASSERT_EQ(results.size(), 13u);
  for (const auto& [name, failure] : results) EXPECT_EQ(failure, std::nullopt) << name;
  EXPECT_TRUE(fs::is_empty(scratch));
}

TEST_F(OrxRuntimeCheckCatalog, WithoutArtifactsOnlyTheFailSafeHoldAndThePureValidatorPass) {
  const auto results = runCatalog("/nonexistent", scratch);
  const std::map<std::string, std::optional<std::string>> expected = {
      {"digest-bound artifacts load", "ORX unavailable \u00B7 native safe mode"},
      {"controller command is allowed", "decision=false, reason=100"},
      {"renderer main-screen command is denied", "decision=false, reason=100"},
      {"expired token is denied", "decision=false, reason=100"},
      {"sync holds in band", std::nullopt},
      {"sync nudges small drift", "action=0, rate=1000"},
      {"sync seeks large drift", "action=0, correction=0"},
      {"Cinema admits only measured live-safe ML", "route=0, reason=6"},
      {"Cinema sends slow ML to research, not playback", "route=0, interval=0"},
      {"Cinema thermal pressure retains MetalFX", "route=0, reason=6"},
      {"host rejects out-of-range sync output", std::nullopt},
      {"duplicate evidence records are rejected", "duplicate evidence was accepted"},
      {"compiler identity tampering is rejected", "unreviewed compiler identity was accepted"},
  };
  EXPECT_EQ(results, expected);
  EXPECT_TRUE(fs::is_empty(scratch));
}

// The runtime refuses evidence nested this deeply with its reader's depth error; the tamper checks,
// which edit a copy of the evidence as a document, must refuse it as cleanly.
// The tampered copy holds every artifact: an edit that changes nothing the runtime checks leaves a copy
// whose three modules all load, so a refusal of the tamper checks can only come from their own edit.
TEST_F(OrxRuntimeCheckCatalog, AlteredCopiesHoldEveryArtifact) {
  std::unique_ptr<OrxPolicyRuntime> runtime;
  {
    const QuietScratchTemporary quiet(scratch);
    runtime = alteredEvidenceRuntime("artifacts", [](nlohmann::json& evidence) { evidence["note"] = 1; });
  }
  ASSERT_NE(runtime, nullptr);
  EXPECT_EQ(runtime->loadError(), std::nullopt);
  EXPECT_EQ(runtime->statusDescription(), "ORX active \u00B7 c3ea776c / 7155bd93 / 92624572");
  EXPECT_TRUE(fs::is_empty(scratch));
}

TEST_F(OrxRuntimeCheckCatalog, TamperChecksFailClosedOnEvidenceTooDeepToEdit) {
  const artifact_test::ArtifactCopy copy;
  const auto bytes = readTestFile(copy.path() / "evidence.json");
  std::string evidence(bytes.begin(), bytes.end());
  evidence.insert(evidence.find('{') + 1,
                  "\"unknown\":" + std::string(100'000, '[') + std::string(100'000, ']') + ",");
  std::ofstream(copy.path() / "evidence.json", std::ios::trunc) << evidence;
  const auto results = runCatalog(copy.path(), scratch);
  EXPECT_EQ(results.at("duplicate evidence records are rejected"), "duplicate evidence was accepted");
  EXPECT_EQ(results.at("compiler identity tampering is rejected"), "unreviewed compiler identity was accepted");
  EXPECT_TRUE(fs::is_empty(scratch));
}

TEST_F(OrxRuntimeCheckCatalog, TamperChecksFailClosedWhenNoTemporaryDirectoryCanBeMade) {
  const fs::path notADirectory = scratch / "file";
  std::ofstream(notADirectory) << "x";
  const auto results = runCatalog("artifacts", notADirectory);
  EXPECT_EQ(results.at("duplicate evidence records are rejected"), "duplicate evidence was accepted");
  EXPECT_EQ(results.at("compiler identity tampering is rejected"), "unreviewed compiler identity was accepted");
  EXPECT_EQ(results.at("digest-bound artifacts load"), std::nullopt);
  EXPECT_EQ(std::distance(fs::directory_iterator(scratch), fs::directory_iterator()), 1);
}

}  // namespace

}  // namespace ravo::orx
