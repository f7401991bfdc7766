#pragma once
// The broker's gate for actions that policy may verify. It maps the descriptor and proposal onto the
// gate's closed vocabulary, builds the host-contract candidate for the grant's generation and asks
// the verifier, if there is one, whether policy admits it.
//
// Admission levels: `orxVerified` ("orx.verified_admission") when the verifier answers true,
// `hostGrant` ("orx.shadow_canonicalized") otherwise, including without a verifier and when the
// verifier throws. Only an action that cannot be mapped ("orx.action_mapping_unavailable") or
// canonicalised ("orx.canonicalization_failed") is denied; whether a host-grant admission suffices is
// the broker's call. `evaluate` never throws.

#include <functional>
#include <optional>

#include <ravo-orx/adapters/gate/RavoORXActionProposal.h>
#include <ravo-orx/adapters/gate/RavoORXShadowCandidate.h>
#include <ravo-orx/contracts/actions/RavoActionGateChecking.h>

namespace ravo::orx {

// True when policy verified the admission. Called from the broker's executions, possibly several at
// once, so it must be safe to call concurrently. An empty function stands for no verifier.
using RavoORXAdmissionVerifier = std::function<bool(const RavoORXShadowCandidate&, const RavoActionGrant&)>;

class RavoORXActionGateAdapter final : public RavoActionGateChecking {
 public:
  // Without a verifier every mapped proposal is canonicalised and admitted at the host-grant level.
  explicit RavoORXActionGateAdapter(RavoORXAdmissionVerifier verifiedAdmission = {});

  const RavoORXAdmissionVerifier& verifiedAdmission() const { return verifiedAdmission_; }

  // The proposal in the gate's vocabulary, or nothing when the descriptor does not have exactly one
  // requested capability and one effect type that the vocabulary knows. The target is the proposal's
  // stable target or, without one, its action id.
  static std::optional<RavoORXActionProposal> actionProposal(const RavoApplicationActionDescriptor& descriptor,
                                                             const RavoActionProposal& proposal);

  RavoActionGateResult evaluate(const RavoApplicationActionDescriptor& descriptor, const RavoActionProposal& proposal,
                                const RavoActionGrant& grant) const override;

 private:
  bool isVerified(const RavoORXShadowCandidate& candidate, const RavoActionGrant& grant) const noexcept;

  RavoORXAdmissionVerifier verifiedAdmission_;
};

}  // namespace ravo::orx
