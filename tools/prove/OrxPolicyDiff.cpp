#include <ravo-orx/prove/OrxPolicyProver.h>

#include <ravo-orx/prove/OrxProofSession.h>
#include <ravo-orx/prove/OrxProverReplay.h>
#include <ravo-orx/prove/SymbolicFold.h>

namespace ravo::orx {

using namespace internal;

namespace {

// At most this many ways of differing are listed; each is one more query.
constexpr std::size_t kMaxDifferences = 16;

// One compared value: its name, the formulas of both modules, and its value in a replayed call.
struct Compared {
  std::string name;
  z3::expr old;
  z3::expr updated;
  std::function<std::int32_t(const OrxReplay&)> replayed;
};

// The raw values of a call, as --all-fields compares them: whether it trapped, decide's result when it
// did not, how many values it emitted (-1: none) and the first five.
struct RawCall {
  z3::expr trapped, result, count;
  std::vector<z3::expr> values;
};

RawCall rawCall(const OrxHostDecisionModel& host) {
  z3::context& context = host.accepted.ctx();
  const z3::expr zero = context.bv_val(0, 32);
  const auto& emission = host.call.emission;
  RawCall raw{symbolicFlag(host.call.trapped), choose(host.call.trapped, zero, host.record.result),
              choose(emission.called, emission.count, context.bv_val(-1, 32)), {}};
  for (std::size_t v = 0; v < emission.values.size(); ++v) {
    const z3::expr stored = folded(z3::ugt(emission.count, context.bv_val(static_cast<unsigned>(v), 32)));
    raw.values.push_back(choose(allOf(emission.called, stored), emission.values[v], zero));
  }
  return raw;
}

std::vector<Compared> compared(const OrxDecisionKind& kind, const OrxHostDecisionModel& old,
                               const OrxHostDecisionModel& updated, bool allFields) {
  std::vector<Compared> list;
  for (std::size_t f = 0; f < kind.decisionFields.size(); ++f) {
    list.push_back({std::string(kind.decisionFields[f].name), old.fields[f], updated.fields[f],
                    [f](const OrxReplay& replay) { return replay.answer.fields[f]; }});
  }
  if (!allFields) return list;
  const RawCall a = rawCall(old), b = rawCall(updated);
  const std::int32_t none = kind.resultWhenNone;
  list.push_back({"trapped", a.trapped, b.trapped, [](const OrxReplay& r) { return r.call.trap ? 1 : 0; }});
  list.push_back({"result", a.result, b.result, [none](const OrxReplay& r) {
                    return r.call.trap ? 0 : r.call.result.value_or(none);
                  }});
  list.push_back({"emitted count", a.count, b.count, [](const OrxReplay& r) {
                    return r.call.emitted ? static_cast<std::int32_t>(r.call.emitted->size()) : -1;
                  }});
  for (std::size_t v = 0; v < a.values.size(); ++v) {
    list.push_back({"emitted[" + std::to_string(v) + "]", a.values[v], b.values[v], [v](const OrxReplay& r) {
                      return r.call.emitted && r.call.emitted->size() > v ? (*r.call.emitted)[v] : 0;
                    }});
  }
  return list;
}

}  // namespace

OrxPolicyDiff orxDiffPolicies(std::span<const std::uint8_t> oldWasm, std::span<const std::uint8_t> newWasm,
                              const OrxDecisionKind& kind, const OrxProofOptions& options, bool allFields) {
  OrxProofSession session(kind, options);
  const OrxHostDecisionModel old = session.model(oldWasm);
  const OrxHostDecisionModel updated = session.model(newWasm);
  const z3::expr answered = session.answered({&old, &updated});
  const std::vector<Compared> values = compared(kind, old, updated, allFields);
  std::vector<z3::expr> differs;
  z3::expr anyDiffers = session.context().bool_val(false);
  for (const auto& value : values) {
    differs.push_back(folded(value.old != value.updated));
    anyDiffers = anyOf(anyDiffers, differs.back());
  }

  OrxPolicyDiff diff;
  z3::expr unseen = session.context().bool_val(true);  // a way of differing not listed yet
  while (true) {
    const OrxSolverOutcome outcome = session.check(allOf(answered, allOf(anyDiffers, unseen)));
    if (outcome.answer == OrxSolverAnswer::unknown) {
      diff.unknown = outcome.unknownReason;
      break;
    }
    if (outcome.answer == OrxSolverAnswer::unsatisfiable) break;
    if (diff.differences.size() == kMaxDifferences) {
      diff.truncated = true;
      break;
    }
    const auto facts = session.factsIn(*outcome.model);
    const std::string json = session.factsJSON(facts);
    const OrxReplay oldReplay = orxReplay(oldWasm, kind, facts);
    const OrxReplay newReplay = orxReplay(newWasm, kind, facts);
    orxConfirm(kind, "the old module", json, orxModelAnswer(old, *outcome.model), oldReplay.answer);
    orxConfirm(kind, "the new module", json, orxModelAnswer(updated, *outcome.model), newReplay.answer);
    OrxPolicyDifference difference{{}, json, orxAnswerText(oldReplay.answer), orxAnswerText(newReplay.answer)};
    z3::expr same = session.context().bool_val(true);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const bool modelDiffers = outcome.model->eval(differs[i], true).is_true();
      const std::int32_t oldValue = values[i].replayed(oldReplay), newValue = values[i].replayed(newReplay);
      if (modelDiffers != (oldValue != newValue)) {
        orxDisagree(json, values[i].name + (modelDiffers ? " differs in the model, not" : " is the same in the model, not") +
                              " for the runtime (" + std::to_string(oldValue) + ", " + std::to_string(newValue) + ")");
      }
      if (modelDiffers) difference.fields.push_back(values[i].name);
      same = allOf(same, modelDiffers ? differs[i] : negation(differs[i]));
    }
    unseen = allOf(unseen, negation(same));
    diff.differences.push_back(std::move(difference));
  }
  if (!diff.unknown && diff.differences.empty()) diff.unknown = session.unanswered({&old, &updated});

  for (std::size_t i = 0; i < values.size(); ++i) {
    const OrxSolverOutcome some = session.check(allOf(answered, differs[i]));
    std::string summary = values[i].name + ": ";
    if (some.answer == OrxSolverAnswer::unknown) {
      summary += "unknown (" + some.unknownReason + ")";
    } else if (some.answer == OrxSolverAnswer::unsatisfiable) {
      summary += "the same for every facts vector";
    } else {
      const OrxSolverOutcome none = session.check(allOf(answered, negation(differs[i])));
      summary += none.answer == OrxSolverAnswer::unsatisfiable ? "differs for every facts vector"
                 : none.answer == OrxSolverAnswer::satisfiable ? "differs for some facts vectors"
                                                               : "differs (" + none.unknownReason + ")";
    }
    diff.fieldSummaries.push_back(std::move(summary));
  }
  return diff;
}

}  // namespace ravo::orx
