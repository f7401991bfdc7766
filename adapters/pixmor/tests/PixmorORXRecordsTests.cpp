#include <gtest/gtest.h>

#include "adapters/pixmor/tests/PixmorORXTestSupport.h"

namespace ravo::orx {

namespace {

TEST(PixmorORXRecords, RoundTripThroughJSONLeavingAbsentOptionalsOut) {
  const auto withStage = pixmor_test::makeRequest("warm it up", true, "relight");
  const auto withoutStage = pixmor_test::makeRequest("warm it up");
  for (const auto& request : {withStage, withoutStage}) {
    EXPECT_EQ(PixmorORXRequest::fromJSON(parseRavoJSON(request.toJSON().dump())), request);
  }
  EXPECT_EQ(withStage.toJSON()["selectedNodeKind"], "relight");
  EXPECT_FALSE(withoutStage.toJSON().contains("selectedNodeKind"));

  const auto full = PixmorORXHost::fallback(withStage, "reason");
  const auto bare = PixmorORXHost::fallback(withoutStage, "reason");
  ASSERT_TRUE(full.stageExplanation());
  EXPECT_EQ(PixmorORXResponse::fromJSONText(full.toJSON().dump()), full);
  RavoJSON json = bare.toJSON();
  EXPECT_FALSE(json.contains("stageExplanation"));
  json.erase("fallbackReason");
  EXPECT_FALSE(PixmorORXResponse::fromJSON(json).fallbackReason());

  const PixmorORXTelemetryEvent event(PixmorORXAbility::guidedEditing, PixmorORXTelemetryEvent::Outcome::timeout, 7);
  EXPECT_EQ(event.toJSON().dump(), R"({"ability":"pixmor_guided_editing","outcome":"timeout","durationMilliseconds":7})");
  EXPECT_EQ(PixmorORXTelemetryEvent::fromJSON(event.toJSON()), event);
}

}  // namespace

}  // namespace ravo::orx
