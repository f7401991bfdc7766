#include <ravo-orx/contracts/services/RavoHomeInventoryValidator.h>

#include <string_view>
#include <unordered_set>

#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

std::vector<RavoHomeInventoryValidationIssue> RavoHomeInventoryValidator::validate(
    const RavoHomeInventorySnapshot& snapshot) noexcept {
  using Issue = RavoHomeInventoryValidationIssue;
  const auto& devices = snapshot.devices();
  if (devices.size() > maximumDevices) return {Issue::tooManyDevices(devices.size(), maximumDevices)};

  std::vector<Issue> issues;
  std::unordered_set<std::string_view> seenIDs;
  for (const auto& device : devices) {
    const bool firstSighting = seenIDs.insert(device.id()).second;
    if (ravoTrimmedText(device.id()).empty()) {
      issues.push_back(Issue::emptyDeviceID());
    } else if (!firstSighting) {
      issues.push_back(Issue::duplicateDeviceID(device.id()));
    }
    if (ravoTrimmedText(device.displayName()).empty()) issues.push_back(Issue::emptyDisplayName(device.id()));
    if (device.capabilities().empty()) issues.push_back(Issue::noCapabilities(device.id()));
  }
  return issues;
}

}  // namespace ravo::orx
