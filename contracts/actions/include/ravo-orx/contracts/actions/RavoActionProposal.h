#pragma once
// A request to run one action once, with typed arguments, optionally aimed at a stable target.

#include <optional>
#include <string>

#include <ravo-orx/contracts/actions/RavoActionLabels.h>
#include <ravo-orx/contracts/actions/RavoActionValue.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionID.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoActionProposal {
 public:
  RavoActionProposal(RavoUUID id, RavoApplicationActionID actionID, std::optional<std::string> stableTargetID,
                     RavoActionArguments arguments, RavoActionProposalOrigin origin)
      : id_(id),
        actionID_(std::move(actionID)),
        stableTargetID_(std::move(stableTargetID)),
        arguments_(std::move(arguments)),
        origin_(origin) {}

  const RavoUUID& id() const { return id_; }
  const RavoApplicationActionID& actionID() const { return actionID_; }
  // Identity of the concrete thing acted on, e.g. one playback session.
  const std::optional<std::string>& stableTargetID() const { return stableTargetID_; }
  const RavoActionArguments& arguments() const { return arguments_; }
  RavoActionProposalOrigin origin() const { return origin_; }

  RavoJSON toJSON() const;
  static RavoActionProposal fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoActionProposal&, const RavoActionProposal&) = default;

 private:
  RavoUUID id_;
  RavoApplicationActionID actionID_;
  std::optional<std::string> stableTargetID_;
  RavoActionArguments arguments_;
  RavoActionProposalOrigin origin_;
};

}  // namespace ravo::orx
