#pragma once
// The artifact set: every file `policy build` writes (the modules, their package-check reports,
// evidence.json and the build constants source that approves them) lives in one directory, and that
// directory is replaced as a whole, so a failure or a crash at any point leaves the old set or the new
// one. The directory holds nothing else: anything in it that is not one of the set's files would be
// lost with it, so its presence refuses the build.

#include <filesystem>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxDurableFiles.h>

namespace ravo::orx {

struct OrxBuiltFile {
  std::string name;  // in the set's directory
  std::string bytes;
};

// The names of the files whose bytes differ from those in `directory`, or that it does not hold as
// regular files, in the order of `files`. Existing files are read only through the runtime's checked
// artifact reader: a symbolic link, FIFO, device or socket in a file's place is never opened, it
// simply differs. Throws std::runtime_error when `directory` is not a directory, or holds a
// directory or any name that is not one of `files`.
std::vector<std::string> changedArtifactFiles(const std::filesystem::path& directory,
                                              const std::vector<OrxBuiltFile>& files);

struct OrxArtifactSetWrite {
  std::vector<std::string> written;   // the files whose bytes changed, as changedArtifactFiles names them
  std::vector<std::string> warnings;  // what failed after the new set was in place
};

// Makes `directory` hold exactly `files`; does nothing when no file's bytes change. Refuses as
// changedArtifactFiles does; any other failure throws std::runtime_error naming the step and leaves
// the old set in place. `hook` sees every step (tests only).
OrxArtifactSetWrite replaceArtifactSet(const std::filesystem::path& directory, const std::vector<OrxBuiltFile>& files,
                                       const OrxWriteStepHook& hook = {});

}  // namespace ravo::orx
