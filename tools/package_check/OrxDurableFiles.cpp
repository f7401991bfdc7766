#include <ravo-orx/package_check/OrxDurableFiles.h>

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace ravo::orx {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const std::string& step, int error) {
  throw std::runtime_error("could not " + step + ": " + std::strerror(error));
}

// The parent to open for a path's directory entry: "." for a bare name.
fs::path directoryOf(const fs::path& path) { return path.has_parent_path() ? path.parent_path() : fs::path("."); }

void writeWhole(int descriptor, const std::string& bytes, const std::string& step) {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t count = ::write(descriptor, bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail(step, errno);
    done += static_cast<std::size_t>(count);
  }
}

void syncDescriptor(int descriptor, const std::string& step) {
  if (::fsync(descriptor) != 0) fail(step, errno);
}

}  // namespace

OrxFileDescriptor::~OrxFileDescriptor() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

void OrxDurableWriter::announce(const std::string& step) const {
  if (hook_) hook_(step);
}

OrxFileDescriptor OrxDurableWriter::openDirectory(const fs::path& directory) const {
  const int descriptor = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor < 0) fail("open " + directory.string(), errno);
  return OrxFileDescriptor(descriptor);
}

void OrxDurableWriter::makeDirectory(const fs::path& directory) const {
  const std::string step = "create directory " + directory.string();
  announce(step);
  if (::mkdir(directory.c_str(), 0777) != 0) fail(step, errno);
}

void OrxDurableWriter::writeNewFile(const OrxFileDescriptor& directory, const fs::path& shown, const std::string& name,
                                    const std::string& bytes) const {
  const std::string path = (shown / name).string();
  announce("create " + path);
  const OrxFileDescriptor file(
      ::openat(directory.get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
  if (file.get() < 0) fail("create " + path, errno);
  announce("write " + path);
  writeWhole(file.get(), bytes, "write " + path);
  announce("sync " + path);
  syncDescriptor(file.get(), "sync " + path);
}

void OrxDurableWriter::link(const fs::path& from, const fs::path& to) const {
  const std::string step = "link " + from.string() + " as " + to.string();
  announce(step);
  if (::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), 0) != 0) fail(step, errno);
}

void OrxDurableWriter::exchange(const fs::path& from, const fs::path& to) const {
  const std::string step = "exchange " + from.string() + " with " + to.string();
  announce(step);
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_EXCHANGE) == 0) return;
  if (errno != ENOENT || ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) != 0) {
    fail(step, errno);
  }
}

void OrxDurableWriter::sync(const fs::path& path) const {
  const std::string step = "sync " + path.string();
  announce(step);
  const OrxFileDescriptor entry(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
  if (entry.get() < 0) fail(step, errno);
  syncDescriptor(entry.get(), step);
}

void OrxDurableWriter::remove(const fs::path& path) const {
  const std::string step = "remove " + path.string();
  announce(step);
  std::error_code error;
  fs::remove_all(path, error);  // removes a symbolic link itself, never what it points to
  if (error) fail(step, error.value());
}

void orxReplaceFile(const fs::path& path, const std::string& bytes) {
  const std::string step = "write " + path.string();
  // mkostemp creates the file with O_CREAT|O_EXCL, so a name planted beside the target is never followed.
  std::string temporary = (directoryOf(path) / ("." + path.filename().string() + ".XXXXXX")).string();
  const OrxFileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (file.get() < 0) fail(step, errno);
  try {
    if (::fchmod(file.get(), 0644) != 0) fail(step, errno);
    writeWhole(file.get(), bytes, step);
    syncDescriptor(file.get(), step);
    if (::rename(temporary.c_str(), path.c_str()) != 0) fail(step, errno);
  } catch (...) {
    ::unlink(temporary.c_str());
    throw;
  }
  const OrxFileDescriptor directory(::open(directoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.get() < 0) fail(step, errno);
  syncDescriptor(directory.get(), step);
}

}  // namespace ravo::orx
