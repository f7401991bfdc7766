#include <ravo-orx/runtime/OrxArtifactFiles.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include <ravo-orx/core/ORXMessageText.h>
#include <ravo-orx/runtime/RuntimeError.h>

namespace ravo::orx::internal {

namespace {

constexpr std::size_t kPieceBytes = 1 << 20;

std::string tooLarge(std::uint64_t bytes, std::uint64_t limit) {
  return "file of " + std::to_string(bytes) + " bytes exceeds the limit of " + std::to_string(limit);
}

std::string streamTooLarge(std::uint64_t limit) {
  return "input exceeds the limit of " + std::to_string(limit) + " bytes";
}

}  // namespace

OrxBoundedInput::OrxBoundedInput(int descriptor, bool owned, std::string name, std::uint64_t byteLimit)
    : descriptor_(descriptor), owned_(owned), name_(std::move(name)), byteLimit_(byteLimit) {}

OrxBoundedInput::OrxBoundedInput(const std::filesystem::path& path, std::uint64_t byteLimit)
    : OrxBoundedInput(-1, true, ORXMessageText::printable(path.string()), byteLimit) {
  // The type and size are checked before opening and again on the open file (checkOpened);
  // O_NONBLOCK keeps a FIFO swapped in between from stalling the open.
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) refuse(std::strerror(errno));
  if (S_ISDIR(info.st_mode)) refuse(std::strerror(EISDIR));
  if (!S_ISREG(info.st_mode)) refuse("not a regular file");
  if (static_cast<std::uint64_t>(info.st_size) > byteLimit_) refuse(tooLarge(info.st_size, byteLimit_));
  descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor_ < 0) refuse(std::strerror(errno));
  checkOpened();
}

OrxBoundedInput OrxBoundedInput::standardInput(std::string name, std::uint64_t byteLimit) {
  OrxBoundedInput input(STDIN_FILENO, false, std::move(name), byteLimit);
  input.checkOpened();
  return input;
}

OrxBoundedInput::OrxBoundedInput(OrxBoundedInput&& other) noexcept
    : descriptor_(other.descriptor_),
      owned_(other.owned_),
      name_(std::move(other.name_)),
      byteLimit_(other.byteLimit_),
      knownSize_(other.knownSize_) {
  other.owned_ = false;
}

OrxBoundedInput::~OrxBoundedInput() {
  if (owned_ && descriptor_ >= 0) ::close(descriptor_);
}

void OrxBoundedInput::refuse(const std::string& reason) const {
  throw RuntimeError("could not read " + name_ + ": " + reason);
}

void OrxBoundedInput::checkOpened() {
  struct stat info {};
  if (::fstat(descriptor_, &info) != 0) refuse(std::strerror(errno));
  const bool regular = S_ISREG(info.st_mode);
  if (owned_ && S_ISDIR(info.st_mode)) refuse(std::strerror(EISDIR));
  if (owned_ && !regular) refuse("not a regular file");
  if (!regular) return;
  knownSize_ = static_cast<std::uint64_t>(info.st_size);
  if (knownSize_ > byteLimit_) refuse(tooLarge(knownSize_, byteLimit_));
}

template <class Bytes>
Bytes OrxBoundedInput::readAll() {
  // A regular file is read into one allocation of its size, plus one byte to see that it grew; a
  // stream grows its buffer by doubling. Either reads at most one byte past the limit.
  const std::uint64_t cap = byteLimit_ == kUnbounded ? byteLimit_ : byteLimit_ + 1;
  Bytes bytes(static_cast<std::size_t>(knownSize_ > 0 ? knownSize_ + 1 : std::min<std::uint64_t>(kPieceBytes, cap)),
              0);
  std::size_t size = 0;
  for (;;) {
    if (size > byteLimit_) refuse(knownSize_ > 0 ? tooLarge(size, byteLimit_) : streamTooLarge(byteLimit_));
    if (size == bytes.size()) bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(size * 2, cap)));
    const ssize_t count = ::read(descriptor_, bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) refuse(std::strerror(errno));
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  bytes.resize(size);
  return bytes;
}

template std::string OrxBoundedInput::readAll<std::string>();
template std::vector<std::uint8_t> OrxBoundedInput::readAll<std::vector<std::uint8_t>>();

void OrxBoundedInput::readPieces(const std::function<void(std::string_view)>& consume) {
  std::vector<char> buffer(kPieceBytes);
  std::uint64_t total = 0;
  for (;;) {
    const ssize_t count = ::read(descriptor_, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) refuse(std::strerror(errno));
    if (count == 0) return;
    total += static_cast<std::uint64_t>(count);
    if (total > byteLimit_) refuse(knownSize_ > 0 ? tooLarge(total, byteLimit_) : streamTooLarge(byteLimit_));
    consume({buffer.data(), static_cast<std::size_t>(count)});
  }
}

std::vector<std::uint8_t> readArtifactFile(const std::filesystem::path& path) {
  return OrxBoundedInput(path, kOrxArtifactFileByteLimit).readAll<std::vector<std::uint8_t>>();
}

}  // namespace ravo::orx::internal
