#include <ravo-orx/prove/OrxPolicyProver.h>

#include <functional>
#include <limits>

#include <ravo-orx/prove/OrxProofSession.h>
#include <ravo-orx/prove/OrxPropertyDomains.h>
#include <ravo-orx/prove/OrxProverReplay.h>
#include <ravo-orx/prove/SymbolicFold.h>
#include <ravo-orx/runtime/OrxEmittedRecordRules.h>

namespace ravo::orx {

using namespace internal;

namespace {

// One claim about the module: when it fails, and what the runtime must show of a counterexample. A
// rule of the host is broken only by a record that passed the rules before it: `rule` is the rule, and
// the rules before it that are proved to hold need not be assumed.
struct Obligation {
  std::string name;
  z3::expr violated;
  std::optional<z3::expr> rule;
  // Throws OrxProverDisagreement unless the replay shows the violation (beyond the answer itself).
  std::function<void(const OrxReplay& replay, std::span<const std::int32_t> facts, const std::string& json)> confirm;
};

// The first rule of the kind's table that refuses the record the call emitted, as the decider runs them.
std::optional<std::size_t> firstRefusingRule(const OrxDecisionKind& kind, const OrxExplainedCall& call,
                                             std::span<const std::int32_t> facts) {
  const auto* values = call.emitted ? call.emitted->data() : nullptr;
  const OrxEmittedRecord record{kind.emitTag, call.result.value_or(kind.resultWhenNone), orxEchoedFact(kind, facts),
                                values, call.emitted ? call.emitted->size() : 0};
  const auto rules = orxRecordRules(kind);
  for (std::size_t i = 0; i < rules.size(); ++i) {
    if (!rules[i].holds(record)) return i;
  }
  return std::nullopt;
}

std::vector<Obligation> obligations(const OrxDecisionKind& kind, const OrxHostDecisionModel& host,
                                    const OrxProofSession& session, const OrxProofOptions& options, bool validityOnly) {
  std::vector<Obligation> list;
  list.push_back({"decide never traps", host.call.trapped, std::nullopt,
                  [](const OrxReplay& replay, auto, const std::string& json) {
                    if (!replay.call.trap) orxDisagree(json, "the model traps, the runtime's call does not");
                  }});
  const auto rules = orxRecordRules(kind);
  for (std::size_t i = 0; i < rules.size(); ++i) {
    list.push_back({"no record is refused with \"" + std::string(rules[i].refusal) + "\"",
                    allOf(negation(host.call.trapped), negation(host.rules[i])), host.rules[i],
                    [&kind, i](const OrxReplay& replay, std::span<const std::int32_t> facts, const std::string& json) {
                      if (replay.call.trap || firstRefusingRule(kind, replay.call, facts) != i) {
                        orxDisagree(json, "the model's record breaks rule " + std::to_string(i + 1) +
                                              ", the runtime's call " +
                                              (replay.call.refusal ? "breaks \"" + *replay.call.refusal + "\""
                                                                   : std::string("does not")));
                      }
                    }});
  }
  if (validityOnly) return list;
  const OrxSymbolicPropertyDomain domain{session.facts(), host.fields};
  for (const auto& property : options.properties) {
    list.push_back({"property \"" + property.text() + "\"", negation(property.holds(domain)), std::nullopt,
                    [&property](const OrxReplay& replay, std::span<const std::int32_t> facts, const std::string& json) {
                      if (property.holdsFor(facts, replay.answer.fields)) {
                        orxDisagree(json, "the property fails in the model, holds for the runtime's decision");
                      }
                    }});
  }
  return list;
}

}  // namespace

OrxProofOptions OrxProofOptions::unrestricted(const OrxDecisionKind& kind) {
  OrxProofOptions options;
  options.ranges.assign(kind.factNames.size(), {std::numeric_limits<std::int32_t>::min(),
                                                std::numeric_limits<std::int32_t>::max()});
  return options;
}

OrxProofOptions OrxProofOptions::of(const OrxDecisionKind& kind, const OrxPolicyManifest& manifest) {
  OrxProofOptions options = unrestricted(kind);
  for (const auto& range : manifest.factRanges) {
    for (std::size_t f = 0; f < kind.factNames.size(); ++f) {
      if (kind.factNames[f] == range.fact) options.ranges[f] = {range.from, range.to};
    }
  }
  options.properties = manifest.parsedProperties();
  return options;
}

std::vector<OrxObligationResult> orxProvePolicy(std::span<const std::uint8_t> wasm, const OrxDecisionKind& kind,
                                                const OrxProofOptions& options, bool validityOnly) {
  OrxProofSession session(kind, options);
  const OrxHostDecisionModel host = session.model(wasm);
  const z3::expr answered = session.answered({&host});
  std::optional<std::optional<std::string>> unanswered;  // asked once, when first needed
  std::vector<OrxObligationResult> results;
  z3::expr unprovenRules = session.context().bool_val(true);
  for (const auto& obligation : obligations(kind, host, session, options, validityOnly)) {
    const z3::expr violated = obligation.rule ? allOf(unprovenRules, obligation.violated) : obligation.violated;
    const OrxSolverOutcome outcome = session.check(allOf(answered, violated));
    // Every query keeps to the facts the model answers, where an unsatisfiable violation means the rule holds.
    if (obligation.rule && outcome.answer != OrxSolverAnswer::unsatisfiable) {
      unprovenRules = allOf(unprovenRules, *obligation.rule);
    }
    if (outcome.answer == OrxSolverAnswer::unknown) {
      results.push_back({obligation.name, OrxProofVerdict::unknown, outcome.unknownReason});
      continue;
    }
    if (outcome.answer == OrxSolverAnswer::unsatisfiable) {
      if (!unanswered) unanswered = session.unanswered({&host});
      if (*unanswered) results.push_back({obligation.name, OrxProofVerdict::unknown, **unanswered});
      else results.push_back({obligation.name, OrxProofVerdict::proved, {}});
      continue;
    }
    const auto facts = session.factsIn(*outcome.model);
    const std::string json = session.factsJSON(facts);
    const OrxReplay replay = orxReplay(wasm, kind, facts);
    orxConfirm(kind, "the module", json, orxModelAnswer(host, *outcome.model), replay.answer);
    obligation.confirm(replay, facts, json);
    std::string detail = "facts " + json + " give " + orxAnswerText(replay.answer);
    if (replay.call.trap) detail += " (trapped: " + *replay.call.trap + ")";
    else if (replay.call.refusal) detail += " (refused: " + *replay.call.refusal + ")";
    results.push_back({obligation.name, OrxProofVerdict::refuted, std::move(detail)});
  }
  return results;
}

}  // namespace ravo::orx
