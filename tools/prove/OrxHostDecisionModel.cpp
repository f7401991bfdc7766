#include <ravo-orx/prove/OrxHostDecisionModel.h>

#include <ravo-orx/prove/SymbolicFold.h>
#include <ravo-orx/runtime/OrxDecisionRecord.h>
#include <ravo-orx/runtime/OrxEmittedRecordRules.h>

namespace ravo::orx::internal {

namespace {

// The kind's fail-safe decisions as field values: after a trap, and after a refusal.
std::pair<std::array<std::int32_t, kOrxMaxDecisionFields>, std::array<std::int32_t, kOrxMaxDecisionFields>>
failSafeFields(const OrxDecisionKind& kind) {
  auto fields = [](auto decision) {
    using FailSafes = OrxFailSafeDecisions<decltype(decision)>;
    return std::pair{orxDecisionFieldValues(FailSafes::unavailable), orxDecisionFieldValues(FailSafes::invalid)};
  };
  switch (kind.id) {
    case OrxDecisionKindID::authorization: return fields(OrxAuthorizationDecision{});
    case OrxDecisionKindID::sync: return fields(OrxSyncDecision{});
    case OrxDecisionKindID::cinemaAdmission: break;
  }
  return fields(OrxCinemaAdmissionDecision{});
}

z3::expr word(z3::context& context, std::int64_t value) { return context.bv_val(value, 32); }

}  // namespace

OrxHostDecisionModel orxHostDecisionModel(const OrxDecisionKind& kind, OrxDecideModel call,
                                          const std::vector<z3::expr>& facts) {
  z3::context& context = facts.front().ctx();
  const z3::expr result = call.result ? *call.result : word(context, kind.resultWhenNone);
  const z3::expr echoed = kind.echoedFact ? facts[*kind.echoedFact] : word(context, 0);
  OrxSymbolicRecord record{word(context, kind.emitTag), result, echoed, call.emission.count, call.emission.called,
                           call.emission.values};

  std::vector<z3::expr> rules;
  z3::expr accepted = negation(call.trapped);
  for (const auto& rule : orxRecordRules<OrxSymbolicRecord>(kind)) {
    rules.push_back(folded(rule.holds(record)));
    accepted = allOf(accepted, rules.back());
  }

  const auto raw = [&](OrxDecisionSource source) { return word(context, static_cast<std::int32_t>(source)); };
  const z3::expr source =
      choose(call.trapped, raw(OrxDecisionSource::trap),
             choose(accepted, raw(OrxDecisionSource::policy), raw(OrxDecisionSource::invalidOutput)));

  const auto [unavailable, invalid] = failSafeFields(kind);
  std::vector<z3::expr> fields;
  for (std::size_t f = 0; f < kind.decisionFields.size(); ++f) {
    const OrxDecisionField& field = kind.decisionFields[f];
    z3::expr answered = field.emittedIndex == 1 ? result : call.emission.values[field.emittedIndex];
    if (field.form == OrxDecisionFieldForm::boolean) answered = choose(folded(answered == 1), word(context, 1), word(context, 0));
    fields.push_back(choose(call.trapped, word(context, unavailable[f]),
                            choose(accepted, answered, word(context, invalid[f]))));
  }
  return {std::move(call), std::move(record), std::move(rules), accepted, source, std::move(fields)};
}

}  // namespace ravo::orx::internal
