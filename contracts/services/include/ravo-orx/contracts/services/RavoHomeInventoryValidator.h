#pragma once
// Checks that a home inventory snapshot is sane before commands are checked against it.

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <ravo-orx/contracts/services/RavoHomeInventorySnapshot.h>

namespace ravo::orx {

class RavoHomeInventoryValidationIssue {
 public:
  enum class Kind { tooManyDevices, duplicateDeviceID, emptyDisplayName, noCapabilities, emptyDeviceID };

  static RavoHomeInventoryValidationIssue tooManyDevices(std::size_t actual, std::size_t maximum) {
    return {Kind::tooManyDevices, {}, actual, maximum};
  }
  static RavoHomeInventoryValidationIssue duplicateDeviceID(std::string id) {
    return {Kind::duplicateDeviceID, std::move(id)};
  }
  static RavoHomeInventoryValidationIssue emptyDisplayName(std::string id) {
    return {Kind::emptyDisplayName, std::move(id)};
  }
  static RavoHomeInventoryValidationIssue noCapabilities(std::string id) { return {Kind::noCapabilities, std::move(id)}; }
  static RavoHomeInventoryValidationIssue emptyDeviceID() { return {Kind::emptyDeviceID}; }

  Kind kind() const { return kind_; }
  const std::string& deviceID() const { return deviceID_; }  // the device's id, for the per-device kinds
  std::size_t actual() const { return actual_; }             // for tooManyDevices
  std::size_t maximum() const { return maximum_; }           // for tooManyDevices

  friend bool operator==(const RavoHomeInventoryValidationIssue&, const RavoHomeInventoryValidationIssue&) = default;

 private:
  RavoHomeInventoryValidationIssue(Kind kind, std::string deviceID = {}, std::size_t actual = 0, std::size_t maximum = 0)
      : kind_(kind), deviceID_(std::move(deviceID)), actual_(actual), maximum_(maximum) {}

  Kind kind_;
  std::string deviceID_;
  std::size_t actual_;
  std::size_t maximum_;
};

struct RavoHomeInventoryValidator {
  static constexpr std::size_t maximumDevices = 512;

  // Every issue, device by device in snapshot order; an empty list means the snapshot is usable. A
  // snapshot of more than maximumDevices yields only tooManyDevices.
  static std::vector<RavoHomeInventoryValidationIssue> validate(const RavoHomeInventorySnapshot& snapshot) noexcept;
};

}  // namespace ravo::orx
