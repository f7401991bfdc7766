#pragma once
// A home provider's device inventory at one moment, the reference for checking commands.

#include <vector>

#include "contracts/services/RavoHomeInventoryDevice.h"
#include "contracts/services/RavoHomeProviderID.h"
#include "contracts/support/RavoJSON.h"
#include "contracts/support/RavoTime.h"

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
