#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <ravo-orx/contracts/scenarios/RavoScenarioCanonicalizer.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioEffectReceipt.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioEncodingError.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioRevision.h>

namespace ravo::orx {

namespace {

RavoUUID uuid(const char* text) { return RavoUUID::parse(text).value(); }

const RavoUUID kTrigger = uuid("00000000-0000-0000-0000-0000000000a1");
const RavoUUID kVolume = uuid("00000000-0000-0000-0000-0000000000B1");

RavoScenarioNodeInstance triggerNode() {
  return {kTrigger, RavoScenarioNodeTypeID("ravo.trigger.manual"), "1.0.0", {}};
}

RavoScenarioNodeInstance volumeNode(double level = 0.25) {
  return {kVolume, RavoScenarioNodeTypeID("ravo.player.volume.set"), "1.0.0", {"player/second", "player/main"},
          RavoScenarioActionBinding({{"level", RavoActionValue::number(level)}})};
}

RavoScenarioEdge triggerToVolume() { return {kTrigger, "event", kVolume, "event"}; }

RavoScenarioGraph smallGraph() {
  return {{volumeNode(), triggerNode()},
          {triggerToVolume()},
          {RavoScenarioCapability::mediaTransport(), RavoScenarioCapability::audioVolume()}};
}

RavoScenarioDraft draftOf(RavoScenarioGraph graph, std::string title = "Evening volume") {
  return {uuid("00000000-0000-0000-0000-0000000000D1"), std::move(title), std::move(graph),
          RavoScenarioActivationRequest::oneShot, RavoScenarioLifecycle::revoked};
}

std::vector<std::string> keysOf(const RavoJSON& json) {
  std::vector<std::string> keys;
  for (const auto& item : json.items()) keys.push_back(item.key());
  return keys;
}

TEST(RavoScenarioGraph, GoldenDigestOfASmallGraph) {
  // The text and its SHA-256 were written by hand and hashed with sha256sum, not by this code.
  const char* expectedText =
      R"({"edges":[{"fromNodeID":"00000000-0000-0000-0000-0000000000A1","inputKey":"event","outputKey":"event",)"
      R"("toNodeID":"00000000-0000-0000-0000-0000000000B1"}],"nodes":[{"id":"00000000-0000-0000-0000-0000000000A1",)"
      R"("nodeType":"ravo.trigger.manual","nodeVersion":"1.0.0","stableTargetIDs":[]},{"actionBinding":{"arguments":)"
      R"({"level":{"kind":"number","number":0.25}}},"id":"00000000-0000-0000-0000-0000000000B1","nodeType":)"
      R"("ravo.player.volume.set","nodeVersion":"1.0.0","stableTargetIDs":["player/main","player/second"]}],)"
      R"("requestedCapabilities":["ravo.audio.volume","ravo.media.transport"]})";
  EXPECT_EQ(RavoScenarioCanonicalizer::encodedGraph(smallGraph()), expectedText);
  EXPECT_EQ(RavoScenarioCanonicalizer::digest(smallGraph()),
            "ffaf20478f0bbdcab3d2e05ff87e4efa2dfacac6abf8ce61b8cfc0e3f7c2798e");
}

TEST(RavoScenarioGraph, PartsInAnyOrderMakeEqualGraphsAndDigests) {
  const RavoUUID third = uuid("00000000-0000-0000-0000-0000000000C1");
  RavoScenarioNodeInstance condition(third, RavoScenarioNodeTypeID("ravo.condition.time-window"), "1.0.0", {});
  RavoScenarioEdge intoCondition(kTrigger, "event", third, "event");
  RavoScenarioEdge fromCondition(third, "event", kVolume, "event");
  const auto& volume = RavoScenarioCapability::audioVolume();
  const auto& transport = RavoScenarioCapability::mediaTransport();

  RavoScenarioGraph forward({triggerNode(), condition, volumeNode()}, {intoCondition, fromCondition},
                            {volume, transport, volume});
  RavoScenarioGraph backward({volumeNode(), condition, triggerNode()}, {fromCondition, intoCondition},
                             {transport, volume, volume});
  EXPECT_EQ(forward, backward);
  EXPECT_EQ(forward.requestedCapabilities(), (std::vector{volume, volume, transport}));
  EXPECT_EQ(RavoScenarioRevision(RavoUUID::random(), 1, draftOf(forward)).graphDigest(),
            RavoScenarioRevision(RavoUUID::random(), 1, draftOf(backward)).graphDigest());
  EXPECT_EQ(forward.nodes().front().id(), kTrigger);
  EXPECT_EQ(forward.edges().front(), intoCondition);
}

TEST(RavoScenarioGraph, EdgeIdentityUsesUppercaseUUIDTexts) {
  EXPECT_EQ(triggerToVolume().id(),
            "00000000-0000-0000-0000-0000000000A1:event->00000000-0000-0000-0000-0000000000B1:event");
}

TEST(RavoScenarioGraph, RecordsRoundTripWithDeclaredKeysAndOptionalKeysLeftOut) {
  EXPECT_EQ(keysOf(volumeNode().toJSON()),
            (std::vector<std::string>{"id", "nodeType", "nodeVersion", "stableTargetIDs", "actionBinding"}));
  EXPECT_EQ(keysOf(triggerNode().toJSON()),
            (std::vector<std::string>{"id", "nodeType", "nodeVersion", "stableTargetIDs"}));
  EXPECT_EQ(keysOf(triggerToVolume().toJSON()),
            (std::vector<std::string>{"fromNodeID", "outputKey", "toNodeID", "inputKey"}));
  EXPECT_EQ(keysOf(draftOf(smallGraph()).toJSON()),
            (std::vector<std::string>{"id", "title", "graph", "activationRequest", "lifecycle"}));

  RavoScenarioRevision revision(uuid("00000000-0000-0000-0000-0000000000E1"), 7, draftOf(smallGraph()));
  RavoJSON revisionJSON = revision.toJSON();
  EXPECT_EQ(keysOf(revisionJSON), (std::vector<std::string>{"id", "revision", "draft", "graphDigest"}));
  EXPECT_EQ(revisionJSON["draft"]["lifecycle"], "revoked");
  EXPECT_EQ(RavoScenarioRevision::fromJSON(parseRavoJSON(revisionJSON.dump())), revision);

  RavoScenarioEffectReceipt receipt({.id = RavoUUID::random(),
                                     .revisionID = revision.id(),
                                     .nodeID = kVolume,
                                     .outcome = RavoScenarioEffectReceipt::Outcome::blocked,
                                     .reasonCode = "scenario.confirmation_required"});
  EXPECT_EQ(keysOf(receipt.toJSON()),
            (std::vector<std::string>{"id", "revisionID", "nodeID", "outcome", "reasonCode"}));
  EXPECT_EQ(RavoScenarioEffectReceipt::fromJSON(receipt.toJSON()), receipt);
}

TEST(RavoScenarioGraph, DecodingKeepsTheWrittenOrder) {
  RavoJSON json = smallGraph().toJSON();
  std::swap(json["nodes"][0], json["nodes"][1]);
  json["nodes"][0]["stableTargetIDs"] = {"z", "a"};
  auto decoded = RavoScenarioGraph::fromJSON(json);
  EXPECT_EQ(decoded.nodes().front().id(), kVolume);
  EXPECT_EQ(decoded.nodes().front().stableTargetIDs(), (std::vector<std::string>{"z", "a"}));
}

// Another encoder may write the same graph differently: a decoded revision keeps its digest as
// written, and the recomputation is a separate question.
TEST(RavoScenarioGraph, DecodingKeepsTheStoredDigestAndTheCheckComparesItWithTheGraph) {
  const RavoScenarioRevision built(RavoUUID::random(), 1, draftOf(smallGraph()));
  EXPECT_TRUE(built.graphDigestMatchesDraft());
  EXPECT_TRUE(RavoScenarioRevision::fromJSON(built.toJSON()).graphDigestMatchesDraft());
  for (const std::string& stored : {std::string(64, '0'), std::string("not a digest"), std::string()}) {
    RavoJSON json = built.toJSON();
    json["graphDigest"] = stored;
    const auto decoded = RavoScenarioRevision::fromJSON(json);
    EXPECT_EQ(decoded.graphDigest(), stored);
    EXPECT_EQ(decoded.draft(), built.draft());
    EXPECT_FALSE(decoded.graphDigestMatchesDraft()) << stored;
    EXPECT_NE(decoded, built);
    EXPECT_EQ(RavoScenarioRevision::fromJSON(decoded.toJSON()), decoded);
  }
}

TEST(RavoScenarioGraph, DecodingRefusesBadRecords) {
  const RavoJSON revision = RavoScenarioRevision(RavoUUID::random(), 1, draftOf(smallGraph())).toJSON();
  struct Case {
    const char* pointer;
    RavoJSON value;  // null removes the key
    const char* message;
  };
  const Case cases[] = {
      {"/id", "not-a-uuid", "RavoScenarioRevision.id: malformed UUID \"not-a-uuid\""},
      {"/revision", 1.5, "RavoScenarioRevision.revision: expected an integer, found a number"},
      {"/graphDigest", nullptr, "RavoScenarioRevision.graphDigest: missing key"},
      {"/draft/lifecycle", "armed", "RavoScenarioDraft.lifecycle: unknown value \"armed\""},
      {"/draft/activationRequest", nullptr, "RavoScenarioDraft.activationRequest: missing key"},
      {"/draft/graph/edges", RavoJSON::object(), "RavoScenarioGraph.edges: expected an array, found an object"},
      {"/draft/graph/nodes/0/id", "00000000-0000-0000-0000-0000000000A", "RavoScenarioNodeInstance.id: malformed UUID "
                                                                         "\"00000000-0000-0000-0000-0000000000A\""},
      {"/draft/graph/nodes/0/nodeVersion", 1, "RavoScenarioNodeInstance.nodeVersion: expected a string, found an integer"},
      {"/draft/graph/edges/0/inputKey", nullptr, "RavoScenarioEdge.inputKey: missing key"},
  };
  for (const auto& c : cases) {
    RavoJSON json = revision;
    RavoJSON::json_pointer pointer(c.pointer);
    if (c.value.is_null()) {
      json[pointer.parent_pointer()].erase(pointer.back());
    } else {
      json[pointer] = c.value;
    }
    try {
      RavoScenarioRevision::fromJSON(json);
      ADD_FAILURE() << "decoded with " << c.pointer << " = " << c.value.dump();
    } catch (const RavoJSONDecodingError& error) {
      EXPECT_STREQ(error.what(), c.message) << c.pointer;
    }
  }

  RavoJSON receipt = RavoScenarioEffectReceipt({.outcome = RavoScenarioEffectReceipt::Outcome::failed}).toJSON();
  receipt["outcome"] = "denied";
  EXPECT_THROW(RavoScenarioEffectReceipt::fromJSON(receipt), RavoJSONDecodingError);
}

TEST(RavoScenarioGraph, GraphsWithoutJSONTextCannotBeRevised) {
  RavoScenarioGraph nonFinite({volumeNode(std::numeric_limits<double>::infinity())}, {}, {});
  EXPECT_THROW(RavoScenarioRevision(RavoUUID::random(), 1, draftOf(nonFinite)), RavoScenarioEncodingError);
  RavoScenarioGraph badText({{kTrigger, RavoScenarioNodeTypeID("ravo.trigger.manual"), "1.0.0", {"\xff"}}}, {}, {});
  EXPECT_THROW(RavoScenarioCanonicalizer::digest(badText), RavoScenarioEncodingError);
}

}  // namespace

}  // namespace ravo::orx
