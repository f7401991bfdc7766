#pragma once
// Checks a scenario draft against a list of node definitions. Validation never throws and never stops
// early (except for an oversized graph): it reports every problem it finds, in a fixed order, so that
// a drafting model or a person can correct the draft in one pass. An empty list means the draft is
// valid.
//
// Order of the issues: an oversized graph alone; then one duplicate node id; then per node (in graph
// order) an unknown or disabled type or a version mismatch, else its missing capabilities, out-of-range
// bounds, irreversibility without confirmation and its action binding; then per edge an unknown
// endpoint, else a missing output and a missing input key; then a cycle; then a schedule trigger in a
// draft that asks for no activation.

#include <cstddef>
#include <vector>

#include <ravo-orx/contracts/scenarios/RavoScenarioDraft.h>
#include <ravo-orx/contracts/definitions/RavoScenarioNodeDefinition.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioValidationIssue.h>

namespace ravo::orx {

struct RavoScenarioCatalog {
  static constexpr std::size_t maximumNodeCount = 256;

  // `definitions` should name each node type once; where one is repeated, the first entry is used.
  static std::vector<RavoScenarioValidationIssue> validate(const RavoScenarioDraft& draft,
                                                           const std::vector<RavoScenarioNodeDefinition>& definitions);
};

}  // namespace ravo::orx
