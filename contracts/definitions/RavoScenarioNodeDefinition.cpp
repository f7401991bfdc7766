#include <ravo-orx/contracts/definitions/RavoScenarioNodeDefinition.h>

#include <algorithm>

namespace ravo::orx {

RavoScenarioNodeDefinition::RavoScenarioNodeDefinition(Fields fields) : fields_(std::move(fields)) {
  std::stable_sort(fields_.inputKeys.begin(), fields_.inputKeys.end());
  std::stable_sort(fields_.outputKeys.begin(), fields_.outputKeys.end());
  std::stable_sort(fields_.requestedCapabilities.begin(), fields_.requestedCapabilities.end());
}

RavoJSON RavoScenarioNodeDefinition::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", fields_.id)
      .add("version", fields_.version)
      .add("kind", fields_.kind)
      .add("inputKeys", fields_.inputKeys)
      .add("outputKeys", fields_.outputKeys)
      .add("requestedCapabilities", fields_.requestedCapabilities)
      .add("risk", fields_.risk)
      .add("idempotency", fields_.idempotency)
      .add("reversibility", fields_.reversibility)
      .add("confirmation", fields_.confirmation)
      .add("bounds", fields_.bounds)
      .add("offlinePolicy", fields_.offlinePolicy)
      .add("egressPolicy", fields_.egressPolicy)
      .add("adapterID", fields_.adapterID)
      .add("adapterVersion", fields_.adapterVersion)
      .add("schemaDigest", fields_.schemaDigest)
      .add("implementationDigest", fields_.implementationDigest)
      .add("isEnabled", fields_.isEnabled)
      .take();
}

RavoScenarioNodeDefinition RavoScenarioNodeDefinition::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioNodeDefinition");
  return {Fields{.id = reader.required<RavoScenarioNodeTypeID>("id"),
                 .version = reader.required<std::string>("version"),
                 .kind = reader.required<RavoScenarioNodeKind>("kind"),
                 .inputKeys = reader.required<std::vector<std::string>>("inputKeys"),
                 .outputKeys = reader.required<std::vector<std::string>>("outputKeys"),
                 .requestedCapabilities = reader.required<std::vector<RavoScenarioCapability>>("requestedCapabilities"),
                 .risk = reader.required<RavoScenarioRiskClass>("risk"),
                 .idempotency = reader.required<RavoScenarioIdempotency>("idempotency"),
                 .reversibility = reader.required<RavoScenarioReversibility>("reversibility"),
                 .confirmation = reader.required<RavoScenarioConfirmationPolicy>("confirmation"),
                 .bounds = reader.required<RavoScenarioExecutionBounds>("bounds"),
                 .offlinePolicy = reader.required<RavoScenarioOfflinePolicy>("offlinePolicy"),
                 .egressPolicy = reader.required<RavoScenarioDataEgressPolicy>("egressPolicy"),
                 .adapterID = reader.required<std::string>("adapterID"),
                 .adapterVersion = reader.required<std::string>("adapterVersion"),
                 .schemaDigest = reader.required<std::string>("schemaDigest"),
                 .implementationDigest = reader.required<std::string>("implementationDigest"),
                 .isEnabled = reader.required<bool>("isEnabled")},
          AsStored{}};
}

}  // namespace ravo::orx
