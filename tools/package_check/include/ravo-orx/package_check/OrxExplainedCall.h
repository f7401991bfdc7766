#pragma once
// One call of a policy module explained to its author: what it returned and emitted, the trap's text,
// which check of the runtime refused the emitted record (by the runtime's own rule table,
// OrxEmittedRecordRules.h), how often it emitted, and the fuel and stack it used.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <ravo-orx/engine/OrxModuleInstance.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>

namespace ravo::orx {

struct OrxExplainedCall {
  std::optional<std::int32_t> result;
  std::optional<std::vector<std::int32_t>> emitted;  // the last emission's values
  std::optional<std::string> trap;
  // The rule that refused the emitted record, "[4] policy version 0 is outside 1…10000"; nothing when
  // the runtime accepts it or the call trapped.
  std::optional<std::string> refusal;
  internal::OrxCallMeasure measure;
};

// Calls `module` once with `facts` (kind.factNames.size() values).
OrxExplainedCall orxExplainCall(internal::OrxMeasuredModuleInstance& module, const OrxDecisionKind& kind,
                                std::span<const std::int32_t> facts);

// "fuel 57 of 1000000 units, stack 12 of 4000 units (a frame is 4 plus its parameters and locals)"
std::string orxDescribeMeasure(const internal::OrxCallMeasure& measure);

}  // namespace ravo::orx
