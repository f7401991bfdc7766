#include <gtest/gtest.h>

#include <algorithm>

#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>

namespace ravo::orx {

namespace {

using Catalog = RavoApplicationActionCatalog;

TEST(RavoApplicationActionCatalog, HoldsTheTenPlayerActionsSortedById) {
  const auto& descriptors = Catalog::descriptors();
  std::vector<std::string> ids;
  for (const auto& d : descriptors) ids.push_back(d.id().rawValue());
  EXPECT_EQ(ids, (std::vector<std::string>{"ravo.player.next", "ravo.player.pause", "ravo.player.previous",
                                           "ravo.player.resume", "ravo.player.volume.set", "ravo.ui.home.open",
                                           "ravo.ui.kolto.open", "ravo.ui.music.open", "ravo.ui.pixmor.open",
                                           "ravo.ui.video.open"}));
  EXPECT_EQ(Catalog::ravoPlayer().id(), "ravo.player@1.0.0");
  EXPECT_EQ(Catalog::builtInManifests(), std::vector{Catalog::ravoPlayer()});

  // Policy modules see actions only by these codes.
  std::vector<std::int32_t> codes;
  for (const auto& d : descriptors) codes.push_back(d.actionCode());
  EXPECT_EQ(codes, (std::vector<std::int32_t>{12, 10, 13, 11, 14, 20, 24, 22, 23, 21}));

  for (const auto& d : descriptors) {
    EXPECT_EQ(d.entryPoints(), (std::vector{RavoActionEntryPoint::appIntent, RavoActionEntryPoint::button,
                                            RavoActionEntryPoint::kolto, RavoActionEntryPoint::voice}));
    EXPECT_EQ(d.applicationID(), RavoPlayerActionIDs::application());
    bool playback = d.category() == "Playback";
    EXPECT_EQ(d.requiresStableTarget(), playback) << d.id().rawValue();
    EXPECT_EQ(d.risk(), playback ? RavoScenarioRiskClass::low : RavoScenarioRiskClass::none);
    EXPECT_EQ(d.adapterID(), playback ? "ravo.native.playback" : "ravo.native.navigation");
  }
}

TEST(RavoApplicationActionCatalog, AnswersLookUpsAndStoresFoldedSortedTerms) {
  const auto* volume = Catalog::descriptor(RavoApplicationActionID("ravo.player.volume.set"));
  ASSERT_NE(volume, nullptr);
  ASSERT_EQ(volume->parameters().size(), 1u);
  const auto& level = volume->parameters().front();
  EXPECT_EQ(level.key(), "level");
  EXPECT_EQ(level.minimum(), 0.0);
  EXPECT_EQ(level.maximum(), 1.0);
  EXPECT_EQ(level.defaultValue(), RavoActionValue::number(0.5));
  EXPECT_EQ(Catalog::descriptor(RavoApplicationActionID("ravo.player.volume")), nullptr);

  const auto* music = Catalog::descriptor(RavoScenarioNodeTypeID("ravo.ui.music.open"));
  ASSERT_NE(music, nullptr);
  EXPECT_EQ(music->title(), "Open Music");

  // "й" folds to "и", so "стой" is stored as "стои".
  EXPECT_EQ(Catalog::descriptor(RavoPlayerActionIDs::pause())->searchTerms(),
            (std::vector<std::string>{"pause", "stop", "останови", "пауза", "поставь на паузу", "приостанови",
                                      "стои", "стоп"}));

  const auto& nodes = Catalog::scenarioNodeDefinitions();
  ASSERT_EQ(nodes.size(), Catalog::descriptors().size());
  for (size_t i = 0; i < nodes.size(); ++i) {
    EXPECT_EQ(nodes[i].id().rawValue(), Catalog::descriptors()[i].id().rawValue());
    EXPECT_EQ(nodes[i].version(), "1.0.0");
  }
}

}  // namespace

}  // namespace ravo::orx
