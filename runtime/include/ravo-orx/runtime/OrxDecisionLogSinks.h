#pragma once
// The decision log's sinks: an append-only file, an in-memory ring of the last lines, and a callback.
// All are called on the log's own thread only.

#include <cstddef>
#include <deque>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/core/ORXExport.h>
#include <ravo-orx/runtime/OrxDecisionLog.h>

namespace ravo::orx {

// When the file sink asks the system to put its lines on the disk (fdatasync). A process that crashes
// loses nothing the log had written, whatever the choice: the lines are in the system's cache. A
// machine that stops loses what was not synchronised.
enum class OrxDecisionLogFileSync {
  none,        // the system writes when it chooses (within seconds on Linux)
  afterSeal,   // at each seal: a stop loses at most the records after the last seal
  afterBatch,  // after every batch the log writes: a stop loses at most one batch
};

// Appends one line per record and per seal to a file, creating it. An existing log is continued: its
// chain resumes from its last seal, and records written after that seal (by a writer that stopped
// before sealing them) are covered by the next one. The file is locked (flock) while the sink lives,
// so a second writer waits for the first.
class RAVO_ORX_API OrxDecisionLogFileSink final : public OrxDecisionLogSink {
 public:
  // Throws std::runtime_error "<path>: <why>" when the file cannot be opened or locked, ends in the
  // middle of a line, or does not end as a decision log.
  OrxDecisionLogFileSink(const std::filesystem::path& path, OrxDecisionLogFileSync sync);
  ~OrxDecisionLogFileSink() override;
  OrxDecisionLogFileSink(const OrxDecisionLogFileSink&) = delete;
  OrxDecisionLogFileSink& operator=(const OrxDecisionLogFileSink&) = delete;

  OrxDecisionLogChain resume() override { return chain_; }
  void write(std::string_view line, OrxDecisionLogLineType type) override;
  void endBatch(bool sealed) override;

 private:
  std::filesystem::path path_;
  OrxDecisionLogFileSync sync_;
  int descriptor_ = -1;
  OrxDecisionLogChain chain_;
  std::string pending_;  // the batch's lines, written in one call
};

// Keeps the last `capacity` lines in memory, for a host that shows or ships recent decisions itself.
class RAVO_ORX_API OrxDecisionLogRingSink final : public OrxDecisionLogSink {
 public:
  explicit OrxDecisionLogRingSink(std::size_t capacity);
  void write(std::string_view line, OrxDecisionLogLineType type) override;
  // The lines kept, oldest first. Safe from any thread.
  std::vector<std::string> lines() const;

 private:
  std::size_t capacity_;
  mutable std::mutex lock_;
  std::deque<std::string> lines_;
};

// Hands every line to a function (the C API's callback sink is one).
class RAVO_ORX_API OrxDecisionLogCallbackSink final : public OrxDecisionLogSink {
 public:
  using Callback = std::function<void(std::string_view line, OrxDecisionLogLineType type)>;
  explicit OrxDecisionLogCallbackSink(Callback callback) : callback_(std::move(callback)) {}
  void write(std::string_view line, OrxDecisionLogLineType type) override { callback_(line, type); }

 private:
  Callback callback_;
};

}  // namespace ravo::orx
