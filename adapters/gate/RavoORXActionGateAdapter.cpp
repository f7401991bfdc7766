#include <ravo-orx/adapters/gate/RavoORXActionGateAdapter.h>

#include <ravo-orx/adapters/gate/RavoORXGate.h>

namespace ravo::orx {

namespace {

// Assistant models other than the on-device one reach the gate through the router, so policy sees
// them as the router's proposals; app intents are a person's request like a tap.
RavoORXProposalSource proposalSource(RavoActionProposalOrigin origin) {
  switch (origin) {
    case RavoActionProposalOrigin::userInterface:
    case RavoActionProposalOrigin::appIntent:
      return RavoORXProposalSource::userInterface;
    case RavoActionProposalOrigin::appleIntelligence:
      return RavoORXProposalSource::appleIntelligence;
    case RavoActionProposalOrigin::deterministicRouter:
    case RavoActionProposalOrigin::kolto:
    case RavoActionProposalOrigin::externalModel:
    case RavoActionProposalOrigin::mcp:
      return RavoORXProposalSource::deterministicRouter;
  }
  return RavoORXProposalSource::deterministicRouter;
}

}  // namespace

RavoORXActionGateAdapter::RavoORXActionGateAdapter(RavoORXAdmissionVerifier verifiedAdmission)
    : verifiedAdmission_(std::move(verifiedAdmission)) {}

std::optional<RavoORXActionProposal> RavoORXActionGateAdapter::actionProposal(
    const RavoApplicationActionDescriptor& descriptor, const RavoActionProposal& proposal) {
  if (descriptor.requestedCapabilities().size() != 1 || descriptor.effectTypes().size() != 1) return std::nullopt;
  auto capability = orxFromRawValue<RavoORXCapability>(descriptor.requestedCapabilities().front().rawValue());
  auto effect = orxFromRawValue<RavoORXEffect>(descriptor.effectTypes().front());
  if (!capability || !effect) return std::nullopt;
  return RavoORXActionProposal(*capability, *effect, ravoORXResource(*capability), proposalSource(proposal.origin()),
                               descriptor.actionCode(), descriptor.targetClass(),
                               proposal.stableTargetID().value_or(proposal.actionID().rawValue()));
}

bool RavoORXActionGateAdapter::isVerified(const RavoORXShadowCandidate& candidate,
                                          const RavoActionGrant& grant) const noexcept {
  if (!verifiedAdmission_) return false;
  try {
    return verifiedAdmission_(candidate, grant);
  } catch (...) {
    // A verifier that cannot answer has not verified anything; the proposal keeps its host-grant
    // admission and the broker decides whether that is enough.
    return false;
  }
}

RavoActionGateResult RavoORXActionGateAdapter::evaluate(const RavoApplicationActionDescriptor& descriptor,
                                                        const RavoActionProposal& proposal,
                                                        const RavoActionGrant& grant) const {
  std::optional<RavoORXShadowCandidate> candidate;
  try {
    auto mapped = actionProposal(descriptor, proposal);
    if (!mapped) return RavoActionGateResult::deny("orx.action_mapping_unavailable");
    candidate = RavoORXGate::shadowCandidate(*mapped, grant.generation());
  } catch (...) {
    // The error itself stays here: the receipt names the stage that failed, not the record.
    return RavoActionGateResult::deny("orx.canonicalization_failed");
  }
  if (isVerified(*candidate, grant)) {
    return RavoActionGateResult::allow(RavoActionGateLevel::orxVerified, "orx.verified_admission");
  }
  return RavoActionGateResult::allow(RavoActionGateLevel::hostGrant, "orx.shadow_canonicalized");
}

}  // namespace ravo::orx
