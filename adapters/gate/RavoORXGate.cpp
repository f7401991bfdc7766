#include <ravo-orx/adapters/gate/RavoORXGate.h>

#include <algorithm>
#include <string>

#include <ravo-orx/contracts/actions/RavoWallClock.h>
#include <ravo-orx/contracts/support/RavoUUID.h>
#include <ravo-orx/core/ORXValidation.h>

namespace ravo::orx {

namespace {

// The host-contract discriminants the gate's records carry. What each stands for is agreed between
// the host and its policies; the gate fixes only which one it uses.
constexpr std::int32_t kResourceClass = 2;
constexpr std::int32_t kSourceClass = 2;
constexpr std::int32_t kObservationPrecision = 0;

constexpr std::string_view kGenerationDomain = "ravo.ios.assistant";
constexpr std::string_view kObservationType = "ravo.assistant.action";

std::string lowercased(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c); });
  return result;
}

const std::string& processActivationIdentifier() {
  // A function-local static: created exactly once, even when first reached from several threads.
  static const std::string identifier = lowercased(RavoUUID::random().uuidString());
  return identifier;
}

// The seven texts joined with NUL. Only the last, the target identifier, may itself hold a NUL (the
// target class has been checked), so the joined bytes still name exactly one proposal.
ORXDigest proposalDigest(const RavoORXActionProposal& p) {
  std::string joined;
  for (std::string_view part : {orxRawValue(p.capability()), orxRawValue(p.effect())}) {
    joined.append(part);
    joined.push_back('\0');
  }
  for (std::int32_t number : {static_cast<std::int32_t>(p.resource()), static_cast<std::int32_t>(p.source()),
                              p.actionCode()}) {
    joined.append(std::to_string(number));
    joined.push_back('\0');
  }
  joined.append(p.targetClass());
  joined.push_back('\0');
  joined.append(p.targetIdentifier());
  return ORXDigest::raw(joined);
}

}  // namespace

RavoORXShadowCandidate RavoORXGate::shadowCandidate(const RavoORXActionProposal& p, std::int64_t generationEpoch,
                                                    std::string_view activationIdentifier) {
  ORXValidation::asciiIdentifier(p.targetClass(), true, "Ravo target class");
  const ORXDigest digest = proposalDigest(p);
  const std::string activation = lowercased(activationIdentifier);
  const std::string epoch = std::to_string(generationEpoch);
  const std::string effectType(orxRawValue(p.effect()));

  ORXGenerationFence fence(std::string(kGenerationDomain), generationEpoch,
                           ORXDigest::raw("ravo-gate:" + activation + ":" + epoch));
  const ORXResourceClass resourceClass(kResourceClass);
  const ORXEnumValue sourceClass(kSourceClass, "orx.host::SourceClass");
  ORXGrantScope scope({effectType}, 1, {resourceClass}, p.targetClass());
  ORXCapabilityObservation observation(
      fence, digest, ORXDigest::raw("ravo-observation:" + activation + ":" + epoch + ":" + digest.value()),
      std::string(kObservationType), ORXTypedValue::i32(p.actionCode()),
      ORXEnumValue(kObservationPrecision, "orx.host::ObservationPrecision"), digest, sourceClass);
  ORXDecisionIntent intent({ORXBudget(1, resourceClass)}, ORXDeadline::none(), effectType, fence, digest,
                           {std::string(orxRawValue(p.capability()))},
                           {ORXArgument("action_code", ORXTypedValue::i32(p.actionCode())),
                            ORXArgument("source_class", ORXTypedValue::enumeration(sourceClass))},
                           std::move(scope));
  ORXDigest intentDigest = ORXDigest::domain(ORXDigestDomain::intent, intent.canonicalValue());
  return RavoORXShadowCandidate(std::move(fence), digest, ORXCanonicalTypedInput({std::move(observation)}),
                                std::move(intent), std::move(intentDigest));
}

RavoORXShadowCandidate RavoORXGate::shadowCandidate(const RavoORXActionProposal& proposal,
                                                    std::int64_t generationEpoch) {
  return shadowCandidate(proposal, generationEpoch, processActivationIdentifier());
}

RavoORXActionProposal RavoORXGate::actionProposal(const RavoNativeActionRequest& request) {
  const RavoScopedActionApproval& approval = request.approval();
  auto source = approval.origin() == RavoRemoteActionOrigin::explicitTouch ? RavoORXProposalSource::userInterface
                                                                           : RavoORXProposalSource::deterministicRouter;
  std::int32_t actionCode = approval.actionID() == RavoRemoteActionID::pause ? 1 : 2;
  return RavoORXActionProposal(RavoORXCapability::mediaTransport, RavoORXEffect::transport, RavoORXResource::playback,
                               source, actionCode, approval.targetClass(), approval.target().opaqueIdentifier());
}

RavoORXShadowCandidate RavoORXGate::shadowCandidate(const RavoNativeActionRequest& request,
                                                    std::int64_t generationEpoch) {
  return shadowCandidate(actionProposal(request), generationEpoch);
}

RavoAIProgressEvent RavoORXGate::progressEvent(const RavoORXActionProposal& proposal, std::int64_t sequence,
                                               RavoAIProgressPhase phase) {
  return RavoAIProgressEvent(RavoUUID::random(), sequence, phase, ravoORXProgressOperation(proposal.effect()),
                             static_cast<std::int32_t>(proposal.source()), ravoWallClockNow());
}

}  // namespace ravo::orx
