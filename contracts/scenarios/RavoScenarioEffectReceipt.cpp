#include <ravo-orx/contracts/scenarios/RavoScenarioEffectReceipt.h>

namespace ravo::orx {

RavoJSON RavoScenarioEffectReceipt::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", fields_.id)
      .add("revisionID", fields_.revisionID)
      .add("nodeID", fields_.nodeID)
      .add("stableTargetID", fields_.stableTargetID)
      .add("outcome", fields_.outcome)
      .add("reasonCode", fields_.reasonCode)
      .take();
}

RavoScenarioEffectReceipt RavoScenarioEffectReceipt::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioEffectReceipt");
  return RavoScenarioEffectReceipt({.id = reader.required<RavoUUID>("id"),
                                    .revisionID = reader.required<RavoUUID>("revisionID"),
                                    .nodeID = reader.required<RavoUUID>("nodeID"),
                                    .stableTargetID = reader.optional<std::string>("stableTargetID"),
                                    .outcome = reader.required<Outcome>("outcome"),
                                    .reasonCode = reader.required<std::string>("reasonCode")});
}

}  // namespace ravo::orx
