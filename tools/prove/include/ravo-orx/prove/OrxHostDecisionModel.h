#pragma once
// The host's decision as formulas over the facts: a module's `decide` (OrxDecideModel.h) judged by the
// runtime's own rule table for the kind (OrxEmittedRecordRules.h, read here over symbolic values), then
// mapped as the decider maps it: the module's answer when the record passes every rule, the kind's
// fail-safe decision after a trap or a refusal (OrxFailSafeDecisions).

#include <cstddef>
#include <vector>

#include <z3++.h>

#include <ravo-orx/prove/OrxDecideModel.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>

namespace ravo::orx::internal {

// An emitted record as the rules read it, every value a 32-bit vector and every test a formula.
struct OrxSymbolicRecord {
  z3::expr tag;
  z3::expr result;
  z3::expr echoedFact;
  z3::expr count;
  z3::expr isEmitted;
  std::vector<z3::expr> values;

  z3::expr emitted() const { return isEmitted; }
  z3::expr operator[](std::size_t index) const { return values[index]; }
};

struct OrxHostDecisionModel {
  OrxDecideModel call;
  OrxSymbolicRecord record;
  std::vector<z3::expr> rules;  // whether each rule of the kind's table holds, in the table's order
  z3::expr accepted;            // the call did not trap and every rule holds
  z3::expr source;              // 32 bits: the OrxDecisionSource raw value (policy, trap, invalidOutput)
  // The decision's fields as the decision log holds them (OrxDecisionKind::decisionFields), 32 bits each.
  std::vector<z3::expr> fields;
};

OrxHostDecisionModel orxHostDecisionModel(const OrxDecisionKind& kind, OrxDecideModel call,
                                          const std::vector<z3::expr>& facts);

}  // namespace ravo::orx::internal
