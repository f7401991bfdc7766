#pragma once
// The file system changes of the toolchain's writers, made so that a failure or a crash at any point
// leaves the old bytes or the new ones, never a mix: new bytes go into a file created exclusively
// (O_CREAT|O_EXCL|O_NOFOLLOW: a name planted there, a symbolic link included, makes the creation fail
// instead of redirecting it), are synced, and only then take the old one's place by a single rename;
// the directory is synced after it. Each change is announced first to an optional hook, through which
// the tests fail or stop a writer at every step in turn.

#include <filesystem>
#include <functional>
#include <string>
#include <utility>

namespace ravo::orx {

// Called with what the writer is about to do ("create .artifacts.swap/evidence.json"); whatever it
// throws fails that step, before the step is made.
using OrxWriteStepHook = std::function<void(const std::string& step)>;

class OrxFileDescriptor {
 public:
  explicit OrxFileDescriptor(int descriptor) : descriptor_(descriptor) {}
  OrxFileDescriptor(const OrxFileDescriptor&) = delete;
  OrxFileDescriptor& operator=(const OrxFileDescriptor&) = delete;
  ~OrxFileDescriptor();
  int get() const { return descriptor_; }

 private:
  int descriptor_;
};

// Every operation throws std::runtime_error "could not <step>: <the system's reason>", the step naming
// the path as given.
class OrxDurableWriter {
 public:
  explicit OrxDurableWriter(OrxWriteStepHook hook = {}) : hook_(std::move(hook)) {}

  // Opens a directory for the calls below; refuses a symbolic link. Changes nothing, so it is no step.
  OrxFileDescriptor openDirectory(const std::filesystem::path& directory) const;
  // Creates an empty directory; fails if anything has that name.
  void makeDirectory(const std::filesystem::path& directory) const;
  // Creates `name` in `directory` (opened above, `shown` its path) exclusively, writes `bytes`, syncs it.
  void writeNewFile(const OrxFileDescriptor& directory, const std::filesystem::path& shown, const std::string& name,
                    const std::string& bytes) const;
  // Gives the file `from` (never followed if a symbolic link) a second name, keeping its bytes and times.
  void link(const std::filesystem::path& from, const std::filesystem::path& to) const;
  // Swaps the directories `from` and `to` in one step; when `to` does not exist, renames `from` to it.
  void exchange(const std::filesystem::path& from, const std::filesystem::path& to) const;
  // Makes the directory's entries (or a file's bytes) durable.
  void sync(const std::filesystem::path& path) const;
  // Removes `path`, and everything in it if it is a directory; a symbolic link is removed, not followed.
  void remove(const std::filesystem::path& path) const;

 private:
  void announce(const std::string& step) const;
  OrxWriteStepHook hook_;
};

// Replaces the file at `path` with `bytes` whole, through a new file beside it renamed over it. Throws
// std::runtime_error "could not write <path>: <reason>".
void orxReplaceFile(const std::filesystem::path& path, const std::string& bytes);

}  // namespace ravo::orx
