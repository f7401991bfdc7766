#pragma once
// When a started kettle will be ready, one early notice shortly before, and the readiness notice. The
// host keeps no timer for it: it calls `tick` whenever it wakes and sleeps until the tick's next check.

#include <cstdint>
#include <functional>
#include <stdexcept>

#include <ravo-orx/contracts/services/RavoKettleLoopbackTick.h>
#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoTime.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoKettleLoopbackPlan {
 public:
  class Error : public std::invalid_argument {
   public:
    enum class Code { invalidDuration, invalidEarlyNotice, invalidPollInterval };

    explicit Error(Code code);

    Code code() const { return code_; }
    friend bool operator==(const Error& a, const Error& b) { return a.code_ == b.code_; }

   private:
    Code code_;
  };

  // Bounds of the constructor's arguments, in seconds, all inclusive.
  static constexpr std::int64_t minimumDurationSeconds = 240;
  static constexpr std::int64_t maximumDurationSeconds = 14'400;
  static constexpr std::int64_t minimumEarlyNoticeSeconds = 180;  // and less than the duration
  static constexpr std::int64_t maximumEarlyNoticeSeconds = 300;
  static constexpr std::int64_t minimumPollIntervalSeconds = 60;
  static constexpr std::int64_t maximumPollIntervalSeconds = 300;

  // Throws Error for the first argument out of bounds, checked in the order of the parameters.
  RavoKettleLoopbackPlan(RavoUUID id, RavoTimePoint startedAt, std::int64_t durationSeconds,
                         std::int64_t earlyNoticeSeconds, std::int64_t pollIntervalSeconds);

  const RavoUUID& id() const { return id_; }
  RavoTimePoint startedAt() const { return startedAt_; }
  RavoTimePoint expectedReadyAt() const { return expectedReadyAt_; }
  std::int64_t earlyNoticeSeconds() const { return earlyNoticeSeconds_; }
  std::int64_t pollIntervalSeconds() const { return pollIntervalSeconds_; }  // longest sleep once notice is near
  RavoTimePoint earlyNoticeAt() const;

  // Where the plan stands at `now`, given whether the early notice was already delivered. Before the
  // notice period the next check is its start; within it checks come at most a poll interval apart and
  // never after the ready time.
  RavoKettleLoopbackTick tick(RavoTimePoint now, bool earlyNoticeDelivered) const;

  RavoJSON toJSON() const;
  // Takes the values as they stand, without the constructor's bounds.
  static RavoKettleLoopbackPlan fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoKettleLoopbackPlan&, const RavoKettleLoopbackPlan&) = default;

 private:
  struct AsGiven {};
  RavoKettleLoopbackPlan(AsGiven, RavoUUID id, RavoTimePoint startedAt, RavoTimePoint expectedReadyAt,
                         std::int64_t earlyNoticeSeconds, std::int64_t pollIntervalSeconds);

  RavoUUID id_;
  RavoTimePoint startedAt_;
  RavoTimePoint expectedReadyAt_;
  std::int64_t earlyNoticeSeconds_;
  std::int64_t pollIntervalSeconds_;
};

}  // namespace ravo::orx

template <>
struct std::hash<ravo::orx::RavoKettleLoopbackPlan::Error> {
  size_t operator()(const ravo::orx::RavoKettleLoopbackPlan::Error& error) const noexcept {
    return std::hash<ravo::orx::RavoKettleLoopbackPlan::Error::Code>{}(error.code());
  }
};
