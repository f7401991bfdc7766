#include "contracts/scenarios/RavoScenarioCatalog.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "contracts/actions/RavoApplicationActionCatalog.h"

namespace {

using Issue = RavoScenarioValidationIssue;
using Kind = RavoScenarioValidationIssue::Kind;

bool contains(const std::vector<std::string>& keys, const std::string& key) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

bool inRange(const RavoScenarioExecutionBounds& bounds) {
  return bounds.timeoutSeconds() >= 1 && bounds.retryLimit() >= 0 && bounds.retryLimit() <= 3 &&
         bounds.rateLimitPerHour() >= 1 && bounds.maximumParallelism() >= 1 && bounds.maximumParallelism() <= 8;
}

// Kahn's method over the distinct node ids: a repeated id is one vertex (the repetition is already an
// issue of its own), and edges touching ids that are not nodes are ignored.
bool hasCycle(const std::vector<RavoScenarioNodeInstance>& nodes, const std::vector<RavoScenarioEdge>& edges) {
  std::unordered_map<RavoUUID, size_t> index;
  index.reserve(nodes.size());
  for (const auto& node : nodes) index.try_emplace(node.id(), index.size());

  std::vector<std::vector<size_t>> successors(index.size());
  std::vector<size_t> inDegree(index.size(), 0);
  for (const auto& edge : edges) {
    auto from = index.find(edge.fromNodeID());
    auto to = index.find(edge.toNodeID());
    if (from == index.end() || to == index.end()) continue;
    successors[from->second].push_back(to->second);
    ++inDegree[to->second];
  }

  std::vector<size_t> ready;
  for (size_t vertex = 0; vertex < inDegree.size(); ++vertex) {
    if (inDegree[vertex] == 0) ready.push_back(vertex);
  }
  size_t visited = 0;
  while (!ready.empty()) {
    size_t vertex = ready.back();
    ready.pop_back();
    ++visited;
    for (size_t successor : successors[vertex]) {
      if (--inDegree[successor] == 0) ready.push_back(successor);
    }
  }
  return visited != index.size();
}

}  // namespace

std::vector<RavoScenarioValidationIssue> RavoScenarioCatalog::validate(
    const RavoScenarioDraft& draft, const std::vector<RavoScenarioNodeDefinition>& definitions) {
  const RavoScenarioGraph& graph = draft.graph();
  const auto& nodes = graph.nodes();
  if (nodes.size() > maximumNodeCount) {
    return {Issue::graphTooLarge(static_cast<std::int64_t>(nodes.size()), maximumNodeCount)};
  }
  std::vector<Issue> issues;

  std::unordered_map<std::string_view, const RavoScenarioNodeDefinition*> definitionsByType;
  definitionsByType.reserve(definitions.size());
  for (const auto& definition : definitions) definitionsByType.try_emplace(definition.id().rawValue(), &definition);

  std::unordered_set<RavoUUID> seen;
  seen.reserve(nodes.size());
  for (const auto& node : nodes) {
    if (!seen.insert(node.id()).second) {
      issues.push_back(Issue::duplicateNodeID(node.id()));
      break;
    }
  }

  // A graph may declare any number of capabilities, so membership is a hash look-up.
  std::unordered_set<std::string_view> declared;
  for (const auto& capability : graph.requestedCapabilities()) declared.insert(capability.rawValue());

  // Nodes that edges may join: known, enabled types at the definition's version.
  std::unordered_map<RavoUUID, const RavoScenarioNodeDefinition*> validNodes;
  validNodes.reserve(nodes.size());
  for (const auto& node : nodes) {
    const auto& type = node.nodeType();
    auto found = definitionsByType.find(type.rawValue());
    if (found == definitionsByType.end() || !found->second->isEnabled()) {
      issues.push_back(Issue::ofNodeType(Kind::unknownOrDisabledNode, type));
      continue;
    }
    const RavoScenarioNodeDefinition& definition = *found->second;
    if (node.nodeVersion() != definition.version()) {
      issues.push_back(Issue::ofNodeType(Kind::nodeVersionMismatch, type));
      continue;
    }
    validNodes.insert_or_assign(node.id(), &definition);

    for (const auto& capability : definition.requestedCapabilities()) {
      if (!declared.contains(capability.rawValue())) issues.push_back(Issue::missingCapability(capability));
    }
    if (!inRange(definition.bounds())) issues.push_back(Issue::ofNodeType(Kind::invalidBounds, type));
    if (definition.reversibility() == RavoScenarioReversibility::irreversible &&
        definition.confirmation() == RavoScenarioConfirmationPolicy::none) {
      issues.push_back(Issue::ofNodeType(Kind::irreversibleWithoutConfirmation, type));
    }
    // Application action nodes must say how they invoke their action; native node types need no binding
    // and any binding on them is ignored.
    if (const auto* action = RavoApplicationActionCatalog::descriptor(type)) {
      if (!node.actionBinding()) {
        issues.push_back(Issue::ofNodeType(Kind::missingActionBinding, type));
      } else if (!action->validate(node.actionBinding()->arguments()).empty()) {
        issues.push_back(Issue::ofNodeType(Kind::invalidActionArguments, type));
      }
    }
  }

  for (const auto& edge : graph.edges()) {
    auto from = validNodes.find(edge.fromNodeID());
    auto to = validNodes.find(edge.toNodeID());
    if (from == validNodes.end() || to == validNodes.end()) {
      issues.push_back(Issue::of(Kind::unknownEdgeEndpoint));
      continue;
    }
    if (!contains(from->second->outputKeys(), edge.outputKey())) issues.push_back(Issue::of(Kind::missingOutputKey));
    if (!contains(to->second->inputKeys(), edge.inputKey())) issues.push_back(Issue::of(Kind::missingInputKey));
  }

  if (hasCycle(nodes, graph.edges())) issues.push_back(Issue::of(Kind::cycleDetected));

  if (draft.activationRequest() == RavoScenarioActivationRequest::notRequested &&
      std::any_of(validNodes.begin(), validNodes.end(),
                  [](const auto& entry) { return entry.second->id().rawValue() == "ravo.trigger.schedule"; })) {
    issues.push_back(Issue::of(Kind::recurringScheduleNeedsActivation));
  }
  return issues;
}
