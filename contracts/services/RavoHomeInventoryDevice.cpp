#include <ravo-orx/contracts/services/RavoHomeInventoryDevice.h>

#include <algorithm>
#include <utility>

#include <ravo-orx/contracts/support/RavoGraphemePrefix.h>
#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

std::optional<std::string> normalizedRoomName(const std::optional<std::string>& roomName) {
  if (!roomName) return std::nullopt;
  auto name = ravoGraphemePrefix(ravoTrimmedText(*roomName), RavoHomeInventoryDevice::maximumNameCharacters);
  if (name.empty()) return std::nullopt;
  return name;
}

std::vector<RavoHomeInventoryCapability> normalizedCapabilities(std::vector<RavoHomeInventoryCapability> capabilities) {
  std::ranges::sort(capabilities, {}, [](auto capability) { return orxRawValue(capability); });
  capabilities.erase(std::unique(capabilities.begin(), capabilities.end()), capabilities.end());
  return capabilities;
}

}  // namespace

RavoHomeInventoryDevice::RavoHomeInventoryDevice(std::string id, RavoHomeInventoryDeviceKind kind,
                                                 std::string displayName, std::optional<std::string> roomName,
                                                 std::vector<RavoHomeInventoryCapability> capabilities,
                                                 bool isReachable)
    : RavoHomeInventoryDevice(AsGiven{}, ravoGraphemePrefix(id, maximumIDCharacters), kind,
                              ravoGraphemePrefix(displayName, maximumNameCharacters), normalizedRoomName(roomName),
                              normalizedCapabilities(std::move(capabilities)), isReachable) {}

RavoHomeInventoryDevice::RavoHomeInventoryDevice(AsGiven, std::string id, RavoHomeInventoryDeviceKind kind,
                                                 std::string displayName, std::optional<std::string> roomName,
                                                 std::vector<RavoHomeInventoryCapability> capabilities,
                                                 bool isReachable)
    : id_(std::move(id)),
      kind_(kind),
      displayName_(std::move(displayName)),
      roomName_(std::move(roomName)),
      capabilities_(std::move(capabilities)),
      isReachable_(isReachable) {}

bool RavoHomeInventoryDevice::hasCapability(RavoHomeInventoryCapability capability) const {
  return std::ranges::find(capabilities_, capability) != capabilities_.end();
}

RavoJSON RavoHomeInventoryDevice::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", id_)
      .add("kind", kind_)
      .add("displayName", displayName_)
      .add("roomName", roomName_)
      .add("capabilities", capabilities_)
      .add("isReachable", isReachable_)
      .take();
}

RavoHomeInventoryDevice RavoHomeInventoryDevice::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoHomeInventoryDevice");
  return RavoHomeInventoryDevice{AsGiven{},
                                 reader.required<std::string>("id"),
                                 reader.required<RavoHomeInventoryDeviceKind>("kind"),
                                 reader.required<std::string>("displayName"),
                                 reader.optional<std::string>("roomName"),
                                 reader.required<std::vector<RavoHomeInventoryCapability>>("capabilities"),
                                 reader.required<bool>("isReachable")};
}

}  // namespace ravo::orx
