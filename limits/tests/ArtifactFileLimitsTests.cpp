// Every reader of artifact files, given a FIFO, a device, a socket or an oversized file in place of
// an artifact, refuses it at once with its usual load error and never blocks or reads it whole.

#include <gtest/gtest.h>

#include <unistd.h>

#include <functional>
#include <string>

#include <ravo-orx/checks/AlteredEvidenceRuntime.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include "runtime/tests/ArtifactCopy.h"

namespace ravo::orx {

namespace {

using artifact_test::ArtifactCopy;

const std::string kNoModules = "ORX unavailable \u00B7 native safe mode";

struct Replacement {
  const char* name;
  std::function<void(ArtifactCopy&, const std::string& file)> apply;
  std::string reason;  // after "could not read <path>: "
};

const std::vector<Replacement>& replacements() {
  static const std::vector<Replacement> all = {
      {"FIFO without a writer", [](ArtifactCopy& copy, const std::string& file) { copy.makeFifo(file); },
       "not a regular file"},
      {"device", [](ArtifactCopy& copy, const std::string& file) { copy.makeDeviceLink(file); }, "not a regular file"},
      {"socket", [](ArtifactCopy& copy, const std::string& file) { copy.makeSocket(file); }, "not a regular file"},
      {"directory", [](ArtifactCopy& copy, const std::string& file) {
         std::filesystem::remove(copy.path() / file);
         std::filesystem::create_directory(copy.path() / file);
       },
       "Is a directory"},
      {"one byte over the limit",
       [](ArtifactCopy& copy, const std::string& file) { copy.makeSparse(file, 4'194'305); },
       "file of 4194305 bytes exceeds the limit of 4194304"},
      {"100 GB", [](ArtifactCopy& copy, const std::string& file) { copy.makeSparse(file, 100ull << 30); },
       "file of 107374182400 bytes exceeds the limit of 4194304"},
  };
  return all;
}

// A hang is the fault these tests look for: fail loudly instead of waiting for the test timeout.
class ArtifactFileLimits : public ::testing::Test {
 protected:
  void SetUp() override {
    ::alarm(60);
    setOrxLogSink([](OrxLogLevel, std::string_view) {});
  }
  void TearDown() override {
    setOrxLogSink({});
    ::alarm(0);
  }
};

TEST_F(ArtifactFileLimits, TheRuntimeRefusesEachReplacementWithTheLoadErrorOfItsFile) {
  struct File {
    std::string name;
    std::string loadErrorPrefix;  // before "could not read"
    std::string status;
  };
  const std::vector<File> files = {
      {"evidence.json", "", kNoModules},
      {"player_authz.wasm", "player_authz: ", "ORX partial \u00B7 authz unavailable / sync 7155bd93 / cinema 92624572"},
      {"sync_correction.package-check.json", "sync_correction: ",
       "ORX partial \u00B7 authz c3ea776c / sync unavailable / cinema 92624572"},
  };
  for (const auto& file : files) {
    for (const auto& replacement : replacements()) {
      ArtifactCopy copy;
      replacement.apply(copy, file.name);
      OrxPolicyRuntime runtime(copy.path());
      EXPECT_EQ(runtime.loadError(), file.loadErrorPrefix + "could not read " + (copy.path() / file.name).string() +
                                         ": " + replacement.reason)
          << file.name << " / " << replacement.name;
      EXPECT_EQ(runtime.statusDescription(), file.status) << file.name << " / " << replacement.name;
    }
  }
}

TEST_F(ArtifactFileLimits, AFileOfExactlyTheLimitIsReadAndFailsOnlyItsDigest) {
  ArtifactCopy copy;
  copy.makeSparse("cinema_admission.wasm", 4'194'304);
  OrxPolicyRuntime runtime(copy.path());
  EXPECT_EQ(runtime.loadError(), "cinema_admission: ORX artifact digest mismatch for cinema_admission");
}

// The tamper checks copy the artifacts before editing them; a copy that meets any replacement fails
// closed and leaves nothing behind.
TEST_F(ArtifactFileLimits, TamperedCopiesOfReplacedArtifactsAreNotBuilt) {
  const auto temporary = std::filesystem::temp_directory_path() / ("orx-tamper-" + std::to_string(::getpid()));
  std::filesystem::create_directories(temporary);
  const std::string saved = std::filesystem::temp_directory_path().string();
  for (const std::string file : {"evidence.json", "sync_correction.wasm"}) {
    for (const auto& replacement : replacements()) {
      ArtifactCopy copy;
      replacement.apply(copy, file);
      ::setenv("TMPDIR", temporary.c_str(), 1);
      EXPECT_EQ(alteredEvidenceRuntime(copy.path(), [](nlohmann::json&) {}), nullptr)
          << file << " / " << replacement.name;
      ::setenv("TMPDIR", saved.c_str(), 1);
      EXPECT_TRUE(std::filesystem::is_empty(temporary)) << file << " / " << replacement.name;
    }
  }
  std::filesystem::remove_all(temporary);
}

}  // namespace

}  // namespace ravo::orx
