#include <gtest/gtest.h>

#include <ravo-orx/contracts/actions/RavoActionIntentResolver.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>
#include <ravo-orx/contracts/actions/RavoVoiceFastPathRouter.h>

namespace ravo::orx {

namespace {

using IDs = RavoPlayerActionIDs;

struct Expected {
  std::optional<std::string> exact;  // action id of an exact resolution
  std::vector<std::string> choices;
  std::optional<double> level;  // the volume argument of an exact resolution
};

Expected exact(const RavoApplicationActionID& id) { return {id.rawValue(), {}, std::nullopt}; }
Expected volume(double level) { return {IDs::setVolume().rawValue(), {}, level}; }
const Expected kNone{};

void expectResolution(const RavoActionIntentResolution& resolution, const Expected& expected) {
  if (expected.exact) {
    const RavoActionProposal* proposal = resolution.proposal();
    ASSERT_NE(proposal, nullptr);
    EXPECT_EQ(proposal->actionID().rawValue(), *expected.exact);
    EXPECT_EQ(proposal->stableTargetID(), std::nullopt);
    auto level = proposal->arguments().find("level");
    if (expected.level) {
      ASSERT_NE(level, proposal->arguments().end());
      ASSERT_NE(level->second.numberValue(), nullptr);
      EXPECT_DOUBLE_EQ(*level->second.numberValue(), *expected.level);
    } else {
      EXPECT_EQ(level, proposal->arguments().end());
    }
  } else if (!expected.choices.empty()) {
    ASSERT_NE(resolution.choices(), nullptr);
    std::vector<std::string> ids;
    for (const auto& id : *resolution.choices()) ids.push_back(id.rawValue());
    EXPECT_EQ(ids, expected.choices);
  } else {
    EXPECT_TRUE(resolution.isNone());
  }
}

TEST(RavoActionIntentResolver, ResolvesEnglishAndRussianUtterancesAgainstTheCatalog) {
  struct Case {
    const char* text;
    Expected expected;
  };
  const Case cases[] = {
      {"  ПАУЗА ", exact(IDs::pause())},
      {"stop", exact(IDs::pause())},
      {"stop the music please", exact(IDs::pause())},
      {"стой", exact(IDs::pause())},
      {"Поставь на паузу", exact(IDs::pause())},
      {"назад", exact(IDs::previous())},
      {"next", exact(IDs::next())},
      {"next please", exact(IDs::next())},  // four characters are enough to match inside a text
      {"да", kNone},
      {"продолжай воспроизведение", exact(IDs::resume())},
      {"громкость 40%", volume(0.4)},
      {"volume 40", volume(0.4)},
      {"громкость 100", volume(1.0)},
      {"volume 0", volume(0.0)},
      {"volume 250", volume(0.25)},
      {"volume 2000", volume(0.2)},
      {"volume x50", volume(0.5)},
      {"громкость на 30 %", volume(0.3)},
      {"громкость", volume(0.5)},  // no number: the phrase match gives the default level
      {"volume ٤٠", volume(0.5)},  // only ASCII digits read as a number
      {"open", kNone},
      {"music", kNone},
      {"открой музыку", exact(IDs::openMusic())},
      {"Open Pixmor", exact(IDs::openPixmor())},
      {"", kNone},
      {" \n\t", kNone},
      {"\xff\xfe", kNone},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    auto resolution = RavoActionIntentResolver::resolve(c.text, RavoActionProposalOrigin::kolto,
                                                        RavoApplicationActionCatalog::descriptors());
    expectResolution(resolution, c.expected);
    if (const auto* proposal = resolution.proposal()) {
      EXPECT_EQ(proposal->origin(), RavoActionProposalOrigin::kolto);
    }
  }
}

TEST(RavoActionIntentResolver, ResolvesAgainstTheDescriptorsItIsGiven) {
  auto descriptor = [](const char* id, std::vector<std::string> terms, std::vector<RavoActionParameterSchema> parameters = {}) {
    return RavoApplicationActionDescriptor(
        {.id = RavoApplicationActionID(id), .searchTerms = std::move(terms), .parameters = std::move(parameters)});
  };
  const auto& catalog = RavoApplicationActionCatalog::descriptors();
  std::vector<RavoApplicationActionDescriptor> withoutVolume;
  std::copy_if(catalog.begin(), catalog.end(), std::back_inserter(withoutVolume),
               [](const auto& d) { return d.id() != IDs::setVolume(); });
  // A volume action that accepts only quiet levels refuses "volume 90" outright.
  auto quiet = RavoActionParameterSchema(
      {.key = "level", .kind = RavoActionValueKind::number, .required = true, .minimum = 0.0, .maximum = 0.5});

  struct Case {
    const char* text;
    std::vector<RavoApplicationActionDescriptor> descriptors;
    Expected expected;
  };
  const Case cases[] = {
      {"volume 40", withoutVolume, kNone},
      {"play", {descriptor("z.play", {"play"}), descriptor("a.play", {"Play"})}, {std::nullopt, {"a.play", "z.play"}, std::nullopt}},
      {"please play it", {descriptor("z.play", {"pla"}), descriptor("a.play", {"play it"})}, exact(RavoApplicationActionID("a.play"))},
      {"volume 90", {descriptor("ravo.player.volume.set", {"volume"}, {quiet})}, kNone},
      {"volume 40", {descriptor("ravo.player.volume.set", {"volume"}, {quiet})}, volume(0.4)},
      {"anything", {}, kNone},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    expectResolution(RavoActionIntentResolver::resolve(c.text, RavoActionProposalOrigin::userInterface, c.descriptors),
                     c.expected);
  }
}

TEST(RavoVoiceFastPathRouter, RunsPlainPlaybackCommandsAndDraftsEverythingElse) {
  struct Case {
    const char* text;
    std::optional<RavoApplicationActionID> action;
  };
  const Case cases[] = {
      {"пауза", IDs::pause()},
      {"дальше", IDs::next()},
      {"volume 30", IDs::setVolume()},
      {"открой видео", std::nullopt},  // exact, but navigation is not a fast-path action
      {"play something relaxing", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    auto decision = RavoVoiceFastPathRouter::route(c.text);
    if (c.action) {
      ASSERT_NE(decision.proposal(), nullptr);
      EXPECT_EQ(decision.proposal()->actionID(), *c.action);
      EXPECT_EQ(decision.proposal()->origin(), RavoActionProposalOrigin::deterministicRouter);
    } else {
      EXPECT_EQ(decision.proposal(), nullptr);
    }
    int actions = 0;
    int drafts = 0;
    RavoVoiceFastPathRouter::dispatch(c.text, [&](const RavoActionProposal&) { ++actions; }, [&] { ++drafts; });
    EXPECT_EQ(actions, c.action ? 1 : 0);
    EXPECT_EQ(drafts, c.action ? 0 : 1);
  }
}

}  // namespace

}  // namespace ravo::orx
