#include <ravo-orx/prove/OrxPolicyProver.h>

#include <set>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/prove/OrxProofSession.h>
#include <ravo-orx/prove/OrxProverReplay.h>
#include <ravo-orx/prove/SymbolicFold.h>
#include <ravo-orx/runtime/OrxDecisionLogFormat.h>

namespace ravo::orx {

using namespace internal;

namespace {

// An integer field may take very many values: the first few the cases miss are named.
constexpr std::size_t kMaxNamedValues = 4;

// The values a field's form allows, or nothing for an integer.
std::optional<std::vector<std::int32_t>> valuesOf(OrxDecisionFieldForm form) {
  auto cases = [](auto table) {
    std::vector<std::int32_t> values;
    for (const auto& [value, name] : table.entries) values.push_back(rawValue(value));
    return values;
  };
  switch (form) {
    case OrxDecisionFieldForm::boolean: return std::vector<std::int32_t>{0, 1};
    case OrxDecisionFieldForm::authorizationReason: return cases(ORXRawValueTable<OrxAuthorizationReason>{});
    case OrxDecisionFieldForm::syncAction: return cases(ORXRawValueTable<OrxSyncAction>{});
    case OrxDecisionFieldForm::cinemaRoute: return cases(ORXRawValueTable<OrxCinemaAdmissionRoute>{});
    case OrxDecisionFieldForm::cinemaReason: return cases(ORXRawValueTable<OrxCinemaAdmissionReason>{});
    case OrxDecisionFieldForm::integer: break;
  }
  return std::nullopt;
}

}  // namespace

std::vector<std::string> orxUnreachedDecisions(std::span<const std::uint8_t> wasm, const OrxDecisionKind& kind,
                                               const OrxProofOptions& options,
                                               const std::vector<std::vector<std::int32_t>>& cases) {
  OrxProofSession session(kind, options);
  const OrxHostDecisionModel host = session.model(wasm);
  const z3::expr answered = session.answered({&host});

  // What the cases reach, by the runtime.
  std::vector<std::set<std::int32_t>> reached(kind.decisionFields.size());
  OrxPolicyDecider decider(orxModulesWith(kind, loadModule(kind.module, wasm, /*allowPrecompiled=*/false)));
  for (const auto& facts : cases) {
    const OrxPolicyAnswer answer = orxDecide(kind, decider, facts);
    for (std::size_t f = 0; f < reached.size(); ++f) reached[f].insert(answer.fields[f]);
  }

  std::vector<std::string> unreached;
  for (std::size_t f = 0; f < kind.decisionFields.size(); ++f) {
    const OrxDecisionField& field = kind.decisionFields[f];
    const z3::expr& value = host.fields[f];
    // A witness for a value no case reaches, confirmed by the runtime.
    auto report = [&](const z3::model& model) {
      const auto facts = session.factsIn(model);
      const std::string json = session.factsJSON(facts);
      const std::int32_t reachable = orxModelValue(model, value);
      const OrxReplay replay = orxReplay(wasm, kind, facts);
      orxConfirm(kind, "the module", json, orxModelAnswer(host, model), replay.answer);
      unreached.push_back(std::string(field.name) + " " + orxDecisionFieldText(field, reachable) + ", as for facts " + json);
      return reachable;
    };
    auto unknown = [&](const std::string& what, const std::string& why) {
      unreached.push_back(std::string(field.name) + " " + what + ": unknown (" + why + ")");
    };
    if (const auto values = valuesOf(field.form)) {
      for (const std::int32_t candidate : *values) {
        if (reached[f].count(candidate)) continue;
        const OrxSolverOutcome outcome = session.check(allOf(answered, folded(value == candidate)));
        if (outcome.answer == OrxSolverAnswer::satisfiable) report(*outcome.model);
        if (outcome.answer == OrxSolverAnswer::unknown) unknown(orxDecisionFieldText(field, candidate), outcome.unknownReason);
      }
      continue;
    }
    z3::expr missed = answered;
    for (const std::int32_t known : reached[f]) missed = allOf(missed, folded(value != known));
    for (std::size_t named = 0; named <= kMaxNamedValues; ++named) {
      const OrxSolverOutcome outcome = session.check(missed);
      if (outcome.answer == OrxSolverAnswer::unknown) unknown("values", outcome.unknownReason);
      if (outcome.answer != OrxSolverAnswer::satisfiable) break;
      if (named == kMaxNamedValues) {
        unreached.push_back(std::string(field.name) + ": more values than these");
        break;
      }
      missed = allOf(missed, folded(value != report(*outcome.model)));
    }
  }
  if (const auto why = session.unanswered({&host})) unreached.push_back("the model does not answer everywhere: " + *why);
  return unreached;
}

}  // namespace ravo::orx
