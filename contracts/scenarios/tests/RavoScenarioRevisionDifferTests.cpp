#include <gtest/gtest.h>

#include <ravo-orx/contracts/scenarios/RavoScenarioRevisionDiffer.h>
#include "contracts/scenarios/tests/RavoScenarioTestUUID.h"

namespace ravo::orx {

namespace {

using Summary = RavoScenarioNodeReviewSummary;
using Change = RavoScenarioNodeVersionChange;
using Capability = RavoScenarioCapability;
using Type = RavoScenarioNodeTypeID;

RavoUUID numbered(int n) { return ravoTestUUID(n); }

struct Scenario {
  std::vector<RavoScenarioNodeInstance> nodes;
  std::vector<RavoScenarioEdge> edges = {};
  std::vector<Capability> capabilities = {};
  std::string title = "Lights";
  RavoScenarioActivationRequest activation = RavoScenarioActivationRequest::notRequested;
  RavoScenarioLifecycle lifecycle = RavoScenarioLifecycle::draft;

  RavoScenarioRevision revision(int id) const {
    RavoScenarioDraft draft(numbered(99), title, RavoScenarioGraph(nodes, edges, capabilities), activation, lifecycle);
    return {numbered(id), id, std::move(draft)};
  }
};

RavoScenarioNodeInstance home(int n, const char* version = "1.0.0", const char* target = "lamp") {
  return {numbered(n), Type("ravo.action.home"), version, {target}};
}
RavoScenarioNodeInstance trigger(int n) { return {numbered(n), Type("ravo.trigger.manual"), "1.0.0", {}}; }
RavoScenarioEdge edge(int from, int to) { return {numbered(from), "event", numbered(to), "event"}; }

Summary homeSummary(const char* version, const char* target = "lamp") {
  return {Type("ravo.action.home"), version, {target}};
}

const Scenario kBase = {.nodes = {trigger(1), home(2)}, .edges = {edge(1, 2)}, .capabilities = {Capability::homeControl()}};

template <class Edit>
Scenario edited(Edit edit) {
  Scenario scenario = kBase;
  edit(scenario);
  return scenario;
}

TEST(RavoScenarioRevisionDiffer, DiffCases) {
  using Fields = RavoScenarioRevisionDiff::Fields;
  struct Case {
    const char* name;
    Scenario from;
    Scenario to;
    Fields expected;  // revision ids are filled in: 1 for "from", 2 for "to"
  };
  const Case cases[] = {
      {"identical", kBase, kBase, {}},
      {"title only", kBase, edited([](Scenario& s) { s.title = "Lamps"; }), {.titleChanged = true}},
      {"labels only", kBase, edited([](Scenario& s) {
         s.lifecycle = RavoScenarioLifecycle::active;
         s.activation = RavoScenarioActivationRequest::recurring;
       }),
       {.lifecycleChanged = true, .activationRequestChanged = true}},
      {"re-created node is no change", kBase, edited([](Scenario& s) { s.nodes[1] = home(7); s.edges = {edge(1, 7)}; }),
       {.graphDigestChanged = true}},
      {"one node moved version", kBase, edited([](Scenario& s) { s.nodes[1] = home(2, "1.2.0"); }),
       {.graphDigestChanged = true,
        .changedNodeVersions = {Change(Type("ravo.action.home"), {"lamp"}, "1.0.0", "1.2.0")}}},
      {"a second identical node is one added node", kBase, edited([](Scenario& s) { s.nodes.push_back(home(3)); }),
       {.graphDigestChanged = true, .addedNodes = {homeSummary("1.0.0")}}},
      {"two versions on one side infer no change",
       edited([](Scenario& s) { s.nodes = {home(2), home(3, "2.0.0")}; }),
       edited([](Scenario& s) { s.nodes = {home(3, "2.0.0")}; }),
       {.graphDigestChanged = true, .removedNodes = {homeSummary("1.0.0")}, .edgeCountDelta = 0}},
      {"added and removed nodes are sorted by id",
       edited([](Scenario& s) { s.nodes = {home(2, "1.0.0", "lamp"), home(3, "1.0.0", "kettle")}; }),
       edited([](Scenario& s) { s.nodes = {home(4, "1.0.0", "fan"), home(5, "1.0.0", "door"), trigger(1)}; }),
       {.graphDigestChanged = true,
        .addedNodes = {homeSummary("1.0.0", "door"), homeSummary("1.0.0", "fan"),
                       Summary(Type("ravo.trigger.manual"), "1.0.0", {})},
        .removedNodes = {homeSummary("1.0.0", "kettle"), homeSummary("1.0.0", "lamp")}}},
      {"two edges removed and one added",
       edited([](Scenario& s) { s.edges = {edge(1, 2), edge(2, 1), edge(1, 1)}; }),
       edited([](Scenario& s) { s.edges = {edge(2, 2), edge(1, 1)}; }),
       {.graphDigestChanged = true, .edgeCountDelta = -1}},
      {"capabilities count once",
       edited([](Scenario& s) { s.capabilities = {Capability::homeControl(), Capability::homeControl()}; }),
       edited([](Scenario& s) {
         s.capabilities = {Capability::notification(), Capability::audioVolume(), Capability::notification()};
       }),
       {.graphDigestChanged = true,
        .addedCapabilities = {Capability::audioVolume(), Capability::notification()},
        .removedCapabilities = {Capability::homeControl()}}},
  };
  for (const auto& c : cases) {
    Fields expected = c.expected;
    expected.fromRevisionID = numbered(1);
    expected.toRevisionID = numbered(2);
    auto diff = RavoScenarioRevisionDiffer::compare(c.from.revision(1), c.to.revision(2));
    EXPECT_EQ(diff, RavoScenarioRevisionDiff(expected)) << c.name << ": " << diff.toJSON().dump();
  }
}

TEST(RavoScenarioRevisionDiffer, DiffRoundTripsThroughJSON) {
  auto diff = RavoScenarioRevisionDiffer::compare(
      kBase.revision(1), edited([](Scenario& s) { s.nodes = {home(2, "1.1.0"), home(3, "1.0.0", "fan")}; }).revision(2));
  ASSERT_EQ(diff.changedNodeVersions().size(), 1u);
  EXPECT_EQ(diff.changedNodeVersions().front().id(), "ravo.action.home|lamp|1.0.0|1.1.0");
  EXPECT_EQ(diff.addedNodes().front().id(), "ravo.action.home|1.0.0|fan");
  RavoJSON json = diff.toJSON();
  EXPECT_EQ(RavoScenarioRevisionDiff::fromJSON(parseRavoJSON(json.dump())), diff);
  json["removedNodes"][0]["nodeVersion"] = false;
  EXPECT_THROW(RavoScenarioRevisionDiff::fromJSON(json), RavoJSONDecodingError);
}

}  // namespace

}  // namespace ravo::orx
