#include <ravo-orx/package_check/OrxArtifactSetWriter.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/runtime/RuntimeError.h>

// The set is replaced by exchanging directories, not file by file: the new set is made complete in a
// directory beside the old one (".<name>.swap", created exclusively), synced, and swapped with the old
// one by a single renameat2(RENAME_EXCHANGE); the old set, now under the swap name, is removed after.
// Before the exchange the old set is in place, after it the new one, and nothing any reader does needs
// to change: CMake, the runtime and git see a directory that is always one complete set. A write-ahead
// journal would give the same guarantee only to readers that roll it forward first, and the set's
// readers (the compiler, the runtime, a checkout) know nothing of one. Files whose bytes do not change
// are hard links to the old ones, so they keep their times and nothing that depends on them is rebuilt.
// What a crash leaves under the swap name is removed by the next build.

namespace ravo::orx {

namespace fs = std::filesystem;

namespace {

enum class EntryKind { absent, file, directory, other };

// What is at `path` itself (a symbolic link is "other", never followed).
EntryKind kindOf(const fs::path& path) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) {
    if (errno == ENOENT) return EntryKind::absent;
    throw std::runtime_error("could not inspect " + path.string() + ": " + std::strerror(errno));
  }
  if (S_ISREG(info.st_mode)) return EntryKind::file;
  return S_ISDIR(info.st_mode) ? EntryKind::directory : EntryKind::other;
}

// The directory's own name, also when it is given with a trailing separator.
fs::path named(const fs::path& directory) {
  const fs::path normal = directory.lexically_normal();
  return normal.has_filename() ? normal : normal.parent_path();
}

fs::path swapOf(const fs::path& set) { return set.parent_path() / ("." + set.filename().string() + ".swap"); }

fs::path parentOf(const fs::path& set) { return set.has_parent_path() ? set.parent_path() : fs::path("."); }

bool isBuilt(const std::string& name, const std::vector<OrxBuiltFile>& files) {
  return std::any_of(files.begin(), files.end(), [&](const OrxBuiltFile& file) { return file.name == name; });
}

// An existing file holds the bytes only when it is a regular file (a link is never followed) that the
// runtime's reader reads whole.
bool holds(const fs::path& path, const std::string& bytes) {
  if (kindOf(path) != EntryKind::file) return false;
  try {
    const auto existing = internal::readArtifactFile(path);
    return std::equal(existing.begin(), existing.end(), bytes.begin(), bytes.end(),
                      [](std::uint8_t a, char b) { return a == static_cast<std::uint8_t>(b); });
  } catch (const RuntimeError&) {
    return false;  // refused by the reader (too large, unreadable, swapped for a FIFO meanwhile): it differs
  }
}

void refuseWhatWouldBeLost(const fs::path& set, const std::vector<OrxBuiltFile>& files) {
  std::vector<fs::path> lost;
  for (const auto& entry : fs::directory_iterator(set)) {
    if (!isBuilt(entry.path().filename().string(), files) || kindOf(entry.path()) == EntryKind::directory) {
      lost.push_back(entry.path());
    }
  }
  if (lost.empty()) return;
  const fs::path first = *std::min_element(lost.begin(), lost.end());
  const char* what = kindOf(first) == EntryKind::directory ? "a directory" : "not a file the build writes";
  throw std::runtime_error(first.string() + " is " + what + ": policy build replaces " + set.string() +
                           " as a whole and would lose it; move it elsewhere");
}

}  // namespace

std::vector<std::string> changedArtifactFiles(const fs::path& directory, const std::vector<OrxBuiltFile>& files) {
  const fs::path set = named(directory);
  const EntryKind kind = kindOf(set);
  if (kind == EntryKind::file || kind == EntryKind::other) {
    throw std::runtime_error(set.string() + " is not a directory: policy build replaces the directory as a whole");
  }
  if (kind == EntryKind::directory) refuseWhatWouldBeLost(set, files);
  std::vector<std::string> changed;
  for (const auto& [name, bytes] : files) {
    if (kind == EntryKind::absent || !holds(set / name, bytes)) changed.push_back(name);
  }
  return changed;
}

OrxArtifactSetWrite replaceArtifactSet(const fs::path& directory, const std::vector<OrxBuiltFile>& files,
                                       const OrxWriteStepHook& hook) {
  const fs::path set = named(directory), swap = swapOf(set);
  const auto changed = changedArtifactFiles(set, files);
  const OrxDurableWriter writer(hook);
  if (kindOf(swap) != EntryKind::absent) writer.remove(swap);  // left by an interrupted build
  OrxArtifactSetWrite result;
  if (changed.empty()) return result;

  // The old set is removed once replaced: a directory that cannot be emptied is refused before anything
  // is written rather than left behind under the swap name.
  const bool replacing = kindOf(set) == EntryKind::directory;
  if (replacing && ::faccessat(AT_FDCWD, set.c_str(), W_OK, AT_EACCESS) != 0) {
    throw std::runtime_error("could not replace " + set.string() + ": " + std::strerror(errno));
  }
  try {
    writer.makeDirectory(swap);
    const auto into = writer.openDirectory(swap);
    for (const auto& [name, bytes] : files) {
      if (std::find(changed.begin(), changed.end(), name) != changed.end()) writer.writeNewFile(into, swap, name, bytes);
      else writer.link(set / name, swap / name);
    }
    writer.sync(swap);
    writer.exchange(swap, set);
  } catch (...) {
    std::error_code ignored;
    fs::remove_all(swap, ignored);
    throw;
  }
  result.written = changed;
  // The new set is in place: what fails from here on is reported, and the next build finishes it.
  try {
    writer.sync(parentOf(set));
    if (replacing) writer.remove(swap);
  } catch (const std::exception& error) {
    result.warnings.emplace_back(error.what());
  }
  return result;
}

}  // namespace ravo::orx
