#pragma once
// The record of one execution attempt: what was proposed, under which grant, how it ended and why
// (a dotted reason code such as "broker.unknown_action" or "handler.done").

#include <optional>
#include <string>

#include <ravo-orx/contracts/actions/RavoActionGateLevel.h>
#include <ravo-orx/contracts/actions/RavoActionLabels.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionID.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoActionReceipt {
 public:
  struct Fields {
    RavoUUID id{};
    RavoUUID proposalID{};
    RavoApplicationActionID actionID{};
    std::optional<RavoUUID> grantID{};
    RavoActionReceiptOutcome outcome = RavoActionReceiptOutcome::blocked;
    std::string reasonCode{};
    std::optional<RavoActionGateLevel> gateLevel{};
    std::optional<std::string> stableTargetID{};

    friend bool operator==(const Fields&, const Fields&) = default;
  };

  explicit RavoActionReceipt(Fields fields) : fields_(std::move(fields)) {}

  const RavoUUID& id() const { return fields_.id; }
  const RavoUUID& proposalID() const { return fields_.proposalID; }
  const RavoApplicationActionID& actionID() const { return fields_.actionID; }
  const std::optional<RavoUUID>& grantID() const { return fields_.grantID; }
  RavoActionReceiptOutcome outcome() const { return fields_.outcome; }
  const std::string& reasonCode() const { return fields_.reasonCode; }
  const std::optional<RavoActionGateLevel>& gateLevel() const { return fields_.gateLevel; }
  const std::optional<std::string>& stableTargetID() const { return fields_.stableTargetID; }

  RavoJSON toJSON() const;
  static RavoActionReceipt fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoActionReceipt&, const RavoActionReceipt&) = default;

 private:
  Fields fields_;
};

}  // namespace ravo::orx
