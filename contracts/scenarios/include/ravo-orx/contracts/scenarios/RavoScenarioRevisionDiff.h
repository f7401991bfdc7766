#pragma once
// What changed from one revision of a scenario to a newer one, as a reviewer sees it. Every list is
// sorted, so equal revisions always give equal diffs.

#include <cstdint>
#include <vector>

#include <ravo-orx/contracts/definitions/RavoScenarioCapability.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioNodeReviewSummary.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioNodeVersionChange.h>
#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoScenarioRevisionDiff {
 public:
  struct Fields {
    RavoUUID fromRevisionID{};
    RavoUUID toRevisionID{};
    bool titleChanged = false;
    bool lifecycleChanged = false;
    bool activationRequestChanged = false;
    bool graphDigestChanged = false;
    std::vector<RavoScenarioNodeReviewSummary> addedNodes{};
    std::vector<RavoScenarioNodeReviewSummary> removedNodes{};
    std::vector<RavoScenarioNodeVersionChange> changedNodeVersions{};
    std::vector<RavoScenarioCapability> addedCapabilities{};
    std::vector<RavoScenarioCapability> removedCapabilities{};
    std::int64_t edgeCountDelta = 0;  // newer edge count minus older

    friend bool operator==(const Fields&, const Fields&) = default;
  };

  explicit RavoScenarioRevisionDiff(Fields fields) : fields_(std::move(fields)) {}

  const RavoUUID& fromRevisionID() const { return fields_.fromRevisionID; }
  const RavoUUID& toRevisionID() const { return fields_.toRevisionID; }
  bool titleChanged() const { return fields_.titleChanged; }
  bool lifecycleChanged() const { return fields_.lifecycleChanged; }
  bool activationRequestChanged() const { return fields_.activationRequestChanged; }
  bool graphDigestChanged() const { return fields_.graphDigestChanged; }
  const std::vector<RavoScenarioNodeReviewSummary>& addedNodes() const { return fields_.addedNodes; }
  const std::vector<RavoScenarioNodeReviewSummary>& removedNodes() const { return fields_.removedNodes; }
  const std::vector<RavoScenarioNodeVersionChange>& changedNodeVersions() const { return fields_.changedNodeVersions; }
  const std::vector<RavoScenarioCapability>& addedCapabilities() const { return fields_.addedCapabilities; }
  const std::vector<RavoScenarioCapability>& removedCapabilities() const { return fields_.removedCapabilities; }
  std::int64_t edgeCountDelta() const { return fields_.edgeCountDelta; }

  RavoJSON toJSON() const;
  static RavoScenarioRevisionDiff fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioRevisionDiff&, const RavoScenarioRevisionDiff&) = default;

 private:
  Fields fields_;
};

}  // namespace ravo::orx
