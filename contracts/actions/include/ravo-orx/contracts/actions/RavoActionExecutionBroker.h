#pragma once
// The single door through which a proposed action reaches the code that performs it. For each proposal
// the broker checks the descriptor, the arguments, the stable target, the grant and any confirmation,
// consumes one use of the grant, asks the gate and the safeguard, and calls the handler. Every outcome,
// refusals and handler failures included, is a receipt with a reason code; `execute` never throws.
//
// Thread-safe. One mutex guards the descriptors, handlers and grants; it is never held while the gate,
// the safeguard or a handler runs, so those may take their time and may call back into the broker.
// A grant's use is consumed under the lock before the first call-out, so concurrent executions can
// never spend the same use twice.

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <variant>
#include <vector>

#include <ravo-orx/contracts/actions/RavoActionBrokerError.h>
#include <ravo-orx/contracts/actions/RavoActionConfirmation.h>
#include <ravo-orx/contracts/actions/RavoActionGateChecking.h>
#include <ravo-orx/contracts/actions/RavoActionGrant.h>
#include <ravo-orx/contracts/actions/RavoActionHandler.h>
#include <ravo-orx/contracts/actions/RavoActionProposal.h>
#include <ravo-orx/contracts/actions/RavoActionReceipt.h>
#include <ravo-orx/contracts/actions/RavoActionSafeguardChecking.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionManifest.h>
#include <ravo-orx/contracts/actions/RavoWallClock.h>

namespace ravo::orx {

class RavoActionExecutionBroker {
 public:
  // Installs every action of every manifest. The action ids must be distinct across the manifests:
  // a repeated id is a caller's mistake that would leave it unclear which declaration governs, so it
  // throws RavoActionBrokerError (duplicateAction) rather than installing either. A null gate or
  // safeguard throws std::invalid_argument. `clock` judges grant expiry at installation.
  RavoActionExecutionBroker(const std::vector<RavoApplicationActionManifest>& manifests,
                            std::unique_ptr<const RavoActionGateChecking> gate,
                            std::unique_ptr<const RavoActionSafeguardChecking> safeguard,
                            RavoWallClock clock = ravoWallClockNow);

  RavoActionExecutionBroker(const RavoActionExecutionBroker&) = delete;
  RavoActionExecutionBroker& operator=(const RavoActionExecutionBroker&) = delete;

  // Adds the actions in order. An equal descriptor under an installed id is accepted again; a different
  // one throws duplicateAction, leaving the actions before it installed.
  void install(const RavoApplicationActionManifest& manifest);

  // Replaces any earlier handler; throws unknownAction when no such action is installed, and
  // std::invalid_argument for an empty function.
  void registerHandler(const RavoApplicationActionID& actionID, RavoActionHandler handler);

  // Accepts a grant of generation >= 0 and at least one use that has not expired by the wall clock,
  // replacing any grant with the same id; otherwise throws invalidGrant.
  void install(const RavoActionGrant& grant);

  void revoke(const RavoUUID& grantID);

  // `now` is the caller's time, used for the grant and confirmation expiry checks.
  RavoActionReceipt execute(const RavoActionProposal& proposal, const RavoUUID& grantID, std::int64_t generation,
                            const std::optional<RavoActionConfirmation>& confirmation, RavoTimePoint now);

  // All installed descriptors, by id.
  std::vector<RavoApplicationActionDescriptor> installedActions() const;

 private:
  struct GrantState {
    RavoActionGrant grant;
    std::int64_t remainingUses;
  };

  // The checks that consult the grant and, when they pass, the consumption of one use, in one critical
  // section. Gives the grant as it was checked, or the reason code of the refusal.
  std::variant<RavoActionGrant, const char*> consumeUse(const RavoApplicationActionDescriptor& descriptor,
                                                        const RavoActionProposal& proposal, const RavoUUID& grantID,
                                                        std::int64_t generation,
                                                        const std::optional<RavoActionConfirmation>& confirmation,
                                                        RavoTimePoint now);
  std::shared_ptr<const RavoApplicationActionDescriptor> findDescriptor(const RavoApplicationActionID& id) const;
  std::shared_ptr<const RavoActionHandler> findHandler(const RavoApplicationActionID& id) const;

  const std::unique_ptr<const RavoActionGateChecking> gate_;
  const std::unique_ptr<const RavoActionSafeguardChecking> safeguard_;
  const RavoWallClock clock_;

  mutable std::mutex mutex_;
  std::map<RavoApplicationActionID, std::shared_ptr<const RavoApplicationActionDescriptor>> descriptors_;
  std::map<RavoApplicationActionID, std::shared_ptr<const RavoActionHandler>> handlers_;
  std::unordered_map<RavoUUID, GrantState> grants_;
};

}  // namespace ravo::orx
