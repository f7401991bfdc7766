#include <gtest/gtest.h>

#include <algorithm>

#include "contracts/actions/RavoApplicationActionCatalog.h"

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

TEST(RavoApplicationActionCatalog, DeclaresEachActionAsListed) {
  struct Case {
    const RavoApplicationActionID& id;
    const char* title;
    const char* systemImage;
    std::int32_t actionCode;
    const char* capability;
    const char* effect;
    const char* targetClass;
  };
  using IDs = RavoPlayerActionIDs;
  const Case cases[] = {
      {IDs::pause(), "Pause", "pause.fill", 10, "ravo.media.transport", "ravo.effect.media.transport", "ravo.playback.transport"},
      {IDs::resume(), "Resume", "play.fill", 11, "ravo.media.transport", "ravo.effect.media.transport", "ravo.playback.transport"},
      {IDs::next(), "Next", "forward.end.fill", 12, "ravo.media.transport", "ravo.effect.media.transport", "ravo.playback.transport"},
      {IDs::previous(), "Previous", "backward.end.fill", 13, "ravo.media.transport", "ravo.effect.media.transport", "ravo.playback.transport"},
      {IDs::setVolume(), "Set volume", "speaker.wave.2.fill", 14, "ravo.audio.volume", "ravo.effect.audio.volume", "ravo.playback.volume"},
      {IDs::openHome(), "Open Home", "house", 20, "ravo.ui.navigate", "ravo.effect.ui.navigate", "ravo.ui.home"},
      {IDs::openVideo(), "Open Video", "film", 21, "ravo.ui.navigate", "ravo.effect.ui.navigate", "ravo.ui.video"},
      {IDs::openMusic(), "Open Music", "music.note", 22, "ravo.ui.navigate", "ravo.effect.ui.navigate", "ravo.ui.music"},
      {IDs::openPixmor(), "Open Pixmor", "photo", 23, "ravo.ui.navigate", "ravo.effect.ui.navigate", "ravo.ui.pixmor"},
      {IDs::openKolto(), "Open Kolto", "point.3.connected.trianglepath.dotted", 24, "ravo.ui.navigate", "ravo.effect.ui.navigate", "ravo.ui.kolto"},
  };
  for (const auto& c : cases) {
    const auto* d = Catalog::descriptor(c.id);
    ASSERT_NE(d, nullptr) << c.id.rawValue();
    EXPECT_EQ(d->title(), c.title);
    EXPECT_EQ(d->systemImage(), c.systemImage);
    EXPECT_EQ(d->actionCode(), c.actionCode);
    EXPECT_EQ(d->requestedCapabilities(), std::vector{RavoScenarioCapability(c.capability)});
    EXPECT_EQ(d->effectTypes(), std::vector<std::string>{c.effect});
    EXPECT_EQ(d->targetClass(), c.targetClass);
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
