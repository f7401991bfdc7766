#pragma once
// A home provider's device inventory at one moment, the reference for checking commands.

#include <vector>

#include <ravo-orx/contracts/services/RavoHomeInventoryDevice.h>
#include <ravo-orx/contracts/services/RavoHomeProviderID.h>
#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoTime.h>

namespace ravo::orx {

class RavoHomeInventorySnapshot {
 public:
  // Sorts the devices by id; devices with the same id keep their order.
  RavoHomeInventorySnapshot(RavoHomeProviderID providerID, RavoTimePoint capturedAt,
                            std::vector<RavoHomeInventoryDevice> devices);

  const RavoHomeProviderID& providerID() const { return providerID_; }
  RavoTimePoint capturedAt() const { return capturedAt_; }
  const std::vector<RavoHomeInventoryDevice>& devices() const { return devices_; }

  RavoJSON toJSON() const;
  static RavoHomeInventorySnapshot fromJSON(const RavoJSON& json);  // devices in the order given

  friend bool operator==(const RavoHomeInventorySnapshot&, const RavoHomeInventorySnapshot&) = default;

 private:
  struct AsGiven {};
  RavoHomeInventorySnapshot(AsGiven, RavoHomeProviderID providerID, RavoTimePoint capturedAt,
                            std::vector<RavoHomeInventoryDevice> devices);

  RavoHomeProviderID providerID_;
  RavoTimePoint capturedAt_;
  std::vector<RavoHomeInventoryDevice> devices_;
};

}  // namespace ravo::orx
