#include <ravo-orx/contracts/actions/RavoRemoteActionBroker.h>

#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

std::optional<RavoRemotePlaybackTarget> RavoRemotePlaybackTarget::make(RavoRemotePlaybackSource source,
                                                                       std::uint64_t generation,
                                                                       std::string opaqueIdentifier) {
  if (opaqueIdentifier.empty() || opaqueIdentifier.size() > maximumIdentifierBytes ||
      !ravoIsValidUTF8(opaqueIdentifier) || ravoContainsControlCharacter(opaqueIdentifier)) {
    return std::nullopt;
  }
  return RavoRemotePlaybackTarget(source, generation, std::move(opaqueIdentifier));
}

std::variant<RavoNativeActionRequest, RavoRemoteActionBlock> RavoRemoteActionBroker::admit(
    const RavoRemoteActionProposal& proposal) {
  return RavoNativeActionRequest(
      RavoScopedActionApproval(proposal.actionID(), proposal.target(), proposal.origin(), "ravo.playback.active", 1));
}

bool RavoRemoteActionBroker::matchesCurrentTarget(const RavoNativeActionRequest& request,
                                                  const RavoRemotePlaybackTarget& currentTarget) {
  return request.approval().maximumUses() == 1 && request.approval().target() == currentTarget;
}

bool RavoRemoteActionBroker::acceptsCompletion(const RavoNativeActionRequest& request,
                                               std::optional<RavoRemoteActionID> latestActionID,
                                               const std::optional<RavoRemotePlaybackTarget>& latestTarget) {
  return latestActionID == request.approval().actionID() && latestTarget == request.approval().target();
}

}  // namespace ravo::orx
