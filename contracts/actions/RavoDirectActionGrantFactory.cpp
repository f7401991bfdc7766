#include <ravo-orx/contracts/actions/RavoDirectActionGrantFactory.h>

#include <chrono>

namespace ravo::orx {

namespace {

bool isEligible(const RavoApplicationActionDescriptor& descriptor, std::int64_t generation,
                const std::optional<std::string>& stableTargetID, double lifetimeSeconds) {
  bool harmless = descriptor.minimumGate() == RavoActionGateRequirement::hostGrant &&
                  (descriptor.risk() == RavoScenarioRiskClass::none || descriptor.risk() == RavoScenarioRiskClass::low) &&
                  descriptor.confirmation() == RavoScenarioConfirmationPolicy::none &&
                  descriptor.egressPolicy() == RavoScenarioDataEgressPolicy::none;
  bool targetFits = stableTargetID.has_value() == descriptor.requiresStableTarget() &&
                    (!stableTargetID || stableTargetID->size() <= RavoDirectActionGrantFactory::maximumStableTargetBytes);
  // Written so that a NaN lifetime fails too.
  bool lifetimeFits = lifetimeSeconds > 0 && lifetimeSeconds <= RavoDirectActionGrantFactory::maximumLifetimeSeconds;
  return generation >= 0 && harmless && targetFits && lifetimeFits;
}

}  // namespace

RavoActionGrant RavoDirectActionGrantFactory::oneShot(const RavoApplicationActionDescriptor& descriptor,
                                                      std::int64_t generation,
                                                      const std::optional<std::string>& stableTargetID,
                                                      RavoTimePoint now, double lifetimeSeconds) {
  if (!isEligible(descriptor, generation, stableTargetID, lifetimeSeconds)) throw Error(Error::Code::actionNotEligible);
  auto lifetime = std::chrono::round<std::chrono::nanoseconds>(std::chrono::duration<double>(lifetimeSeconds));
  return RavoActionGrant({.id = RavoUUID::random(),
                          .generation = generation,
                          .allowedActionIDs = {descriptor.id()},
                          .allowedCapabilities = descriptor.requestedCapabilities(),
                          .allowedStableTargetIDs = stableTargetID ? std::vector{*stableTargetID} : std::vector<std::string>{},
                          .expiresAt = now + lifetime,
                          .maxUses = 1});
}

}  // namespace ravo::orx
