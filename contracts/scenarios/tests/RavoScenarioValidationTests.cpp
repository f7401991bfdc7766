#include <gtest/gtest.h>

#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioBuiltInCatalog.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioCatalog.h>
#include "contracts/scenarios/tests/RavoScenarioTestUUID.h"

namespace ravo::orx {

namespace {

using Issue = RavoScenarioValidationIssue;
using Activation = RavoScenarioActivationRequest;
using Capability = RavoScenarioCapability;
using Type = RavoScenarioNodeTypeID;

RavoUUID nodeID(int n) { return ravoTestUUID(n); }

RavoScenarioNodeInstance node(int n, const char* type, const char* version = "1.0.0",
                              std::optional<RavoActionArguments> arguments = std::nullopt) {
  std::optional<RavoScenarioActionBinding> binding;
  if (arguments) binding = RavoScenarioActionBinding(*arguments);
  return {nodeID(n), Type(type), version, {}, binding};
}

RavoScenarioEdge edge(int from, int to, const char* output = "event", const char* input = "event") {
  return {nodeID(from), output, nodeID(to), input};
}

std::vector<Issue> validate(std::vector<RavoScenarioNodeInstance> nodes, std::vector<RavoScenarioEdge> edges,
                            std::vector<Capability> capabilities, Activation activation = Activation::notRequested,
                            const std::vector<RavoScenarioNodeDefinition>& definitions =
                                RavoScenarioBuiltInCatalog::definitions()) {
  RavoScenarioDraft draft(RavoUUID::random(), "test",
                          RavoScenarioGraph(std::move(nodes), std::move(edges), std::move(capabilities)), activation,
                          RavoScenarioLifecycle::draft);
  return RavoScenarioCatalog::validate(draft, definitions);
}

std::string describe(const std::vector<Issue>& issues) {
  std::string text;
  for (const auto& issue : issues) text += issue.description() + " ";
  return text;
}

const std::vector<Capability> kPlaybackCapabilities = {Capability::audioVolume(), Capability::mediaTransport()};

RavoScenarioNodeDefinition customDefinition(const char* id, RavoScenarioExecutionBounds bounds,
                                            RavoScenarioReversibility reversibility) {
  return RavoScenarioNodeDefinition({.id = Type(id),
                                     .version = "1.0.0",
                                     .kind = RavoScenarioNodeKind::control,
                                     .inputKeys = {"event"},
                                     .outputKeys = {"event"},
                                     .reversibility = reversibility,
                                     .bounds = bounds});
}

TEST(RavoScenarioCatalog, ValidationCases) {
  const auto reversible = RavoScenarioReversibility::reversible;
  const std::vector<RavoScenarioNodeDefinition> custom = {
      customDefinition("test.retry.negative", {20, -1, 60, 1}, reversible),
      customDefinition("test.retry.four", {20, 4, 60, 1}, reversible),
      customDefinition("test.parallel.zero", {20, 0, 60, 0}, reversible),
      customDefinition("test.parallel.nine", {20, 0, 60, 9}, reversible),
      customDefinition("test.edge.bounds", {1, 3, 1, 8}, reversible),
      customDefinition("test.irreversible", RavoScenarioExecutionBounds::manualAction(),
                       RavoScenarioReversibility::irreversible),
      customDefinition("test.repeated", RavoScenarioExecutionBounds::manualAction(), reversible),
      customDefinition("test.repeated", {0, 0, 0, 0}, reversible),
  };
  const RavoActionArguments quiet = {{"level", RavoActionValue::number(0.2)}};
  const RavoActionArguments tooLoud = {{"level", RavoActionValue::number(2.0)}};

  struct Case {
    const char* name;
    std::vector<Issue> actual;
    std::vector<Issue> expected;
  };
  const Case cases[] = {
      {"trigger to playback action is valid",
       validate({node(1, "ravo.trigger.manual"), node(2, "ravo.action.playback")}, {edge(1, 2)}, kPlaybackCapabilities),
       {}},
      {"undeclared capability",
       validate({node(1, "ravo.trigger.manual"), node(2, "ravo.action.playback")}, {edge(1, 2)},
                {Capability::audioVolume()}),
       {Issue::missingCapability(Capability::mediaTransport())}},
      {"disabled node type and an edge touching it",
       validate({node(1, "ravo.trigger.manual"), node(2, "ravo.action.mcp-call")}, {edge(1, 2)}, {}),
       {Issue::unknownOrDisabledNode(Type("ravo.action.mcp-call")), Issue::unknownEdgeEndpoint()}},
      {"unknown node type", validate({node(1, "ravo.trigger.telepathy")}, {}, {}),
       {Issue::unknownOrDisabledNode(Type("ravo.trigger.telepathy"))}},
      {"version mismatch skips the node's other checks",
       validate({node(1, "ravo.trigger.manual"), node(2, "ravo.action.playback", "1.0"),
                 node(3, "ravo.player.volume.set", "2.0.0")},
                {edge(1, 2)}, {}),
       {Issue::nodeVersionMismatch(Type("ravo.action.playback")),
        Issue::nodeVersionMismatch(Type("ravo.player.volume.set")), Issue::unknownEdgeEndpoint()}},
      {"edge from and to a node that does not exist",
       validate({node(1, "ravo.trigger.manual")}, {edge(1, 9), edge(9, 1)}, {}),
       {Issue::unknownEdgeEndpoint(), Issue::unknownEdgeEndpoint()}},
      {"wrong output and input keys",
       validate({node(1, "ravo.trigger.manual"), node(2, "ravo.condition.time-window")}, {edge(1, 2, "result", "input")},
                {}),
       {Issue::missingOutputKey(), Issue::missingInputKey()}},
      {"action nodes have no outputs",
       validate({node(1, "ravo.action.home"), node(2, "ravo.condition.time-window")}, {edge(1, 2)},
                {Capability::homeControl()}),
       {Issue::missingOutputKey()}},
      {"two conditions in a loop",
       validate({node(1, "ravo.condition.time-window"), node(2, "ravo.condition.time-window")},
                {edge(1, 2), edge(2, 1)}, {}),
       {Issue::cycleDetected()}},
      {"a condition feeding itself", validate({node(1, "ravo.condition.time-window")}, {edge(1, 1)}, {}),
       {Issue::cycleDetected()}},
      {"parallel edges are no cycle",
       validate({node(1, "ravo.trigger.manual"), node(2, "ravo.control.wait"), node(3, "ravo.control.confirm")},
                {edge(1, 2), edge(1, 2), edge(2, 3), edge(1, 3)}, {}),
       {}},
      {"schedule without activation", validate({node(1, "ravo.trigger.schedule")}, {}, {}),
       {Issue::recurringScheduleNeedsActivation()}},
      {"schedule armed once", validate({node(1, "ravo.trigger.schedule")}, {}, {}, Activation::oneShot), {}},
      {"schedule of the wrong version needs nothing", validate({node(1, "ravo.trigger.schedule", "0.9")}, {}, {}),
       {Issue::nodeVersionMismatch(Type("ravo.trigger.schedule"))}},
      {"bounds out of range, for every node of the type",
       validate({node(1, "test.retry.negative"), node(2, "test.retry.four"), node(3, "test.parallel.zero"),
                 node(4, "test.parallel.nine"), node(5, "test.retry.four"), node(6, "test.edge.bounds")},
                {}, {}, Activation::notRequested, custom),
       {Issue::invalidBounds(Type("test.retry.negative")), Issue::invalidBounds(Type("test.retry.four")),
        Issue::invalidBounds(Type("test.parallel.zero")), Issue::invalidBounds(Type("test.parallel.nine")),
        Issue::invalidBounds(Type("test.retry.four"))}},
      {"irreversible without confirmation",
       validate({node(1, "test.irreversible")}, {}, {}, Activation::notRequested, custom),
       {Issue::irreversibleWithoutConfirmation(Type("test.irreversible"))}},
      {"a repeated definition: the first counts",
       validate({node(1, "test.repeated")}, {}, {}, Activation::notRequested, custom), {}},
      {"action node without binding",
       validate({node(1, "ravo.player.volume.set")}, {}, {Capability::audioVolume()}),
       {Issue::missingActionBinding(Type("ravo.player.volume.set"))}},
      {"action node with arguments out of range",
       validate({node(1, "ravo.player.volume.set", "1.0.0", tooLoud)}, {}, {Capability::audioVolume()}),
       {Issue::invalidActionArguments(Type("ravo.player.volume.set"))}},
      {"action node with good arguments",
       validate({node(1, "ravo.player.volume.set", "1.0.0", quiet)}, {}, {Capability::audioVolume()}), {}},
      {"a binding on a native node is not inspected",
       validate({node(1, "ravo.trigger.manual", "1.0.0", tooLoud)}, {}, {}), {}},
      {"repeated node id is reported once and still counts as one node",
       validate({node(1, "ravo.trigger.manual"), node(1, "ravo.trigger.manual"), node(2, "ravo.trigger.manual"),
                 node(2, "ravo.trigger.manual")},
                {}, {}),
       {Issue::duplicateNodeID(nodeID(1))}},
      {"every step in order",
       validate({node(1, "ravo.trigger.schedule"), node(1, "ravo.trigger.schedule"), node(2, "ravo.action.playback"),
                 node(3, "ravo.nothing"), node(4, "ravo.condition.time-window"), node(5, "ravo.control.wait")},
                {edge(1, 2, "out"), edge(3, 4), edge(4, 5), edge(5, 4)}, {Capability::mediaTransport()}),
       {Issue::duplicateNodeID(nodeID(1)), Issue::missingCapability(Capability::audioVolume()),
        Issue::unknownOrDisabledNode(Type("ravo.nothing")), Issue::missingOutputKey(),
        Issue::unknownEdgeEndpoint(), Issue::cycleDetected(),
        Issue::recurringScheduleNeedsActivation()}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.actual, c.expected) << c.name << ": " << describe(c.actual);
  }
}

TEST(RavoScenarioCatalog, NodeCountLimit) {
  auto triggers = [](int count) {
    std::vector<RavoScenarioNodeInstance> nodes;
    for (int n = 0; n < count; ++n) nodes.push_back(node(n, n == 0 ? "ravo.action.mcp-call" : "ravo.trigger.manual"));
    return nodes;
  };
  EXPECT_EQ(validate(triggers(257), {edge(1, 1)}, {}), std::vector{Issue::graphTooLarge(257, 256)});
  EXPECT_EQ(validate(triggers(256), {}, {}),
            std::vector{Issue::unknownOrDisabledNode(Type("ravo.action.mcp-call"))});
}

TEST(RavoScenarioCatalog, BuiltInDefinitionsFollowTheActionCatalog) {
  const auto& definitions = RavoScenarioBuiltInCatalog::definitions();
  const auto& actions = RavoApplicationActionCatalog::scenarioNodeDefinitions();
  ASSERT_EQ(definitions.size(), actions.size() + 14);
  EXPECT_TRUE(std::equal(actions.begin(), actions.end(), definitions.begin()));

  const RavoScenarioNodeDefinition& schedule = definitions[actions.size() + 2];
  EXPECT_EQ(schedule.id(), Type("ravo.trigger.schedule"));
  EXPECT_EQ(schedule.schemaDigest(), "schema.ravo.trigger.schedule.v1");
  EXPECT_EQ(schedule.implementationDigest(), "adapter.ravo.native.schedule.v1");
  EXPECT_TRUE(schedule.inputKeys().empty());

  const RavoScenarioNodeDefinition& mcp = definitions.back();
  EXPECT_EQ(mcp.id(), Type("ravo.action.mcp-call"));
  EXPECT_FALSE(mcp.isEnabled());
  EXPECT_EQ(mcp.egressPolicy(), RavoScenarioDataEgressPolicy::approvedProviderOnly);
  EXPECT_EQ(mcp.confirmation(), RavoScenarioConfirmationPolicy::explicitReview);
  EXPECT_TRUE(mcp.outputKeys().empty());
  for (const auto& definition : definitions) {
    EXPECT_EQ(definition.bounds(), RavoScenarioExecutionBounds::manualAction()) << definition.id().rawValue();
  }
}

}  // namespace

}  // namespace ravo::orx
