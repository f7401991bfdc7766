#include <ravo-orx/contracts/scenarios/RavoScenarioCatalog.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>

namespace ravo::orx {

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

// Node ids hashed and compared as two 64-bit words: these look-ups are the inner loop of validation.
struct NodeIDHash {
  size_t operator()(const RavoUUID& id) const noexcept {
    std::uint64_t high, low;
    std::memcpy(&high, id.bytes().data(), 8);
    std::memcpy(&low, id.bytes().data() + 8, 8);
    return high ^ (low * 0x9E3779B97F4A7C15ull);
  }
};
struct NodeIDEqual {
  bool operator()(const RavoUUID& a, const RavoUUID& b) const noexcept {
    return std::memcmp(a.bytes().data(), b.bytes().data(), 16) == 0;
  }
};

constexpr size_t kNoVertex = static_cast<size_t>(-1);

// Numbers the distinct node ids 0, 1, ... in graph order; a repeated id is one vertex.
class NodeVertices {
 public:
  explicit NodeVertices(const std::vector<RavoScenarioNodeInstance>& nodes) {
    vertexByID_.reserve(nodes.size());
    vertexOfNode_.reserve(nodes.size());
    for (const auto& node : nodes) {
      auto [entry, inserted] = vertexByID_.try_emplace(node.id(), vertexByID_.size());
      if (!inserted && !firstRepeated_) firstRepeated_ = node.id();
      vertexOfNode_.push_back(entry->second);
    }
  }

  size_t count() const { return vertexByID_.size(); }
  size_t ofNode(size_t nodeIndex) const { return vertexOfNode_[nodeIndex]; }
  size_t of(const RavoUUID& id) const {
    auto found = vertexByID_.find(id);
    return found == vertexByID_.end() ? kNoVertex : found->second;
  }
  const std::optional<RavoUUID>& firstRepeated() const { return firstRepeated_; }

 private:
  std::unordered_map<RavoUUID, size_t, NodeIDHash, NodeIDEqual> vertexByID_;
  std::vector<size_t> vertexOfNode_;
  std::optional<RavoUUID> firstRepeated_;
};

// Kahn's method. Edges with an endpoint that is no node carry kNoVertex and are ignored; parallel edges
// count separately.
bool hasCycle(size_t vertexCount, const std::vector<std::pair<size_t, size_t>>& edges) {
  std::vector<std::vector<size_t>> successors(vertexCount);
  std::vector<size_t> inDegree(vertexCount, 0);
  for (const auto& [from, to] : edges) {
    if (from == kNoVertex || to == kNoVertex) continue;
    successors[from].push_back(to);
    ++inDegree[to];
  }
  std::vector<size_t> ready;
  for (size_t vertex = 0; vertex < vertexCount; ++vertex) {
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
  return visited != vertexCount;
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

  NodeVertices vertices(nodes);
  if (vertices.firstRepeated()) issues.push_back(Issue::duplicateNodeID(*vertices.firstRepeated()));

  // A graph may declare any number of capabilities, so membership is a hash look-up.
  std::unordered_set<std::string_view> declared;
  for (const auto& capability : graph.requestedCapabilities()) declared.insert(capability.rawValue());

  // Per vertex, the definition of a node that edges may join (a known, enabled type at the definition's
  // version); for a repeated id the last such node counts.
  std::vector<const RavoScenarioNodeDefinition*> validDefinition(vertices.count(), nullptr);
  for (size_t nodeIndex = 0; nodeIndex < nodes.size(); ++nodeIndex) {
    const RavoScenarioNodeInstance& node = nodes[nodeIndex];
    const auto& type = node.nodeType();
    auto found = definitionsByType.find(type.rawValue());
    if (found == definitionsByType.end() || !found->second->isEnabled()) {
      issues.push_back(Issue::unknownOrDisabledNode(type));
      continue;
    }
    const RavoScenarioNodeDefinition& definition = *found->second;
    if (node.nodeVersion() != definition.version()) {
      issues.push_back(Issue::nodeVersionMismatch(type));
      continue;
    }
    validDefinition[vertices.ofNode(nodeIndex)] = &definition;

    for (const auto& capability : definition.requestedCapabilities()) {
      if (!declared.contains(capability.rawValue())) issues.push_back(Issue::missingCapability(capability));
    }
    if (!inRange(definition.bounds())) issues.push_back(Issue::invalidBounds(type));
    if (definition.reversibility() == RavoScenarioReversibility::irreversible &&
        definition.confirmation() == RavoScenarioConfirmationPolicy::none) {
      issues.push_back(Issue::irreversibleWithoutConfirmation(type));
    }
    // Application action nodes must say how they invoke their action; native node types need no binding
    // and any binding on them is ignored.
    if (const auto* action = RavoApplicationActionCatalog::descriptor(type)) {
      if (!node.actionBinding()) {
        issues.push_back(Issue::missingActionBinding(type));
      } else if (!action->validate(node.actionBinding()->arguments()).empty()) {
        issues.push_back(Issue::invalidActionArguments(type));
      }
    }
  }

  std::vector<std::pair<size_t, size_t>> endpoints;
  endpoints.reserve(graph.edges().size());
  for (const auto& edge : graph.edges()) {
    auto [from, to] = endpoints.emplace_back(vertices.of(edge.fromNodeID()), vertices.of(edge.toNodeID()));
    const auto* producer = from == kNoVertex ? nullptr : validDefinition[from];
    const auto* consumer = to == kNoVertex ? nullptr : validDefinition[to];
    if (!producer || !consumer) {
      issues.push_back(Issue::unknownEdgeEndpoint());
      continue;
    }
    if (!contains(producer->outputKeys(), edge.outputKey())) issues.push_back(Issue::missingOutputKey());
    if (!contains(consumer->inputKeys(), edge.inputKey())) issues.push_back(Issue::missingInputKey());
  }

  if (hasCycle(vertices.count(), endpoints)) issues.push_back(Issue::cycleDetected());

  if (draft.activationRequest() == RavoScenarioActivationRequest::notRequested &&
      std::any_of(validDefinition.begin(), validDefinition.end(), [](const auto* definition) {
        return definition && definition->id().rawValue() == "ravo.trigger.schedule";
      })) {
    issues.push_back(Issue::recurringScheduleNeedsActivation());
  }
  return issues;
}

}  // namespace ravo::orx
