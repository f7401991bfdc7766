#include <ravo-orx/contracts/scenarios/RavoScenarioDraft.h>

namespace ravo::orx {

RavoJSON RavoScenarioDraft::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", id_)
      .add("title", title_)
      .add("graph", graph_)
      .add("activationRequest", activationRequest_)
      .add("lifecycle", lifecycle_)
      .take();
}

RavoScenarioDraft RavoScenarioDraft::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioDraft");
  return {reader.required<RavoUUID>("id"), reader.required<std::string>("title"),
          reader.required<RavoScenarioGraph>("graph"),
          reader.required<RavoScenarioActivationRequest>("activationRequest"),
          reader.required<RavoScenarioLifecycle>("lifecycle")};
}

}  // namespace ravo::orx
