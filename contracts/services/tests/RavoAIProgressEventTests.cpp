#include <gtest/gtest.h>

#include <ravo-orx/contracts/services/RavoAIProgressEvent.h>

namespace ravo::orx {

namespace {

using namespace std::chrono;

template <class E>
std::vector<std::string_view> labelTexts() {
  std::vector<std::string_view> texts;
  for (const auto& [label, text] : ORXRawValueTable<E>::entries) {
    EXPECT_EQ(RavoJSONCodec<E>::decode(RavoJSONCodec<E>::encode(label), "label"), label) << text;
    texts.push_back(text);
  }
  return texts;
}

TEST(RavoAIProgressEvent, PhasesAndOperationsListInOrderAndRoundTrip) {
  EXPECT_EQ(labelTexts<RavoAIProgressPhase>(),
            (std::vector<std::string_view>{"received", "localResolution", "capabilityCheck", "hostEffect",
                                           "providerLookup", "replyReady", "blocked", "failed"}));
  EXPECT_EQ(labelTexts<RavoAIOperation>(),
            (std::vector<std::string_view>{"navigation", "mediaTransport", "audioVolume", "librarySearch",
                                           "mediaPlayback", "providerPlayback", "playlistWrite", "nowPlayingRead",
                                           "assistantReply", "smartHomeControl", "scenarioLoopback"}));
}

TEST(RavoAIProgressEvent, EncodesKeysInOrderAndDecodesBackOrRefuses) {
  auto id = *RavoUUID::parse("0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9");
  RavoAIProgressEvent event(id, 7, RavoAIProgressPhase::blocked, RavoAIOperation::smartHomeControl, -2,
                            sys_days{2026y / November / 23} + 3h + 40min + 5s + 125ms);
  const RavoJSON json = event.toJSON();
  EXPECT_EQ(json.dump(),
            R"({"id":"0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9","sequence":7,"phase":"blocked",)"
            R"("operation":"smartHomeControl","source":-2,"timestamp":"2026-11-23T03:40:05.125Z"})");
  EXPECT_EQ(RavoAIProgressEvent::fromJSON(json), event);

  struct Case {
    const char* key;
    RavoJSON value;
    const char* message;
  };
  const Case cases[] = {
      {"phase", "paused", "RavoAIProgressEvent.phase: unknown value \"paused\""},
      {"operation", "kettle", "RavoAIProgressEvent.operation: unknown value \"kettle\""},
      {"source", 4294967296LL, "RavoAIProgressEvent.source: integer out of range"},
      {"sequence", 1.5, "RavoAIProgressEvent.sequence: expected an integer, found a number"},
      {"timestamp", "yesterday",
       "RavoAIProgressEvent.timestamp: malformed time \"yesterday\" (expected RFC 3339, e.g. 2026-01-31T12:00:00.000Z)"},
      {"id", "0a1b", "RavoAIProgressEvent.id: malformed UUID \"0a1b\""},
  };
  for (const auto& c : cases) {
    RavoJSON broken = json;
    broken[c.key] = c.value;
    try {
      RavoAIProgressEvent::fromJSON(broken);
      ADD_FAILURE() << c.key;
    } catch (const RavoJSONDecodingError& error) {
      EXPECT_STREQ(error.what(), c.message);
    }
  }
}

}  // namespace

}  // namespace ravo::orx
