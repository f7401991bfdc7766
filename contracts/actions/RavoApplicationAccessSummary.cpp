#include <ravo-orx/contracts/actions/RavoApplicationAccessSummary.h>

#include <algorithm>
#include <set>

namespace ravo::orx {

RavoApplicationAccessSummary::RavoApplicationAccessSummary(const RavoApplicationActionManifest& manifest)
    : applicationID_(manifest.applicationID()),
      displayName_(manifest.displayName()),
      version_(manifest.version()),
      actions_(manifest.actions()),
      containsORXVerifiedActions_(std::any_of(actions_.begin(), actions_.end(), [](const auto& action) {
        return action.minimumGate() == RavoActionGateRequirement::orxVerified;
      })) {
  std::set<RavoScenarioCapability> capabilities;
  for (const auto& action : actions_) {
    capabilities.insert(action.requestedCapabilities().begin(), action.requestedCapabilities().end());
  }
  requestedCapabilities_.assign(capabilities.begin(), capabilities.end());
}

}  // namespace ravo::orx
