#pragma once
// One node placed in a scenario graph: which node type (and version of it) it instantiates, the stable
// identifiers of what it acts on, and for an application action node the arguments it invokes the
// action with. Its identity inside the graph is `id`.

#include <optional>
#include <string>
#include <vector>

#include <ravo-orx/contracts/actions/RavoScenarioActionBinding.h>
#include <ravo-orx/contracts/definitions/RavoScenarioNodeTypeID.h>
#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoScenarioNodeInstance {
 public:
  // Sorts `stableTargetIDs` ascending (duplicates kept), so the same targets in another order make an
  // equal node.
  RavoScenarioNodeInstance(RavoUUID id, RavoScenarioNodeTypeID nodeType, std::string nodeVersion,
                           std::vector<std::string> stableTargetIDs,
                           std::optional<RavoScenarioActionBinding> actionBinding = std::nullopt);

  const RavoUUID& id() const { return id_; }
  const RavoScenarioNodeTypeID& nodeType() const { return nodeType_; }
  const std::string& nodeVersion() const { return nodeVersion_; }
  const std::vector<std::string>& stableTargetIDs() const { return stableTargetIDs_; }
  const std::optional<RavoScenarioActionBinding>& actionBinding() const { return actionBinding_; }

  RavoJSON toJSON() const;
  // Keeps the targets in the order written.
  static RavoScenarioNodeInstance fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioNodeInstance&, const RavoScenarioNodeInstance&) = default;

 private:
  struct AsStored {};
  RavoScenarioNodeInstance(RavoUUID id, RavoScenarioNodeTypeID nodeType, std::string nodeVersion,
                           std::vector<std::string> stableTargetIDs,
                           std::optional<RavoScenarioActionBinding> actionBinding, AsStored);

  RavoUUID id_;
  RavoScenarioNodeTypeID nodeType_;
  std::string nodeVersion_;
  std::vector<std::string> stableTargetIDs_;
  std::optional<RavoScenarioActionBinding> actionBinding_;
};

}  // namespace ravo::orx
