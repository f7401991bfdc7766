#include <ravo-orx/contracts/scenarios/RavoScenarioEdge.h>

namespace ravo::orx {

std::string RavoScenarioEdge::id() const {
  return fromNodeID_.uuidString() + ":" + outputKey_ + "->" + toNodeID_.uuidString() + ":" + inputKey_;
}

RavoJSON RavoScenarioEdge::toJSON() const {
  return RavoJSONObjectWriter()
      .add("fromNodeID", fromNodeID_)
      .add("outputKey", outputKey_)
      .add("toNodeID", toNodeID_)
      .add("inputKey", inputKey_)
      .take();
}

RavoScenarioEdge RavoScenarioEdge::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioEdge");
  return {reader.required<RavoUUID>("fromNodeID"), reader.required<std::string>("outputKey"),
          reader.required<RavoUUID>("toNodeID"), reader.required<std::string>("inputKey")};
}

}  // namespace ravo::orx
