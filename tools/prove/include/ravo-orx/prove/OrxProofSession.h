#pragma once
// What every question about modules of one kind shares: the solver's context, one 32-bit variable per
// fact, the ranges they are held to, the solver with its limits, and the models of the modules asked
// about, each loaded through the module host first so that only modules the host admits are modelled.

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <z3++.h>

#include <ravo-orx/prove/OrxHostDecisionModel.h>
#include <ravo-orx/prove/OrxPolicyProver.h>
#include <ravo-orx/prove/OrxProofSolver.h>

namespace ravo::orx::internal {

class OrxProofSession {
 public:
  OrxProofSession(const OrxDecisionKind& kind, const OrxProofOptions& options);
  OrxProofSession(const OrxProofSession&) = delete;
  OrxProofSession& operator=(const OrxProofSession&) = delete;

  z3::context& context() { return context_; }
  const std::vector<z3::expr>& facts() const { return facts_; }

  // The host's decision with the module over the session's facts. Throws RuntimeError with the module
  // host's text when the host refuses the module.
  OrxHostDecisionModel model(std::span<const std::uint8_t> wasm);

  // Whether `formula` holds for some facts within the ranges.
  OrxSolverOutcome check(const z3::expr& formula);

  // Where the model answers: no gap of `models` is reached.
  z3::expr answered(const std::vector<const OrxHostDecisionModel*>& models) const;
  // Why some facts within the ranges reach a gap of `models`, with an example; nothing when none does.
  std::optional<std::string> unanswered(const std::vector<const OrxHostDecisionModel*>& models);

  std::vector<std::int32_t> factsIn(const z3::model& model) const;
  // {"role":2,"command":6,...}, as `policy eval --facts` reads it.
  std::string factsJSON(std::span<const std::int32_t> facts) const;

 private:
  z3::context context_;
  const OrxDecisionKind& kind_;
  OrxModelLimits limits_;
  std::vector<z3::expr> facts_;
  z3::expr withinRanges_;
  OrxProofSolver solver_;
};

}  // namespace ravo::orx::internal
