#include <ravo-orx/contracts/actions/RavoActionReceipt.h>

namespace ravo::orx {

RavoJSON RavoActionReceipt::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", fields_.id)
      .add("proposalID", fields_.proposalID)
      .add("actionID", fields_.actionID)
      .add("grantID", fields_.grantID)
      .add("outcome", fields_.outcome)
      .add("reasonCode", fields_.reasonCode)
      .add("gateLevel", fields_.gateLevel)
      .add("stableTargetID", fields_.stableTargetID)
      .take();
}

RavoActionReceipt RavoActionReceipt::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoActionReceipt");
  return RavoActionReceipt({.id = reader.required<RavoUUID>("id"),
                            .proposalID = reader.required<RavoUUID>("proposalID"),
                            .actionID = reader.required<RavoApplicationActionID>("actionID"),
                            .grantID = reader.optional<RavoUUID>("grantID"),
                            .outcome = reader.required<RavoActionReceiptOutcome>("outcome"),
                            .reasonCode = reader.required<std::string>("reasonCode"),
                            .gateLevel = reader.optional<RavoActionGateLevel>("gateLevel"),
                            .stableTargetID = reader.optional<std::string>("stableTargetID")});
}

}  // namespace ravo::orx
