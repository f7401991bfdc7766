#include <ravo-orx/contracts/services/RavoKettleLoopbackPlan.h>

#include <algorithm>
#include <chrono>

namespace ravo::orx {

namespace {

using Code = RavoKettleLoopbackPlan::Error::Code;

const char* describe(Code code) {
  switch (code) {
    case Code::invalidDuration: return "kettle run time must be from 240 to 14400 seconds";
    case Code::invalidEarlyNotice: return "kettle early notice must be from 180 to 300 seconds and less than the run time";
    case Code::invalidPollInterval: return "kettle poll interval must be from 60 to 300 seconds";
  }
  return "invalid kettle plan";
}

// `time` moved by `seconds` (backwards when `earlier`), saturating at the ends of the representable
// range: decoded plans are taken as they stand, so their second counts need not fit in nanoseconds.
RavoTimePoint shifted(RavoTimePoint time, std::int64_t seconds, bool earlier) {
  constexpr auto latest = RavoTimePoint::max();
  constexpr auto earliest = RavoTimePoint::min();
  std::int64_t offset = 0;
  std::int64_t result = 0;
  if (__builtin_mul_overflow(seconds, std::int64_t{1'000'000'000}, &offset)) {
    return (seconds > 0) != earlier ? latest : earliest;
  }
  const std::int64_t base = time.time_since_epoch().count();
  if (earlier ? __builtin_sub_overflow(base, offset, &result) : __builtin_add_overflow(base, offset, &result)) {
    return (offset > 0) != earlier ? latest : earliest;
  }
  return RavoTimePoint(std::chrono::nanoseconds(result));
}

}  // namespace

RavoKettleLoopbackPlan::Error::Error(Code code) : std::invalid_argument(describe(code)), code_(code) {}

RavoKettleLoopbackPlan::RavoKettleLoopbackPlan(RavoUUID id, RavoTimePoint startedAt, std::int64_t durationSeconds,
                                               std::int64_t earlyNoticeSeconds, std::int64_t pollIntervalSeconds)
    : RavoKettleLoopbackPlan(AsGiven{}, id, startedAt, shifted(startedAt, durationSeconds, false), earlyNoticeSeconds,
                             pollIntervalSeconds) {
  if (durationSeconds < minimumDurationSeconds || durationSeconds > maximumDurationSeconds) {
    throw Error(Code::invalidDuration);
  }
  if (earlyNoticeSeconds < minimumEarlyNoticeSeconds || earlyNoticeSeconds > maximumEarlyNoticeSeconds ||
      earlyNoticeSeconds >= durationSeconds) {
    throw Error(Code::invalidEarlyNotice);
  }
  if (pollIntervalSeconds < minimumPollIntervalSeconds || pollIntervalSeconds > maximumPollIntervalSeconds) {
    throw Error(Code::invalidPollInterval);
  }
}

RavoKettleLoopbackPlan::RavoKettleLoopbackPlan(AsGiven, RavoUUID id, RavoTimePoint startedAt,
                                               RavoTimePoint expectedReadyAt, std::int64_t earlyNoticeSeconds,
                                               std::int64_t pollIntervalSeconds)
    : id_(id),
      startedAt_(startedAt),
      expectedReadyAt_(expectedReadyAt),
      earlyNoticeSeconds_(earlyNoticeSeconds),
      pollIntervalSeconds_(pollIntervalSeconds) {}

RavoTimePoint RavoKettleLoopbackPlan::earlyNoticeAt() const {
  return shifted(expectedReadyAt_, earlyNoticeSeconds_, true);
}

RavoKettleLoopbackTick RavoKettleLoopbackPlan::tick(RavoTimePoint now, bool earlyNoticeDelivered) const {
  using Phase = RavoKettleLoopbackPhase;
  const RavoTimePoint ready = expectedReadyAt_;
  const RavoTimePoint notice = earlyNoticeAt();
  if (now >= ready) return {Phase::expectedReady, std::nullopt, true};
  if (now < notice) return {Phase::waiting, notice, false};
  const RavoTimePoint nextPoll = std::min(shifted(now, pollIntervalSeconds_, false), ready);
  if (!earlyNoticeDelivered) return {Phase::earlyNotice, nextPoll, true};
  return {Phase::waiting, nextPoll, false};
}

RavoJSON RavoKettleLoopbackPlan::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", id_)
      .add("startedAt", startedAt_)
      .add("expectedReadyAt", expectedReadyAt_)
      .add("earlyNoticeSeconds", earlyNoticeSeconds_)
      .add("pollIntervalSeconds", pollIntervalSeconds_)
      .take();
}

RavoKettleLoopbackPlan RavoKettleLoopbackPlan::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoKettleLoopbackPlan");
  return RavoKettleLoopbackPlan{AsGiven{},
                                reader.required<RavoUUID>("id"),
                                reader.required<RavoTimePoint>("startedAt"),
                                reader.required<RavoTimePoint>("expectedReadyAt"),
                                reader.required<std::int64_t>("earlyNoticeSeconds"),
                                reader.required<std::int64_t>("pollIntervalSeconds")};
}

}  // namespace ravo::orx
