#pragma once
// A host-issued permission to run some actions, with some capabilities, on some targets, a limited
// number of times until it expires. Held in memory only; a grant is never serialised.

#include <cstdint>
#include <string>
#include <vector>

#include <ravo-orx/contracts/actions/RavoApplicationActionID.h>
#include <ravo-orx/contracts/definitions/RavoScenarioCapability.h>
#include <ravo-orx/contracts/support/RavoTime.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoActionGrant {
 public:
  struct Fields {
    RavoUUID id{};
    std::int64_t generation = 0;
    std::vector<RavoApplicationActionID> allowedActionIDs{};
    std::vector<RavoScenarioCapability> allowedCapabilities{};
    std::vector<std::string> allowedStableTargetIDs{};
    RavoTimePoint expiresAt{};
    std::int64_t maxUses = 1;

    friend bool operator==(const Fields&, const Fields&) = default;
  };

  // De-duplicates and sorts the three lists, so membership tests can search them.
  explicit RavoActionGrant(Fields fields);

  const RavoUUID& id() const { return fields_.id; }
  std::int64_t generation() const { return fields_.generation; }
  const std::vector<RavoApplicationActionID>& allowedActionIDs() const { return fields_.allowedActionIDs; }
  const std::vector<RavoScenarioCapability>& allowedCapabilities() const { return fields_.allowedCapabilities; }
  const std::vector<std::string>& allowedStableTargetIDs() const { return fields_.allowedStableTargetIDs; }
  RavoTimePoint expiresAt() const { return fields_.expiresAt; }
  std::int64_t maxUses() const { return fields_.maxUses; }

  bool allowsAction(const RavoApplicationActionID& actionID) const;
  bool allowsCapability(const RavoScenarioCapability& capability) const;
  bool allowsStableTarget(const std::string& stableTargetID) const;

  friend bool operator==(const RavoActionGrant&, const RavoActionGrant&) = default;

 private:
  Fields fields_;
};

}  // namespace ravo::orx
