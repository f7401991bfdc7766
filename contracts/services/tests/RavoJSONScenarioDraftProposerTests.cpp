#include <gtest/gtest.h>

#include <ravo-orx/contracts/services/RavoJSONScenarioDraftProposer.h>
#include "contracts/services/tests/RavoScenarioDraftingTestSupport.h"

namespace ravo::orx {

namespace {

using namespace drafting_test;

// A hand-written model answer: a voice trigger feeding a volume action, parts listed out of order.
constexpr const char* kGoodAnswer = R"({
  "title": "Quieter at night",
  "graph": {
    "nodes": [
      {"id": "00000000-0000-0000-0000-000000000002", "nodeType": "ravo.player.volume.set", "nodeVersion": "1.0.0",
       "stableTargetIDs": ["player.main"],
       "actionBinding": {"arguments": {"level": {"kind": "number", "number": 0.2}}}},
      {"id": "00000000-0000-0000-0000-000000000001", "nodeType": "ravo.trigger.voice", "nodeVersion": "1.0.0",
       "stableTargetIDs": []}
    ],
    "edges": [{"fromNodeID": "00000000-0000-0000-0000-000000000001", "outputKey": "event",
               "toNodeID": "00000000-0000-0000-0000-000000000002", "inputKey": "event"}],
    "requestedCapabilities": ["ravo.audio.volume"]
  },
  "unresolvedQuestions": ["Which player?", "  "]
})";

RavoScenarioDraftingRequest sampleRequest() {
  return {RavoUUID::random(), 1, "make it quieter at night", true,
          {{RavoScenarioNodeTypeID("ravo.trigger.voice"), "1.0.0", RavoScenarioNodeKind::trigger, {}}}};
}

TEST(RavoJSONScenarioDraftProposer, ReadsAGoodAnswerPlainOrFenced) {
  const auto request = sampleRequest();
  for (std::string answer : {std::string(kGoodAnswer), "```json\n" + std::string(kGoodAnswer) + "\n```"}) {
    auto response = RavoJSONScenarioDraftProposer::parseAnswer(answer, request);
    EXPECT_EQ(response.requestID(), request.id());
    EXPECT_EQ(response.draft().title(), "Quieter at night");
    EXPECT_EQ(response.draft().graph().nodes().front().id(), numbered(1));  // put in normal order
    EXPECT_EQ(response.draft().activationRequest(), RavoScenarioActivationRequest::notRequested);
    EXPECT_EQ(response.unresolvedQuestions(), std::vector<std::string>{"Which player?"});
  }
}

TEST(RavoJSONScenarioDraftProposer, RefusesMalformedAnswers) {
  const auto request = sampleRequest();
  auto withGraph = [](const char* graph) { return std::string(R"({"title": "t", "graph": )") + graph + "}"; };
  struct Case {
    std::string answer;
    const char* messageStart;
  };
  const Case cases[] = {
      {"", "malformed JSON"},
      {"Sure! Here is your scenario: {}", "malformed JSON"},
      {"[1, 2]", "model answer: expected an object, found an array"},
      {R"({"graph": {"nodes": [], "edges": [], "requestedCapabilities": []}})", "model answer.title: missing key"},
      {withGraph(R"({"nodes": [], "edges": []})"), "RavoScenarioGraph.requestedCapabilities: missing key"},
      {withGraph(R"({"nodes": [{"id": "n1", "nodeType": "ravo.trigger.voice", "nodeVersion": "1.0.0",
                     "stableTargetIDs": []}], "edges": [], "requestedCapabilities": []})"),
       "RavoScenarioNodeInstance.id: malformed UUID"},
      {R"({"title": "t", "graph": {"nodes": [], "edges": [], "requestedCapabilities": []},
           "unresolvedQuestions": "Which lamp?"})",
       "model answer.unresolvedQuestions: expected an array"},
      {"```json\n{\"title\": 1}", "malformed JSON"},
      {"{}" + std::string(1048574, ' '), "model answer.title: missing key"},
      {"{}" + std::string(1048575, ' '),
       "model answer: answer of 1048577 bytes exceeds the limit of 1048576"},
  };
  for (const auto& c : cases) {
    try {
      RavoJSONScenarioDraftProposer::parseAnswer(c.answer, request);
      ADD_FAILURE() << "accepted " << c.answer;
    } catch (const RavoJSONDecodingError& error) {
      EXPECT_TRUE(std::string_view(error.what()).starts_with(c.messageStart)) << error.what();
    }
  }
}

TEST(RavoJSONScenarioDraftProposer, DraftsThroughTheServiceWithAModelCallback) {
  auto service = builtInService();
  const auto provider = eligible(RavoModelProviderDescriptor::appleFoundationModels());
  std::string prompt;
  RavoJSONScenarioDraftProposer good([&](const std::string& text) {
    prompt = text;
    return std::string(kGoodAnswer);
  });
  auto outcome = service.draft("make it quieter at night", true, provider, good);
  ASSERT_NE(outcome.accepted(), nullptr);
  EXPECT_EQ(outcome.accepted()->unresolvedQuestions, std::vector<std::string>{"Which player?"});
  EXPECT_NE(prompt.find(R"("userText":"make it quieter at night","localOnly":true)"), std::string::npos);
  EXPECT_NE(prompt.find(R"({"id":"ravo.player.volume.set","version":"1.0.0","kind":"action","actionParameters":[)"),
            std::string::npos);

  RavoJSONScenarioDraftProposer rambling([](const std::string&) { return std::string("I cannot help with that."); });
  EXPECT_EQ(service.draft("make it quieter", true, provider, rambling).rejection()->kind(),
            RavoScenarioDraftingRejection::Kind::providerFailed);
}

}  // namespace

}  // namespace ravo::orx
