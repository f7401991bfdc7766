#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>
#include <unordered_set>

#include <ravo-orx/contracts/services/RavoKettleLoopbackPlan.h>

namespace ravo::orx {

namespace {

using std::chrono::seconds;
using Code = RavoKettleLoopbackPlan::Error::Code;
using Phase = RavoKettleLoopbackPhase;

const RavoTimePoint start = std::chrono::sys_days{std::chrono::November / 23 / 2026} + std::chrono::hours(6);

TEST(RavoKettleLoopbackPlan, ConstructionChecksEachBoundInOrder) {
  struct Case {
    std::int64_t duration, earlyNotice, poll;
    std::optional<Code> expected;
  };
  const Case cases[] = {
      {240, 180, 60, std::nullopt},        {14400, 300, 300, std::nullopt},
      {239, 180, 60, Code::invalidDuration}, {14401, 180, 60, Code::invalidDuration},
      {239, 179, 59, Code::invalidDuration}, {240, 240, 60, Code::invalidEarlyNotice},
      {600, 179, 60, Code::invalidEarlyNotice}, {600, 301, 60, Code::invalidEarlyNotice},
      {600, 179, 59, Code::invalidEarlyNotice}, {600, 180, 59, Code::invalidPollInterval},
      {600, 180, 301, Code::invalidPollInterval},
  };
  for (const auto& c : cases) {
    try {
      const RavoKettleLoopbackPlan plan(RavoUUID::random(), start, c.duration, c.earlyNotice, c.poll);
      EXPECT_FALSE(c.expected) << c.duration << "/" << c.earlyNotice << "/" << c.poll;
      EXPECT_EQ(plan.expectedReadyAt(), start + seconds(c.duration));
      EXPECT_EQ(plan.earlyNoticeAt(), start + seconds(c.duration - c.earlyNotice));
    } catch (const RavoKettleLoopbackPlan::Error& error) {
      EXPECT_EQ(error.code(), c.expected) << c.duration << "/" << c.earlyNotice << "/" << c.poll;
    }
  }
}

TEST(RavoKettleLoopbackPlan, ErrorsAreEqualAndHashAlikeByTheirCode) {
  using Error = RavoKettleLoopbackPlan::Error;
  const std::unordered_set<Error> errors = {Error(Code::invalidDuration), Error(Code::invalidEarlyNotice),
                                            Error(Code::invalidPollInterval), Error(Code::invalidDuration)};
  EXPECT_EQ(errors.size(), 3u);
  EXPECT_TRUE(errors.contains(Error(Code::invalidPollInterval)));
  EXPECT_EQ(std::hash<Error>{}(Error(Code::invalidEarlyNotice)), std::hash<Error>{}(Error(Code::invalidEarlyNotice)));
}

TEST(RavoKettleLoopbackPlan, TicksFollowTheScheduleBoundariesIncluded) {
  const RavoKettleLoopbackPlan plan(RavoUUID::random(), start, 600, 180, 60);
  const auto at = [](int s) { return start + seconds(s); };
  struct Case {
    int now;
    bool delivered;
    RavoKettleLoopbackTick expected;
  };
  const Case cases[] = {
      {-30, false, {Phase::waiting, at(420), false}},
      {100, false, {Phase::waiting, at(420), false}},
      {100, true, {Phase::waiting, at(420), false}},
      {419, false, {Phase::waiting, at(420), false}},
      {420, false, {Phase::earlyNotice, at(480), true}},
      {420, true, {Phase::waiting, at(480), false}},
      {550, false, {Phase::earlyNotice, at(600), true}},
      {580, true, {Phase::waiting, at(600), false}},
      {600, false, {Phase::expectedReady, std::nullopt, true}},
      {600, true, {Phase::expectedReady, std::nullopt, true}},
      {7200, true, {Phase::expectedReady, std::nullopt, true}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(plan.tick(at(c.now), c.delivered), c.expected) << c.now << (c.delivered ? " delivered" : "");
  }
  const auto tick = plan.tick(at(420), false);
  EXPECT_EQ(tick.toJSON().dump(), R"({"phase":"earlyNotice","nextCheckAt":"2026-11-23T06:08:00.000Z","shouldNotify":true})");
  EXPECT_EQ(RavoKettleLoopbackTick::fromJSON(tick.toJSON()), tick);
  EXPECT_FALSE(plan.tick(at(600), false).toJSON().contains("nextCheckAt"));
}

TEST(RavoKettleLoopbackPlan, DecodedPlansAreTakenAsTheyStandAndTickSafely) {
  const RavoKettleLoopbackPlan plan(RavoUUID::random(), start, 600, 180, 60);
  EXPECT_EQ(RavoKettleLoopbackPlan::fromJSON(parseRavoJSON(plan.toJSON().dump())), plan);
  EXPECT_EQ(plan.toJSON()["expectedReadyAt"], "2026-11-23T06:10:00.000Z");

  auto json = plan.toJSON();
  json["earlyNoticeSeconds"] = std::numeric_limits<std::int64_t>::max();
  json["pollIntervalSeconds"] = std::numeric_limits<std::int64_t>::max();
  const auto unchecked = RavoKettleLoopbackPlan::fromJSON(json);
  EXPECT_EQ(unchecked.earlyNoticeAt(), RavoTimePoint::min());
  EXPECT_EQ(unchecked.tick(start, false), (RavoKettleLoopbackTick{Phase::earlyNotice, plan.expectedReadyAt(), true}));
  json["earlyNoticeSeconds"] = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(RavoKettleLoopbackPlan::fromJSON(json).tick(start, true),
            (RavoKettleLoopbackTick{Phase::waiting, RavoTimePoint::max(), false}));
  json.erase("pollIntervalSeconds");
  EXPECT_THROW(RavoKettleLoopbackPlan::fromJSON(json), RavoJSONDecodingError);
}

}  // namespace

}  // namespace ravo::orx
