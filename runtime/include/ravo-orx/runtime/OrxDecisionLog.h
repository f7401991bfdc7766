#pragma once
// The decision log: when a runtime is made with one, every decision appends a record (its sequence
// number, kind, facts, the module's artifact digest, the values the module emitted, the decision, its
// source, and a monotonic and a wall time). Records are canonical JSON lines, sealed in blocks whose
// seals chain by digest, so that an edited, removed, reordered or inserted record or block is detected
// (`ravo-orx log verify`), and every decision can be taken again from its record (`ravo-orx log
// replay`). The line format is described in docs/DECISION-LOG.md.
//
// The decision only copies a fixed-size record into a buffer allocated when the log is made; the log's
// own thread renders, hashes, seals and hands the lines to the sink, never holding the runtime's lock.
// What happens when the buffer is full is the embedder's choice (OrxDecisionLogWhenFull).

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

// Where a chain stands: what the next line of a log must continue from. A new log starts from the
// default; a file that already holds a log resumes from its last seal.
struct OrxDecisionLogChain {
  std::uint64_t nextBlock = 0;
  std::uint64_t blockFirstSequence = 0;  // the first sequence number the open block covers
  std::uint64_t nextSequence = 0;
  std::optional<std::string> previousSeal;  // digest text of the last seal
  // Records already in the sink after its last seal (a writer stopped before sealing them): the next
  // seal covers them, in order. Their digests and sequence numbers.
  std::vector<std::string> openRecordDigests;
  std::vector<std::uint64_t> openRecordSequences;
};

enum class OrxDecisionLogLineType { record, seal };

// Receives the log's lines, in order, on the log's own thread: never on a decision's path.
class RAVO_ORX_API OrxDecisionLogSink {
 public:
  virtual ~OrxDecisionLogSink();
  // The chain this sink's lines continue; called once, before the first line.
  virtual OrxDecisionLogChain resume();
  // One canonical JSON line, without its newline. May throw: the log then stops writing to the sink,
  // says why in OrxDecisionLog::error(), and counts what it could not write as lost.
  virtual void write(std::string_view line, OrxDecisionLogLineType type) = 0;
  // After each batch of lines; `sealed` says whether the batch ended with a seal.
  virtual void endBatch(bool sealed);
};

enum class OrxDecisionLogWhenFull {
  // The record is not kept: its sequence number is declared dropped in the next seal, counted, and
  // logged. The decision never waits.
  drop,
  // The decision waits for room before it is taken (the runtime's lock is released while it waits).
  block,
  // Like drop, and the record's line is handed to `onFull` after the runtime's lock is released.
  callBack,
};

struct OrxDecisionLogOptions {
  // Where the lines go; without a sink there is no log (the default: decisions cost what they did).
  std::shared_ptr<OrxDecisionLogSink> sink;
  // Records the buffer holds before the log's thread writes them (rounded up to a power of two).
  std::size_t bufferRecords = 8192;
  // Records per block, at most 4,096; a block is also sealed `sealAfter` after its first record, and
  // whenever flush() is called.
  std::size_t blockRecords = 256;
  std::chrono::milliseconds sealAfter{1000};
  OrxDecisionLogWhenFull whenFull = OrxDecisionLogWhenFull::drop;
  std::function<void(std::string_view line)> onFull;
};

class OrxPolicyRuntime;

namespace internal {
class OrxDecisionLogWriter;
}

// A runtime's log, for the embedder: its head, its counts, and a way to have everything sealed now.
class RAVO_ORX_API OrxDecisionLog {
 public:
  // Starts the log's thread; throws std::invalid_argument for options without a sink or with more
  // than 4,096 records per block, and whatever the sink's resume() throws.
  explicit OrxDecisionLog(OrxDecisionLogOptions options);
  // Writes and seals every record still buffered, then stops the thread.
  ~OrxDecisionLog();
  OrxDecisionLog(const OrxDecisionLog&) = delete;
  OrxDecisionLog& operator=(const OrxDecisionLog&) = delete;

  // Returns once every decision taken before the call is written and sealed.
  void flush();
  // The digest of the last seal: publish or store it elsewhere, and `ravo-orx log verify --head` proves
  // the log was not cut short. Absent before the first seal.
  std::optional<std::string> head() const;
  std::uint64_t recordsWritten() const;
  // Records the full buffer had no room for (declared in the seals).
  std::uint64_t recordsDropped() const;
  // Records taken after the sink failed, which it never received.
  std::uint64_t recordsLost() const;
  // Why the sink stopped receiving lines, when it did.
  std::optional<std::string> error() const;

 private:
  friend class OrxPolicyRuntime;  // hands the writer to its decider
  internal::OrxDecisionLogWriter& writer() { return *writer_; }

  std::unique_ptr<internal::OrxDecisionLogWriter> writer_;
};

}  // namespace ravo::orx
