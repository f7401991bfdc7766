#include "runtime/OrxArtifactFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "runtime/RuntimeError.h"

namespace {

[[noreturn]] void failRead(const std::filesystem::path& path, int error) {
  throw RuntimeError("could not read " + path.string() + ": " + std::strerror(error));
}

}  // namespace

std::vector<std::uint8_t> readArtifactFile(const std::filesystem::path& path) {
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) failRead(path, errno);
  struct stat info {};
  if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    int error = S_ISDIR(info.st_mode) ? EISDIR : errno;
    ::close(fd);
    failRead(path, error ? error : EINVAL);
  }
  std::vector<std::uint8_t> bytes;
  bytes.reserve(static_cast<size_t>(info.st_size));
  std::uint8_t chunk[65536];
  for (;;) {
    ssize_t count = ::read(fd, chunk, sizeof chunk);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      int error = errno;
      ::close(fd);
      failRead(path, error);
    }
    if (count == 0) break;
    bytes.insert(bytes.end(), chunk, chunk + count);
  }
  ::close(fd);
  return bytes;
}
