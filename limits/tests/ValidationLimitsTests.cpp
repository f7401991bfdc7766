// Validators given far more than they allow report the one size issue, whether the oversized record
// was built in memory or arrived as a model's JSON answer.

#include <gtest/gtest.h>

#include <ravo-orx/contracts/scenarios/RavoScenarioCatalog.h>
#include <ravo-orx/contracts/services/RavoHomeInventoryValidator.h>
#include <ravo-orx/contracts/services/RavoJSONScenarioDraftProposer.h>
#include "contracts/services/tests/RavoScenarioDraftingTestSupport.h"

namespace ravo::orx {

namespace {

constexpr int kHundredThousand = 100'000;

RavoUUID numberedUUID(std::uint32_t n) {
  RavoUUID::Bytes bytes{};
  for (int i = 0; i < 4; ++i) bytes[15 - i] = static_cast<std::uint8_t>(n >> (8 * i));
  return RavoUUID(bytes);
}

RavoScenarioGraph manualTriggers(int count) {
  const RavoScenarioNodeTypeID manual("ravo.trigger.manual");
  std::vector<RavoScenarioNodeInstance> nodes;
  nodes.reserve(count);
  for (int i = 0; i < count; ++i) nodes.emplace_back(numberedUUID(i), manual, "1.0.0", std::vector<std::string>{});
  return {std::move(nodes), {}, {}};
}

// The model's answer, written out directly: building it through the records would cost more than
// the drafting it exercises.
std::string manualTriggersAnswer(int count) {
  std::string nodes;
  for (int i = 0; i < count; ++i) {
    if (i > 0) nodes += ',';
    nodes += R"({"id":")" + numberedUUID(i).uuidString() +
             R"(","nodeType":"ravo.trigger.manual","nodeVersion":"1.0.0","stableTargetIDs":[]})";
  }
  return R"({"title":"Many buttons","graph":{"nodes":[)" + nodes + R"(],"edges":[],"requestedCapabilities":[]}})";
}

RavoHomeInventorySnapshot lights(int count) {
  std::vector<RavoHomeInventoryDevice> devices;
  devices.reserve(count);
  for (int i = 0; i < count; ++i) {
    devices.emplace_back("light." + std::to_string(i), RavoHomeInventoryDeviceKind::light, "Lamp", std::nullopt,
                         std::vector{RavoHomeInventoryCapability::power}, true);
  }
  return {RavoHomeProviderID("home.local"), RavoTimePoint{}, std::move(devices)};
}

TEST(ValidationLimits, OversizedGraphsAndInventoriesYieldOnlyTheirSizeIssue) {
  using ScenarioIssue = RavoScenarioValidationIssue;
  using HomeIssue = RavoHomeInventoryValidationIssue;
  const auto& catalog = RavoScenarioBuiltInCatalog::definitions();
  struct ScenarioCase {
    int nodes;
    std::vector<ScenarioIssue> expected;
  };
  for (const auto& c : {ScenarioCase{kHundredThousand, {ScenarioIssue::graphTooLarge(kHundredThousand, 256)}},
                        ScenarioCase{257, {ScenarioIssue::graphTooLarge(257, 256)}}, ScenarioCase{256, {}}}) {
    const RavoScenarioDraft draft(numberedUUID(0), "Many buttons", manualTriggers(c.nodes),
                                  RavoScenarioActivationRequest::notRequested, RavoScenarioLifecycle::draft);
    EXPECT_EQ(RavoScenarioCatalog::validate(draft, catalog), c.expected) << c.nodes << " nodes";
  }

  struct HomeCase {
    int devices;
    std::vector<HomeIssue> expected;
  };
  for (const auto& c : {HomeCase{kHundredThousand, {HomeIssue::tooManyDevices(kHundredThousand, 512)}},
                        HomeCase{513, {HomeIssue::tooManyDevices(513, 512)}}, HomeCase{512, {}}}) {
    EXPECT_EQ(RavoHomeInventoryValidator::validate(lights(c.devices)), c.expected) << c.devices << " devices";
  }
}

// An answer of 10^5 nodes is far past the 1 MiB answer cap and is refused unread (the proposer throws,
// so the service reports the provider as failed); one just past the node limit is read and refused
// with the size issue.
TEST(ValidationLimits, DraftingAnswersWithTooManyNodesAreRefused) {
  struct Case {
    int nodes;
    RavoScenarioDraftingOutcome expected;
  };
  const Case cases[] = {
      {kHundredThousand, RavoScenarioDraftingOutcome::rejected(RavoScenarioDraftingRejection::providerFailed())},
      {257, RavoScenarioDraftingOutcome::rejected(RavoScenarioDraftingRejection::invalidDraft(
                {RavoScenarioValidationIssue::graphTooLarge(257, 256)}))},
  };
  for (const auto& c : cases) {
    const std::string answer = manualTriggersAnswer(c.nodes);
    auto service = drafting_test::builtInService();
    RavoJSONScenarioDraftProposer proposer([&](const std::string&) { return answer; });
    const auto outcome = service.draft("add a button", false,
                                       drafting_test::eligible(RavoModelProviderDescriptor::appleFoundationModels()),
                                       proposer);
    EXPECT_EQ(outcome, c.expected) << c.nodes << " nodes, " << answer.size() << " bytes";
  }
}

}  // namespace

}  // namespace ravo::orx
