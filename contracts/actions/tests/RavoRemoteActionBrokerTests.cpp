#include <gtest/gtest.h>

#include <ravo-orx/contracts/actions/RavoRemoteActionBroker.h>

namespace ravo::orx {

namespace {

using Source = RavoRemotePlaybackSource;

RavoRemotePlaybackTarget target(Source source, std::uint64_t generation, std::string identifier = "track-1") {
  return *RavoRemotePlaybackTarget::make(source, generation, std::move(identifier));
}

TEST(RavoRemotePlaybackTarget, RefusesEmptyLongMalformedAndControlIdentifiers) {
  struct Case {
    std::string identifier;
    bool valid;
  };
  const Case cases[] = {
      {"", false},
      {std::string(256, 'a'), true},
      {std::string(257, 'a'), false},
      {"line\nfeed", false},
      {std::string("nul\0here", 8), false},
      {"zero\u200bwidth", false},  // Cf
      {"soft\u00adhyphen", false},  // Cf
      {"\xc3\x28", false},          // not UTF-8
      {"ютуб-видео", true},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(RavoRemotePlaybackTarget::make(Source::youTube, 1, c.identifier).has_value(), c.valid)
        << "\"" << c.identifier << "\"";
  }
}

TEST(RavoRemoteActionBroker, AdmitsOneScopedUseAndChecksTheTargetBeforeAndAfter) {
  const auto approved = target(Source::appleMusic, 7);
  auto admitted = RavoRemoteActionBroker::admit(
      RavoRemoteActionProposal(RavoRemoteActionID::pause, RavoRemoteActionOrigin::explicitTouch, approved));
  ASSERT_TRUE(std::holds_alternative<RavoNativeActionRequest>(admitted));
  const auto& request = std::get<RavoNativeActionRequest>(admitted);
  EXPECT_EQ(request.approval(), RavoScopedActionApproval(RavoRemoteActionID::pause, approved,
                                                         RavoRemoteActionOrigin::explicitTouch, "ravo.playback.active", 1));

  struct MatchCase {
    RavoRemotePlaybackTarget current;
    bool matches;
  };
  const MatchCase matches[] = {
      {approved, true},
      {target(Source::appleMusic, 8), false},
      {target(Source::remoteProvider, 7), false},
      {target(Source::appleMusic, 7, "track-2"), false},
  };
  for (const auto& c : matches) EXPECT_EQ(RavoRemoteActionBroker::matchesCurrentTarget(request, c.current), c.matches);
  RavoNativeActionRequest reusable(RavoScopedActionApproval(RavoRemoteActionID::pause, approved,
                                                            RavoRemoteActionOrigin::explicitTouch, "ravo.playback.active", 2));
  EXPECT_FALSE(RavoRemoteActionBroker::matchesCurrentTarget(reusable, approved));

  struct CompletionCase {
    std::optional<RavoRemoteActionID> action;
    std::optional<RavoRemotePlaybackTarget> target;
    bool accepted;
  };
  const CompletionCase completions[] = {
      {RavoRemoteActionID::pause, approved, true},
      {RavoRemoteActionID::resume, approved, false},
      {RavoRemoteActionID::pause, std::nullopt, false},
      {std::nullopt, approved, false},
      {RavoRemoteActionID::pause, target(Source::appleMusic, 8), false},
  };
  for (const auto& c : completions) {
    EXPECT_EQ(RavoRemoteActionBroker::acceptsCompletion(request, c.action, c.target), c.accepted);
  }
}

}  // namespace

}  // namespace ravo::orx
