#include <gtest/gtest.h>

#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>
#include "contracts/services/tests/RavoScenarioDraftingTestSupport.h"

namespace ravo::orx {

namespace {

using namespace drafting_test;
using Kind = RavoScenarioDraftingRejection::Kind;
using Rejection = RavoScenarioDraftingRejection;
using State = RavoModelProviderState;

std::string repeated(const std::string& piece, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += piece;
  return text;
}

TEST(RavoScenarioDraftingService, RefusalsAndGenerations) {
  const auto onDevice = eligible(RavoModelProviderDescriptor::appleFoundationModels());
  const auto cloud = eligible(RavoModelProviderDescriptor::openAICompatibleCloud(), true);
  FunctionProposer answers([](const auto& request) { return answer(request); });
  FunctionProposer throws([](const auto&) -> RavoScenarioDraftingResponse { throw std::runtime_error("offline"); });
  FunctionProposer answersAnother([](const auto&) {
    return RavoScenarioDraftingResponse(RavoUUID::random(), RavoUUID::random(), proposedDraft(), {});
  });
  FunctionProposer schedules([](const auto& request) { return answer(request, proposedDraft("ravo.trigger.schedule")); });

  struct Case {
    const char* name;
    std::string text;
    bool localOnly;
    RavoModelProviderRecord provider;
    RavoScenarioDraftProposer& proposer;
    std::optional<Rejection> expected;  // nothing: accepted
    std::int64_t generationAfter;
  };
  const Case cases[] = {
      {"blank text", " \n\t \r\n ", false, onDevice, answers, Rejection::emptyRequest(), 0},
      {"4001 bytes", repeated("a", 4001), false, onDevice, answers, Rejection::requestTooLarge(), 0},
      {"4500 bytes in 1500 characters", repeated("\u20AC", 1500), false, onDevice, answers,
       Rejection::requestTooLarge(), 0},
      {"cloud while local only", "dim the lights", true, cloud, answers,
       Rejection::providerIneligible(RavoModelProviderLifecycleError::localOnlyViolation()), 0},
      {"provider not yet eligible", "dim the lights", false,
       RavoModelProviderRecord(RavoModelProviderDescriptor::ollamaLoopback(), State::healthy, false), answers,
       Rejection::providerIneligible(RavoModelProviderLifecycleError::invalidTransition(State::healthy, State::eligible)),
       0},
      {"4000 bytes after trimming", "  " + repeated("a", 4000) + "\n", false, onDevice, answers, std::nullopt, 1},
      {"cloud when leaving the device is fine", "dim the lights", false, cloud, answers, std::nullopt, 2},
      {"proposer fails", "dim the lights", false, onDevice, throws, Rejection::providerFailed(), 3},
      {"answer to another request", "dim the lights", false, onDevice, answersAnother,
       Rejection::providerResponseDoesNotMatchRequest(), 4},
      {"schedule cannot be armed by the model", "every night at ten", false, onDevice, schedules,
       Rejection::invalidDraft({RavoScenarioValidationIssue::recurringScheduleNeedsActivation()}),
       5},
  };
  auto service = builtInService();
  for (const auto& c : cases) {
    auto outcome = service.draft(c.text, c.localOnly, c.provider, c.proposer);
    if (c.expected) {
      ASSERT_NE(outcome.rejection(), nullptr) << c.name;
      EXPECT_EQ(*outcome.rejection(), *c.expected) << c.name;
    } else {
      EXPECT_NE(outcome.accepted(), nullptr) << c.name;
    }
    EXPECT_EQ(service.latestGeneration(), c.generationAfter) << c.name;
  }
}

TEST(RavoScenarioDraftingService, AcceptedDraftIsUnarmedAndQuestionsAreCleaned) {
  std::vector<std::string> questions = {"  Which lamp?\n", " \n ", repeated("\u0435\u0301", 200)};
  for (int i = 3; i <= 11; ++i) questions.push_back(i == 7 ? "" : "Question " + std::to_string(i));
  std::optional<RavoScenarioDraftingRequest> seen;
  FunctionProposer proposer([&](const auto& request) {
    seen = request;
    return RavoScenarioDraftingResponse(RavoUUID::random(), request.id(), proposedDraft(), questions);
  });
  auto service = builtInService();
  auto outcome = service.draft("  quiet evenings  ", true,
                               eligible(RavoModelProviderDescriptor::appleFoundationModels()), proposer);
  ASSERT_NE(outcome.accepted(), nullptr);
  const auto& accepted = *outcome.accepted();
  EXPECT_EQ(accepted.providerID, RavoModelProviderID::appleFoundationModels());
  EXPECT_EQ(accepted.draft.activationRequest(), RavoScenarioActivationRequest::notRequested);
  EXPECT_EQ(accepted.draft.lifecycle(), RavoScenarioLifecycle::draft);
  EXPECT_EQ(accepted.draft.graph(), proposedDraft().graph());
  EXPECT_EQ(accepted.unresolvedQuestions,
            (std::vector<std::string>{"Which lamp?", repeated("\u0435\u0301", 160), "Question 3", "Question 4",
                                      "Question 5", "Question 6", "Question 8", "Question 9"}));

  ASSERT_TRUE(seen);
  EXPECT_EQ(seen->userText(), "quiet evenings");
  EXPECT_TRUE(seen->localOnly());
  EXPECT_EQ(seen->generation(), 1);
  const auto& hints = seen->allowedNodes();
  EXPECT_TRUE(std::is_sorted(hints.begin(), hints.end(),
                             [](const auto& a, const auto& b) { return a.id().rawValue() < b.id().rawValue(); }));
  auto hint = [&](const char* id) {
    auto found = std::find_if(hints.begin(), hints.end(), [&](const auto& h) { return h.id().rawValue() == id; });
    return found == hints.end() ? nullptr : &*found;
  };
  EXPECT_EQ(hint("ravo.action.mcp-call"), nullptr);
  ASSERT_NE(hint("ravo.player.volume.set"), nullptr);
  EXPECT_EQ(hint("ravo.player.volume.set")->actionParameters().size(), 1u);
  ASSERT_NE(hint("ravo.trigger.schedule"), nullptr);
  EXPECT_TRUE(hint("ravo.trigger.schedule")->actionParameters().empty());
}

TEST(RavoScenarioDraftingService, AnAnswerIsAcceptedOnce) {
  const RavoUUID responseID = RavoUUID::random();
  auto invalid = proposedDraft("ravo.trigger.schedule");
  bool sendInvalid = true;
  FunctionProposer resends([&](const auto& request) {
    return RavoScenarioDraftingResponse(responseID, request.id(), sendInvalid ? invalid : proposedDraft(), {});
  });
  auto service = builtInService();
  const auto provider = eligible(RavoModelProviderDescriptor::lmStudioLoopback());
  // Refused for its draft, but recorded: sending it again, even corrected, is a duplicate.
  EXPECT_EQ(service.draft("lights", false, provider, resends).rejection()->kind(), Kind::invalidDraft);
  sendInvalid = false;
  EXPECT_EQ(*service.draft("lights", false, provider, resends).rejection(), Rejection::duplicateResponse());
}

TEST(RavoScenarioDraftingService, NodeHintsSortTheirParametersAndRoundTrip) {
  const auto& volume = *RavoApplicationActionCatalog::descriptor(RavoPlayerActionIDs::setVolume());
  auto parameters = volume.parameters();
  parameters.insert(parameters.begin(), RavoActionParameterSchema({.key = "ramp", .kind = RavoActionValueKind::integer}));
  RavoScenarioDraftingNodeHint hint(RavoScenarioNodeTypeID("ravo.player.volume.set"), "1.0.0",
                                    RavoScenarioNodeKind::action, parameters);
  EXPECT_EQ(hint.actionParameters().front().key(), "level");
  RavoJSON json = hint.toJSON();
  EXPECT_EQ(json.begin().key(), "id");
  EXPECT_EQ(RavoScenarioDraftingNodeHint::fromJSON(json), hint);
  json["kind"] = "sensor";
  EXPECT_THROW(RavoScenarioDraftingNodeHint::fromJSON(json), RavoJSONDecodingError);
}

}  // namespace

}  // namespace ravo::orx
