#include <gtest/gtest.h>

#include <optional>
#include <string>

#include <ravo-orx/contracts/scenarios/RavoScenarioGraph.h>
#include "contracts/scenarios/tests/RavoScenarioDecodingOutcome.h"

namespace ravo::orx {

namespace {

using Outcome = RavoScenarioDecodingOutcome<RavoScenarioGraph>;

// fromJSON over parseRavoJSON is the oracle: reading the text directly must give its graph or its error.
TEST(RavoScenarioGraphTextReading, GivesTheGraphOrTheErrorOfTheDocumentPath) {
  const std::string node =
      R"({"id":"00000000-0000-0000-0000-0000000000a1","nodeType":"ravo.trigger.manual","nodeVersion":"1.0.0",)"
      R"("stableTargetIDs":["b","a"]})";
  const std::string actionNode =
      R"({"actionBinding":{"arguments":{"level":{"kind":"number","number":0.5}}},)"
      R"("id":"00000000-0000-0000-0000-0000000000B1","nodeType":"ravo.player.volume.set","nodeVersion":"1.0.0",)"
      R"("stableTargetIDs":[]})";
  const std::string edge =
      R"({"toNodeID":"00000000-0000-0000-0000-0000000000b1","inputKey":"in","fromNodeID":)"
      R"("00000000-0000-0000-0000-0000000000A1","outputKey":"out"})";
  const auto graph = [&](const std::string& nodes, const std::string& edges, const std::string& capabilities) {
    return R"({ "nodes" : )" + nodes + R"(, "edges": )" + edges + R"(, "requestedCapabilities": )" + capabilities + "}";
  };
  const std::string texts[] = {
      graph("[" + node + "," + actionNode + "]", "[" + edge + "," + edge + "]", R"(["ravo.b","ravo.a"])"),
      graph("[]", "[]", "[]"),
      R"({"edges":[],"requestedCapabilities":[],"nodes":[]})",
      graph("[" + node + "]", R"([{"fromNodeID":"x","outputKey":"o","toNodeID":"y","inputKey":"i"}])", "[]"),
      graph("[]", R"([{"fromNodeID":"00000000-0000-0000-0000-000000000001","outputKey":"o","inputKey":"i"}])", "[]"),
      graph("[]", R"([{"fromNodeID":"00000000-0000-0000-0000-000000000001","outputKey":1,"toNodeID":"00000000-0000-0000-0000-000000000001","inputKey":"i"}])", "[]"),
      graph("[]", "[" + edge.substr(0, edge.size() - 1) + R"(,"extra":true})" + "]", "[]"),
      graph("[]", "[" + edge.substr(0, edge.size() - 1) + R"(,"inputKey":"again"})" + "]", "[]"),
      graph("[]", R"({"not":"a list"})", "[]"),
      graph("[]", "[[]]", "[]"),
      graph(R"([{"id":"00000000-0000-0000-0000-0000000000a1"}])", "[]", "[]"),
      graph(R"([{"id":"00000000-0000-0000-0000-0000000000a1","id":"00000000-0000-0000-0000-0000000000a2",)"
            R"("nodeType":"t","nodeVersion":"1","stableTargetIDs":[]}])", "[]", "[]"),
      // Two edges members: the document keeps the last one.
      R"({"nodes":[],"edges":[)" + edge + R"(],"edges":[],"requestedCapabilities":[]})",
      graph("[]", R"([{"fromNodeID":"00000000-0000-0000-0000-000000000001","outputKey":"o",)"
                  R"("toNodeID":"00000000-0000-0000-0000-000000000002"}])", "[]"),
      graph("[]", R"([{"fromNodeID":"00000000-0000-0000-0000-000000000001","outputKey":"o","toNodeID":"x",)"
                  R"("inputKey":"i"}])", "[]"),
      R"({"nodes":[],"requestedCapabilities":[]})",
      graph("[]", "[]", "[1]"),
      graph("[]", "[]", "[]").substr(1),
      R"({"nodes":[],"edges":[]})",
      R"({"nodes":[],"edges":[],"requestedCapabilities":[],"note":"extra"})",
      R"({"nodes":[],"edges":[],"edges":[],"requestedCapabilities":[]})",
      R"({"nodes":[],"edges":[],"requestedCapabilities":[]} x)",
      "[]",
      graph(std::string(600, '[') + std::string(600, ']'), "[]", "[]"),
  };
  for (const auto& text : texts) {
    const Outcome expected = Outcome::of([&] { return RavoScenarioGraph::fromJSON(parseRavoJSON(text)); });
    const Outcome read = Outcome::of([&] { return RavoScenarioGraph::fromJSONText(text); });
    EXPECT_EQ(read.error, expected.error) << text;
    EXPECT_EQ(read.record, expected.record) << text;
  }
}

}  // namespace

}  // namespace ravo::orx
