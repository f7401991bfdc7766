#pragma once
// A verifier for RavoORXActionGateAdapter that asks the policy runtime's authorization module. A
// candidate is admitted only when the module allows the command it stands for, under facts drawn
// from the candidate and the grant:
//
//   command      from the intent's effect type and "action_code": transport pause (catalog 10, remote
//                1) is 2 pause, resume (11, remote 2) is 1 play, next and previous (12, 13) are 5, a
//                queue move; volume (14) is 4; every navigation (20-24) is 6, showing a surface on
//                the main screen. Any other action names no command and is never admitted.
//   role         from the intent's "source_class": class 2, the class the gate gives every
//                proposal, acts as a controller (2); any other class is unpaired (0).
//   grantFlags   from the grant's capabilities: "ravo.media.transport" gives playback (1) and queue
//                (4), "ravo.audio.volume" volume (2), "ravo.ui.navigate" main screen (32).
//   token        a grant carries only its expiry, so it counts as issued now (age 0) and live for
//                the milliseconds left until it expires (TTL, clamped to 32 bits).
//   rate         the broker has already accounted for the grant's uses, so the module sees none
//                used (0) out of the grant's maximum (clamped to 32 bits).
//   controlMode  shared control (1): the assistant acts alongside the person, never as the admin.
//
// The candidate's source class, not the proposal's source, decides the role because the candidate
// does not carry the source apart from its digest. Before asking, the verifier also refuses a
// candidate whose intent digest is not its intent's or whose epoch is not the grant's generation,
// since such a candidate was not built for this grant. Thread-safe; answers false rather than throw.

#include <cstdint>
#include <memory>
#include <optional>

#include <ravo-orx/adapters/gate/RavoORXShadowCandidate.h>
#include <ravo-orx/contracts/actions/RavoActionGrant.h>
#include <ravo-orx/contracts/actions/RavoWallClock.h>
#include <ravo-orx/runtime/OrxPolicyFacts.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>

namespace ravo::orx {

class RavoORXPolicyVerifier {
 public:
  // Throws std::invalid_argument for a null runtime or clock.
  explicit RavoORXPolicyVerifier(std::shared_ptr<OrxPolicyRuntime> runtime, RavoWallClock clock = ravoWallClockNow);

  // The facts the authorization module is asked about, or nothing when the candidate stands for no
  // command the module knows or was not built for this grant.
  static std::optional<AuthorizationFacts> authorizationFacts(const RavoORXShadowCandidate& candidate,
                                                              const RavoActionGrant& grant, RavoTimePoint now);

  bool operator()(const RavoORXShadowCandidate& candidate, const RavoActionGrant& grant) const noexcept;

 private:
  std::shared_ptr<OrxPolicyRuntime> runtime_;
  RavoWallClock clock_;
};

}  // namespace ravo::orx
