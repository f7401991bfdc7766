#include <ravo-orx/runtime/OrxDecisionLogSinks.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <ravo-orx/runtime/OrxDecisionLogFormat.h>

namespace ravo::orx {

using namespace internal;

namespace {

// How far back from its end a log is read for its last seal. A writer seals every 4,096 records at
// most, and a record line is under 1 KiB, so a log that ends as the writer left it has a seal well
// within this; a longer unsealed tail is not a log this sink continues.
constexpr std::uint64_t kTailLimit = std::uint64_t{64} << 20;

[[noreturn]] void fail(const std::filesystem::path& path, const std::string& why) {
  throw std::runtime_error(path.string() + ": " + why);
}

std::string readAt(int descriptor, std::uint64_t offset, std::size_t size, const std::filesystem::path& path) {
  std::string bytes(size, '\0');
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = ::pread(descriptor, bytes.data() + done, size - done, static_cast<off_t>(offset + done));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) fail(path, count < 0 ? std::strerror(errno) : "the file shrank while it was read");
    done += static_cast<std::size_t>(count);
  }
  return bytes;
}

bool isSealLine(std::string_view line) { return line.ends_with(",\"type\":\"seal\"}"); }

// The tail of the file from the start of its last seal line (or from its start when it has no seal),
// reading windows from the end that double until one holds a whole seal line.
std::string tailFromLastSeal(int descriptor, std::uint64_t size, const std::filesystem::path& path) {
  for (std::uint64_t window = 64 << 10;; window *= 2) {
    const std::uint64_t start = size > window ? size - window : 0;
    const std::string tail = readAt(descriptor, start, static_cast<std::size_t>(size - start), path);
    // Lines that begin inside the window, last first; the first one is whole only at the file's start.
    std::size_t end = tail.size() - 1;  // the final newline
    while (true) {
      const std::size_t newline = end == 0 ? std::string::npos : tail.rfind('\n', end - 1);
      const bool whole = newline != std::string::npos || start == 0;
      const std::size_t begin = newline == std::string::npos ? 0 : newline + 1;
      if (!whole) break;
      if (isSealLine(std::string_view(tail).substr(begin, end - begin))) return tail.substr(begin);
      if (begin == 0) return tail;  // the file's start, no seal: a log whose first block was never sealed
      end = begin - 1;
    }
    if (start == 0 || window >= kTailLimit) fail(path, "no block seal in its last 64 MiB; it is not a decision log this build continues");
  }
}

OrxDecisionLogChain chainFromTail(std::string_view tail, const std::filesystem::path& path) {
  OrxDecisionLogChain chain;
  std::size_t lineNumberFromSeal = 0;
  for (std::size_t begin = 0; begin < tail.size(); ++lineNumberFromSeal) {
    const std::size_t end = tail.find('\n', begin);
    const std::string_view line = tail.substr(begin, end - begin);
    begin = end + 1;
    OrxDecisionLogLine read;
    try {
      read = orxReadDecisionLogLine(line);
    } catch (const std::exception& error) {
      fail(path, "does not end as a decision log (" + std::string(error.what()) + ")");
    }
    if (read.type == OrxDecisionLogLine::Type::seal) {
      if (lineNumberFromSeal != 0) fail(path, "does not end as a decision log (two seals in its tail)");
      chain.nextBlock = read.seal.block + 1;
      chain.blockFirstSequence = chain.nextSequence = read.seal.nextSequence;
      chain.previousSeal = orxDecisionLogLineDigest(kOrxDecisionSealDomain, line);
      continue;
    }
    if (read.record.sequence < chain.nextSequence || chain.openRecordDigests.size() >= kOrxDecisionLogMaxBlockRecords) {
      fail(path, "does not end as a decision log (its unsealed records are out of order or too many)");
    }
    chain.openRecordDigests.push_back(orxDecisionLogLineDigest(kOrxDecisionRecordDomain, line));
    chain.openRecordSequences.push_back(read.record.sequence);
    chain.nextSequence = read.record.sequence + 1;
  }
  return chain;
}

}  // namespace

OrxDecisionLogFileSink::OrxDecisionLogFileSink(const std::filesystem::path& path, OrxDecisionLogFileSync sync)
    : path_(path), sync_(sync) {
  descriptor_ = ::open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
  if (descriptor_ < 0) fail(path, std::strerror(errno));
  try {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) fail(path, std::strerror(errno));
    if (!S_ISREG(status.st_mode)) fail(path, "not a regular file");
    while (::flock(descriptor_, LOCK_EX) != 0) {
      if (errno != EINTR) fail(path, std::string("could not lock it: ") + std::strerror(errno));
    }
    if (::fstat(descriptor_, &status) != 0) fail(path, std::strerror(errno));  // another writer may have appended
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (size == 0) return;
    if (readAt(descriptor_, size - 1, 1, path_) != "\n") {
      fail(path, "ends in the middle of a line (its writer stopped mid-write); 'ravo-orx log verify' says where "
                 "it ends, and a new log must be started");
    }
    chain_ = chainFromTail(tailFromLastSeal(descriptor_, size, path_), path_);
  } catch (...) {
    ::close(descriptor_);
    throw;
  }
}

OrxDecisionLogFileSink::~OrxDecisionLogFileSink() { ::close(descriptor_); }

void OrxDecisionLogFileSink::write(std::string_view line, OrxDecisionLogLineType) {
  pending_.append(line);
  pending_.push_back('\n');
}

void OrxDecisionLogFileSink::endBatch(bool sealed) {
  std::size_t done = 0;
  while (done < pending_.size()) {
    const ssize_t count = ::write(descriptor_, pending_.data() + done, pending_.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail(path_, std::string("could not write: ") + std::strerror(errno));
    done += static_cast<std::size_t>(count);
  }
  pending_.clear();
  const bool synchronise = sync_ == OrxDecisionLogFileSync::afterBatch || (sealed && sync_ == OrxDecisionLogFileSync::afterSeal);
  if (synchronise && ::fdatasync(descriptor_) != 0) fail(path_, std::string("could not sync: ") + std::strerror(errno));
}

OrxDecisionLogRingSink::OrxDecisionLogRingSink(std::size_t capacity) : capacity_(std::max<std::size_t>(capacity, 1)) {}

void OrxDecisionLogRingSink::write(std::string_view line, OrxDecisionLogLineType) {
  std::lock_guard guard(lock_);
  if (lines_.size() == capacity_) lines_.pop_front();
  lines_.emplace_back(line);
}

std::vector<std::string> OrxDecisionLogRingSink::lines() const {
  std::lock_guard guard(lock_);
  return {lines_.begin(), lines_.end()};
}

}  // namespace ravo::orx
