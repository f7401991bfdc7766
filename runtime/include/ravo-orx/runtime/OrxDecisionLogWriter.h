#pragma once
// The decision log's machinery behind OrxDecisionLog: a ring of fixed-size records filled by the
// decisions (one at a time: they hold the decider's lock) and emptied by the log's own thread, which
// renders each record, hashes it, hands the line to the sink and seals blocks.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include <ravo-orx/runtime/OrxDecisionLog.h>
#include <ravo-orx/runtime/OrxDecisionRecord.h>

namespace ravo::orx::internal {

class OrxDecisionLogWriter final : public OrxDecisionRecorder {
 public:
  explicit OrxDecisionLogWriter(OrxDecisionLogOptions options);
  ~OrxDecisionLogWriter();

  void waitForRoom(std::unique_lock<std::mutex>& decisionLock) override;
  bool append(OrxDecisionRecord& record) noexcept override;
  void overflowed(const OrxDecisionRecord& record) noexcept override;

  void flush();
  std::optional<std::string> head() const;
  std::optional<std::string> error() const;
  std::uint64_t written() const { return written_.load(std::memory_order_relaxed); }
  std::uint64_t dropped() const { return dropped_.load(std::memory_order_relaxed); }
  std::uint64_t lost() const { return lost_.load(std::memory_order_relaxed); }

 private:
  void run();
  // Writes every record published so far; seals the open block when `sealNow` (also covering numbers
  // dropped after its last record).
  void drain(bool sealNow);
  void writeRecord(OrxDecisionRecord record);
  void seal(std::uint64_t nextSequence);
  bool blockIsOpen(std::uint64_t issued) const;
  // Hands a line to the sink; false once the sink has failed.
  bool emit(std::string_view line, OrxDecisionLogLineType type);
  // Stops writing for good: what follows could not continue a chain the sink may hold half of.
  void stopSink(const std::string& why);
  std::int64_t wallOffset() const;

  OrxDecisionLogOptions options_;
  std::unique_ptr<OrxDecisionRecord[]> slots_;
  std::uint64_t mask_;
  std::uint64_t wakeAt_;  // pending records at which a decision wakes the log's thread

  // Written by decisions only (under the decider's lock).
  std::uint64_t produced_ = 0;
  std::uint64_t nextSequence_ = 0;
  // Shared with the log's thread. `issued_` is stored after the record it numbers is published, so the
  // thread, reading it first, never takes a record still being copied for a dropped one.
  alignas(64) std::atomic<std::uint64_t> published_{0};
  std::atomic<std::uint64_t> issued_{0};
  alignas(64) std::atomic<std::uint64_t> consumed_{0};
  std::atomic<std::uint64_t> written_{0};
  std::atomic<std::uint64_t> dropped_{0};
  std::atomic<std::uint64_t> lost_{0};
  std::condition_variable room_;  // waited on with the decider's lock

  // The log's thread.
  std::mutex wakeLock_;
  std::condition_variable wake_;
  std::condition_variable flushed_;
  bool stopping_ = false;
  std::uint64_t flushRequested_ = 0;
  std::uint64_t flushDone_ = 0;
  OrxDecisionLogChain chain_;
  std::chrono::steady_clock::time_point blockOpened_;
  std::string line_;
  std::shared_ptr<OrxDecisionLogSink> sink_;  // null once it failed

  mutable std::mutex stateLock_;
  std::optional<std::string> head_;
  std::optional<std::string> error_;

  std::thread thread_;  // last: started once everything above is ready
};

}  // namespace ravo::orx::internal
