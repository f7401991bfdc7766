#pragma once
// A proposed change to one home device, to be checked against an inventory and confirmed by the person.

#include <cstddef>
#include <optional>
#include <string>

#include <ravo-orx/contracts/services/RavoHomeLabels.h>
#include <ravo-orx/contracts/services/RavoHomeProviderID.h>
#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoHomeCommandProposal {
 public:
  static constexpr std::size_t maximumDeviceIDCharacters = 160;

  // Cuts `deviceID` to its maximum length in user-perceived characters; values are kept as given, so
  // validation can refuse them.
  RavoHomeCommandProposal(RavoUUID id, RavoHomeProviderID providerID, std::string deviceID, RavoHomeCommandKind kind,
                          std::optional<bool> powerValue, std::optional<double> scalarValue,
                          bool requiresExplicitConfirmation);

  const RavoUUID& id() const { return id_; }
  const RavoHomeProviderID& providerID() const { return providerID_; }  // who is to carry it out
  const std::string& deviceID() const { return deviceID_; }
  RavoHomeCommandKind kind() const { return kind_; }
  const std::optional<bool>& powerValue() const { return powerValue_; }      // for power commands
  const std::optional<double>& scalarValue() const { return scalarValue_; }  // the level for the others
  bool requiresExplicitConfirmation() const { return requiresExplicitConfirmation_; }

  // Throws std::invalid_argument for a non-finite scalar value, which JSON cannot carry.
  RavoJSON toJSON() const;
  static RavoHomeCommandProposal fromJSON(const RavoJSON& json);  // values as they stand

  friend bool operator==(const RavoHomeCommandProposal&, const RavoHomeCommandProposal&) = default;

 private:
  struct AsGiven {};
  RavoHomeCommandProposal(AsGiven, RavoUUID id, RavoHomeProviderID providerID, std::string deviceID,
                          RavoHomeCommandKind kind, std::optional<bool> powerValue, std::optional<double> scalarValue,
                          bool requiresExplicitConfirmation);

  RavoUUID id_;
  RavoHomeProviderID providerID_;
  std::string deviceID_;
  RavoHomeCommandKind kind_;
  std::optional<bool> powerValue_;
  std::optional<double> scalarValue_;
  bool requiresExplicitConfirmation_;
};

}  // namespace ravo::orx
