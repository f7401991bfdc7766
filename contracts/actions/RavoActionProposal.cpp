#include <ravo-orx/contracts/actions/RavoActionProposal.h>

namespace ravo::orx {

RavoJSON RavoActionProposal::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", id_)
      .add("actionID", actionID_)
      .add("stableTargetID", stableTargetID_)
      .add("arguments", arguments_)
      .add("origin", origin_)
      .take();
}

RavoActionProposal RavoActionProposal::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoActionProposal");
  auto id = reader.required<RavoUUID>("id");
  auto actionID = reader.required<RavoApplicationActionID>("actionID");
  auto stableTargetID = reader.optional<std::string>("stableTargetID");
  auto arguments = reader.required<RavoActionArguments>("arguments");
  return {id, std::move(actionID), std::move(stableTargetID), std::move(arguments),
          reader.required<RavoActionProposalOrigin>("origin")};
}

}  // namespace ravo::orx
