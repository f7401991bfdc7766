#include <ravo-orx/runtime/OrxArtifactFiles.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include <ravo-orx/runtime/RuntimeError.h>

namespace ravo::orx::internal {

namespace {

[[noreturn]] void failRead(const std::filesystem::path& path, const std::string& reason) {
  throw RuntimeError("could not read " + path.string() + ": " + reason);
}

[[noreturn]] void failRead(const std::filesystem::path& path, int error) { failRead(path, std::strerror(error)); }

[[noreturn]] void failTooLarge(const std::filesystem::path& path, std::uintmax_t bytes) {
  failRead(path, "file of " + std::to_string(bytes) + " bytes exceeds the limit of " +
                     std::to_string(kOrxArtifactFileByteLimit));
}

// Refuses what is not a regular file of at most the limit.
void checkReadable(const std::filesystem::path& path, const struct stat& info) {
  if (S_ISDIR(info.st_mode)) failRead(path, EISDIR);
  if (!S_ISREG(info.st_mode)) failRead(path, "not a regular file");
  if (static_cast<std::uintmax_t>(info.st_size) > kOrxArtifactFileByteLimit) failTooLarge(path, info.st_size);
}

class FileDescriptor {
 public:
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { ::close(fd_); }
  int get() const { return fd_; }

 private:
  int fd_;
};

}  // namespace

std::vector<std::uint8_t> readArtifactFile(const std::filesystem::path& path) {
  // The type is checked before opening (opening some devices acts on them) and again on the open
  // file, which may have been replaced in between; O_NONBLOCK keeps a FIFO swapped in from stalling.
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) failRead(path, errno);
  checkReadable(path, info);
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) failRead(path, errno);
  const FileDescriptor file(fd);
  if (::fstat(file.get(), &info) != 0) failRead(path, errno);
  checkReadable(path, info);

  // Reads at most one byte past the limit, so a file that grows while it is read is refused too.
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(info.st_size) + 1);
  std::size_t size = 0;
  for (;;) {
    if (size == bytes.size()) {
      if (size > kOrxArtifactFileByteLimit) failTooLarge(path, size);
      bytes.resize(std::min(size * 2, kOrxArtifactFileByteLimit + 1));
    }
    const ssize_t count = ::read(file.get(), bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failRead(path, errno);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace ravo::orx::internal
