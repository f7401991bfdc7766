#pragma once
// Turns a remote pause or resume into a single-use request scoped to its target, and checks before and
// after the platform acts that the request still belongs to the approved target.

#include <optional>
#include <variant>

#include <ravo-orx/contracts/actions/RavoRemoteAction.h>

namespace ravo::orx {

struct RavoRemoteActionBroker {
  // Every proposal is admitted today, with the target class "ravo.playback.active" and one use; the
  // block case is kept so that callers already handle a refusal.
  static std::variant<RavoNativeActionRequest, RavoRemoteActionBlock> admit(const RavoRemoteActionProposal& proposal);

  // Before acting: the request is single-use and its target is exactly the current one.
  static bool matchesCurrentTarget(const RavoNativeActionRequest& request, const RavoRemotePlaybackTarget& currentTarget);

  // After the platform reports the last action it performed: it was this action, on this exact target.
  static bool acceptsCompletion(const RavoNativeActionRequest& request, std::optional<RavoRemoteActionID> latestActionID,
                                const std::optional<RavoRemotePlaybackTarget>& latestTarget);
};

}  // namespace ravo::orx
