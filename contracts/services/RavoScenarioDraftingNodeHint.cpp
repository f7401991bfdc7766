#include <ravo-orx/contracts/services/RavoScenarioDraftingNodeHint.h>

#include <algorithm>

namespace ravo::orx {

RavoScenarioDraftingNodeHint::RavoScenarioDraftingNodeHint(RavoScenarioNodeTypeID id, std::string version,
                                                           RavoScenarioNodeKind kind,
                                                           std::vector<RavoActionParameterSchema> actionParameters)
    : RavoScenarioDraftingNodeHint(std::move(id), std::move(version), kind, std::move(actionParameters), AsStored{}) {
  std::stable_sort(actionParameters_.begin(), actionParameters_.end(),
                   [](const auto& a, const auto& b) { return a.key() < b.key(); });
}

RavoJSON RavoScenarioDraftingNodeHint::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", id_)
      .add("version", version_)
      .add("kind", kind_)
      .add("actionParameters", actionParameters_)
      .take();
}

RavoScenarioDraftingNodeHint RavoScenarioDraftingNodeHint::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioDraftingNodeHint");
  return {reader.required<RavoScenarioNodeTypeID>("id"), reader.required<std::string>("version"),
          reader.required<RavoScenarioNodeKind>("kind"),
          reader.required<std::vector<RavoActionParameterSchema>>("actionParameters"), AsStored{}};
}

}  // namespace ravo::orx
