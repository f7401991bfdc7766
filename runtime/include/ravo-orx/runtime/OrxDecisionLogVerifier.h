#pragma once
// Checks a decision log line by line, as it is read: each line canonical and a record or a seal, each
// seal listing exactly the digests of the records before it in order, naming the previous seal's digest
// and continuing its block number and sequence range. The first problem stops it, with a message that
// names the line and the record. What it verified (blocks, records per kind and source, the gaps the
// log declared) stays available for a summary.

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/runtime/OrxDecisionLogFormat.h>

namespace ravo::orx::internal {

class OrxDecisionLogVerifier {
 public:
  // Called for each record as soon as its line reads, with its line number (from 1); a later problem
  // still makes the whole log fail.
  using RecordRead = std::function<void(const OrxDecisionRecord& record, std::uint64_t line)>;

  struct Gap {
    std::uint64_t block;
    std::uint64_t firstSequence;
    std::uint64_t count;
  };

  explicit OrxDecisionLogVerifier(RecordRead onRecord = {});

  // One line without its newline. False once a problem was found (later lines are not looked at).
  bool read(std::string_view line);
  // The input ended; `midLine` when its last line had no newline. With `head`, the last seal's digest
  // must be that one (which alone proves that no whole block was cut off the end).
  void finish(bool midLine, const std::optional<std::string>& head);

  const std::optional<std::string>& problem() const { return problem_; }
  std::uint64_t lines() const { return lineNumber_; }
  std::uint64_t blocks() const { return blocks_; }
  std::uint64_t sealedRecords() const { return sealedRecords_; }
  std::uint64_t unsealedRecords() const { return open_.size(); }
  std::uint64_t droppedRecords() const { return dropped_; }
  const std::vector<Gap>& gaps() const { return gaps_; }  // the first 20
  const std::optional<std::string>& head() const { return previousSeal_; }
  std::uint64_t lastSealLine() const { return lastSealLine_; }
  // Sealed records by kind name and source name.
  const std::map<std::pair<std::string, std::string>, std::uint64_t>& counts() const { return counts_; }

 private:
  struct OpenRecord {
    std::string digest;
    std::uint64_t line;
    std::uint64_t sequence;
    OrxDecisionKindID kind;
    OrxDecisionSource source;
  };

  void fail(std::uint64_t line, const std::string& message);
  void checkSeal(const OrxDecisionLogSeal& seal, std::string_view text);
  // The first difference between the open records and the seal's list, as a message naming the record.
  std::string describeMismatch(const OrxDecisionLogSeal& seal) const;

  RecordRead onRecord_;
  std::optional<std::string> problem_;
  std::uint64_t lineNumber_ = 0;
  std::uint64_t blocks_ = 0;
  std::uint64_t sealedRecords_ = 0;
  std::uint64_t dropped_ = 0;
  std::uint64_t nextSequence_ = 0;
  std::uint64_t lastSealLine_ = 0;
  std::optional<std::string> previousSeal_;
  std::vector<OpenRecord> open_;
  std::vector<Gap> gaps_;
  std::map<std::pair<std::string, std::string>, std::uint64_t> counts_;
};

}  // namespace ravo::orx::internal
