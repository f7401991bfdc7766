// The artifact set is replaced as a whole: whichever step of the writer fails, or is killed, the
// directory holds the old set or the new one byte for byte, and the next write finishes the job.

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxArtifactSetWriter.h>

namespace ravo::orx {
namespace {

namespace fs = std::filesystem;
using Set = std::map<std::string, std::string>;  // file name -> bytes

// A fresh directory of this test under the temporary directory, removed with the value.
struct Scratch {
  Scratch() {
    std::string pattern = (fs::temp_directory_path() / "orx-set-writer-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
    path = pattern;
  }
  ~Scratch() { fs::remove_all(path); }
  fs::path path;
  fs::path set() const { return path / "artifacts"; }
};

std::string fileText(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// Everything in `directory`, each entry by its bytes, or by its kind when it is not a regular file.
Set contents(const fs::path& directory) {
  Set found;
  for (const auto& entry : fs::directory_iterator(directory)) {
    found[entry.path().filename().string()] = entry.is_regular_file() && !entry.is_symlink() ? fileText(entry.path())
                                              : entry.is_symlink() ? "<symbolic link>"
                                                                   : "<not a file>";
  }
  return found;
}

std::vector<std::string> names(const fs::path& directory) {
  std::vector<std::string> found;
  for (const auto& [name, bytes] : contents(directory)) found.push_back(name);
  return found;
}

void plant(const fs::path& directory, const Set& set) {
  fs::create_directories(directory);
  for (const auto& [name, bytes] : set) std::ofstream(directory / name, std::ios::binary) << bytes;
}

std::vector<OrxBuiltFile> built(const Set& set) {
  std::vector<OrxBuiltFile> files;
  for (const auto& [name, bytes] : set) files.push_back({name, bytes});
  return files;
}

// Two builds: a changed module and evidence, an unchanged report, and a file the old set lacks.
const Set kOld = {{"authz.wasm", "old module"}, {"authz.package-check.json", "the same report"},
                  {"evidence.json", "old evidence"}};
const Set kNew = {{"authz.wasm", "the new module"}, {"authz.package-check.json", "the same report"},
                  {"evidence.json", "new evidence"}, {"OrxBuildConstants.cpp", "new constants"}};

// The writer stopped at its step `n`: by an error thrown there (the writer cleans up, and says it
// failed exactly when it left the old set), or by SIGKILL in a child process (nothing cleans up).
enum class Stop { failure, kill };

struct Stopped {
  bool reached = false;  // the writer had a step `n`
  bool failed = false;   // it reported the failure by throwing
};

Stopped stopAt(Stop how, int n, const fs::path& set) {
  int steps = 0;
  const auto hook = [&](const std::string& step) {
    if (++steps < n) return;
    if (how == Stop::kill) ::kill(::getpid(), SIGKILL);
    throw std::runtime_error("injected failure at " + step);
  };
  if (how == Stop::failure) {
    try {
      const auto write = replaceArtifactSet(set, built(kNew), hook);
      EXPECT_EQ(write.warnings.empty(), steps < n) << "a failure after the exchange is a warning";
      return {steps >= n, false};
    } catch (const std::runtime_error& error) {
      EXPECT_TRUE(std::string(error.what()).starts_with("injected failure at ")) << error.what();
      return {true, true};
    }
  }
  const pid_t child = ::fork();
  if (child == 0) {
    try {
      replaceArtifactSet(set, built(kNew), hook);
      ::_exit(0);
    } catch (...) {
      ::_exit(1);
    }
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_FALSE(WIFEXITED(status) && WEXITSTATUS(status) != 0) << "the writer failed at step " << n;
  return {WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL, false};
}

TEST(OrxArtifactSetWriter, EveryStepFailedOrKilledLeavesTheOldSetOrTheNewOne) {
  for (const Stop how : {Stop::failure, Stop::kill}) {
    bool sawOld = false, sawNew = false;
    for (int n = 1;; ++n) {
      SCOPED_TRACE((how == Stop::kill ? "killed at step " : "failed at step ") + std::to_string(n));
      const Scratch scratch;
      plant(scratch.set(), kOld);
      const Stopped stopped = stopAt(how, n, scratch.set());
      const Set onDisk = contents(scratch.set());
      EXPECT_TRUE(onDisk == kOld || onDisk == kNew);
      sawOld = sawOld || onDisk == kOld;
      sawNew = sawNew || onDisk == kNew;
      for (const auto& name : names(scratch.path)) EXPECT_TRUE(name == "artifacts" || name == ".artifacts.swap") << name;
      if (how == Stop::failure) {
        EXPECT_EQ(stopped.failed, onDisk == kOld) << "a reported failure leaves the old set, and only then";
        if (stopped.failed) {
          EXPECT_EQ(names(scratch.path), std::vector<std::string>{"artifacts"}) << "cleaned up";
        }
      }
      // The next write completes the new set and removes what the stopped one left.
      replaceArtifactSet(scratch.set(), built(kNew));
      EXPECT_EQ(contents(scratch.set()), kNew);
      EXPECT_EQ(names(scratch.path), std::vector<std::string>{"artifacts"});
      if (!stopped.reached) break;
      ASSERT_LT(n, 100) << "the writer never finished";
    }
    EXPECT_TRUE(sawOld && sawNew) << "stopped before and after the exchange";
  }
}

TEST(OrxArtifactSetWriter, WritesOnlyTheFilesWhoseBytesChange) {
  const Scratch scratch;
  plant(scratch.set(), kOld);
  struct stat before {};
  ASSERT_EQ(::stat((scratch.set() / "authz.package-check.json").c_str(), &before), 0);

  EXPECT_EQ(changedArtifactFiles(scratch.set(), built(kNew)),
            (std::vector<std::string>{"OrxBuildConstants.cpp", "authz.wasm", "evidence.json"}));
  const auto write = replaceArtifactSet(scratch.set(), built(kNew));
  EXPECT_EQ(write.written, (std::vector<std::string>{"OrxBuildConstants.cpp", "authz.wasm", "evidence.json"}));
  EXPECT_TRUE(write.warnings.empty());
  EXPECT_EQ(contents(scratch.set()), kNew);
  struct stat after {};
  ASSERT_EQ(::stat((scratch.set() / "authz.package-check.json").c_str(), &after), 0);
  EXPECT_EQ(after.st_ino, before.st_ino) << "an unchanged file is the same file";
  EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
  EXPECT_EQ(after.st_nlink, 1u) << "the old set's name for it is gone";

  // Unchanged: not one step, and the directory is the same directory.
  ASSERT_EQ(::stat(scratch.set().c_str(), &before), 0);
  std::vector<std::string> steps;
  const auto again = replaceArtifactSet(scratch.set(), built(kNew), [&](const std::string& step) { steps.push_back(step); });
  EXPECT_TRUE(again.written.empty());
  EXPECT_EQ(steps, std::vector<std::string>{});
  ASSERT_EQ(::stat(scratch.set().c_str(), &after), 0);
  EXPECT_EQ(after.st_ino, before.st_ino);
  EXPECT_TRUE(changedArtifactFiles(scratch.set(), built(kNew)).empty());

  // A directory that does not exist yet is created whole.
  const fs::path fresh = scratch.path / "fresh/";
  EXPECT_EQ(replaceArtifactSet(fresh, built(kNew)).written.size(), kNew.size());
  EXPECT_EQ(contents(fresh), kNew);
}

// A name planted in the new set's directory while the writer fills it (by whoever can write there) is
// never written through: the file is created exclusively, so the write fails and the old set stays.
TEST(OrxArtifactSetWriter, ANamePlantedWhileTheSetIsWrittenIsNeverFollowed) {
  const Scratch scratch;
  plant(scratch.set(), kOld);
  const fs::path victim = scratch.path / "victim";
  std::ofstream(victim) << "not the build's";
  const fs::path swap = scratch.path / ".artifacts.swap";
  const auto plantLink = [&](const std::string& step) {
    if (step == "create " + (swap / "evidence.json").string()) fs::create_symlink(victim, swap / "evidence.json");
  };
  try {
    replaceArtifactSet(scratch.set(), built(kNew), plantLink);
    ADD_FAILURE() << "written through a planted link";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "could not create " + (swap / "evidence.json").string() + ": File exists");
  }
  EXPECT_EQ(fileText(victim), "not the build's");
  EXPECT_EQ(contents(scratch.set()), kOld);
  EXPECT_EQ(names(scratch.path), (std::vector<std::string>{"artifacts", "victim"}));
}

}  // namespace
}  // namespace ravo::orx
