#pragma once
// The actions that one application offers, and the scenario node types they make available.

#include <string>
#include <vector>

#include <ravo-orx/contracts/actions/RavoApplicationActionDescriptor.h>
#include <ravo-orx/contracts/definitions/RavoScenarioNodeDefinition.h>

namespace ravo::orx {

class RavoApplicationActionManifest {
 public:
  // Sorts the actions by id (stable).
  RavoApplicationActionManifest(RavoApplicationID applicationID, std::string displayName, std::string version,
                                std::vector<RavoApplicationActionDescriptor> actions);

  const RavoApplicationID& applicationID() const { return applicationID_; }
  const std::string& displayName() const { return displayName_; }
  const std::string& version() const { return version_; }
  const std::vector<RavoApplicationActionDescriptor>& actions() const { return actions_; }

  // "<application id>@<version>", e.g. "ravo.player@1.0.0".
  std::string id() const { return applicationID_.rawValue() + "@" + version_; }

  // One action node type per action, in the order of `actions`: each runs its action once, by hand,
  // with the action's capabilities and labels.
  std::vector<RavoScenarioNodeDefinition> scenarioNodeDefinitions() const;

  RavoJSON toJSON() const;
  // Keeps the actions in the order written.
  static RavoApplicationActionManifest fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoApplicationActionManifest&, const RavoApplicationActionManifest&) = default;

 private:
  struct AsStored {};
  RavoApplicationActionManifest(RavoApplicationID applicationID, std::string displayName, std::string version,
                                std::vector<RavoApplicationActionDescriptor> actions, AsStored);

  RavoApplicationID applicationID_;
  std::string displayName_;
  std::string version_;
  std::vector<RavoApplicationActionDescriptor> actions_;
};

}  // namespace ravo::orx
