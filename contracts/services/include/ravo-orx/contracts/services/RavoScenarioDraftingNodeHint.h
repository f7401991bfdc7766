#pragma once
// What a drafting model is told about one node type it may use: the version to write into its nodes,
// its kind and, for an application action, the action's parameters.

#include <string>
#include <vector>

#include <ravo-orx/contracts/actions/RavoActionParameterSchema.h>
#include <ravo-orx/contracts/definitions/RavoScenarioLabels.h>
#include <ravo-orx/contracts/definitions/RavoScenarioNodeTypeID.h>
#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class RavoScenarioDraftingNodeHint {
 public:
  // Sorts the parameters by key (stable).
  RavoScenarioDraftingNodeHint(RavoScenarioNodeTypeID id, std::string version, RavoScenarioNodeKind kind,
                               std::vector<RavoActionParameterSchema> actionParameters);

  const RavoScenarioNodeTypeID& id() const { return id_; }
  const std::string& version() const { return version_; }
  RavoScenarioNodeKind kind() const { return kind_; }
  // Empty for node types that are not application actions.
  const std::vector<RavoActionParameterSchema>& actionParameters() const { return actionParameters_; }

  RavoJSON toJSON() const;
  // Keeps the parameters in the order written.
  static RavoScenarioDraftingNodeHint fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioDraftingNodeHint&, const RavoScenarioDraftingNodeHint&) = default;

 private:
  struct AsStored {};
  RavoScenarioDraftingNodeHint(RavoScenarioNodeTypeID id, std::string version, RavoScenarioNodeKind kind,
                               std::vector<RavoActionParameterSchema> actionParameters, AsStored)
      : id_(std::move(id)), version_(std::move(version)), kind_(kind), actionParameters_(std::move(actionParameters)) {}

  RavoScenarioNodeTypeID id_;
  std::string version_;
  RavoScenarioNodeKind kind_;
  std::vector<RavoActionParameterSchema> actionParameters_;
};

}  // namespace ravo::orx
