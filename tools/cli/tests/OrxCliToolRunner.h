#pragma once
// Test support: runs the built ravo-orx as its users do, with standard input, output and error
// redirected to files, and compares exactly what it wrote and the status it exited with.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

extern char** environ;

namespace ravo::orx {

namespace orx_cli_test {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

inline const fs::path kRoot = ORX_REPOSITORY_ROOT;
inline const std::string kData = (kRoot / "tools/cli/tests/data").string() + "/";

struct Outcome {
  std::string out;
  std::string err;
  int status = -1;

  friend bool operator==(const Outcome&, const Outcome&) = default;
  friend std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << "status " << outcome.status << ", stdout \"" << outcome.out << "\", stderr \"" << outcome.err
                  << "\"";
  }
};

// A directory of this test process under the temporary directory, removed with the value.
struct Scratch {
  explicit Scratch(const std::string& name) : path(fs::temp_directory_path() / (name + std::to_string(::getpid()))) {
    fs::create_directories(path);
  }
  ~Scratch() { fs::remove_all(path); }
  fs::path path;
};

inline std::string fileText(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// What a run of the tool cost: its wall time and the most memory it held at once.
struct Cost {
  double seconds = 0;
  long peakMegabytes = 0;
};

// Runs the built tool with standard input read from `input` (a file, a FIFO or a device) and standard
// error to a file; standard output goes to `output` when one is named, and is then not read back. A
// `launcher` (an absolute path and its arguments) runs the tool, e.g. as another user.
inline Outcome runWithInput(Words arguments, const fs::path& input, const fs::path& workingDirectory = kRoot,
                            const fs::path& output = {}, Cost* cost = nullptr, const Words& launcher = {}) {
  const Scratch scratch("ravo-orx-run-");
  const auto err = scratch.path / "err";
  const auto out = output.empty() ? scratch.path / "out" : output;
  // The tool's path is put in front by building a new list: inserting it at the front makes g++ 12
  // warn falsely (-Warray-bounds) when this is inlined into some callers.
  Words command = launcher;
  command.push_back(ORX_CLI_TOOL);
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (auto& word : command) argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, input.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addchdir_np(&actions, workingDirectory.c_str());
  const auto start = std::chrono::steady_clock::now();
  pid_t child = 0;
  const int spawned = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  struct rusage usage {};
  if (spawned != 0 || ::wait4(child, &status, 0, &usage) != child) return {};
  if (cost) {
    cost->seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    cost->peakMegabytes = usage.ru_maxrss / 1024;
  }
  return {output.empty() ? fileText(out) : "", fileText(err),
          WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status)};
}

// Runs the built tool as its users do, with standard input, output and error redirected to files.
// Standard output goes to `output` when one is named, and is then not read back.
inline Outcome run(Words arguments, const std::string& input, const fs::path& workingDirectory = kRoot,
                   const fs::path& output = {}, const Words& launcher = {}) {
  const Scratch scratch("ravo-orx-input-");
  std::ofstream(scratch.path / "in", std::ios::binary) << input;
  return runWithInput(std::move(arguments), scratch.path / "in", workingDirectory, output, nullptr, launcher);
}

struct Case {
  Words arguments;
  std::string input;
  Outcome expected;
};

inline Outcome printed(const std::string& out) { return {out + "\n", "", 0}; }
inline Outcome refused(const std::string& err) { return {"", err + "\n", 1}; }
// The policy toolchain names its command on every message.
inline Outcome refused(const std::string& command, const std::string& err) {
  return refused("ravo-orx " + command + ": " + err);
}
inline Outcome misused(const std::string& command, const std::string& message) {
  return {"", "ravo-orx " + command + ": " + message + " (see 'ravo-orx " + command + " --help')\n", 2};
}

inline void expectOutcomes(const std::vector<Case>& cases, const fs::path& workingDirectory = kRoot) {
  for (const auto& [arguments, input, expected] : cases) {
    std::string command;
    for (const auto& word : arguments) command += " " + word;
    EXPECT_EQ(run(arguments, input, workingDirectory), expected) << "ravo-orx" << command;
  }
}

}  // namespace orx_cli_test

}  // namespace ravo::orx
