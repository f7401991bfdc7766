#include <ravo-orx/contracts/scenarios/RavoScenarioRevisionDiffer.h>

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>

namespace ravo::orx {

namespace {

using Summary = RavoScenarioNodeReviewSummary;

std::vector<Summary> summaries(const RavoScenarioRevision& revision) {
  const auto& nodes = revision.draft().graph().nodes();
  return {nodes.begin(), nodes.end()};
}

std::unordered_map<Summary, std::int64_t> counts(const std::vector<Summary>& list) {
  std::unordered_map<Summary, std::int64_t> result;
  for (const auto& summary : list) ++result[summary];
  return result;
}

// The versions under each version key, and the first summary (in list order) with that key.
struct VersionedKey {
  const Summary* first;
  std::set<std::string> versions;
};

std::map<std::string, VersionedKey> versionsByKey(const std::vector<Summary>& list) {
  std::map<std::string, VersionedKey> result;
  for (const auto& summary : list) {
    auto [entry, inserted] = result.try_emplace(summary.versionKey(), VersionedKey{&summary, {}});
    entry->second.versions.insert(summary.nodeVersion());
  }
  return result;
}

struct VersionChanges {
  std::vector<RavoScenarioNodeVersionChange> changes;  // sorted by id
  std::unordered_set<std::string> keys;
};

// Keys with exactly one version on each side, and a different one, moved version. Several versions on
// one side make the pairing ambiguous, so those nodes stay added or removed.
VersionChanges versionChanges(const std::vector<Summary>& from, const std::vector<Summary>& to) {
  auto before = versionsByKey(from);
  auto after = versionsByKey(to);
  VersionChanges result;
  for (const auto& [key, old] : before) {
    auto found = after.find(key);
    if (found == after.end()) continue;
    const auto& newVersions = found->second.versions;
    if (old.versions == newVersions || old.versions.size() != 1 || newVersions.size() != 1) continue;
    result.changes.emplace_back(old.first->nodeType(), old.first->stableTargetIDs(), *old.versions.begin(),
                                *newVersions.begin());
    result.keys.insert(key);
  }
  std::stable_sort(result.changes.begin(), result.changes.end(),
                   [](const auto& a, const auto& b) { return a.id() < b.id(); });
  return result;
}

// Each summary of `list` as many times as `list` holds it more often than `other` does, sorted by id,
// leaving out those whose version key moved version.
std::vector<Summary> expandedDifference(const std::vector<Summary>& list, const std::vector<Summary>& other,
                                        const std::unordered_set<std::string>& movedKeys) {
  auto counted = counts(list);
  auto otherCounts = counts(other);
  std::vector<Summary> result;
  for (const auto& summary : list) {  // list order, so that equal ids keep a fixed order
    auto found = counted.find(summary);
    if (found == counted.end()) continue;  // already emitted
    auto otherFound = otherCounts.find(summary);
    std::int64_t surplus = found->second - (otherFound == otherCounts.end() ? 0 : otherFound->second);
    counted.erase(found);
    if (movedKeys.contains(summary.versionKey())) continue;
    for (std::int64_t i = 0; i < surplus; ++i) result.push_back(summary);
  }
  std::stable_sort(result.begin(), result.end(), [](const auto& a, const auto& b) { return a.id() < b.id(); });
  return result;
}

// Repeated capabilities count once; the result is sorted by raw value.
std::vector<RavoScenarioCapability> capabilitiesMissingFrom(const RavoScenarioGraph& graph,
                                                            const RavoScenarioGraph& other) {
  std::set<RavoScenarioCapability> result(graph.requestedCapabilities().begin(), graph.requestedCapabilities().end());
  for (const auto& capability : other.requestedCapabilities()) result.erase(capability);
  return {result.begin(), result.end()};
}

}  // namespace

RavoScenarioRevisionDiff RavoScenarioRevisionDiffer::compare(const RavoScenarioRevision& from,
                                                             const RavoScenarioRevision& to) {
  const RavoScenarioDraft& older = from.draft();
  const RavoScenarioDraft& newer = to.draft();
  auto before = summaries(from);
  auto after = summaries(to);
  auto [changes, movedKeys] = versionChanges(before, after);

  return RavoScenarioRevisionDiff({
      .fromRevisionID = from.id(),
      .toRevisionID = to.id(),
      .titleChanged = older.title() != newer.title(),
      .lifecycleChanged = older.lifecycle() != newer.lifecycle(),
      .activationRequestChanged = older.activationRequest() != newer.activationRequest(),
      .graphDigestChanged = from.graphDigest() != to.graphDigest(),
      .addedNodes = expandedDifference(after, before, movedKeys),
      .removedNodes = expandedDifference(before, after, movedKeys),
      .changedNodeVersions = std::move(changes),
      .addedCapabilities = capabilitiesMissingFrom(newer.graph(), older.graph()),
      .removedCapabilities = capabilitiesMissingFrom(older.graph(), newer.graph()),
      .edgeCountDelta = static_cast<std::int64_t>(newer.graph().edges().size()) -
                        static_cast<std::int64_t>(older.graph().edges().size()),
  });
}

}  // namespace ravo::orx
