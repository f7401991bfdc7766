#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include <ravo-orx/contracts/services/RavoModelProviderRegistry.h>

namespace ravo::orx {

namespace {

using State = RavoModelProviderState;
using Error = RavoModelProviderLifecycleError;
using Descriptor = RavoModelProviderDescriptor;
using RegistryError = RavoModelProviderRegistryError;

// The error of type E that `action` throws, or nothing when it succeeds.
template <class E, class Action>
std::optional<E> errorFrom(Action action) {
  try {
    action();
  } catch (const E& error) {
    return error;
  }
  return std::nullopt;
}

TEST(RavoModelProviderRecord, TransitionsFollowTheLifecycle) {
  struct Step {
    State to;
    std::optional<bool> confirmation;
    std::optional<Error> expected;  // the refusal, which leaves the record as it was
  };
  struct Case {
    const char* name;
    const Descriptor& descriptor;
    std::vector<Step> steps;
    State finalState;
    bool finalConfirmation;
  };
  const Case cases[] = {
      {"eligible only from healthy", Descriptor::appleFoundationModels(),
       {{State::eligible, {}, Error::invalidTransition(State::discovered, State::eligible)},
        {State::configured, {}, {}}, {State::healthy, {}, {}}, {State::eligible, {}, {}}},
       State::eligible, false},
      {"cloud needs confirmed credentials", Descriptor::openAICompatibleCloud(),
       {{State::configured, {}, {}}, {State::authenticated, {}, {}}, {State::healthy, {}, {}},
        {State::eligible, {}, Error::missingAuthentication()}, {State::eligible, true, {}},
        {State::eligible, false, Error::missingAuthentication()}},
       State::eligible, true},
      {"confirmation recorded on any move and withdrawn by false", Descriptor::openAICompatibleCloud(),
       {{State::configured, true, {}}, {State::healthy, {}, {}}, {State::configured, false, {}},
        {State::healthy, {}, {}}, {State::eligible, {}, Error::missingAuthentication()}},
       State::healthy, false},
      {"fallen states start over", Descriptor::ollamaLoopback(),
       {{State::revoked, {}, Error::invalidTransition(State::discovered, State::revoked)},
        {State::configured, {}, {}}, {State::revoked, {}, {}},
        {State::healthy, {}, Error::invalidTransition(State::revoked, State::healthy)},
        {State::revoked, {}, {}}, {State::configured, {}, {}}, {State::failed, {}, {}}, {State::discovered, {}, {}}},
       State::discovered, false},
      {"authenticated is not a shortcut back", Descriptor::lmStudioLoopback(),
       {{State::configured, {}, {}}, {State::authenticated, {}, {}},
        {State::configured, {}, Error::invalidTransition(State::authenticated, State::configured)},
        {State::unavailable, {}, {}}},
       State::unavailable, false},
  };
  for (const auto& c : cases) {
    RavoModelProviderRecord record(c.descriptor, State::discovered, false);
    for (const auto& step : c.steps) {
      EXPECT_EQ(errorFrom<Error>([&] { record = record.transition(step.to, step.confirmation); }), step.expected)
          << c.name << ": to " << orxRawValue(step.to);
    }
    EXPECT_EQ(record, RavoModelProviderRecord(c.descriptor, c.finalState, c.finalConfirmation)) << c.name;
  }
}

TEST(RavoModelProviderRecord, EligibilityDependsOnStateTransportAndCredentials) {
  struct Case {
    const Descriptor& descriptor;
    State state;
    bool confirmed;
    bool localOnly;
    std::optional<Error> expected;
  };
  const Case cases[] = {
      {Descriptor::openAICompatibleCloud(), State::eligible, true, false, {}},
      {Descriptor::openAICompatibleCloud(), State::eligible, true, true, Error::localOnlyViolation()},
      {Descriptor::openAICompatibleCloud(), State::eligible, false, true, Error::localOnlyViolation()},
      {Descriptor::openAICompatibleCloud(), State::eligible, false, false, Error::missingAuthentication()},
      {Descriptor::ollamaLoopback(), State::eligible, false, true, {}},
      {Descriptor::appleFoundationModels(), State::eligible, false, true, {}},
      {Descriptor::appleFoundationModels(), State::revoked, true, false, Error::unavailable()},
      {Descriptor::appleFoundationModels(), State::revoked, true, true, Error::unavailable()},
      {Descriptor::appleFoundationModels(), State::failed, false, true, Error::unavailable()},
      {Descriptor::appleFoundationModels(), State::healthy, false, true,
       Error::invalidTransition(State::healthy, State::eligible)},
      {Descriptor::lmStudioLoopback(), State::discovered, false, false,
       Error::invalidTransition(State::discovered, State::eligible)},
  };
  for (const auto& c : cases) {
    const RavoModelProviderRecord record(c.descriptor, c.state, c.confirmed);
    EXPECT_EQ(errorFrom<Error>([&] { record.validateEligibility(c.localOnly); }), c.expected)
        << record.toJSON().dump() << (c.localOnly ? " local only" : "");
  }
}

TEST(RavoModelProviderRegistry, HoldsOneRecordPerProviderSortedByID) {
  RavoModelProviderRegistry registry(Descriptor::builtIns());
  std::vector<std::string> ids;
  for (const auto& record : registry.allRecords()) {
    ids.push_back(record.id().rawValue());
    EXPECT_EQ(record.state(), State::discovered);
    EXPECT_FALSE(record.authenticationConfirmed());
  }
  EXPECT_EQ(ids, (std::vector<std::string>{"ravo.model.apple.foundation", "ravo.model.lmstudio.loopback",
                                           "ravo.model.ollama.loopback", "ravo.model.openai-compatible.cloud"}));

  const auto cloud = RavoModelProviderID::openAICompatibleCloud();
  const auto before = registry.record(cloud);
  EXPECT_EQ(registry.transition(cloud, State::configured, true).state(), State::configured);
  EXPECT_EQ(errorFrom<Error>([&] { registry.transition(cloud, State::eligible); }),
            Error::invalidTransition(State::configured, State::eligible));
  EXPECT_EQ(registry.record(cloud), RavoModelProviderRecord(Descriptor::openAICompatibleCloud(), State::configured, true));
  EXPECT_EQ(before.state(), State::discovered);  // records handed out are copies

  const RavoModelProviderID unknown("ravo.model.unknown");
  EXPECT_EQ(errorFrom<RegistryError>([&] { registry.record(unknown); }), RegistryError::unknownProvider(unknown));
  EXPECT_EQ(errorFrom<RegistryError>([&] { registry.transition(unknown, State::configured); }),
            RegistryError::unknownProvider(unknown));
  EXPECT_EQ(errorFrom<RegistryError>([] {
              RavoModelProviderRegistry({Descriptor::ollamaLoopback(), Descriptor::openAICompatibleCloud(),
                                         Descriptor::ollamaLoopback()});
            }),
            RegistryError::duplicateDescriptor(RavoModelProviderID::ollamaLoopback()));
}

TEST(RavoModelProviderRecord, RoundTripsThroughJSON) {
  const RavoModelProviderRecord record(Descriptor::openAICompatibleCloud(), State::eligible, true);
  EXPECT_EQ(record.toJSON().dump(),
            R"({"descriptor":{"id":"ravo.model.openai-compatible.cloud","kind":"openAICompatibleCloud",)"
            R"("transport":"cloud","displayName":"OpenAI-compatible cloud provider","requiresAuthentication":true},)"
            R"("state":"eligible","authenticationConfirmed":true})");
  EXPECT_EQ(RavoModelProviderRecord::fromJSON(parseRavoJSON(record.toJSON().dump())), record);
  auto json = record.toJSON();
  json["state"] = "ready";
  EXPECT_THROW(RavoModelProviderRecord::fromJSON(json), RavoJSONDecodingError);
}

}  // namespace

}  // namespace ravo::orx
