#include <ravo-orx/contracts/actions/RavoActionExecutionBroker.h>

#include <algorithm>
#include <stdexcept>

namespace ravo::orx {

namespace {

bool isSubset(const std::vector<RavoScenarioCapability>& requested, const RavoActionGrant& grant) {
  return std::all_of(requested.begin(), requested.end(),
                     [&](const auto& capability) { return grant.allowsCapability(capability); });
}

bool levelSuffices(RavoActionGateLevel level, const RavoApplicationActionDescriptor& descriptor,
                   const RavoActionProposal& proposal) {
  bool verifiedRequired = ravoIsModelOrigin(proposal.origin()) ||
                          descriptor.minimumGate() == RavoActionGateRequirement::orxVerified;
  return !verifiedRequired || level == RavoActionGateLevel::orxVerified;
}

}  // namespace

RavoActionExecutionBroker::RavoActionExecutionBroker(const std::vector<RavoApplicationActionManifest>& manifests,
                                                     std::unique_ptr<const RavoActionGateChecking> gate,
                                                     std::unique_ptr<const RavoActionSafeguardChecking> safeguard,
                                                     RavoWallClock clock)
    : gate_(std::move(gate)), safeguard_(std::move(safeguard)), clock_(std::move(clock)) {
  if (!gate_ || !safeguard_ || !clock_) throw std::invalid_argument("action broker needs a gate, a safeguard and a clock");
  for (const auto& manifest : manifests) {
    for (const auto& action : manifest.actions()) {
      auto [_, inserted] =
          descriptors_.emplace(action.id(), std::make_shared<const RavoApplicationActionDescriptor>(action));
      if (!inserted) {
        throw RavoActionBrokerError(RavoActionBrokerError::Code::duplicateAction,
                                    "action declared by more than one manifest: " + action.id().rawValue());
      }
    }
  }
}

void RavoActionExecutionBroker::install(const RavoApplicationActionManifest& manifest) {
  std::lock_guard lock(mutex_);
  for (const auto& action : manifest.actions()) {
    auto installed = descriptors_.find(action.id());
    if (installed == descriptors_.end()) {
      descriptors_.emplace(action.id(), std::make_shared<const RavoApplicationActionDescriptor>(action));
    } else if (*installed->second != action) {
      throw RavoActionBrokerError(RavoActionBrokerError::Code::duplicateAction,
                                  "action already installed with a different declaration: " + action.id().rawValue());
    }
  }
}

void RavoActionExecutionBroker::registerHandler(const RavoApplicationActionID& actionID, RavoActionHandler handler) {
  std::lock_guard lock(mutex_);
  if (!descriptors_.contains(actionID)) {
    throw RavoActionBrokerError(RavoActionBrokerError::Code::unknownAction,
                                "no installed action to handle: " + actionID.rawValue());
  }
  // Checked after the broker's own error, which comes first whatever the handler. An empty function
  // could only fail each execution later, as "handler.failed".
  if (!handler) throw std::invalid_argument("empty handler for " + actionID.rawValue());
  handlers_.insert_or_assign(actionID, std::make_shared<const RavoActionHandler>(std::move(handler)));
}

void RavoActionExecutionBroker::install(const RavoActionGrant& grant) {
  if (grant.generation() < 0 || grant.maxUses() < 1 || !(grant.expiresAt() > clock_())) {
    throw RavoActionBrokerError(RavoActionBrokerError::Code::invalidGrant,
                                "grant needs a generation >= 0, at least one use and a future expiry: " +
                                    grant.id().uuidString());
  }
  std::lock_guard lock(mutex_);
  grants_.insert_or_assign(grant.id(), GrantState{grant, grant.maxUses()});
}

void RavoActionExecutionBroker::revoke(const RavoUUID& grantID) {
  std::lock_guard lock(mutex_);
  grants_.erase(grantID);
}

std::vector<RavoApplicationActionDescriptor> RavoActionExecutionBroker::installedActions() const {
  std::lock_guard lock(mutex_);
  std::vector<RavoApplicationActionDescriptor> actions;
  actions.reserve(descriptors_.size());
  for (const auto& [_, descriptor] : descriptors_) actions.push_back(*descriptor);
  return actions;
}

std::shared_ptr<const RavoApplicationActionDescriptor> RavoActionExecutionBroker::findDescriptor(
    const RavoApplicationActionID& id) const {
  std::lock_guard lock(mutex_);
  auto found = descriptors_.find(id);
  return found == descriptors_.end() ? nullptr : found->second;
}

std::shared_ptr<const RavoActionHandler> RavoActionExecutionBroker::findHandler(const RavoApplicationActionID& id) const {
  std::lock_guard lock(mutex_);
  auto found = handlers_.find(id);
  return found == handlers_.end() ? nullptr : found->second;
}

std::variant<RavoActionGrant, const char*> RavoActionExecutionBroker::consumeUse(
    const RavoApplicationActionDescriptor& descriptor, const RavoActionProposal& proposal, const RavoUUID& grantID,
    std::int64_t generation, const std::optional<RavoActionConfirmation>& confirmation, RavoTimePoint now) {
  std::lock_guard lock(mutex_);
  auto found = grants_.find(grantID);
  if (found == grants_.end()) return "broker.grant_scope_mismatch";
  GrantState& state = found->second;
  const RavoActionGrant& grant = state.grant;
  if (state.remainingUses < 1 || !(grant.expiresAt() > now) || grant.generation() != generation ||
      !grant.allowsAction(proposal.actionID()) || !isSubset(descriptor.requestedCapabilities(), grant)) {
    return "broker.grant_scope_mismatch";
  }
  if (proposal.stableTargetID() && !grant.allowsStableTarget(*proposal.stableTargetID())) {
    return "broker.target_out_of_scope";
  }
  // A confirmation is checked whenever one is given, even for an action that needs none.
  if (confirmation && (confirmation->generation() != generation || !(confirmation->expiresAt() > now))) {
    return "broker.stale_confirmation";
  }
  // From here the use stays spent, whatever the gate, the safeguard or the handler decide.
  --state.remainingUses;
  return grant;
}

RavoActionReceipt RavoActionExecutionBroker::execute(const RavoActionProposal& proposal, const RavoUUID& grantID,
                                                     std::int64_t generation,
                                                     const std::optional<RavoActionConfirmation>& confirmation,
                                                     RavoTimePoint now) {
  auto receipt = [&](RavoActionReceiptOutcome outcome, std::string reasonCode,
                     std::optional<RavoActionGateLevel> gateLevel = std::nullopt,
                     std::optional<RavoUUID> receiptGrantID = std::nullopt) {
    return RavoActionReceipt({.id = RavoUUID::random(),
                              .proposalID = proposal.id(),
                              .actionID = proposal.actionID(),
                              .grantID = receiptGrantID,
                              .outcome = outcome,
                              .reasonCode = std::move(reasonCode),
                              .gateLevel = gateLevel,
                              .stableTargetID = proposal.stableTargetID()});
  };
  auto blocked = [&](std::string reasonCode, std::optional<RavoActionGateLevel> gateLevel = std::nullopt) {
    return receipt(RavoActionReceiptOutcome::blocked, std::move(reasonCode), gateLevel, grantID);
  };

  auto descriptor = findDescriptor(proposal.actionID());
  if (!descriptor) return receipt(RavoActionReceiptOutcome::blocked, "broker.unknown_action");
  if (!descriptor->validate(proposal.arguments()).empty()) return blocked("broker.invalid_arguments");
  if (proposal.stableTargetID().has_value() != descriptor->requiresStableTarget()) {
    return blocked("broker.stable_target_required");
  }

  auto admission = consumeUse(*descriptor, proposal, grantID, generation, confirmation, now);
  if (const char* const* refusal = std::get_if<const char*>(&admission)) return blocked(*refusal);
  const RavoActionGrant& grant = std::get<RavoActionGrant>(admission);

  std::optional<RavoActionGateResult> gateResult;
  try {
    gateResult = gate_->evaluate(*descriptor, proposal, grant);
  } catch (...) {
    // A gate that cannot answer admits nothing.
    return blocked("gate.failed");
  }
  if (!gateResult->isAllowed()) return blocked(gateResult->code());
  RavoActionGateLevel level = *gateResult->level();
  if (!levelSuffices(level, *descriptor, proposal)) {
    return blocked("broker.orx_verification_required:" + gateResult->code(), level);
  }

  std::optional<RavoActionSafeguardResult> safeguardResult;
  try {
    safeguardResult = safeguard_->evaluate(*descriptor, proposal, confirmation);
  } catch (...) {
    return blocked("safeguard.failed", level);
  }
  if (safeguardResult->verdict() != RavoActionSafeguardResult::Verdict::allow) {
    return blocked(safeguardResult->reasonCode(), level);
  }

  auto handler = findHandler(proposal.actionID());
  if (!handler) return blocked("broker.handler_unavailable", level);
  try {
    RavoActionHandlerResult result = (*handler)(proposal);
    return receipt(RavoActionReceiptOutcome::completed, "handler." + result.code(), level, grantID);
  } catch (...) {
    // The error itself is the handler's business; the receipt records only that it failed.
    return receipt(RavoActionReceiptOutcome::failed, "handler.failed", level, grantID);
  }
}

}  // namespace ravo::orx
