#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <ravo-orx/adapters/pixmor/PixmorORXHostError.h>
#include <ravo-orx/adapters/pixmor/UnavailablePixmorORXTransport.h>
#include "adapters/pixmor/tests/PixmorORXTestSupport.h"

namespace ravo::orx {

namespace {

using Outcome = PixmorORXTelemetryEvent::Outcome;
using pixmor_test::makeRequest;
using pixmor_test::ScriptedTransport;
using pixmor_test::validAnswer;

// Turns a valid answer into the text the transport hands over.
using Answer = std::function<std::string(RavoJSON)>;

Answer edit(std::function<void(RavoJSON&)> mutate) {
  return [mutate](RavoJSON json) {
    mutate(json);
    return json.dump();
  };
}

RavoJSON listOf(const RavoJSON& item, size_t count) { return RavoJSON(std::vector<RavoJSON>(count, item)); }

std::string repeated(const std::string& piece, size_t count) {
  std::string text;
  while (count--) text += piece;
  return text;
}

// Proposes through a host over the transport and checks the telemetry event and, unless the outcome
// is orx, that the proposal is exactly the fallback with the outcome's reason.
PixmorORXResponse expectOutcome(std::shared_ptr<PixmorORXTransport> transport, const PixmorORXRequest& request,
                                Outcome expected, const std::string& name) {
  pixmor_test::TelemetryLog log;
  const auto response = PixmorORXHost(std::move(transport), 60'000, log.sink()).propose(request);
  const auto events = log.events();
  EXPECT_EQ(events.size(), 1u) << name;
  for (const auto& event : events) {
    EXPECT_EQ(event.outcome(), expected) << name;
    EXPECT_EQ(event.ability(), request.ability()) << name;
    EXPECT_GE(event.durationMilliseconds(), 0) << name;
  }
  const auto reason = expected == Outcome::timeout   ? "ORX timed out; local proposal used"
                      : expected == Outcome::invalid ? "ORX response rejected; local proposal used"
                                                     : "ORX unavailable; local proposal used";
  if (expected != Outcome::orx) {
    EXPECT_EQ(response, PixmorORXHost::fallback(request, reason)) << name;
  }
  return response;
}

TEST(PixmorORXHost, AcceptsOnlyAnswersThatFitTheRequest) {
  const auto request = makeRequest("restore detail", true, "denoise");
  const std::string woman = "\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x92\xBB";  // one character of 11 bytes
  const std::string accented = "e\xCC\x81";                                 // one character of 3 bytes
  const struct {
    const char* name;
    Answer answer;
    Outcome expected;
  } cases[] = {
      {"unchanged", edit([](RavoJSON&) {}), Outcome::orx},
      {"unchecked fields", edit([](RavoJSON& j) {
         j["origin"] = "localFallback", j["fallbackReason"] = "any", j["unknownKey"] = 1;
         j["executionPolicy"]["allowModelRequest"] = j["executionPolicy"]["preferGPUPreview"] = false;
       }), Outcome::orx},
      {"other schema", edit([](RavoJSON& j) { j["schema"] = "ravo.pixmor.orx.v2"; }), Outcome::invalid},
      {"other request", edit([](RavoJSON& j) { j["requestID"] = RavoUUID::random().uuidString(); }), Outcome::invalid},
      {"other ability", edit([](RavoJSON& j) { j["ability"] = "pixmor_node_defaults"; }), Outcome::invalid},
      {"12 stages, repeated", edit([](RavoJSON& j) { j["pipelineNodeKinds"] = listOf("mlRestore", 12); }), Outcome::orx},
      {"13 stages", edit([](RavoJSON& j) { j["pipelineNodeKinds"] = listOf("mlRestore", 13); }), Outcome::invalid},
      {"stage in other case", edit([](RavoJSON& j) { j["pipelineNodeKinds"][1] = "mlrestore"; }), Outcome::invalid},
      {"12 defaults", edit([](RavoJSON& j) { j["nodeDefaults"] = listOf(j["nodeDefaults"][0], 12); }), Outcome::orx},
      {"13 defaults", edit([](RavoJSON& j) { j["nodeDefaults"] = listOf(j["nodeDefaults"][0], 13); }), Outcome::invalid},
      {"defaults of unknown stage", edit([](RavoJSON& j) { j["nodeDefaults"][0]["nodeKind"] = "sharpen"; }), Outcome::invalid},
      {"six keys at the range ends", edit([](RavoJSON& j) {
         j["nodeDefaults"][0]["values"] = {{"strength", 0}, {"detailRecovery", 1}, {"structureProtection", 0.0},
                                           {"naturalness", 1.0}, {"temporalStability", 0.5}, {"maskInfluence", 1e-9}};
       }), Outcome::orx},
      {"unknown key", edit([](RavoJSON& j) { j["nodeDefaults"][0]["values"]["Strength"] = 0.5; }), Outcome::invalid},
      {"value 1.5", edit([](RavoJSON& j) { j["nodeDefaults"][0]["values"]["strength"] = 1.5; }), Outcome::invalid},
      {"value below 0", edit([](RavoJSON& j) { j["nodeDefaults"][0]["values"]["strength"] = -0.01; }), Outcome::invalid},
      {"4 plans", edit([](RavoJSON& j) { j["variantPlans"].push_back(j["variantPlans"][0]); }), Outcome::orx},
      {"5 plans", edit([](RavoJSON& j) { j["variantPlans"] = listOf(j["variantPlans"][0], 5); }), Outcome::invalid},
      {"empty name", edit([](RavoJSON& j) { j["variantPlans"][0]["name"] = ""; }), Outcome::invalid},
      {"48-character name", edit([&](RavoJSON& j) { j["variantPlans"][0]["name"] = repeated(woman, 48); }), Outcome::orx},
      {"49-character name", edit([&](RavoJSON& j) { j["variantPlans"][0]["name"] = repeated("n", 49); }), Outcome::invalid},
      {"empty emphasis", edit([](RavoJSON& j) { j["variantPlans"][0]["emphasis"] = ""; }), Outcome::orx},
      {"120-character emphasis", edit([&](RavoJSON& j) { j["variantPlans"][0]["emphasis"] = repeated(accented, 120); }), Outcome::orx},
      {"121-character emphasis", edit([&](RavoJSON& j) { j["variantPlans"][0]["emphasis"] = repeated(accented, 121); }), Outcome::invalid},
      {"8 steps", edit([](RavoJSON& j) { j["guidedSteps"] = listOf("Step.", 8); }), Outcome::orx},
      {"9 steps", edit([](RavoJSON& j) { j["guidedSteps"] = listOf("Step.", 9); }), Outcome::invalid},
      {"220-character step", edit([&](RavoJSON& j) { j["guidedSteps"][2] = repeated(woman, 220); }), Outcome::orx},
      {"221-character step", edit([&](RavoJSON& j) { j["guidedSteps"][2] = repeated("s", 221); }), Outcome::invalid},
      {"262144 pixels", edit([](RavoJSON& j) { j["executionPolicy"]["previewMaxPixels"] = 262144; }), Outcome::orx},
      {"16777216 pixels", edit([](RavoJSON& j) { j["executionPolicy"]["previewMaxPixels"] = 16777216; }), Outcome::orx},
      {"262143 pixels", edit([](RavoJSON& j) { j["executionPolicy"]["previewMaxPixels"] = 262143; }), Outcome::invalid},
      {"16777217 pixels", edit([](RavoJSON& j) { j["executionPolicy"]["previewMaxPixels"] = 16777217; }), Outcome::invalid},
      {"no confirmation", edit([](RavoJSON& j) { j["executionPolicy"]["requiresUserConfirmation"] = false; }), Outcome::invalid},
      // Answers that do not decode count as no service.
      {"origin missing", edit([](RavoJSON& j) { j.erase("origin"); }), Outcome::fallback},
      {"unknown ability", edit([](RavoJSON& j) { j["ability"] = "pixmor_upscale"; }), Outcome::fallback},
      {"pixels as text", edit([](RavoJSON& j) { j["executionPolicy"]["previewMaxPixels"] = "262144"; }), Outcome::fallback},
      {"pixels past 64 bits", edit([](RavoJSON& j) { j["executionPolicy"]["previewMaxPixels"] = UINT64_MAX; }), Outcome::fallback},
      {"not an object", edit([](RavoJSON& j) { j = RavoJSON::array({1, 2}); }), Outcome::fallback},
      {"truncated", [](RavoJSON j) { return j.dump().substr(0, 200); }, Outcome::fallback},
      {"not JSON", [](RavoJSON) { return std::string("<html>502</html>"); }, Outcome::fallback},
      {"ill-formed UTF-8", [](RavoJSON) { return std::string("{\"schema\":\"\xC3\x28\"}"); }, Outcome::fallback},
      {"number past double", [](RavoJSON) { return std::string(R"({"schema":1e999})"); }, Outcome::fallback},
      {"deep nesting", [](RavoJSON) { return std::string(200000, '[') + std::string(200000, ']'); }, Outcome::fallback},
      {"huge", [](RavoJSON j) { return j.dump() + std::string(1 << 20, ' '); }, Outcome::fallback},
  };
  for (const auto& c : cases) {
    const std::string answer = c.answer(validAnswer(request));
    const auto response = expectOutcome(std::make_shared<ScriptedTransport>([&](const auto&) { return answer; }),
                                        request, c.expected, c.name);
    if (c.expected == Outcome::orx) {
      EXPECT_EQ(response, PixmorORXResponse::fromJSONText(answer)) << c.name;
    }
  }

  // JSON cannot carry a NaN, so it is checked in memory.
  const auto valid = PixmorORXResponse::fromJSON(validAnswer(request));
  const PixmorORXResponse withNaN(valid.schema(), valid.requestID(), valid.ability(), valid.pipelineNodeKinds(),
                                  {{"denoise", {{"strength", std::numeric_limits<double>::quiet_NaN()}}}},
                                  valid.variantPlans(), valid.executionPolicy(), valid.guidedSteps(),
                                  valid.stageExplanation(), valid.origin(), valid.fallbackReason());
  EXPECT_TRUE(PixmorORXHost::isValid(valid, request));
  EXPECT_FALSE(PixmorORXHost::isValid(withNaN, request));
}

TEST(PixmorORXHost, TransportFailuresFallBackByKind) {
  auto throwing = [](auto error) {
    return std::make_shared<ScriptedTransport>([error](const auto&) -> std::string { throw error; });
  };
  const std::tuple<const char*, std::shared_ptr<PixmorORXTransport>, Outcome> cases[] = {
      {"no service", std::make_shared<UnavailablePixmorORXTransport>(), Outcome::fallback},
      {"transport error", throwing(std::runtime_error("connection reset")), Outcome::fallback},
      {"not an exception", throwing(42), Outcome::fallback},
      {"transport timed out", throwing(PixmorORXHostError(PixmorORXHostError::Code::timedOut)), Outcome::timeout},
      {"transport rejected", throwing(PixmorORXHostError(PixmorORXHostError::Code::invalidResponse)), Outcome::invalid},
  };
  for (const auto& [name, transport, expected] : cases) {
    expectOutcome(transport, makeRequest("sky", false, std::nullopt, {false, false, 0, 0}, PixmorORXAbility::guidedEditing),
                  expected, name);
  }
  // A failing telemetry sink does not cost the surface its proposal.
  const auto request = makeRequest("warm");
  PixmorORXHost host(std::make_shared<UnavailablePixmorORXTransport>(), 10,
                     [](const PixmorORXTelemetryEvent&) { throw std::runtime_error("sink full"); });
  EXPECT_EQ(host.propose(request), PixmorORXHost::fallback(request, PixmorORXHost::unavailableReason));
}

TEST(PixmorORXHost, FallbackStagesFollowTheIntent) {
  const struct {
    const char* intent;
    bool hasPeople;
    std::vector<std::string> stages;
    std::vector<std::string> defaults;
  } cases[] = {
      {"add grain, make it warm, fix the sky", false,
       {"original", "rawDecode", "toneRecovery", "denoise", "relight", "colorGrade", "previewOutput"},
       {"toneRecovery", "denoise", "relight"}},
      {"crop it square", false, {"original", "rawDecode", "toneRecovery", "previewOutput"}, {"toneRecovery"}},
      {"", true, {"original", "rawDecode", "toneRecovery", "subjectMatte", "previewOutput"}, {"toneRecovery"}},
      {"RESTORE the Detail, fix the colour", false,
       {"original", "rawDecode", "toneRecovery", "detailSynthesis", "previewOutput"}, {"toneRecovery", "detailSynthesis"}},
      {"S\xE2\x84\xAAY", false,  // the Kelvin sign lowercases to "k"
       {"original", "rawDecode", "toneRecovery", "relight", "previewOutput"}, {"toneRecovery", "relight"}},
      {"denoise, sharpen, brighten: warm", true,
       {"original", "rawDecode", "toneRecovery", "denoise", "subjectMatte", "detailSynthesis", "relight", "colorGrade",
        "previewOutput"},
       {"toneRecovery", "denoise", "detailSynthesis", "relight"}},
  };
  for (const auto& c : cases) {
    const auto request = makeRequest(c.intent, c.hasPeople);
    const auto response = PixmorORXHost::fallback(request, "why");
    EXPECT_EQ(response.pipelineNodeKinds(), c.stages) << c.intent;
    std::vector<std::string> defaultKinds;
    for (const auto& defaults : response.nodeDefaults()) defaultKinds.push_back(defaults.nodeKind());
    EXPECT_EQ(defaultKinds, c.defaults) << c.intent;
    EXPECT_TRUE(PixmorORXHost::isValid(response, request)) << c.intent;
  }
}

TEST(PixmorORXHost, FallbackPolicyFollowsTheDeviceAndIgnoresThePhoto) {
  const std::pair<PixmorORXExecutionFacts, PixmorORXExecutionPolicy> cases[] = {
      {{true, true, 0, 3}, {2073600, true, true, true}},
      {{true, false, 0, 0}, {1048576, true, false, true}},
      {{true, true, 1, 0}, {2073600, false, true, true}},
      {{false, true, 0, 0}, {2073600, false, true, true}},
  };
  for (const auto& [device, policy] : cases) {
    const auto request = makeRequest("detail", false, "denoise", device, PixmorORXAbility::explainStage);
    const auto response = PixmorORXHost::fallback(request, PixmorORXHost::timedOutReason);
    EXPECT_EQ(response.executionPolicy(), policy);
    EXPECT_EQ(response.requestID(), request.requestID());
    EXPECT_EQ(response.ability(), PixmorORXAbility::explainStage);
    EXPECT_EQ(response.origin(), PixmorORXResponseOrigin::localFallback);
    EXPECT_EQ(response.fallbackReason(), "ORX timed out; local proposal used");
    EXPECT_EQ(response.stageExplanation(), "denoise is inspected as a preview stage; it never edits the source file.");
  }
  const auto request = makeRequest("detail");
  const PixmorORXRequest otherPhoto(request.ability(), request.intent(), {"mlRestore"}, std::nullopt,
                                    PixmorORXImageFacts(1, 1, false, false, 99),
                                    PixmorORXExecutionFacts(true, true, 0, 9), request.requestID());
  EXPECT_EQ(PixmorORXHost::fallback(request, "r"), PixmorORXHost::fallback(otherPhoto, "r"));
}

TEST(PixmorORXHost, TimeoutsAreAtLeastOneMillisecondAndClampedToSixtyFourBits) {
  const auto request = makeRequest("warm");
  const std::string answer = validAnswer(request).dump();
  const auto transport = std::make_shared<ScriptedTransport>([&](const auto&) { return answer; });
  // The largest count of milliseconds whose nanoseconds fit in 64 bits: floor((2^64 - 1) / 10^6).
  constexpr std::uint64_t maximum = 18'446'744'073'709;
  const std::pair<std::uint64_t, std::uint64_t> cases[] = {
      {0, 1'000'000}, {1, 1'000'000}, {250, 250'000'000}, {maximum, maximum * 1'000'000},
      {maximum + 1, maximum * 1'000'000}, {UINT64_MAX, maximum * 1'000'000},
  };
  for (const auto& [milliseconds, nanoseconds] : cases) {
    const PixmorORXHost host(transport, milliseconds);
    EXPECT_EQ(host.timeoutNanoseconds(), nanoseconds) << milliseconds;
    if (milliseconds > 1000) {  // the largest timeouts still wait for, and take, an answer given at once
      EXPECT_EQ(host.propose(request).origin(), PixmorORXResponseOrigin::orx) << milliseconds;
    }
  }
  EXPECT_THROW(PixmorORXHost(nullptr, 1), std::invalid_argument);
}

}  // namespace

}  // namespace ravo::orx
