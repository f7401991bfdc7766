#pragma once
// One decision as the decision log keeps it: a fixed-size, trivially copyable value, so that the
// decision path only copies it into a buffer allocated when the log was made. The log renders it as
// canonical JSON later, on its own thread (OrxDecisionLogFormat.h).
//
// The recorder is what a decider hands each decision's record to while it holds its lock; the
// decision log is one, replay keeps the last record instead.

#include <array>
#include <cstdint>
#include <mutex>
#include <span>
#include <string_view>
#include <type_traits>

#include <ravo-orx/runtime/OrxDecisionKinds.h>

namespace ravo::orx::internal {

inline constexpr std::size_t kOrxMaxFacts = 13;
inline constexpr std::size_t kOrxMaxDecisionFields = 4;
// A valid emission has five values; a longer one (which validation refuses) is kept by its first eight
// values and its length, so a hostile module cannot make a record grow.
inline constexpr std::size_t kOrxLoggedEmits = 8;
inline constexpr std::size_t kOrxDigestHexLength = 64;

struct OrxDecisionRecord {
  std::uint64_t sequence = 0;
  std::int64_t monotonicNanoseconds = 0;
  std::int64_t wallNanoseconds = 0;  // filled when the record is written
  OrxDecisionKindID kind = OrxDecisionKindID::authorization;
  OrxDecisionSource source = OrxDecisionSource::policy;
  bool hasModule = false;
  bool hasEmission = false;
  std::uint32_t emittedLength = 0;  // how many values the module emitted, saturated at 2^32 - 1
  std::array<char, kOrxDigestHexLength> moduleSha256{};
  std::array<std::int32_t, kOrxMaxFacts> facts{};
  std::array<std::int32_t, kOrxLoggedEmits> emitted{};
  std::array<std::int32_t, kOrxMaxDecisionFields> decision{};

  const OrxDecisionKind& kindEntry() const { return orxDecisionKind(kind); }
  std::span<const std::int32_t> factValues() const { return {facts.data(), kindEntry().factNames.size()}; }
  std::span<const std::int32_t> decisionValues() const { return {decision.data(), kindEntry().decisionFields.size()}; }
  std::span<const std::int32_t> emittedValues() const {
    return {emitted.data(), emittedLength < kOrxLoggedEmits ? emittedLength : kOrxLoggedEmits};
  }
  std::string_view moduleDigest() const { return {moduleSha256.data(), moduleSha256.size()}; }
};
static_assert(std::is_trivially_copyable_v<OrxDecisionRecord>);

// A decision's fields as the record holds them, in declaration order (OrxDecisionKind::decisionFields).
constexpr std::array<std::int32_t, kOrxMaxDecisionFields> orxDecisionFieldValues(const OrxAuthorizationDecision& d) {
  return {d.isAllowed ? 1 : 0, rawValue(d.reason), d.policyVersion, 0};
}
constexpr std::array<std::int32_t, kOrxMaxDecisionFields> orxDecisionFieldValues(const OrxSyncDecision& d) {
  return {rawValue(d.action), d.rateX1000, d.correctionMilliseconds, d.reason};
}
constexpr std::array<std::int32_t, kOrxMaxDecisionFields> orxDecisionFieldValues(const OrxCinemaAdmissionDecision& d) {
  return {rawValue(d.route), d.sparseAnchorIntervalFrames, d.safeBudgetTenthsMilliseconds, rawValue(d.reason)};
}

class OrxDecisionRecorder {
 public:
  // Before the decision, with the decider's lock held: a recorder that must not lose records waits
  // here for room, releasing the lock while it waits (so that the room it waits for is still there
  // when the record is appended, and records keep the order of the decisions).
  virtual void waitForRoom(std::unique_lock<std::mutex>& decisionLock) = 0;
  // With the decider's lock held: numbers the record, stamps its time and copies it; no allocation,
  // no call-out. False when there was no room: the record's number is then declared dropped.
  virtual bool append(OrxDecisionRecord& record) noexcept = 0;
  // After the lock is released, for a record append() had no room for.
  virtual void overflowed(const OrxDecisionRecord& record) noexcept = 0;

 protected:
  ~OrxDecisionRecorder() = default;
};

}  // namespace ravo::orx::internal
