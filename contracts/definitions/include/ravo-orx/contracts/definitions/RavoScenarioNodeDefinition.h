#pragma once
// One node type as the catalog offers it: what it consumes and produces, the capabilities it needs and
// its policy labels. Its identity is `id`.

#include <string>
#include <vector>

#include <ravo-orx/contracts/definitions/RavoScenarioCapability.h>
#include <ravo-orx/contracts/definitions/RavoScenarioExecutionBounds.h>
#include <ravo-orx/contracts/definitions/RavoScenarioLabels.h>
#include <ravo-orx/contracts/definitions/RavoScenarioNodeTypeID.h>

namespace ravo::orx {

class RavoScenarioNodeDefinition {
 public:
  struct Fields {
    RavoScenarioNodeTypeID id{};
    std::string version{};
    RavoScenarioNodeKind kind = RavoScenarioNodeKind::action;
    std::vector<std::string> inputKeys{};
    std::vector<std::string> outputKeys{};
    std::vector<RavoScenarioCapability> requestedCapabilities{};
    RavoScenarioRiskClass risk = RavoScenarioRiskClass::none;
    RavoScenarioIdempotency idempotency = RavoScenarioIdempotency::idempotent;
    RavoScenarioReversibility reversibility = RavoScenarioReversibility::reversible;
    RavoScenarioConfirmationPolicy confirmation = RavoScenarioConfirmationPolicy::none;
    RavoScenarioExecutionBounds bounds = RavoScenarioExecutionBounds::manualAction();
    RavoScenarioOfflinePolicy offlinePolicy = RavoScenarioOfflinePolicy::failClosed;
    RavoScenarioDataEgressPolicy egressPolicy = RavoScenarioDataEgressPolicy::none;
    std::string adapterID{};
    std::string adapterVersion{};
    std::string schemaDigest{};
    std::string implementationDigest{};
    bool isEnabled = true;

    friend bool operator==(const Fields&, const Fields&) = default;
  };

  // Sorts the input and output keys and the capabilities (stable, duplicates kept), so definitions
  // that list the same things in another order are equal.
  explicit RavoScenarioNodeDefinition(Fields fields);

  const RavoScenarioNodeTypeID& id() const { return fields_.id; }
  const std::string& version() const { return fields_.version; }
  RavoScenarioNodeKind kind() const { return fields_.kind; }
  const std::vector<std::string>& inputKeys() const { return fields_.inputKeys; }
  const std::vector<std::string>& outputKeys() const { return fields_.outputKeys; }
  const std::vector<RavoScenarioCapability>& requestedCapabilities() const { return fields_.requestedCapabilities; }
  RavoScenarioRiskClass risk() const { return fields_.risk; }
  RavoScenarioIdempotency idempotency() const { return fields_.idempotency; }
  RavoScenarioReversibility reversibility() const { return fields_.reversibility; }
  RavoScenarioConfirmationPolicy confirmation() const { return fields_.confirmation; }
  const RavoScenarioExecutionBounds& bounds() const { return fields_.bounds; }
  RavoScenarioOfflinePolicy offlinePolicy() const { return fields_.offlinePolicy; }
  RavoScenarioDataEgressPolicy egressPolicy() const { return fields_.egressPolicy; }
  const std::string& adapterID() const { return fields_.adapterID; }
  const std::string& adapterVersion() const { return fields_.adapterVersion; }
  const std::string& schemaDigest() const { return fields_.schemaDigest; }
  const std::string& implementationDigest() const { return fields_.implementationDigest; }
  bool isEnabled() const { return fields_.isEnabled; }

  RavoJSON toJSON() const;
  // Keeps the lists in the order written: a stored definition reads back exactly as it was stored.
  static RavoScenarioNodeDefinition fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioNodeDefinition&, const RavoScenarioNodeDefinition&) = default;

 private:
  struct AsStored {};
  RavoScenarioNodeDefinition(Fields fields, AsStored) : fields_(std::move(fields)) {}

  Fields fields_;
};

}  // namespace ravo::orx
