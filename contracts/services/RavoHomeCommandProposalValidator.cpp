#include <ravo-orx/contracts/services/RavoHomeCommandProposalValidator.h>

#include <algorithm>

namespace ravo::orx {

namespace {

// What a command kind needs of the device, and the inclusive range of its scalar value.
struct CommandRule {
  RavoHomeInventoryCapability capability;
  double minimum;
  double maximum;
};

CommandRule ruleFor(RavoHomeCommandKind kind) {
  switch (kind) {
    case RavoHomeCommandKind::power: return {RavoHomeInventoryCapability::power, 0, 0};  // takes no scalar
    case RavoHomeCommandKind::brightness: return {RavoHomeInventoryCapability::brightness, 0, 100};  // percent
    case RavoHomeCommandKind::colorTemperature:
      return {RavoHomeInventoryCapability::colorTemperature, 1500, 9000};  // kelvin
    case RavoHomeCommandKind::targetTemperature:
      return {RavoHomeInventoryCapability::targetTemperature, 5, 35};  // degrees Celsius
  }
  return {RavoHomeInventoryCapability::power, 0, 0};
}

}  // namespace

std::vector<RavoHomeCommandProposalValidationIssue> RavoHomeCommandProposalValidator::validate(
    const RavoHomeCommandProposal& proposal, const RavoHomeInventorySnapshot& snapshot) noexcept {
  using Issue = RavoHomeCommandProposalValidationIssue;
  if (proposal.providerID() != snapshot.providerID()) return {Issue::providerMismatch()};
  const auto& devices = snapshot.devices();
  const auto device = std::ranges::find(devices, proposal.deviceID(), &RavoHomeInventoryDevice::id);
  if (device == devices.end()) return {Issue::unknownDevice()};

  std::vector<Issue> issues;
  if (!device->isReachable()) issues.push_back(Issue::unreachableDevice());
  if (!proposal.requiresExplicitConfirmation()) issues.push_back(Issue::confirmationRequired());
  const auto rule = ruleFor(proposal.kind());
  if (!device->hasCapability(rule.capability)) issues.push_back(Issue::missingCapability(rule.capability));
  if (proposal.kind() == RavoHomeCommandKind::power) {
    if (!proposal.powerValue() || proposal.scalarValue()) issues.push_back(Issue::invalidPowerValue());
  } else {
    // Written so that a NaN, which fails every comparison, is out of range.
    const auto value = proposal.scalarValue();
    if (!value || !(*value >= rule.minimum && *value <= rule.maximum)) issues.push_back(Issue::invalidScalarValue());
  }
  return issues;
}

}  // namespace ravo::orx
