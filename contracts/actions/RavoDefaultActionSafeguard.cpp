#include <ravo-orx/contracts/actions/RavoDefaultActionSafeguard.h>

namespace ravo::orx {

RavoActionSafeguardResult RavoDefaultActionSafeguard::evaluate(
    const RavoApplicationActionDescriptor& descriptor, const RavoActionProposal& proposal,
    const std::optional<RavoActionConfirmation>& confirmation) const {
  if (descriptor.risk() == RavoScenarioRiskClass::high) {
    return RavoActionSafeguardResult::deny("safeguard.high_risk_requires_independent_controller");
  }
  if (descriptor.risk() != RavoScenarioRiskClass::medium &&
      descriptor.confirmation() == RavoScenarioConfirmationPolicy::none) {
    return RavoActionSafeguardResult::allow("safeguard.low_risk");
  }
  bool confirmed = confirmation && confirmation->actionID() == proposal.actionID() &&
                   confirmation->stableTargetID() == proposal.stableTargetID() && confirmation->expiresAt() > clock_();
  if (confirmed) return RavoActionSafeguardResult::allow("safeguard.confirmed");
  return RavoActionSafeguardResult::requireConfirmation("safeguard.confirmation_required");
}

}  // namespace ravo::orx
