#pragma once
// Running the compilers: each is a separate process found on PATH, with its output captured whole.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ravo::orx {

// A fresh directory under the system's temporary directory, removed with the value.
class OrxScratchDirectory {
 public:
  explicit OrxScratchDirectory(const std::string& purpose);
  ~OrxScratchDirectory();
  OrxScratchDirectory(const OrxScratchDirectory&) = delete;
  OrxScratchDirectory& operator=(const OrxScratchDirectory&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

struct OrxProcessOutcome {
  int status;  // the exit status, or 128 plus the signal that ended it
  std::string out;
  std::string err;
};

// Runs `words` (the first is the executable's path) with standard input empty and both outputs
// captured. Throws std::runtime_error when it cannot be started.
OrxProcessOutcome runOrxProcess(std::vector<std::string> words);

// Every executable named `name` in PATH's directories, in PATH's order.
std::vector<std::filesystem::path> findAllOnPath(const std::string& name);

// Text without its trailing line breaks and blanks.
std::string orxTrimmed(std::string text);

}  // namespace ravo::orx
