#include <ravo-orx/contracts/actions/RavoCapabilityFabric.h>

#include <algorithm>

#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>
#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

// Ranking weights: an exact search term outweighs a matching title, which outweighs partial overlaps.
constexpr std::int64_t kExactTerm = 100;
constexpr std::int64_t kExactTitle = 90;
constexpr std::int64_t kTitleOverlap = 35;
constexpr std::int64_t kCategoryOverlap = 16;
constexpr std::int64_t kTermOverlap = 20;
constexpr std::int64_t kSharedToken = 12;

// Whether either text contains the other. An empty text says nothing about the other, so it never
// counts as contained (a blank category must not match every query).
bool overlaps(const std::string& a, const std::string& b) {
  if (a.empty() || b.empty()) return false;
  return a.find(b) != std::string::npos || b.find(a) != std::string::npos;
}

void addTokens(std::set<std::string>& tokens, std::string_view normalized) {
  for (auto& token : ravoTextTokens(normalized)) tokens.insert(std::move(token));
}

std::string describe(RavoCapabilityFabricError::Code code) {
  switch (code) {
    case RavoCapabilityFabricError::Code::duplicateActionID: return "action declared twice with different descriptors: ";
    case RavoCapabilityFabricError::Code::actionApplicationMismatch: return "action belongs to another application than its manifest: ";
  }
  return "";
}

}  // namespace

RavoCapabilityFabricError::RavoCapabilityFabricError(Code code, std::string actionID)
    : std::runtime_error(describe(code) + actionID), code_(code), actionID_(std::move(actionID)) {}

RavoCapabilityFabric::RavoCapabilityFabric(std::vector<RavoApplicationActionManifest> manifests)
    : manifests_(std::move(manifests)) {
  for (const auto& manifest : manifests_) {
    for (const auto& action : manifest.actions()) {
      if (action.applicationID() != manifest.applicationID()) {
        throw RavoCapabilityFabricError(RavoCapabilityFabricError::Code::actionApplicationMismatch, action.id().rawValue());
      }
      auto known = actionsByID_.find(action.id());
      if (known != actionsByID_.end()) {
        if (known->second.descriptor != action) {
          throw RavoCapabilityFabricError(RavoCapabilityFabricError::Code::duplicateActionID, action.id().rawValue());
        }
        continue;
      }
      Entry entry{action, ravoNormalizedText(action.title()), ravoNormalizedText(action.category()), {}};
      addTokens(entry.tokens, entry.title);
      addTokens(entry.tokens, entry.category);
      // Stored terms are normalised already unless they were decoded as written; normalising again is harmless.
      for (const auto& term : action.searchTerms()) addTokens(entry.tokens, ravoNormalizedText(term));
      actionsByID_.emplace(action.id(), std::move(entry));
    }
  }
  std::stable_sort(manifests_.begin(), manifests_.end(),
                   [](const auto& a, const auto& b) { return a.applicationID() < b.applicationID(); });
}

const RavoCapabilityFabric& RavoCapabilityFabric::builtIn() {
  // The built-in manifests are consistent by construction; were they not, the error would surface
  // on first use with the offending action's id.
  static const RavoCapabilityFabric fabric(RavoApplicationActionCatalog::builtInManifests());
  return fabric;
}

std::vector<RavoApplicationAccessSummary> RavoCapabilityFabric::applicationAccesses() const {
  return {manifests_.begin(), manifests_.end()};
}

std::vector<RavoApplicationActionDescriptor> RavoCapabilityFabric::actions() const {
  std::vector<RavoApplicationActionDescriptor> all;
  all.reserve(actionsByID_.size());
  for (const auto& [_, entry] : actionsByID_) all.push_back(entry.descriptor);
  return all;
}

const RavoApplicationActionDescriptor* RavoCapabilityFabric::descriptor(const RavoApplicationActionID& id) const {
  auto found = actionsByID_.find(id);
  return found == actionsByID_.end() ? nullptr : &found->second.descriptor;
}

std::int64_t RavoCapabilityFabric::score(const Entry& entry, const std::string& query,
                                         const std::set<std::string>& queryTokens) {
  if (query.empty()) return 0;
  const auto& terms = entry.descriptor.searchTerms();
  std::int64_t total = 0;
  if (std::find(terms.begin(), terms.end(), query) != terms.end()) total += kExactTerm;
  if (entry.title == query) total += kExactTitle;
  if (overlaps(entry.title, query)) total += kTitleOverlap;
  if (overlaps(entry.category, query)) total += kCategoryOverlap;
  for (const auto& term : terms) {
    if (overlaps(term, query)) total += kTermOverlap;
  }
  for (const auto& token : queryTokens) {
    if (entry.tokens.contains(token)) total += kSharedToken;
  }
  return total;
}

std::vector<RavoApplicationActionDescriptor> RavoCapabilityFabric::shortlist(std::string_view query,
                                                                            std::int64_t limit) const {
  const std::string normalized = ravoNormalizedText(query);
  std::set<std::string> queryTokens;
  addTokens(queryTokens, normalized);

  std::vector<std::pair<std::int64_t, const Entry*>> ranked;
  ranked.reserve(actionsByID_.size());
  for (const auto& [_, entry] : actionsByID_) ranked.emplace_back(score(entry, normalized, queryTokens), &entry);
  // Entries come in id order, so a stable sort by score leaves ties by id.
  std::stable_sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.first > b.first; });

  auto count = std::min({static_cast<std::size_t>(std::max<std::int64_t>(limit, 1)), ranked.size(), maximumShortlist});
  std::vector<RavoApplicationActionDescriptor> shortlist;
  shortlist.reserve(count);
  for (std::size_t i = 0; i < count; ++i) shortlist.push_back(ranked[i].second->descriptor);
  return shortlist;
}

}  // namespace ravo::orx
