#pragma once
// Turns a person's words into a validated scenario draft through a model provider.
//
// Refuses empty or oversized requests and providers that may not serve them, tells the proposer which
// node types it may use, and accepts the proposer's answer only when it answers this request, no newer
// request has started meanwhile, it was not accepted before, and its draft validates. The model never
// decides whether a scenario is armed or where it stands: the answer's draft comes back unarmed, in
// the draft state. Every refusal is an outcome, never an exception.
//
// Safe to call from any number of threads. The lock guards only the generation counter and the
// accepted answer ids and is never held while the proposer runs, so a second request can start (and
// make the first one's answer stale) while a slow model is still answering the first.

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <ravo-orx/contracts/definitions/RavoScenarioNodeDefinition.h>
#include <ravo-orx/contracts/services/RavoModelProviderRecord.h>
#include <ravo-orx/contracts/services/RavoScenarioDraftProposer.h>
#include <ravo-orx/contracts/services/RavoScenarioDraftingOutcome.h>

namespace ravo::orx {

class RavoScenarioDraftingService {
 public:
  static constexpr std::size_t maximumRequestBytes = 4000;  // UTF-8, after trimming

  // `definitions` is the catalog drafts are offered and validated against, normally
  // RavoScenarioBuiltInCatalog::definitions().
  explicit RavoScenarioDraftingService(std::vector<RavoScenarioNodeDefinition> definitions);

  RavoScenarioDraftingOutcome draft(std::string_view userText, bool localOnly, const RavoModelProviderRecord& provider,
                                    RavoScenarioDraftProposer& proposer);

  // The generation of the newest request that reached the proposer; 0 before the first.
  std::int64_t latestGeneration() const;

 private:
  const std::vector<RavoScenarioNodeDefinition> definitions_;
  // Hints depend only on the definitions, so they are built once rather than per request.
  const std::vector<RavoScenarioDraftingNodeHint> hints_;

  mutable std::mutex mutex_;
  std::int64_t latestGeneration_ = 0;
  std::unordered_set<RavoUUID> acceptedResponseIDs_;
};

}  // namespace ravo::orx
