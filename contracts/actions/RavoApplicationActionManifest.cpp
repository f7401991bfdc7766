#include <ravo-orx/contracts/actions/RavoApplicationActionManifest.h>

#include <algorithm>

namespace ravo::orx {

RavoApplicationActionManifest::RavoApplicationActionManifest(RavoApplicationID applicationID, std::string displayName,
                                                             std::string version,
                                                             std::vector<RavoApplicationActionDescriptor> actions,
                                                             AsStored)
    : applicationID_(std::move(applicationID)),
      displayName_(std::move(displayName)),
      version_(std::move(version)),
      actions_(std::move(actions)) {}

RavoApplicationActionManifest::RavoApplicationActionManifest(RavoApplicationID applicationID, std::string displayName,
                                                             std::string version,
                                                             std::vector<RavoApplicationActionDescriptor> actions)
    : RavoApplicationActionManifest(std::move(applicationID), std::move(displayName), std::move(version),
                                    std::move(actions), AsStored{}) {
  std::stable_sort(actions_.begin(), actions_.end(), [](const auto& a, const auto& b) { return a.id() < b.id(); });
}

std::vector<RavoScenarioNodeDefinition> RavoApplicationActionManifest::scenarioNodeDefinitions() const {
  std::vector<RavoScenarioNodeDefinition> definitions;
  definitions.reserve(actions_.size());
  for (const auto& action : actions_) {
    definitions.emplace_back(RavoScenarioNodeDefinition::Fields{
        .id = RavoScenarioNodeTypeID(action.id().rawValue()),
        .version = version_,
        .kind = RavoScenarioNodeKind::action,
        .inputKeys = {"event"},
        .outputKeys = {"event"},
        .requestedCapabilities = action.requestedCapabilities(),
        .risk = action.risk(),
        .idempotency = RavoScenarioIdempotency::idempotent,
        .reversibility = RavoScenarioReversibility::reversible,
        .confirmation = action.confirmation(),
        .bounds = RavoScenarioExecutionBounds::manualAction(),
        .offlinePolicy = RavoScenarioOfflinePolicy::failClosed,
        .egressPolicy = action.egressPolicy(),
        .adapterID = action.adapterID(),
        .adapterVersion = action.adapterVersion(),
        .schemaDigest = "action-schema." + action.id().rawValue() + "." + version_,
        .implementationDigest = "action-adapter." + action.adapterID() + "." + action.adapterVersion(),
        .isEnabled = true});
  }
  return definitions;
}

RavoJSON RavoApplicationActionManifest::toJSON() const {
  return RavoJSONObjectWriter()
      .add("applicationID", applicationID_)
      .add("displayName", displayName_)
      .add("version", version_)
      .add("actions", actions_)
      .take();
}

RavoApplicationActionManifest RavoApplicationActionManifest::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoApplicationActionManifest");
  auto applicationID = reader.required<RavoApplicationID>("applicationID");
  auto displayName = reader.required<std::string>("displayName");
  auto version = reader.required<std::string>("version");
  auto actions = reader.required<std::vector<RavoApplicationActionDescriptor>>("actions");
  return {std::move(applicationID), std::move(displayName), std::move(version), std::move(actions), AsStored{}};
}

}  // namespace ravo::orx
