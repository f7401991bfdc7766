#pragma once
// A scenario's nodes, the edges between them and the capabilities the scenario as a whole declares.
//
// Construction puts the graph in normal order (nodes by id, edges by their id text, capabilities by
// raw value; stable, nothing removed), so graphs built from the same parts in any order are equal and
// have the same digest. Repeated nodes or capabilities are kept for validation to report.

#include <string_view>
#include <vector>

#include <ravo-orx/contracts/definitions/RavoScenarioCapability.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioEdge.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioNodeInstance.h>
#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class RavoScenarioGraph {
 public:
  RavoScenarioGraph(std::vector<RavoScenarioNodeInstance> nodes, std::vector<RavoScenarioEdge> edges,
                    std::vector<RavoScenarioCapability> requestedCapabilities);

  const std::vector<RavoScenarioNodeInstance>& nodes() const { return nodes_; }
  const std::vector<RavoScenarioEdge>& edges() const { return edges_; }
  const std::vector<RavoScenarioCapability>& requestedCapabilities() const { return requestedCapabilities_; }

  RavoJSON toJSON() const;
  // Keeps the lists in the order written.
  static RavoScenarioGraph fromJSON(const RavoJSON& json);
  // fromJSON(parseRavoJSON(text)), the same graph or the same error, with the edges read straight from
  // the text rather than through a document.
  static RavoScenarioGraph fromJSONText(std::string_view text);

  friend bool operator==(const RavoScenarioGraph&, const RavoScenarioGraph&) = default;

 private:
  struct AsStored {};
  RavoScenarioGraph(std::vector<RavoScenarioNodeInstance> nodes, std::vector<RavoScenarioEdge> edges,
                    std::vector<RavoScenarioCapability> requestedCapabilities, AsStored)
      : nodes_(std::move(nodes)), edges_(std::move(edges)), requestedCapabilities_(std::move(requestedCapabilities)) {}

  std::vector<RavoScenarioNodeInstance> nodes_;
  std::vector<RavoScenarioEdge> edges_;
  std::vector<RavoScenarioCapability> requestedCapabilities_;
};

}  // namespace ravo::orx
