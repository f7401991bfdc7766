#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include <ravo-orx/adapters/gate/RavoORXGate.h>
#include <ravo-orx/contracts/actions/RavoWallClock.h>
#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

namespace {

// The activation identifier is given in upper case so the tests also see it lower-cased.
constexpr std::string_view kActivation = "0A1B2C3D-4E5F-4A6B-8C7D-9E0F1A2B3C4D";

RavoORXActionProposal pause(std::string targetClass = "ravo.playback.transport", std::string target = "t1") {
  return RavoORXActionProposal(RavoORXCapability::mediaTransport, RavoORXEffect::transport, RavoORXResource::playback,
                               RavoORXProposalSource::userInterface, 10, std::move(targetClass), std::move(target));
}

std::string golden(const std::string& name) {
  std::ifstream file("adapters/gate/tests/golden/" + name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string sha256(std::string_view hex) { return "sha256:" + std::string(hex); }

// The expected digests were computed apart from this code, with sha256sum over:
//   proposal     printf 'ravo.media.transport\0ravo.effect.media.transport\0001\0002\00010\0ravo.playback.transport\0t1'
//   fence        printf 'ravo-gate:0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d:3'
//   observation  printf 'ravo-observation:0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d:3:sha256:<proposal>'
//   intent       { printf 'ORX_DECISION_INTENT_V1\0'; cat golden/pause_intent.json; }
// and golden/pause_intent.json was written by hand from the record layouts.
TEST(RavoORXGate, PauseCandidateIsPinnedByteForByte) {
  auto candidate = RavoORXGate::shadowCandidate(pause(), 3, kActivation);

  EXPECT_EQ(candidate.proposalDigest().value(),
            sha256("6f30deca2529196fb85164db95436321c1829e6536fadc06c9edd4d8fadcaaf0"));
  EXPECT_EQ(candidate.generation().fenceID().value(),
            sha256("a680e26036b05af9614573bdc137da3f04e658614dd28b4a3641318d9ef85cff"));
  ASSERT_EQ(candidate.canonicalInput().observations().size(), 1u);
  const auto& observation = candidate.canonicalInput().observations().front();
  EXPECT_EQ(observation.observationID().value(),
            sha256("f8c191f383905ed43a7b5f142565c3f8a352dc148fc27377c81753988b34fd76"));
  EXPECT_EQ(observation.logicalObservationID(), candidate.proposalDigest());
  EXPECT_EQ(observation.provenance(), candidate.proposalDigest());
  EXPECT_EQ(observation.generation(), candidate.generation());
  EXPECT_EQ(observation.observedValue(), ORXTypedValue::i32(10));
  EXPECT_EQ(observation.observationType(), "ravo.assistant.action");
  EXPECT_EQ(observation.precision(), ORXEnumValue(0, "orx.host::ObservationPrecision"));
  EXPECT_EQ(observation.sourceClass(), ORXEnumValue(2, "orx.host::SourceClass"));

  EXPECT_EQ(candidate.intent().canonicalValue().canonicalString(), golden("pause_intent.json"));
  EXPECT_EQ(candidate.intentDigest().value(),
            sha256("a634edd3af2934e7087c55dc12c50621be42aeb0e71c24c7b4ee56c0bacf0946"));
}

TEST(RavoORXGate, RefusesWhatTheRecordsRefuse) {
  struct Case {
    const char* name;
    RavoORXActionProposal proposal;
    std::int64_t epoch;
    const char* code;
    const char* messageStart;
  };
  const Case cases[] = {
      {"capitalised target class", pause("Ravo.Target"), 3, "orx.v051.value_invalid", "Ravo target class"},
      {"unqualified target class", pause("ravo"), 3, "orx.v051.value_invalid", "Ravo target class"},
      {"empty target class", pause(""), 3, "orx.v051.value_invalid", "Ravo target class"},
      {"negative epoch", pause(), -1, "orx.v051.typed_value_invalid", "generation epoch"},
  };
  for (const auto& c : cases) {
    try {
      RavoORXGate::shadowCandidate(c.proposal, c.epoch, kActivation);
      ADD_FAILURE() << c.name << ": built a candidate";
    } catch (const ORXError& error) {
      EXPECT_EQ(error.code(), c.code) << c.name;
      EXPECT_EQ(error.message().rfind(c.messageStart, 0), 0u) << c.name << ": " << error.message();
    }
  }
}

// Within one run candidates are reproducible; across runs only the fence and observation identifiers
// (and with them the intent digest) change, never the proposal digest.
TEST(RavoORXGate, ActivationIdentifierSeparatesRunsButNotProposals) {
  EXPECT_EQ(RavoORXGate::shadowCandidate(pause(), 3), RavoORXGate::shadowCandidate(pause(), 3));
  EXPECT_EQ(RavoORXGate::shadowCandidate(pause(), 3, kActivation),
            RavoORXGate::shadowCandidate(pause(), 3, "0a1b2c3d-4e5f-4a6b-8c7d-9e0f1a2b3c4d"));

  auto ours = RavoORXGate::shadowCandidate(pause(), 3, kActivation);
  auto theirs = RavoORXGate::shadowCandidate(pause(), 3, "5e2c9a70-1111-4c2d-9a3b-000000000000");
  auto process = RavoORXGate::shadowCandidate(pause(), 3);
  for (const auto* other : {&theirs, &process}) {
    EXPECT_EQ(other->proposalDigest(), ours.proposalDigest());
    EXPECT_NE(other->generation().fenceID(), ours.generation().fenceID());
    EXPECT_NE(other->canonicalInput().observations().front().observationID(),
              ours.canonicalInput().observations().front().observationID());
    EXPECT_NE(other->intentDigest(), ours.intentDigest());
  }
}

TEST(RavoORXGate, NativeRequestsBecomeTransportProposals) {
  auto target = *RavoRemotePlaybackTarget::make(RavoRemotePlaybackSource::appleMusic, 7, "session-42");
  struct Case {
    RavoRemoteActionID action;
    RavoRemoteActionOrigin origin;
    RavoORXProposalSource source;
    std::int32_t actionCode;
  };
  const Case cases[] = {
      {RavoRemoteActionID::pause, RavoRemoteActionOrigin::explicitTouch, RavoORXProposalSource::userInterface, 1},
      {RavoRemoteActionID::resume, RavoRemoteActionOrigin::explicitTouch, RavoORXProposalSource::userInterface, 2},
      {RavoRemoteActionID::pause, RavoRemoteActionOrigin::deterministicVoice,
       RavoORXProposalSource::deterministicRouter, 1},
  };
  for (const auto& c : cases) {
    RavoNativeActionRequest request(RavoScopedActionApproval(c.action, target, c.origin, "ravo.remote.playback", 1));
    RavoORXActionProposal expected(RavoORXCapability::mediaTransport, RavoORXEffect::transport,
                                   RavoORXResource::playback, c.source, c.actionCode, "ravo.remote.playback",
                                   "session-42");
    EXPECT_EQ(RavoORXGate::actionProposal(request), expected);
    EXPECT_EQ(RavoORXGate::shadowCandidate(request, 5), RavoORXGate::shadowCandidate(expected, 5));
  }
  RavoNativeActionRequest badClass(
      RavoScopedActionApproval(RavoRemoteActionID::pause, target, RavoRemoteActionOrigin::explicitTouch, "Remote", 1));
  EXPECT_THROW(RavoORXGate::shadowCandidate(badClass, 5), ORXError);
}

TEST(RavoORXGate, ProgressEventsReportTheEffectsOperationAndTheSource) {
  struct Case {
    RavoORXEffect effect;
    RavoORXProposalSource source;
    RavoAIOperation operation;
  };
  const Case cases[] = {
      {RavoORXEffect::appleMusicPlay, RavoORXProposalSource::appleIntelligence, RavoAIOperation::providerPlayback},
      {RavoORXEffect::localNotification, RavoORXProposalSource::userInterface, RavoAIOperation::scenarioLoopback},
  };
  for (const auto& c : cases) {
    RavoORXActionProposal proposal(RavoORXCapability::assistantReply, c.effect, RavoORXResource::assistant, c.source,
                                   0, "ravo.assistant", "x");
    auto before = ravoWallClockNow();
    auto first = RavoORXGate::progressEvent(proposal, 4, RavoAIProgressPhase::capabilityCheck);
    auto second = RavoORXGate::progressEvent(proposal, 4, RavoAIProgressPhase::capabilityCheck);
    auto after = ravoWallClockNow();
    EXPECT_EQ(first.operation(), c.operation);
    EXPECT_EQ(first.source(), static_cast<std::int32_t>(c.source));
    EXPECT_EQ(first.sequence(), 4);
    EXPECT_EQ(first.phase(), RavoAIProgressPhase::capabilityCheck);
    EXPECT_TRUE(before <= first.timestamp() && first.timestamp() <= after);
    EXPECT_NE(first.id(), second.id());
  }
}

TEST(RavoORXGate, RawValuesOutsideTheirRangesYieldNothing) {
  for (std::int32_t raw : {-1, 3, 1000}) EXPECT_FALSE(ravoORXProposalSource(raw)) << raw;
  for (std::int32_t raw : {-1, 6}) EXPECT_FALSE(ravoORXResource(raw)) << raw;
  EXPECT_EQ(ravoORXProposalSource(2), RavoORXProposalSource::userInterface);
  EXPECT_EQ(ravoORXResource(5), RavoORXResource::assistant);
  EXPECT_FALSE(orxFromRawValue<RavoORXCapability>("ravo.home.control"));
  EXPECT_EQ(orxFromRawValue<RavoORXEffect>("ravo.effect.notification.local"), RavoORXEffect::localNotification);
}

}  // namespace

}  // namespace ravo::orx
