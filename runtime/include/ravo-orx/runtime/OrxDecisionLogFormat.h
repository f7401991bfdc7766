#pragma once
// The lines of a decision log: each one canonical JSON object, either a decision record or the seal of
// a block of records. A record's digest and a seal's digest are domain digests of the line under tags
// of their own, so neither can pass for the other or for any other record of the system. A seal lists
// the digests of its block's records in order and the digest of the seal before it: a hash chain, whose
// head is the digest of the last seal.
//
//   {"decision":{"isAllowed":true,"policyVersion":3,"reason":"allowed"},"emitted":[5201,1,6,0,3],
//    "facts":{"command":6,...},"kind":"authz","moduleSha256":"<64 hex>","monotonicNanoseconds":...,
//    "sequence":0,"source":"policy","type":"decision","wallNanoseconds":...}
//   {"block":0,"dropped":0,"firstSequence":0,"nextSequence":1,"records":["sha256:..."],"type":"seal"}
//
// "emitted" is left out when the module emitted nothing (or was not called), "emittedLength" appears
// only when a module emitted more values than a record keeps, "moduleSha256" is left out when the
// kind's module was not loaded, and "previous" (the seal before) only from the second block on.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/runtime/OrxDecisionRecord.h>

namespace ravo::orx::internal {

inline constexpr std::string_view kOrxDecisionRecordDomain = "ORX_DECISION_LOG_RECORD_V1";
inline constexpr std::string_view kOrxDecisionSealDomain = "ORX_DECISION_LOG_SEAL_V1";
// A record is under 1 KiB and a seal of a block of 4,096 records under 300 KiB; a reader refuses a
// longer line before holding it.
inline constexpr std::size_t kOrxDecisionLogLineLimit = std::size_t{1} << 20;
// A seal lists at most this many records, which bounds a seal line and a reader's open block.
inline constexpr std::size_t kOrxDecisionLogMaxBlockRecords = 4096;

struct OrxDecisionLogSeal {
  std::uint64_t block = 0;
  std::uint64_t firstSequence = 0;  // the first sequence number the block covers
  std::uint64_t nextSequence = 0;   // the first it does not
  std::uint64_t dropped = 0;        // numbers in the range with no record: the buffer had no room
  std::optional<std::string> previous;  // the digest of the seal before, absent for block 0
  std::vector<std::string> records;     // the digests of the block's records, in order
};

// Appends the line's canonical JSON (no newline).
void orxAppendRecordLine(std::string& out, const OrxDecisionRecord& record);
void orxAppendSealLine(std::string& out, const OrxDecisionLogSeal& seal);

// "sha256:" and the hex SHA-256 of the domain tag, a zero byte and the line: the line's domain digest,
// which is that of its canonical value since the line is its canonical text.
std::string orxDecisionLogLineDigest(std::string_view domain, std::string_view line);

struct OrxDecisionLogLine {
  enum class Type { record, seal };
  Type type = Type::record;
  OrxDecisionRecord record;
  OrxDecisionLogSeal seal;
};

// A decision field's value as a record writes it: "true"/"false", the integer, or the case's name.
std::string orxDecisionFieldText(const OrxDecisionField& field, std::int32_t value);

// Reads one line strictly: canonical JSON, exactly the keys of a record or a seal, every number in its
// field's range (facts and decision fields 32-bit, never wrapped), every name a case of its field.
// Throws std::runtime_error saying what is wrong (the caller adds where).
OrxDecisionLogLine orxReadDecisionLogLine(std::string_view line);

}  // namespace ravo::orx::internal
