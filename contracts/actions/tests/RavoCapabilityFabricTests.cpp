#include <gtest/gtest.h>

#include <ravo-orx/contracts/actions/RavoCapabilityFabric.h>
#include <ravo-orx/contracts/actions/RavoDefaultActionSafeguard.h>
#include <ravo-orx/contracts/actions/RavoDirectActionGrantFactory.h>
#include <ravo-orx/contracts/actions/RavoHostGrantActionGate.h>
#include "contracts/actions/tests/RavoActionBrokerTestSupport.h"

namespace ravo::orx {

namespace {

using namespace ravo_test;
using IDs = RavoPlayerActionIDs;

std::vector<std::string> ids(const std::vector<RavoApplicationActionDescriptor>& descriptors) {
  std::vector<std::string> result;
  for (const auto& d : descriptors) result.push_back(d.id().rawValue());
  return result;
}

TEST(RavoCapabilityFabric, ShortlistsByScoreThenIdWithinTheLimit) {
  const auto& fabric = RavoCapabilityFabric::builtIn();
  struct Case {
    const char* query;
    std::int64_t limit;
    std::vector<std::string> expected;
  };
  const Case cases[] = {
      // pause: exact term, equal title, title, term and token overlaps (257); the rest score 0.
      {"pause", 3, {"ravo.player.pause", "ravo.player.next", "ravo.player.previous"}},
      {"  PAUSE ", 1, {"ravo.player.pause"}},
      {"громкость 50", 1, {"ravo.player.volume.set"}},
      {"", 5, {"ravo.player.next", "ravo.player.pause", "ravo.player.previous", "ravo.player.resume",
               "ravo.player.volume.set"}},
      {"pause", 0, {"ravo.player.pause"}},
      {"pause", -7, {"ravo.player.pause"}},
      // "open" is in every navigation title and term: ties among them fall back to id order.
      {"open", 2, {"ravo.ui.home.open", "ravo.ui.kolto.open"}},
      {"navigation", 1, {"ravo.ui.home.open"}},
      {"open music", 2, {"ravo.ui.music.open", "ravo.ui.home.open"}},
      {"стоп", 1, {"ravo.player.pause"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.query);
    EXPECT_EQ(ids(fabric.shortlist(c.query, c.limit)), c.expected);
  }
  EXPECT_EQ(fabric.shortlist("anything", 100).size(), 10u);
}

TEST(RavoCapabilityFabric, CapsTheShortlistAtTwentyFour) {
  std::vector<RavoApplicationActionDescriptor> many;
  for (int i = 0; i < 30; ++i) {
    many.emplace_back(RavoApplicationActionDescriptor::Fields{.id = RavoApplicationActionID("ravo.bulk." + std::to_string(i)),
                                                              .applicationID = RavoApplicationID("ravo.bulk")});
  }
  RavoCapabilityFabric fabric({RavoApplicationActionManifest(RavoApplicationID("ravo.bulk"), "Bulk", "1", many)});
  EXPECT_EQ(fabric.shortlist("x", 100).size(), 24u);
}

// A blank title, category or term says nothing about a query: the blank action ranks by id like any
// other action that scores nothing.
TEST(RavoCapabilityFabric, BlankTextsMatchNoQuery) {
  auto action = [](const char* id, const char* title, const char* category) {
    return RavoApplicationActionDescriptor(RavoApplicationActionDescriptor::Fields{
        .id = RavoApplicationActionID(id), .applicationID = RavoApplicationID("ravo.bulk"), .title = title,
        .category = category});
  };
  RavoCapabilityFabric fabric({RavoApplicationActionManifest(
      RavoApplicationID("ravo.bulk"), "Bulk", "1",
      {action("ravo.bulk.a", "Dim lights", "lights"), action("ravo.bulk.b", "", ""), action("ravo.bulk.c", "Fan", "")})});
  EXPECT_EQ(ids(fabric.shortlist("kettle", 3)), (std::vector<std::string>{"ravo.bulk.a", "ravo.bulk.b", "ravo.bulk.c"}));
}

TEST(RavoCapabilityFabric, ChecksManifestsForConsistency) {
  const auto& player = RavoApplicationActionCatalog::ravoPlayer();
  auto renamedPause = [&](const char* title, const char* application) {
    auto fields = RavoApplicationActionDescriptor::Fields{.id = IDs::pause(),
                                                          .applicationID = RavoApplicationID(application),
                                                          .title = title};
    return RavoApplicationActionManifest(RavoApplicationID("ravo.other"), "Other", "1.0.0",
                                         {RavoApplicationActionDescriptor(fields)});
  };
  using Code = RavoCapabilityFabricError::Code;
  struct Case {
    const char* name;
    std::vector<RavoApplicationActionManifest> manifests;
    std::optional<Code> error;
  };
  const Case cases[] = {
      {"same declaration twice", {player, player}, std::nullopt},
      {"differing title", {player, renamedPause("Hold", "ravo.other")}, Code::duplicateActionID},
      {"foreign action", {renamedPause("Pause", "ravo.player")}, Code::actionApplicationMismatch},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    try {
      RavoCapabilityFabric fabric(c.manifests);
      EXPECT_FALSE(c.error);
      EXPECT_EQ(fabric.actions().size(), 10u);
    } catch (const RavoCapabilityFabricError& error) {
      EXPECT_EQ(error.code(), c.error);
      EXPECT_EQ(error.actionID(), "ravo.player.pause");
    }
  }

  auto b = RavoApplicationActionManifest(RavoApplicationID("b.app"), "B", "1", {});
  auto a = RavoApplicationActionManifest(RavoApplicationID("a.app"), "A", "1", {});
  RavoCapabilityFabric sorted({b, player, a});
  EXPECT_EQ(sorted.manifests(), (std::vector{a, b, player}));
  EXPECT_NE(sorted.descriptor(IDs::openKolto()), nullptr);
  EXPECT_EQ(sorted.descriptor(RavoApplicationActionID("ravo.player.rewind")), nullptr);
}

TEST(RavoApplicationAccessSummary, SummarisesWhatAnApplicationAsksFor) {
  auto summaries = RavoCapabilityFabric::builtIn().applicationAccesses();
  ASSERT_EQ(summaries.size(), 1u);
  const auto& player = summaries.front();
  EXPECT_EQ(player.id(), "ravo.player@1.0.0");
  EXPECT_EQ(player.displayName(), "Ravo Player");
  EXPECT_EQ(player.actions(), RavoApplicationActionCatalog::ravoPlayer().actions());
  EXPECT_EQ(player.requestedCapabilities(),
            (std::vector{RavoScenarioCapability("ravo.audio.volume"), RavoScenarioCapability("ravo.media.transport"),
                         RavoScenarioCapability("ravo.ui.navigate")}));
  EXPECT_FALSE(player.containsORXVerifiedActions());

  auto verified = RavoApplicationActionDescriptor({.id = RavoApplicationActionID("ravo.x.act"),
                                                   .minimumGate = RavoActionGateRequirement::orxVerified});
  RavoApplicationAccessSummary other(RavoApplicationActionManifest(RavoApplicationID("ravo.x"), "X", "2", {verified}));
  EXPECT_TRUE(other.containsORXVerifiedActions());
  EXPECT_TRUE(other.requestedCapabilities().empty());
}

TEST(RavoDirectActionGrantFactory, IssuesOneShotGrantsOnlyForHarmlessActions) {
  const auto& pause = *RavoApplicationActionCatalog::descriptor(IDs::pause());
  const auto& home = *RavoApplicationActionCatalog::descriptor(IDs::openHome());
  auto changed = [&](auto change) {
    auto fields = RavoApplicationActionDescriptor::Fields{.id = RavoApplicationActionID("ravo.x.act")};
    change(fields);
    return RavoApplicationActionDescriptor(fields);
  };
  const RavoApplicationActionDescriptor verified = changed([](auto& f) { f.minimumGate = RavoActionGateRequirement::orxVerified; });
  const RavoApplicationActionDescriptor medium = changed([](auto& f) { f.risk = RavoScenarioRiskClass::medium; });
  const RavoApplicationActionDescriptor confirmed = changed([](auto& f) { f.confirmation = RavoScenarioConfirmationPolicy::perTarget; });
  const RavoApplicationActionDescriptor egress = changed([](auto& f) { f.egressPolicy = RavoScenarioDataEgressPolicy::localOnly; });
  const RavoApplicationActionDescriptor plain = changed([](auto&) {});

  struct Case {
    const char* name;
    const RavoApplicationActionDescriptor& descriptor;
    std::int64_t generation;
    std::optional<std::string> target;
    double lifetime;
    bool eligible;
  };
  const Case cases[] = {
      {"pause on t1", pause, 0, "t1", 30, true},
      {"pause without target", pause, 0, std::nullopt, 30, false},
      {"zero lifetime", pause, 0, "t1", 0, false},
      {"sixty seconds", pause, 0, "t1", 60, true},
      {"sixty-one seconds", pause, 0, "t1", 61, false},
      {"not a number", pause, 0, "t1", std::nan(""), false},
      {"negative generation", pause, -1, "t1", 30, false},
      {"256-byte target", pause, 0, std::string(256, 't'), 30, true},
      {"257-byte target", pause, 0, std::string(257, 't'), 30, false},
      {"navigation", home, 0, std::nullopt, 30, true},
      {"navigation with target", home, 0, "t1", 30, false},
      {"verified gate", verified, 0, std::nullopt, 30, false},
      {"medium risk", medium, 0, std::nullopt, 30, false},
      {"confirmation", confirmed, 0, std::nullopt, 30, false},
      {"egress", egress, 0, std::nullopt, 30, false},
      {"plain", plain, 0, std::nullopt, 30, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    try {
      auto grant = RavoDirectActionGrantFactory::oneShot(c.descriptor, c.generation, c.target, kNow, c.lifetime);
      EXPECT_TRUE(c.eligible);
      EXPECT_EQ(grant.maxUses(), 1);
      EXPECT_EQ(grant.allowedActionIDs(), std::vector{c.descriptor.id()});
      EXPECT_EQ(grant.allowedCapabilities(), c.descriptor.requestedCapabilities());
      EXPECT_EQ(grant.allowedStableTargetIDs(), c.target ? std::vector{*c.target} : std::vector<std::string>{});
      EXPECT_EQ(grant.expiresAt(), kNow + std::chrono::seconds(static_cast<int>(c.lifetime)));
    } catch (const RavoDirectActionGrantFactory::Error& error) {
      EXPECT_FALSE(c.eligible);
      EXPECT_EQ(error.code(), RavoDirectActionGrantFactory::Error::Code::actionNotEligible);
    }
  }
}

TEST(RavoDirectActionGrantFactory, ADirectGrantPassesTheBrokerExactlyOnce) {
  RavoActionExecutionBroker broker(RavoApplicationActionCatalog::builtInManifests(),
                                   std::make_unique<RavoHostGrantActionGate>(),
                                   std::make_unique<RavoDefaultActionSafeguard>(fixedNow), fixedNow);
  broker.registerHandler(IDs::pause(), [](auto&) { return RavoActionHandlerResult("paused", "Paused."); });
  const auto& pause = *RavoApplicationActionCatalog::descriptor(IDs::pause());
  auto grant = RavoDirectActionGrantFactory::oneShot(pause, 5, "t1", kNow, 30);
  broker.install(grant);

  auto first = broker.execute(pauseProposal(), grant.id(), 5, std::nullopt, kNow + 1s);
  EXPECT_EQ(first.outcome(), RavoActionReceiptOutcome::completed);
  EXPECT_EQ(first.reasonCode(), "handler.paused");
  EXPECT_EQ(broker.execute(pauseProposal(), grant.id(), 5, std::nullopt, kNow + 1s).reasonCode(),
            "broker.grant_scope_mismatch");
}

}  // namespace

}  // namespace ravo::orx
