#pragma once
// Checks a proposed home command against the inventory of the provider that is to carry it out.

#include <optional>
#include <vector>

#include <ravo-orx/contracts/services/RavoHomeCommandProposal.h>
#include <ravo-orx/contracts/services/RavoHomeInventorySnapshot.h>

namespace ravo::orx {

class RavoHomeCommandProposalValidationIssue {
 public:
  enum class Kind {
    missingCapability,
    providerMismatch,
    unknownDevice,
    unreachableDevice,
    confirmationRequired,
    invalidPowerValue,
    invalidScalarValue,
  };

  static RavoHomeCommandProposalValidationIssue missingCapability(RavoHomeInventoryCapability capability) {
    return {Kind::missingCapability, capability};
  }
  static RavoHomeCommandProposalValidationIssue providerMismatch() { return {Kind::providerMismatch}; }
  static RavoHomeCommandProposalValidationIssue unknownDevice() { return {Kind::unknownDevice}; }
  static RavoHomeCommandProposalValidationIssue unreachableDevice() { return {Kind::unreachableDevice}; }
  static RavoHomeCommandProposalValidationIssue confirmationRequired() { return {Kind::confirmationRequired}; }
  static RavoHomeCommandProposalValidationIssue invalidPowerValue() { return {Kind::invalidPowerValue}; }
  static RavoHomeCommandProposalValidationIssue invalidScalarValue() { return {Kind::invalidScalarValue}; }

  Kind kind() const { return kind_; }
  const std::optional<RavoHomeInventoryCapability>& capability() const { return capability_; }  // missingCapability

  friend bool operator==(const RavoHomeCommandProposalValidationIssue&,
                         const RavoHomeCommandProposalValidationIssue&) = default;

 private:
  RavoHomeCommandProposalValidationIssue(Kind kind, std::optional<RavoHomeInventoryCapability> capability = {})
      : kind_(kind), capability_(capability) {}

  Kind kind_;
  std::optional<RavoHomeInventoryCapability> capability_;
};

struct RavoHomeCommandProposalValidator {
  // Every issue in checking order; an empty list means the command may be shown for confirmation. A
  // command for another provider yields only providerMismatch, one for an unknown device only
  // unknownDevice.
  static std::vector<RavoHomeCommandProposalValidationIssue> validate(const RavoHomeCommandProposal& proposal,
                                                                      const RavoHomeInventorySnapshot& snapshot) noexcept;
};

}  // namespace ravo::orx
