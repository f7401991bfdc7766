#include <ravo-orx/package_check/OrxWatAssembler.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

extern char** environ;

namespace ravo::orx {

namespace {

namespace fs = std::filesystem;

// A fresh directory for one assembler run, removed with the value.
struct ScratchDirectory {
  ScratchDirectory() {
    std::string pattern = (fs::temp_directory_path() / "orx-assemble-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("could not create a temporary directory: " +
                                                             std::string(std::strerror(errno)));
    path = pattern;
  }
  ~ScratchDirectory() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
  fs::path path;
};

std::string fileText(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

// Runs `words` with standard output and error captured; standard input is empty.
Outcome runProcess(std::vector<std::string> words) {
  const ScratchDirectory scratch;
  const auto out = scratch.path / "out", err = scratch.path / "err";
  std::vector<char*> argv;
  for (auto& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  pid_t child = 0;
  const int spawned = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) throw std::runtime_error("could not run " + words[0] + ": " + std::strerror(spawned));
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), fileText(out), fileText(err)};
}

// The whole diagnostic: its first line names the place, the lines after it show the source there.
std::string diagnostic(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  return text.empty() ? "refused without a message" : text;
}

}  // namespace

OrxWatAssembler OrxWatAssembler::find() {
  const char* path = std::getenv("PATH");
  std::istringstream directories(path ? path : "");
  for (std::string directory; std::getline(directories, directory, ':');) {
    const fs::path candidate = fs::path(directory.empty() ? "." : directory) / "wat2wasm";
    if (::access(candidate.c_str(), X_OK) != 0) continue;
    auto outcome = runProcess({candidate.string(), "--version"});
    if (outcome.status != 0) throw std::runtime_error(candidate.string() + " --version: " + diagnostic(outcome.err));
    while (!outcome.out.empty() && (outcome.out.back() == '\n' || outcome.out.back() == '\r')) outcome.out.pop_back();
    return {fs::absolute(candidate), outcome.out};
  }
  throw std::runtime_error("wat2wasm was not found on PATH (Debian package wabt)");
}

std::vector<std::uint8_t> OrxWatAssembler::assemble(const fs::path& source) const {
  const ScratchDirectory scratch;
  const auto module = scratch.path / "module.wasm";
  const auto outcome = runProcess({executable_.string(), source.string(), "-o", module.string()});
  if (outcome.status != 0) throw std::runtime_error(diagnostic(outcome.err));
  const std::string bytes = fileText(module);
  return {bytes.begin(), bytes.end()};
}

}  // namespace ravo::orx
