// `ravo-orx policy build` over hostile things in and around artifacts/: a FIFO, a device, links out of
// the repository, a 100 GB file, planted temporary names, a directory where a file belongs, directories
// it cannot write. Each is replaced or refused with a clear message, within seconds, and nothing
// outside the repository is touched; `--check` says the same and changes nothing.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <map>

#include "tools/cli/tests/OrxCliBuildTree.h"
#include "tools/cli/tests/OrxCliToolRunner.h"

namespace ravo::orx {

namespace {

using namespace orx_cli_test;

const std::vector<std::string> kSet{"player_authz.wasm",     "player_authz.package-check.json",
                                    "sync_correction.wasm",  "sync_correction.package-check.json",
                                    "cinema_admission.wasm", "cinema_admission.package-check.json",
                                    "evidence.json",         "OrxBuildConstants.cpp"};

using Identities = std::map<std::string, std::string>;

// What is in `directory` (none when there is none), each entry by what it is and which file it is,
// never by reading it, so that a replaced, rewritten or followed entry shows.
Identities identities(const fs::path& directory) {
  Identities found;
  if (!fs::exists(directory)) return found;
  for (const auto& entry : fs::directory_iterator(directory)) {
    struct stat info {};
    if (::lstat(entry.path().c_str(), &info) != 0) continue;
    std::string identity = std::to_string(info.st_mode) + " inode " + std::to_string(info.st_ino) + " size " +
                           std::to_string(info.st_size) + " modified " + std::to_string(info.st_mtim.tv_sec) + "." +
                           std::to_string(info.st_mtim.tv_nsec);
    if (S_ISLNK(info.st_mode)) identity += " -> " + fs::read_symlink(entry.path()).string();
    found[entry.path().filename().string()] = identity;
  }
  return found;
}

struct Hostile {
  fs::path root, artifacts, outside;  // `outside` is a directory out of the repository
};

struct Row {
  const char* what;
  std::function<void(const Hostile&)> plant;
  std::string refusal;                    // after "ravo-orx policy build: "; empty when the build goes on
  std::vector<std::string> written = {};  // what the build then writes (it leaves every other file)
  const char* unwritable = nullptr;       // a directory of the tree the build may not write in (which
                                          // only writing finds, not --check)
};

void writeFile(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

const std::vector<Row>& rows() {
  const auto replaced = [](const Hostile& at, const std::string& file, const std::function<void(const fs::path&)>& by) {
    fs::remove(at.artifacts / file);
    by(at.artifacts / file);
  };
  static const std::vector<Row> all = {
      {"a FIFO in place of evidence.json",
       [=](const Hostile& at) { replaced(at, "evidence.json", [](const fs::path& path) { ::mkfifo(path.c_str(), 0600); }); },
       "", {"evidence.json"}},
      {"evidence.json a link to /dev/zero",
       [=](const Hostile& at) { replaced(at, "evidence.json", [](const fs::path& path) { fs::create_symlink("/dev/zero", path); }); },
       "", {"evidence.json"}},
      {"evidence.json a sparse file of 100 GB",
       [=](const Hostile& at) {
         replaced(at, "evidence.json", [](const fs::path& path) {
           std::ofstream(path).close();
           fs::resize_file(path, 100ull << 30);
         });
       },
       "", {"evidence.json"}},
      {"evidence.json a link to a file out of the repository",
       [=](const Hostile& at) { replaced(at, "evidence.json", [&](const fs::path& path) { fs::create_symlink(at.outside / "victim", path); }); },
       "", {"evidence.json"}},
      {"player_authz.wasm a link to a file out of the repository with its very bytes",
       [=](const Hostile& at) {
         fs::copy(at.artifacts / "player_authz.wasm", at.outside / "player_authz.wasm");
         replaced(at, "player_authz.wasm",
                  [&](const fs::path& path) { fs::create_symlink(at.outside / "player_authz.wasm", path); });
       },
       "", {"player_authz.wasm"}},
      {"the swap directory's name planted as a link out of the repository",
       [](const Hostile& at) { fs::create_directory_symlink(at.outside, at.root / ".artifacts.swap"); }, ""},
      {"the swap directory's name planted as a link, with a module to write",
       [=](const Hostile& at) {
         fs::create_directory_symlink(at.outside, at.root / ".artifacts.swap");
         replaced(at, "sync_correction.wasm", [](const fs::path& path) { writeFile(path, "stale"); });
       },
       "", {"sync_correction.wasm"}},
      {"a temporary name planted as a link out of the repository",
       [](const Hostile& at) { fs::create_symlink(at.outside / "victim", at.artifacts / "evidence.json.partial"); },
       "artifacts/evidence.json.partial is not a file the build writes: policy build replaces artifacts as a whole "
       "and would lose it; move it elsewhere"},
      {"a directory in place of evidence.json",
       [=](const Hostile& at) {
         replaced(at, "evidence.json", [](const fs::path& path) {
           fs::create_directory(path);
           writeFile(path / "notes", "someone's");
         });
       },
       "artifacts/evidence.json is a directory: policy build replaces artifacts as a whole and would lose it; move it "
       "elsewhere"},
      {"artifacts a link to a directory out of the repository",
       [](const Hostile& at) {
         fs::rename(at.artifacts, at.outside / "artifacts");
         fs::create_directory_symlink(at.outside / "artifacts", at.artifacts);
       },
       "artifacts is not a directory: policy build replaces the directory as a whole"},
      {"artifacts not writable",
       [=](const Hostile& at) { replaced(at, "evidence.json", [](const fs::path& path) { writeFile(path, "stale"); }); },
       "could not replace artifacts: Permission denied", {}, "artifacts"},
      {"the repository root not writable, no artifacts yet", [](const Hostile& at) { fs::remove_all(at.artifacts); },
       "could not create directory .artifacts.swap: Permission denied", {}, "."},
  };
  return all;
}

// A hang is one of the faults looked for: each row fails loudly instead of waiting for the test timeout.
class PolicyBuildHostile : public ::testing::Test {
 protected:
  void TearDown() override { ::alarm(0); }
};

TEST_F(PolicyBuildHostile, EachIsReplacedOrRefusedAndNothingOutsideIsTouched) {
  for (const Row& row : rows()) {
    SCOPED_TRACE(row.what);
    ::alarm(120);
    const BuildTree tree;
    const Scratch outsideScratch("ravo-orx-outside-");
    const Hostile at{tree.root, tree.root / "artifacts", outsideScratch.path};
    ASSERT_EQ(tree.build().status, 0);
    std::map<std::string, std::string> built;
    for (const auto& file : kSet) built[file] = fileText(at.artifacts / file);
    writeFile(at.outside / "victim", "not the build's");
    row.plant(at);
    // Root may write anywhere: the build then runs as nobody, who may not write in the tree at all.
    Words launcher;
    if (row.unwritable) {
      fs::permissions(at.root / row.unwritable, fs::perms::owner_write, fs::perm_options::remove);
      if (::geteuid() == 0) launcher = {"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    }
    const auto outside = identities(at.outside), before = identities(at.artifacts);

    const auto checked = run({"policy", "build", "--check"}, "", at.root, {}, launcher);
    EXPECT_EQ(checked.status, row.refusal.empty() && row.written.empty() ? 0 : 1) << checked;
    EXPECT_EQ(checked.err, row.refusal.empty() || row.unwritable ? "" : "ravo-orx policy build: " + row.refusal + "\n");
    EXPECT_EQ(identities(at.artifacts), before) << "--check wrote";

    const auto rebuilt = run({"policy", "build"}, "", at.root, {}, launcher);
    if (row.unwritable) fs::permissions(at.root / row.unwritable, fs::perms::owner_write, fs::perm_options::add);
    EXPECT_EQ(identities(at.outside), outside) << "touched outside the repository";
    EXPECT_EQ(fileText(at.outside / "victim"), "not the build's");
    if (!row.refusal.empty()) {
      EXPECT_EQ(rebuilt.status, 1) << rebuilt;
      EXPECT_EQ(rebuilt.err, "ravo-orx policy build: " + row.refusal + "\n");
      EXPECT_EQ(identities(at.artifacts), before);
      continue;
    }
    std::string wrote;
    for (const auto& file : row.written) wrote += "wrote artifacts/" + file + "\n";
    EXPECT_TRUE(rebuilt.status == 0 && rebuilt.err.empty() &&
                rebuilt.out.ends_with(wrote + (row.written.empty() ? "artifacts and build constants unchanged\n"
                                                                   : "rebuild the project to approve the new artifacts\n")))
        << rebuilt;
    EXPECT_EQ(identities(at.artifacts).size(), kSet.size());
    for (const auto& file : kSet) {
      const fs::path path = at.artifacts / file;
      ASSERT_TRUE(fs::is_regular_file(fs::symlink_status(path))) << file;
      ASSERT_EQ(fs::file_size(path), built.at(file).size()) << file;  // a 100 GB file left is not read
      EXPECT_EQ(fileText(path), built.at(file)) << file;
      const bool rewritten = std::find(row.written.begin(), row.written.end(), file) != row.written.end();
      EXPECT_EQ(identities(at.artifacts).at(file) == before.at(file), !rewritten) << file << " kept only when unchanged";
    }
    EXPECT_FALSE(fs::exists(fs::symlink_status(at.root / ".artifacts.swap")));
  }
}

}  // namespace

}  // namespace ravo::orx
