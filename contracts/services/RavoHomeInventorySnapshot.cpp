#include <ravo-orx/contracts/services/RavoHomeInventorySnapshot.h>

#include <algorithm>
#include <utility>

namespace ravo::orx {

namespace {

std::vector<RavoHomeInventoryDevice> sortedByID(std::vector<RavoHomeInventoryDevice> devices) {
  std::ranges::stable_sort(devices, {}, &RavoHomeInventoryDevice::id);
  return devices;
}

}  // namespace

RavoHomeInventorySnapshot::RavoHomeInventorySnapshot(RavoHomeProviderID providerID, RavoTimePoint capturedAt,
                                                     std::vector<RavoHomeInventoryDevice> devices)
    : RavoHomeInventorySnapshot(AsGiven{}, std::move(providerID), capturedAt, sortedByID(std::move(devices))) {}

RavoHomeInventorySnapshot::RavoHomeInventorySnapshot(AsGiven, RavoHomeProviderID providerID, RavoTimePoint capturedAt,
                                                     std::vector<RavoHomeInventoryDevice> devices)
    : providerID_(std::move(providerID)), capturedAt_(capturedAt), devices_(std::move(devices)) {}

RavoJSON RavoHomeInventorySnapshot::toJSON() const {
  return RavoJSONObjectWriter()
      .add("providerID", providerID_)
      .add("capturedAt", capturedAt_)
      .add("devices", devices_)
      .take();
}

RavoHomeInventorySnapshot RavoHomeInventorySnapshot::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoHomeInventorySnapshot");
  return RavoHomeInventorySnapshot{AsGiven{}, reader.required<RavoHomeProviderID>("providerID"),
                                   reader.required<RavoTimePoint>("capturedAt"),
                                   reader.required<std::vector<RavoHomeInventoryDevice>>("devices")};
}

}  // namespace ravo::orx
