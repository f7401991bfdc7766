#include <ravo-orx/prove/OrxProverReplay.h>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/prove/OrxPolicyProver.h>
#include <ravo-orx/runtime/OrxDecisionLogFormat.h>

namespace ravo::orx::internal {

OrxReplay orxReplay(std::span<const std::uint8_t> wasm, const OrxDecisionKind& kind, std::span<const std::int32_t> facts) {
  OrxPolicyDecider decider(orxModulesWith(kind, loadModule(kind.module, wasm, /*allowPrecompiled=*/false)));
  const auto measured = loadMeasuredModule(kind.module, wasm);
  return {orxDecide(kind, decider, facts), orxExplainCall(*measured, kind, facts)};
}

std::string orxAnswerText(const OrxPolicyAnswer& answer) {
  RavoJSON decision = answer.decision;
  decision["source"] = orxCaseName(answer.source);
  return decision.dump();
}

std::int32_t orxModelValue(const z3::model& model, const z3::expr& value) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(model.eval(value, true).get_numeral_uint64()));
}

OrxModelAnswer orxModelAnswer(const OrxHostDecisionModel& host, const z3::model& model) {
  OrxModelAnswer answer;
  for (std::size_t f = 0; f < host.fields.size(); ++f) answer.fields[f] = orxModelValue(model, host.fields[f]);
  answer.source = static_cast<OrxDecisionSource>(orxModelValue(model, host.source));
  return answer;
}

void orxDisagree(std::string_view facts, const std::string& problem) {
  throw OrxProverDisagreement("internal error: the model and the runtime disagree for facts " + std::string(facts) +
                              ": " + problem);
}

void orxConfirm(const OrxDecisionKind& kind, std::string_view what, std::string_view facts, const OrxModelAnswer& model,
                const OrxPolicyAnswer& runtime) {
  if (model.fields == runtime.fields && model.source == runtime.source) return;
  // The model's fields as the runtime's decision shows them, whatever their values.
  OrxPolicyAnswer modelled{RavoJSON::object(), model.source, model.fields};
  for (std::size_t f = 0; f < kind.decisionFields.size(); ++f) {
    const OrxDecisionField& field = kind.decisionFields[f];
    const std::int32_t value = model.fields[f];
    modelled.decision[std::string(field.name)] = field.form == OrxDecisionFieldForm::boolean ? RavoJSON(value != 0)
                                                 : field.form == OrxDecisionFieldForm::integer
                                                     ? RavoJSON(value)
                                                     : RavoJSON(orxDecisionFieldText(field, value));
  }
  orxDisagree(facts, "for " + std::string(what) + " the model decides " + orxAnswerText(modelled) + ", the runtime " +
                         orxAnswerText(runtime));
}

}  // namespace ravo::orx::internal
