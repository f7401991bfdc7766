#include <ravo-orx/package_check/OrxProcess.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <stdexcept>

#include <ravo-orx/core/ORXMessageText.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>

extern char** environ;

namespace ravo::orx {

namespace fs = std::filesystem;

OrxScratchDirectory::OrxScratchDirectory(const std::string& purpose) {
  std::string pattern = (fs::temp_directory_path() / ("orx-" + purpose + "-XXXXXX")).string();
  if (!::mkdtemp(pattern.data())) {
    throw std::runtime_error("could not create a temporary directory: " + std::string(std::strerror(errno)));
  }
  path_ = pattern;
}

OrxScratchDirectory::~OrxScratchDirectory() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

namespace {

// The most of an output kept. A source with an error on every line makes a compiler write megabytes of
// diagnostics, of which the start says what is wrong.
constexpr std::size_t kOutputBytesKept = 1 << 20;

// What the process wrote to `path`, at most kOutputBytesKept of it, cut between two characters.
std::string outputText(const fs::path& path) {
  std::string text;
  internal::OrxBoundedInput(path, internal::OrxBoundedInput::kUnbounded).readPieces([&](std::string_view piece) {
    // One byte past the limit is kept, so that the excerpt knows the text went on.
    if (text.size() <= kOutputBytesKept) text.append(piece.substr(0, kOutputBytesKept + 1 - text.size()));
  });
  return internal::ORXMessageText::excerpt(text, kOutputBytesKept);
}

}  // namespace

OrxProcessOutcome runOrxProcess(std::vector<std::string> words) {
  const OrxScratchDirectory scratch("process");
  const auto out = scratch.path() / "out", err = scratch.path() / "err";
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
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), outputText(out), outputText(err)};
}

std::vector<fs::path> findAllOnPath(const std::string& name) {
  const char* path = std::getenv("PATH");
  std::istringstream directories(path ? path : "");
  std::vector<fs::path> found;
  for (std::string directory; std::getline(directories, directory, ':');) {
    const fs::path candidate = fs::absolute(fs::path(directory.empty() ? "." : directory) / name);
    if (::access(candidate.c_str(), X_OK) == 0) found.push_back(candidate);
  }
  return found;
}

std::string orxTrimmed(std::string text) {
  while (!text.empty() && std::strchr("\n\r\t ", text.back())) text.pop_back();
  return text;
}

}  // namespace ravo::orx
