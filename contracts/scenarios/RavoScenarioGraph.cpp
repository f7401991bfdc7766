#include <ravo-orx/contracts/scenarios/RavoScenarioGraph.h>

#include <algorithm>
#include <string>

namespace ravo::orx {

RavoScenarioGraph::RavoScenarioGraph(std::vector<RavoScenarioNodeInstance> nodes, std::vector<RavoScenarioEdge> edges,
                                     std::vector<RavoScenarioCapability> requestedCapabilities)
    : RavoScenarioGraph(std::move(nodes), std::move(edges), std::move(requestedCapabilities), AsStored{}) {
  // UUIDs order by bytes exactly as by their uppercase text.
  std::stable_sort(nodes_.begin(), nodes_.end(), [](const auto& a, const auto& b) { return a.id() < b.id(); });
  // Sorted on ids computed once: building them inside the comparison would allocate on every step.
  std::vector<std::pair<std::string, RavoScenarioEdge>> keyed;
  keyed.reserve(edges_.size());
  for (auto& edge : edges_) keyed.emplace_back(edge.id(), std::move(edge));
  std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  edges_.clear();
  for (auto& [id, edge] : keyed) edges_.push_back(std::move(edge));
  std::stable_sort(requestedCapabilities_.begin(), requestedCapabilities_.end());
}

RavoJSON RavoScenarioGraph::toJSON() const {
  return RavoJSONObjectWriter()
      .add("nodes", nodes_)
      .add("edges", edges_)
      .add("requestedCapabilities", requestedCapabilities_)
      .take();
}

RavoScenarioGraph RavoScenarioGraph::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioGraph");
  return {reader.required<std::vector<RavoScenarioNodeInstance>>("nodes"),
          reader.required<std::vector<RavoScenarioEdge>>("edges"),
          reader.required<std::vector<RavoScenarioCapability>>("requestedCapabilities"), AsStored{}};
}

}  // namespace ravo::orx
