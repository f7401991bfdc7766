#include <ravo-orx/contracts/scenarios/RavoScenarioNodeInstance.h>

#include <algorithm>

namespace ravo::orx {

RavoScenarioNodeInstance::RavoScenarioNodeInstance(RavoUUID id, RavoScenarioNodeTypeID nodeType,
                                                   std::string nodeVersion, std::vector<std::string> stableTargetIDs,
                                                   std::optional<RavoScenarioActionBinding> actionBinding)
    : RavoScenarioNodeInstance(id, std::move(nodeType), std::move(nodeVersion), std::move(stableTargetIDs),
                               std::move(actionBinding), AsStored{}) {
  std::stable_sort(stableTargetIDs_.begin(), stableTargetIDs_.end());
}

RavoScenarioNodeInstance::RavoScenarioNodeInstance(RavoUUID id, RavoScenarioNodeTypeID nodeType,
                                                   std::string nodeVersion, std::vector<std::string> stableTargetIDs,
                                                   std::optional<RavoScenarioActionBinding> actionBinding, AsStored)
    : id_(id),
      nodeType_(std::move(nodeType)),
      nodeVersion_(std::move(nodeVersion)),
      stableTargetIDs_(std::move(stableTargetIDs)),
      actionBinding_(std::move(actionBinding)) {}

RavoJSON RavoScenarioNodeInstance::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", id_)
      .add("nodeType", nodeType_)
      .add("nodeVersion", nodeVersion_)
      .add("stableTargetIDs", stableTargetIDs_)
      .add("actionBinding", actionBinding_)
      .take();
}

RavoScenarioNodeInstance RavoScenarioNodeInstance::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioNodeInstance");
  return {reader.required<RavoUUID>("id"),
          reader.required<RavoScenarioNodeTypeID>("nodeType"),
          reader.required<std::string>("nodeVersion"),
          reader.required<std::vector<std::string>>("stableTargetIDs"),
          reader.optional<RavoScenarioActionBinding>("actionBinding"),
          AsStored{}};
}

}  // namespace ravo::orx
