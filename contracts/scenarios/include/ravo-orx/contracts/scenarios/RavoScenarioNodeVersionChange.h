#pragma once
// One node that kept its type and targets between two revisions but moved to another version of its
// node type.

#include <string>
#include <vector>

#include <ravo-orx/contracts/definitions/RavoScenarioNodeTypeID.h>
#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class RavoScenarioNodeVersionChange {
 public:
  RavoScenarioNodeVersionChange(RavoScenarioNodeTypeID nodeType, std::vector<std::string> stableTargetIDs,
                                std::string fromVersion, std::string toVersion)
      : nodeType_(std::move(nodeType)),
        stableTargetIDs_(std::move(stableTargetIDs)),
        fromVersion_(std::move(fromVersion)),
        toVersion_(std::move(toVersion)) {}

  const RavoScenarioNodeTypeID& nodeType() const { return nodeType_; }
  const std::vector<std::string>& stableTargetIDs() const { return stableTargetIDs_; }
  const std::string& fromVersion() const { return fromVersion_; }
  const std::string& toVersion() const { return toVersion_; }

  // Node type, each target, the old and the new version, joined with "|".
  std::string id() const;

  RavoJSON toJSON() const;
  static RavoScenarioNodeVersionChange fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioNodeVersionChange&, const RavoScenarioNodeVersionChange&) = default;

 private:
  RavoScenarioNodeTypeID nodeType_;
  std::vector<std::string> stableTargetIDs_;
  std::string fromVersion_;
  std::string toVersion_;
};

}  // namespace ravo::orx
