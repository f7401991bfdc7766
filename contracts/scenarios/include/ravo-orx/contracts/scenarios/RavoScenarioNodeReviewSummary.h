#pragma once
// How one node looks to a reviewer comparing revisions: its type, version and targets, without its
// UUID, so that a node deleted and re-created alike counts as unchanged.

#include <functional>
#include <string>
#include <vector>

#include <ravo-orx/contracts/scenarios/RavoScenarioNodeInstance.h>
#include <ravo-orx/contracts/definitions/RavoScenarioNodeTypeID.h>
#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class RavoScenarioNodeReviewSummary {
 public:
  RavoScenarioNodeReviewSummary(RavoScenarioNodeTypeID nodeType, std::string nodeVersion,
                                std::vector<std::string> stableTargetIDs)
      : nodeType_(std::move(nodeType)), nodeVersion_(std::move(nodeVersion)), stableTargetIDs_(std::move(stableTargetIDs)) {}
  explicit RavoScenarioNodeReviewSummary(const RavoScenarioNodeInstance& node)
      : RavoScenarioNodeReviewSummary(node.nodeType(), node.nodeVersion(), node.stableTargetIDs()) {}

  const RavoScenarioNodeTypeID& nodeType() const { return nodeType_; }
  const std::string& nodeVersion() const { return nodeVersion_; }
  const std::vector<std::string>& stableTargetIDs() const { return stableTargetIDs_; }

  // Node type, version and each target, joined with "|".
  std::string id() const;
  // The same without the version: nodes that differ only in version share it.
  std::string versionKey() const;

  RavoJSON toJSON() const;
  static RavoScenarioNodeReviewSummary fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioNodeReviewSummary&, const RavoScenarioNodeReviewSummary&) = default;

 private:
  RavoScenarioNodeTypeID nodeType_;
  std::string nodeVersion_;
  std::vector<std::string> stableTargetIDs_;
};

}  // namespace ravo::orx

template <>
struct std::hash<ravo::orx::RavoScenarioNodeReviewSummary> {
  size_t operator()(const ravo::orx::RavoScenarioNodeReviewSummary& summary) const noexcept {
    return std::hash<std::string>{}(summary.id());
  }
};
