#include <ravo-orx/contracts/scenarios/RavoScenarioNodeVersionChange.h>

namespace ravo::orx {

std::string RavoScenarioNodeVersionChange::id() const {
  std::string text = nodeType_.rawValue();
  for (const auto& target : stableTargetIDs_) text += "|" + target;
  return text + "|" + fromVersion_ + "|" + toVersion_;
}

RavoJSON RavoScenarioNodeVersionChange::toJSON() const {
  return RavoJSONObjectWriter()
      .add("nodeType", nodeType_)
      .add("stableTargetIDs", stableTargetIDs_)
      .add("fromVersion", fromVersion_)
      .add("toVersion", toVersion_)
      .take();
}

RavoScenarioNodeVersionChange RavoScenarioNodeVersionChange::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioNodeVersionChange");
  return {reader.required<RavoScenarioNodeTypeID>("nodeType"),
          reader.required<std::vector<std::string>>("stableTargetIDs"), reader.required<std::string>("fromVersion"),
          reader.required<std::string>("toVersion")};
}

}  // namespace ravo::orx
