#pragma once
// A scenario as proposed or edited: its graph with a title, whether the author asks to arm it, and
// where the scenario stands in its life.

#include <string>

#include <ravo-orx/contracts/scenarios/RavoScenarioGraph.h>
#include <ravo-orx/contracts/definitions/RavoScenarioLabels.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoScenarioDraft {
 public:
  RavoScenarioDraft(RavoUUID id, std::string title, RavoScenarioGraph graph,
                    RavoScenarioActivationRequest activationRequest, RavoScenarioLifecycle lifecycle)
      : id_(id),
        title_(std::move(title)),
        graph_(std::move(graph)),
        activationRequest_(activationRequest),
        lifecycle_(lifecycle) {}

  const RavoUUID& id() const { return id_; }
  const std::string& title() const { return title_; }
  const RavoScenarioGraph& graph() const { return graph_; }
  RavoScenarioActivationRequest activationRequest() const { return activationRequest_; }
  RavoScenarioLifecycle lifecycle() const { return lifecycle_; }

  RavoJSON toJSON() const;
  static RavoScenarioDraft fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioDraft&, const RavoScenarioDraft&) = default;

 private:
  RavoUUID id_;
  std::string title_;
  RavoScenarioGraph graph_;
  RavoScenarioActivationRequest activationRequest_;
  RavoScenarioLifecycle lifecycle_;
};

}  // namespace ravo::orx
