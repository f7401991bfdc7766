#pragma once
// Reading files at a bounded cost: the artifact files, and every file the tools read.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace ravo::orx::internal {

// The largest artifact file read. The approved files are a few KiB and their digests are fixed, so
// anything larger can only fail its digest check: it is refused before a byte of it is read.
inline constexpr std::size_t kOrxArtifactFileByteLimit = 4u << 20;

// A file to read whole or in pieces, or standard input, with a limit on its bytes.
//
// A named file is read only when it is a regular file within the limit: its type and size are checked
// before it is opened (opening some devices acts on them) and again on the open file, which may have
// been replaced in between, and it is opened without blocking. So a FIFO, a device or a socket is
// refused at once instead of stalling or flooding the reader, and an oversized file before a byte of
// it is read. Standard input is taken as it is (a pipe is what it usually is): sized first when it is
// a regular file, otherwise counted as it is read and refused one byte past the limit.
//
// Every refusal throws RuntimeError "could not read <name>: <reason>", the name shown printable
// (ORXMessageText::printable): "file of N bytes exceeds the limit of L", "input exceeds the limit of L
// bytes", "not a regular file" or the operating system's reason.
class OrxBoundedInput {
 public:
  static constexpr std::uint64_t kUnbounded = std::numeric_limits<std::uint64_t>::max();

  OrxBoundedInput(const std::filesystem::path& path, std::uint64_t byteLimit);
  // Standard input, called `name` in messages.
  static OrxBoundedInput standardInput(std::string name, std::uint64_t byteLimit);

  OrxBoundedInput(OrxBoundedInput&& other) noexcept;
  OrxBoundedInput(const OrxBoundedInput&) = delete;
  OrxBoundedInput& operator=(const OrxBoundedInput&) = delete;
  OrxBoundedInput& operator=(OrxBoundedInput&&) = delete;
  ~OrxBoundedInput();

  // Every byte, in one allocation when the size is known. Bytes is std::string or
  // std::vector<std::uint8_t>.
  template <class Bytes>
  Bytes readAll();
  // The bytes handed on piece by piece as they are read, for readers that need not hold them all.
  void readPieces(const std::function<void(std::string_view)>& consume);

  const std::string& name() const { return name_; }

 private:
  OrxBoundedInput(int descriptor, bool owned, std::string name, std::uint64_t byteLimit);
  [[noreturn]] void refuse(const std::string& reason) const;
  // Refuses a named file that is not a regular file within the limit, and standard input that is a
  // regular file over it; notes a regular file's size.
  void checkOpened();

  int descriptor_;
  bool owned_;
  std::string name_;
  std::uint64_t byteLimit_;
  std::uint64_t knownSize_ = 0;  // a regular file's size when opened, else 0
};

extern template std::string OrxBoundedInput::readAll<std::string>();
extern template std::vector<std::uint8_t> OrxBoundedInput::readAll<std::vector<std::uint8_t>>();

// An artifact file whole: a regular file of at most kOrxArtifactFileByteLimit.
std::vector<std::uint8_t> readArtifactFile(const std::filesystem::path& path);

}  // namespace ravo::orx::internal
