#include <ravo-orx/contracts/scenarios/RavoScenarioRevisionDiff.h>

namespace ravo::orx {

RavoJSON RavoScenarioRevisionDiff::toJSON() const {
  return RavoJSONObjectWriter()
      .add("fromRevisionID", fields_.fromRevisionID)
      .add("toRevisionID", fields_.toRevisionID)
      .add("titleChanged", fields_.titleChanged)
      .add("lifecycleChanged", fields_.lifecycleChanged)
      .add("activationRequestChanged", fields_.activationRequestChanged)
      .add("graphDigestChanged", fields_.graphDigestChanged)
      .add("addedNodes", fields_.addedNodes)
      .add("removedNodes", fields_.removedNodes)
      .add("changedNodeVersions", fields_.changedNodeVersions)
      .add("addedCapabilities", fields_.addedCapabilities)
      .add("removedCapabilities", fields_.removedCapabilities)
      .add("edgeCountDelta", fields_.edgeCountDelta)
      .take();
}

RavoScenarioRevisionDiff RavoScenarioRevisionDiff::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioRevisionDiff");
  using Summaries = std::vector<RavoScenarioNodeReviewSummary>;
  using Capabilities = std::vector<RavoScenarioCapability>;
  return RavoScenarioRevisionDiff(
      {.fromRevisionID = reader.required<RavoUUID>("fromRevisionID"),
       .toRevisionID = reader.required<RavoUUID>("toRevisionID"),
       .titleChanged = reader.required<bool>("titleChanged"),
       .lifecycleChanged = reader.required<bool>("lifecycleChanged"),
       .activationRequestChanged = reader.required<bool>("activationRequestChanged"),
       .graphDigestChanged = reader.required<bool>("graphDigestChanged"),
       .addedNodes = reader.required<Summaries>("addedNodes"),
       .removedNodes = reader.required<Summaries>("removedNodes"),
       .changedNodeVersions = reader.required<std::vector<RavoScenarioNodeVersionChange>>("changedNodeVersions"),
       .addedCapabilities = reader.required<Capabilities>("addedCapabilities"),
       .removedCapabilities = reader.required<Capabilities>("removedCapabilities"),
       .edgeCountDelta = reader.required<std::int64_t>("edgeCountDelta")});
}

}  // namespace ravo::orx
