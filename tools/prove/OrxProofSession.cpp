#include <ravo-orx/prove/OrxProofSession.h>

#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/prove/SymbolicFold.h>

namespace ravo::orx::internal {

OrxProofSession::OrxProofSession(const OrxDecisionKind& kind, const OrxProofOptions& options)
    : kind_(kind),
      limits_{options.unrollBound, OrxModelLimits{}.maxInstructions,
              std::chrono::milliseconds(options.modelMilliseconds)},
      withinRanges_(context_.bool_val(true)),
      solver_(context_, std::chrono::milliseconds(options.timeoutMilliseconds), options.memoryMegabytes) {
  orxLimitSolverMemory(options.memoryMegabytes);
  for (std::size_t f = 0; f < kind.factNames.size(); ++f) {
    facts_.push_back(context_.bv_const(std::string(kind.factNames[f]).c_str(), 32));
    const OrxFactRange& range = options.ranges[f];
    withinRanges_ = allOf(withinRanges_, folded(facts_[f] >= range.from && facts_[f] <= range.to));
  }
}

OrxHostDecisionModel OrxProofSession::model(std::span<const std::uint8_t> wasm) {
  loadModule(kind_.module, wasm, /*allowPrecompiled=*/false);
  return orxHostDecisionModel(kind_, orxModelDecide(wasm.data(), wasm.size(), facts_, limits_), facts_);
}

OrxSolverOutcome OrxProofSession::check(const z3::expr& formula) { return solver_.check(withinRanges_ && formula); }

z3::expr OrxProofSession::answered(const std::vector<const OrxHostDecisionModel*>& models) const {
  z3::expr answered = withinRanges_.ctx().bool_val(true);
  for (const auto* model : models) {
    for (const auto& gap : model->call.gaps) answered = allOf(answered, negation(gap.condition));
  }
  return answered;
}

std::optional<std::string> OrxProofSession::unanswered(const std::vector<const OrxHostDecisionModel*>& models) {
  const OrxSolverOutcome outcome = check(negation(answered(models)));
  if (outcome.answer == OrxSolverAnswer::unsatisfiable) return std::nullopt;
  if (outcome.answer == OrxSolverAnswer::unknown) return outcome.unknownReason;
  for (const auto* model : models) {
    for (const auto& gap : model->call.gaps) {
      if (outcome.model->eval(gap.condition, true).is_true()) {
        return gap.reason + ", as for facts " + factsJSON(factsIn(*outcome.model));
      }
    }
  }
  return "the model does not answer for facts " + factsJSON(factsIn(*outcome.model));
}

std::vector<std::int32_t> OrxProofSession::factsIn(const z3::model& model) const {
  std::vector<std::int32_t> values;
  for (const auto& fact : facts_) {
    values.push_back(static_cast<std::int32_t>(static_cast<std::uint32_t>(model.eval(fact, true).get_numeral_uint64())));
  }
  return values;
}

std::string OrxProofSession::factsJSON(std::span<const std::int32_t> facts) const {
  RavoJSON object = RavoJSON::object();
  for (std::size_t f = 0; f < facts.size(); ++f) object[std::string(kind_.factNames[f])] = facts[f];
  return object.dump();
}

}  // namespace ravo::orx::internal
