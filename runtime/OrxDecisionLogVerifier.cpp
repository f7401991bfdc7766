#include <ravo-orx/runtime/OrxDecisionLogVerifier.h>

#include <algorithm>

namespace ravo::orx::internal {

namespace {

constexpr std::size_t kReportedGaps = 20;

std::string lineName(std::uint64_t line) { return "line " + std::to_string(line); }

}  // namespace

OrxDecisionLogVerifier::OrxDecisionLogVerifier(RecordRead onRecord) : onRecord_(std::move(onRecord)) {}

void OrxDecisionLogVerifier::fail(std::uint64_t line, const std::string& message) {
  if (!problem_) problem_ = lineName(line) + ": " + message;
}

bool OrxDecisionLogVerifier::read(std::string_view text) {
  if (problem_) return false;
  ++lineNumber_;
  OrxDecisionLogLine line;
  try {
    line = orxReadDecisionLogLine(text);
  } catch (const std::exception& error) {
    fail(lineNumber_, error.what());
    return false;
  }
  if (line.type == OrxDecisionLogLine::Type::seal) {
    checkSeal(line.seal, text);
    return !problem_;
  }
  if (open_.size() >= kOrxDecisionLogMaxBlockRecords) {
    fail(lineNumber_, "more than " + std::to_string(kOrxDecisionLogMaxBlockRecords) +
                          " records follow the last seal; no block is that long");
    return false;
  }
  const auto& record = line.record;
  open_.push_back({orxDecisionLogLineDigest(kOrxDecisionRecordDomain, text), lineNumber_, record.sequence, record.kind,
                   record.source});
  if (onRecord_) onRecord_(record, lineNumber_);
  return true;
}

void OrxDecisionLogVerifier::checkSeal(const OrxDecisionLogSeal& seal, std::string_view text) {
  const std::string block = "the seal of block " + std::to_string(seal.block);
  if (seal.block != blocks_ || seal.previous != previousSeal_) {
    if (seal.block < blocks_) {
      return fail(lineNumber_, block + " repeats or comes after a later block (block " + std::to_string(blocks_) +
                                   " was expected): a block was duplicated or blocks were reordered");
    }
    if (blocks_ == 0 && seal.previous) {
      return fail(lineNumber_, block + " continues a chain this file does not start: the log's first blocks were "
                                       "removed");
    }
    return fail(lineNumber_, block + " does not follow the seal before it (" +
                                 (blocks_ == 0 ? std::string("the file's start")
                                               : "block " + std::to_string(blocks_ - 1) + ", " +
                                                     lineName(lastSealLine_)) +
                                 "): a block was removed, inserted or altered before it");
  }
  if (seal.firstSequence != nextSequence_) {
    return fail(lineNumber_, block + " starts at sequence " + std::to_string(seal.firstSequence) +
                                 " where the block before it ended at " + std::to_string(nextSequence_));
  }
  const bool same = seal.records.size() == open_.size() &&
                    std::equal(open_.begin(), open_.end(), seal.records.begin(),
                               [](const OpenRecord& record, const std::string& digest) { return record.digest == digest; });
  if (!same) return fail(lineNumber_, describeMismatch(seal));
  // The digests match, so these records are the writer's: their numbers must fill the range.
  std::uint64_t expected = seal.firstSequence;
  for (const auto& record : open_) {
    if (record.sequence < expected || record.sequence >= seal.nextSequence) {
      return fail(record.line, "sequence " + std::to_string(record.sequence) + " is out of order in block " +
                                   std::to_string(seal.block));
    }
    if (record.sequence > expected && gaps_.size() < kReportedGaps) {
      gaps_.push_back({seal.block, expected, record.sequence - expected});
    }
    expected = record.sequence + 1;
  }
  if (expected < seal.nextSequence && gaps_.size() < kReportedGaps) {
    gaps_.push_back({seal.block, expected, seal.nextSequence - expected});
  }
  for (const auto& record : open_) {
    ++counts_[{std::string(orxDecisionKind(record.kind).name), std::string(orxCaseName(record.source))}];
  }
  sealedRecords_ += open_.size();
  dropped_ += seal.dropped;
  nextSequence_ = seal.nextSequence;
  previousSeal_ = orxDecisionLogLineDigest(kOrxDecisionSealDomain, text);
  lastSealLine_ = lineNumber_;
  ++blocks_;
  open_.clear();
}

std::string OrxDecisionLogVerifier::describeMismatch(const OrxDecisionLogSeal& seal) const {
  const std::string block = "block " + std::to_string(seal.block);
  const auto held = [&](const std::string& digest) {
    return std::any_of(open_.begin(), open_.end(), [&](const OpenRecord& record) { return record.digest == digest; });
  };
  std::size_t i = 0;
  while (i < open_.size() && i < seal.records.size() && open_[i].digest == seal.records[i]) ++i;
  const auto named = [&](const OpenRecord& record) {
    return lineName(record.line) + " (sequence " + std::to_string(record.sequence) + ")";
  };
  const auto missing = [&](std::size_t position) {
    const std::string after = position == 0 ? "at the block's start" : "after " + named(open_[position - 1]);
    return "the record " + block + "'s seal lists as number " + std::to_string(position + 1) + " of " +
           std::to_string(seal.records.size()) + " is missing, " + after + ": a record was removed";
  };
  if (i == open_.size()) return missing(i);
  const OpenRecord& record = open_[i];
  for (std::size_t earlier = 0; earlier < i; ++earlier) {
    if (open_[earlier].digest == record.digest) return named(record) + " repeats " + named(open_[earlier]) + ": a record was duplicated";
  }
  const auto position = std::find(seal.records.begin(), seal.records.end(), record.digest);
  if (position != seal.records.end()) {
    if (i < seal.records.size() && !held(seal.records[i])) return missing(i);
    return named(record) + " is out of place: " + block + "'s seal lists it as number " +
           std::to_string(position - seal.records.begin() + 1) + ", not " + std::to_string(i + 1) +
           ": records were reordered";
  }
  if (open_.size() > seal.records.size() && (i >= seal.records.size() || held(seal.records[i]))) {
    return named(record) + " is not among the records " + block + "'s seal lists: a record was inserted";
  }
  return named(record) + " was altered: " + block + "'s seal lists another digest as its number " +
         std::to_string(i + 1) + " (" + (i < seal.records.size() ? seal.records[i] : std::string("none")) + ")";
}

void OrxDecisionLogVerifier::finish(bool midLine, const std::optional<std::string>& head) {
  if (problem_) return;
  const std::string verified = blocks_ == 0 ? std::string("no block was sealed before it")
                                            : "blocks 0 to " + std::to_string(blocks_ - 1) + " verified, up to " +
                                                  lineName(lastSealLine_);
  if (midLine) {
    return fail(lineNumber_ + 1, "the file ends in the middle of this line: it was cut short, or its writer stopped "
                                 "mid-write (" + verified + ")");
  }
  if (head && head != previousSeal_) {
    fail(lastSealLine_ == 0 ? lineNumber_ : lastSealLine_,
         "the log's last seal is " + previousSeal_.value_or("absent") + ", not the head " + *head +
             ": blocks were removed from its end or the log was altered (" + verified + ")");
  }
}

}  // namespace ravo::orx::internal
