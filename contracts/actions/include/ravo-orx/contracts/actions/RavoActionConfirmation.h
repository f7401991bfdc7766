#pragma once
// A person's confirmation of one action on one target, valid for one grant generation until it
// expires. Held in memory only.

#include <cstdint>
#include <optional>
#include <string>

#include <ravo-orx/contracts/actions/RavoApplicationActionID.h>
#include <ravo-orx/contracts/support/RavoTime.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoActionConfirmation {
 public:
  RavoActionConfirmation(RavoUUID id, RavoApplicationActionID actionID, std::optional<std::string> stableTargetID,
                         std::int64_t generation, RavoTimePoint expiresAt)
      : id_(id),
        actionID_(std::move(actionID)),
        stableTargetID_(std::move(stableTargetID)),
        generation_(generation),
        expiresAt_(expiresAt) {}

  const RavoUUID& id() const { return id_; }
  const RavoApplicationActionID& actionID() const { return actionID_; }
  const std::optional<std::string>& stableTargetID() const { return stableTargetID_; }
  std::int64_t generation() const { return generation_; }
  RavoTimePoint expiresAt() const { return expiresAt_; }

  friend bool operator==(const RavoActionConfirmation&, const RavoActionConfirmation&) = default;

 private:
  RavoUUID id_;
  RavoApplicationActionID actionID_;
  std::optional<std::string> stableTargetID_;
  std::int64_t generation_;
  RavoTimePoint expiresAt_;
};

}  // namespace ravo::orx
