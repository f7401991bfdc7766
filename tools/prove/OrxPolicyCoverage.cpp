#include <ravo-orx/prove/OrxPolicyProver.h>

#include <numeric>
#include <set>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/prove/OrxProofSession.h>
#include <ravo-orx/prove/OrxProverReplay.h>
#include <ravo-orx/prove/SymbolicFold.h>
#include <ravo-orx/runtime/OrxDecisionLogFormat.h>

namespace ravo::orx {

using namespace internal;

namespace {

// The values a field can name. The reason's are the codes a module may answer with: the host's own
// fail-safe reasons are for cases no more than any other refused record is, and `policy prove` says
// whether a module can come to one. Then a boolean's and an enumeration's; nothing for an integer.
std::optional<std::vector<std::int32_t>> valuesOf(const OrxDecisionKind& kind, const OrxDecisionField& field) {
  if (field.emittedIndex == kind.reasonIndex) {
    std::vector<std::int32_t> codes(kind.reasonNames.size());
    std::iota(codes.begin(), codes.end(), 0);
    return codes;
  }
  auto cases = [](auto table) {
    std::vector<std::int32_t> values;
    for (const auto& [value, name] : table.entries) values.push_back(rawValue(value));
    return values;
  };
  switch (field.form) {
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
    // An integer field's values are too many to list one by one, and asking the solver for the values
    // no case gives takes long and depends on the time limit: only fields of named values are covered.
    const auto values = valuesOf(kind, field);
    if (!values) continue;
    for (const std::int32_t candidate : *values) {
      if (reached[f].count(candidate)) continue;
      const std::string what = std::string(field.name) + " " + orxDecisionFieldText(field, candidate);
      const OrxSolverOutcome outcome = session.check(allOf(answered, folded(host.fields[f] == candidate)));
      if (outcome.answer == OrxSolverAnswer::unknown) {
        unreached.push_back(what + ": unknown (" + outcome.unknownReason + ")");
      }
      if (outcome.answer != OrxSolverAnswer::satisfiable) continue;
      // A witness, confirmed by the runtime before it is shown.
      const auto facts = session.factsIn(*outcome.model);
      const std::string json = session.factsJSON(facts);
      const OrxPolicyAnswer replayed = orxReplay(wasm, kind, facts).answer;
      orxConfirm(kind, "the module", json, orxModelAnswer(host, *outcome.model), replayed);
      unreached.push_back(what + ", as for facts " + json);
    }
  }
  if (const auto why = session.unanswered({&host})) unreached.push_back("the model does not answer everywhere: " + *why);
  return unreached;
}

}  // namespace ravo::orx
