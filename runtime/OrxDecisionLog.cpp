#include <ravo-orx/runtime/OrxDecisionLog.h>

#include <algorithm>
#include <bit>
#include <stdexcept>

#include <ravo-orx/runtime/OrxDecisionLogFormat.h>
#include <ravo-orx/runtime/OrxDecisionLogWriter.h>
#include <ravo-orx/runtime/OrxLog.h>

namespace ravo::orx {

namespace internal {

namespace {

// How often the log's thread looks for records when no decision woke it: a record reaches the sink
// within this time at a low decision rate, and an idle log costs 50 wake-ups a second.
constexpr auto kPollInterval = std::chrono::milliseconds(20);
// How long a decision waiting for room sleeps before it looks again, in case its wake-up was missed.
constexpr auto kRoomRecheck = std::chrono::milliseconds(1);
constexpr std::size_t kMaxBufferRecords = std::size_t{1} << 24;

std::int64_t nanoseconds(std::chrono::nanoseconds duration) { return static_cast<std::int64_t>(duration.count()); }

}  // namespace

OrxDecisionLogWriter::OrxDecisionLogWriter(OrxDecisionLogOptions options) : options_(std::move(options)) {
  if (!options_.sink) throw std::invalid_argument("a decision log needs a sink");
  if (options_.blockRecords == 0 || options_.blockRecords > kOrxDecisionLogMaxBlockRecords) {
    throw std::invalid_argument("a decision log block holds 1 to 4096 records");
  }
  const std::size_t capacity = std::bit_ceil(std::clamp<std::size_t>(options_.bufferRecords, 2, kMaxBufferRecords));
  slots_ = std::make_unique<OrxDecisionRecord[]>(capacity);
  mask_ = capacity - 1;
  wakeAt_ = std::min<std::uint64_t>(options_.blockRecords, capacity / 2);
  chain_ = options_.sink->resume();
  nextSequence_ = chain_.nextSequence;
  issued_.store(nextSequence_, std::memory_order_relaxed);
  head_ = chain_.previousSeal;
  sink_ = options_.sink;
  blockOpened_ = std::chrono::steady_clock::now();
  thread_ = std::thread([this] { run(); });
}

OrxDecisionLogWriter::~OrxDecisionLogWriter() {
  {
    std::lock_guard guard(wakeLock_);
    stopping_ = true;
  }
  wake_.notify_one();
  thread_.join();
}

void OrxDecisionLogWriter::waitForRoom(std::unique_lock<std::mutex>& decisionLock) {
  if (options_.whenFull != OrxDecisionLogWhenFull::block) return;
  while (produced_ - consumed_.load(std::memory_order_acquire) > mask_) {
    wake_.notify_one();
    room_.wait_for(decisionLock, kRoomRecheck);
  }
}

bool OrxDecisionLogWriter::append(OrxDecisionRecord& record) noexcept {
  record.sequence = nextSequence_++;
  const std::uint64_t pending = produced_ - consumed_.load(std::memory_order_acquire);
  if (pending > mask_) {
    dropped_.store(dropped_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    issued_.store(nextSequence_, std::memory_order_release);
    return false;
  }
  record.monotonicNanoseconds = nanoseconds(std::chrono::steady_clock::now().time_since_epoch());
  slots_[produced_ & mask_] = record;
  published_.store(++produced_, std::memory_order_release);
  issued_.store(nextSequence_, std::memory_order_release);
  if (pending + 1 == wakeAt_) wake_.notify_one();
  return true;
}

void OrxDecisionLogWriter::overflowed(const OrxDecisionRecord& record) noexcept {
  if (options_.whenFull != OrxDecisionLogWhenFull::callBack || !options_.onFull) return;
  try {
    OrxDecisionRecord stamped = record;
    stamped.monotonicNanoseconds = nanoseconds(std::chrono::steady_clock::now().time_since_epoch());
    stamped.wallNanoseconds = stamped.monotonicNanoseconds + wallOffset();
    std::string line;
    orxAppendRecordLine(line, stamped);
    options_.onFull(line);
  } catch (...) {
    // The embedder's callback failed; the record is already declared dropped.
  }
}

void OrxDecisionLogWriter::flush() {
  std::unique_lock guard(wakeLock_);
  const std::uint64_t ticket = ++flushRequested_;
  wake_.notify_one();
  flushed_.wait(guard, [&] { return flushDone_ >= ticket; });
}

std::optional<std::string> OrxDecisionLogWriter::head() const {
  std::lock_guard guard(stateLock_);
  return head_;
}

std::optional<std::string> OrxDecisionLogWriter::error() const {
  std::lock_guard guard(stateLock_);
  return error_;
}

// Wall time is the record's monotonic time moved by the offset between the clocks when it is written:
// reading one clock on the decision path instead of two keeps the cost down, and a record is written
// within milliseconds of its decision.
std::int64_t OrxDecisionLogWriter::wallOffset() const {
  const auto wall = std::chrono::system_clock::now().time_since_epoch();
  const auto monotonic = std::chrono::steady_clock::now().time_since_epoch();
  return nanoseconds(wall) - nanoseconds(monotonic);
}

void OrxDecisionLogWriter::run() {
  while (true) {
    std::uint64_t ticket;
    bool stopping;
    {
      std::unique_lock guard(wakeLock_);
      wake_.wait_for(guard, kPollInterval, [&] {
        return stopping_ || flushRequested_ > flushDone_ ||
               published_.load(std::memory_order_acquire) - consumed_.load(std::memory_order_relaxed) >= wakeAt_;
      });
      ticket = flushRequested_;
      stopping = stopping_;
    }
    // Only an open block can be overdue: a record arriving after a quiet spell starts a block, it
    // does not get sealed alone.
    const bool overdue = blockIsOpen(issued_.load(std::memory_order_acquire)) &&
                         std::chrono::steady_clock::now() - blockOpened_ >= options_.sealAfter;
    drain(stopping || ticket > flushDone_ || overdue);
    {
      std::lock_guard guard(wakeLock_);
      flushDone_ = ticket;
    }
    flushed_.notify_all();
    if (stopping) return;
  }
}

bool OrxDecisionLogWriter::blockIsOpen(std::uint64_t issued) const {
  return !chain_.openRecordDigests.empty() || issued > chain_.blockFirstSequence;
}

void OrxDecisionLogWriter::drain(bool sealNow) {
  // Read before the ring: every number below it is then either in the ring or dropped.
  const std::uint64_t issued = issued_.load(std::memory_order_acquire);
  const std::uint64_t end = published_.load(std::memory_order_acquire);
  const bool wasOpen = blockIsOpen(chain_.nextSequence);
  for (std::uint64_t position = consumed_.load(std::memory_order_relaxed); position < end; ++position) {
    const OrxDecisionRecord record = slots_[position & mask_];
    consumed_.store(position + 1, std::memory_order_release);
    writeRecord(record);
  }
  if (options_.whenFull == OrxDecisionLogWhenFull::block) room_.notify_all();
  if (!wasOpen && blockIsOpen(issued)) blockOpened_ = std::chrono::steady_clock::now();
  const bool sealed = sealNow && blockIsOpen(issued);
  if (sealed) seal(std::max(issued, chain_.nextSequence));
  if (!sink_) return;
  try {
    sink_->endBatch(sealed);
  } catch (const std::exception& failure) {
    stopSink(failure.what());
  }
}

void OrxDecisionLogWriter::writeRecord(OrxDecisionRecord record) {
  if (!sink_) {
    lost_.fetch_add(1, std::memory_order_relaxed);
    return;
  }
  if (!blockIsOpen(chain_.nextSequence)) blockOpened_ = std::chrono::steady_clock::now();
  record.wallNanoseconds = record.monotonicNanoseconds + wallOffset();
  line_.clear();
  orxAppendRecordLine(line_, record);
  if (!emit(line_, OrxDecisionLogLineType::record)) {
    lost_.fetch_add(1, std::memory_order_relaxed);
    return;
  }
  written_.fetch_add(1, std::memory_order_relaxed);
  chain_.openRecordDigests.push_back(orxDecisionLogLineDigest(kOrxDecisionRecordDomain, line_));
  chain_.openRecordSequences.push_back(record.sequence);
  chain_.nextSequence = record.sequence + 1;
  if (chain_.openRecordDigests.size() >= options_.blockRecords) seal(chain_.nextSequence);
}

void OrxDecisionLogWriter::seal(std::uint64_t nextSequence) {
  if (!sink_) return;
  OrxDecisionLogSeal seal;
  seal.block = chain_.nextBlock;
  seal.firstSequence = chain_.blockFirstSequence;
  seal.nextSequence = nextSequence;
  seal.dropped = nextSequence - seal.firstSequence - chain_.openRecordDigests.size();
  seal.previous = chain_.previousSeal;
  seal.records = std::move(chain_.openRecordDigests);
  line_.clear();
  orxAppendSealLine(line_, seal);
  chain_.openRecordDigests.clear();
  chain_.openRecordSequences.clear();
  if (!emit(line_, OrxDecisionLogLineType::seal)) return;
  const std::string digest = orxDecisionLogLineDigest(kOrxDecisionSealDomain, line_);
  chain_.nextBlock = seal.block + 1;
  chain_.blockFirstSequence = nextSequence;
  chain_.nextSequence = nextSequence;
  chain_.previousSeal = digest;
  {
    std::lock_guard guard(stateLock_);
    head_ = digest;
  }
  if (seal.dropped > 0) {
    orxLog(OrxLogLevel::error, "ORX decision log dropped " + std::to_string(seal.dropped) +
                                   " records in block " + std::to_string(seal.block) + ": its buffer was full");
  }
}

bool OrxDecisionLogWriter::emit(std::string_view line, OrxDecisionLogLineType type) {
  if (!sink_) return false;
  try {
    sink_->write(line, type);
    return true;
  } catch (const std::exception& failure) {
    stopSink(failure.what());
  } catch (...) {
    stopSink("the sink failed");
  }
  return false;
}

void OrxDecisionLogWriter::stopSink(const std::string& why) {
  sink_.reset();
  {
    std::lock_guard guard(stateLock_);
    error_ = why;
  }
  orxLog(OrxLogLevel::error, "ORX decision log stopped writing: " + why);
}

}  // namespace internal

OrxDecisionLogSink::~OrxDecisionLogSink() = default;
OrxDecisionLogChain OrxDecisionLogSink::resume() { return {}; }
void OrxDecisionLogSink::endBatch(bool) {}

OrxDecisionLog::OrxDecisionLog(OrxDecisionLogOptions options)
    : writer_(std::make_unique<internal::OrxDecisionLogWriter>(std::move(options))) {}
OrxDecisionLog::~OrxDecisionLog() = default;

void OrxDecisionLog::flush() { writer_->flush(); }
std::optional<std::string> OrxDecisionLog::head() const { return writer_->head(); }
std::uint64_t OrxDecisionLog::recordsWritten() const { return writer_->written(); }
std::uint64_t OrxDecisionLog::recordsDropped() const { return writer_->dropped(); }
std::uint64_t OrxDecisionLog::recordsLost() const { return writer_->lost(); }
std::optional<std::string> OrxDecisionLog::error() const { return writer_->error(); }

}  // namespace ravo::orx
