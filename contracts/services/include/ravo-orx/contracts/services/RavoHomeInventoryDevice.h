#pragma once
// One device in a home provider's inventory, as the provider reported it.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <ravo-orx/contracts/services/RavoHomeLabels.h>
#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class RavoHomeInventoryDevice {
 public:
  static constexpr std::size_t maximumIDCharacters = 160;
  static constexpr std::size_t maximumNameCharacters = 96;  // display and room names

  // Normalises: `id` and `displayName` are cut to their maximum length in user-perceived characters
  // (not trimmed, so validation still sees what the provider sent); `roomName` is trimmed, cut, and
  // dropped when empty; capabilities lose repeats and are sorted by their JSON text.
  RavoHomeInventoryDevice(std::string id, RavoHomeInventoryDeviceKind kind, std::string displayName,
                          std::optional<std::string> roomName, std::vector<RavoHomeInventoryCapability> capabilities,
                          bool isReachable);

  const std::string& id() const { return id_; }  // the provider's stable identifier
  RavoHomeInventoryDeviceKind kind() const { return kind_; }
  const std::string& displayName() const { return displayName_; }
  const std::optional<std::string>& roomName() const { return roomName_; }
  const std::vector<RavoHomeInventoryCapability>& capabilities() const { return capabilities_; }
  bool isReachable() const { return isReachable_; }  // the provider can reach it right now

  bool hasCapability(RavoHomeInventoryCapability capability) const;

  RavoJSON toJSON() const;
  static RavoHomeInventoryDevice fromJSON(const RavoJSON& json);  // values as they stand

  friend bool operator==(const RavoHomeInventoryDevice&, const RavoHomeInventoryDevice&) = default;

 private:
  struct AsGiven {};
  RavoHomeInventoryDevice(AsGiven, std::string id, RavoHomeInventoryDeviceKind kind, std::string displayName,
                          std::optional<std::string> roomName, std::vector<RavoHomeInventoryCapability> capabilities,
                          bool isReachable);

  std::string id_;
  RavoHomeInventoryDeviceKind kind_;
  std::string displayName_;
  std::optional<std::string> roomName_;
  std::vector<RavoHomeInventoryCapability> capabilities_;
  bool isReachable_;
};

}  // namespace ravo::orx
