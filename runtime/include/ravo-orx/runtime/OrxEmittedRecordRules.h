#pragma once
// The checks an emitted record must pass before the runtime takes it as a decision: one table per
// decision kind, in the order the checks run, each rule with the text that explains a refusal. The
// decider expands a table into inline comparisons (orxRecordAccepted: the rules' functions are
// compile-time constants, so a decision pays nothing for the table), the toolchain names the first
// rule that refused a record with the same table, and the prover reads the same rules over symbolic
// values, so every rule is written once.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

#include <ravo-orx/runtime/OrxDecisionKinds.h>
#include <ravo-orx/runtime/OrxPolicyDecisions.h>

namespace ravo::orx::internal {

// What the rules look at.
struct OrxEmittedRecord {
  std::int32_t tag;                      // the kind's emit tag
  std::int32_t result;                   // decide's result (the kind's resultWhenNone when it returned nothing)
  std::int32_t echoedFact;               // the fact the record repeats: authorization's command, 0 for the others
  const std::int32_t* values = nullptr;  // null when decide emitted nothing
  std::size_t count = 0;

  bool emitted() const { return values != nullptr; }
  std::int32_t operator[](std::size_t index) const { return values[index]; }
};

// A rule over records of type Record. The tables below are written once, for any Record with the
// members of OrxEmittedRecord (tag, result, echoedFact, count, emitted(), [i]) whose comparisons give
// the type of emitted(): the decider reads them over OrxEmittedRecord, the prover over symbolic values.
template <class Record>
using OrxRuleTruth = decltype(std::declval<const Record&>().emitted());

template <class Record>
struct OrxRecordRuleOver {
  // Why a record that breaks the rule is refused: "[4] policy version {4} is outside 1…10000". "{0}" to
  // "{4}" stand for the emitted values, "{result}", "{count}", "{tag}" and "{fact}" for the record's
  // other fields.
  std::string_view refusal;
  OrxRuleTruth<Record> (*holds)(const Record& record);
};

using OrxRecordRule = OrxRecordRuleOver<OrxEmittedRecord>;
using OrxRecord = const OrxEmittedRecord&;

// Every kind's record starts the same way. A rule may read what the rules before it have checked.
template <class R>
inline constexpr OrxRecordRuleOver<R> kOrxRecordEmitted{"decide emitted nothing",
                                                        [](const R& r) { return r.emitted(); }};
template <class R>
inline constexpr OrxRecordRuleOver<R> kOrxRecordHasFiveValues{"emitted {count} values instead of 5",
                                                              [](const R& r) { return r.count == 5; }};
template <class R>
inline constexpr OrxRecordRuleOver<R> kOrxRecordTagged{"[0] tag {0} is not {tag}",
                                                       [](const R& r) { return r[0] == r.tag; }};
template <class R>
inline constexpr OrxRecordRuleOver<R> kOrxRecordRepeatsResult{"[1] {1} is not decide's result {result}",
                                                              [](const R& r) { return r[1] == r.result; }};

template <class R>
inline constexpr std::array kOrxAuthorizationRecordRulesOver{
    kOrxRecordEmitted<R>,
    kOrxRecordHasFiveValues<R>,
    kOrxRecordTagged<R>,
    kOrxRecordRepeatsResult<R>,
    OrxRecordRuleOver<R>{"decide's result {result} is neither 0 (deny) nor 1 (allow)",
                         [](const R& r) { return r.result == 0 || r.result == 1; }},
    OrxRecordRuleOver<R>{"[2] command {2} is not the facts' command {fact}",
                         [](const R& r) { return r[2] == r.echoedFact; }},
    OrxRecordRuleOver<R>{"[3] reason {3} is no authorization reason",
                         [](const R& r) { return orxIsAuthorizationReason(r[3]); }},
    OrxRecordRuleOver<R>{"[4] policy version {4} is outside 1…10000",
                         [](const R& r) { return r[4] >= 1 && r[4] <= 10'000; }},
};

// From this index on, the sync rules judge the output alone (isValidHostSyncOutput).
inline constexpr std::size_t kOrxSyncOutputRulesStart = 5;
template <class R>
inline constexpr std::array kOrxSyncRecordRulesOver{
    OrxRecordRuleOver<R>{"decide's result {result} is no sync action (0 hold, 1 nudge, 2 seek)",
                         [](const R& r) { return orxIsSyncAction(r.result); }},
    kOrxRecordEmitted<R>,
    kOrxRecordHasFiveValues<R>,
    kOrxRecordTagged<R>,
    kOrxRecordRepeatsResult<R>,
    OrxRecordRuleOver<R>{"[2] rate {2} is outside 950…1050", [](const R& r) { return r[2] >= 950 && r[2] <= 1050; }},
    OrxRecordRuleOver<R>{"[3] correction {3} ms is outside -86400000…86400000 (one day)",
                         [](const R& r) { return r[3] >= -86'400'000 && r[3] <= 86'400'000; }},
    OrxRecordRuleOver<R>{"[4] reason {4} is outside 0…5",
                         [](const R& r) { return r[4] >= 0 && r[4] <= kOrxMaxSyncReason; }},
    OrxRecordRuleOver<R>{"hold needs [2] rate 1000 and [3] correction 0, not {2} and {3}",
                         [](const R& r) {
                           return r.result != rawValue(OrxSyncAction::hold) || (r[2] == 1000 && r[3] == 0);
                         }},
    OrxRecordRuleOver<R>{"nudge needs [3] correction 0, not {3}",
                         [](const R& r) { return r.result != rawValue(OrxSyncAction::nudge) || r[3] == 0; }},
    OrxRecordRuleOver<R>{"seek needs [2] rate 1000, not {2}",
                         [](const R& r) { return r.result != rawValue(OrxSyncAction::seek) || r[2] == 1000; }},
};

// From this index on, the cinema rules judge the output alone (isValidCinemaAdmissionOutput).
inline constexpr std::size_t kOrxCinemaOutputRulesStart = 6;
template <class R>
inline constexpr std::array kOrxCinemaAdmissionRecordRulesOver{
    OrxRecordRuleOver<R>{"decide's result {result} is no route (0…4)",
                         [](const R& r) { return orxIsCinemaAdmissionRoute(r.result); }},
    kOrxRecordEmitted<R>,
    kOrxRecordHasFiveValues<R>,
    kOrxRecordTagged<R>,
    kOrxRecordRepeatsResult<R>,
    OrxRecordRuleOver<R>{"[4] reason {4} is no Cinema admission reason",
                         [](const R& r) { return orxIsCinemaAdmissionReason(r[4]); }},
    OrxRecordRuleOver<R>{"[2] sparse anchor interval {2} is outside 0…10000",
                         [](const R& r) { return r[2] >= 0 && r[2] <= 10'000; }},
    OrxRecordRuleOver<R>{"[3] safe budget {3} is outside 0…1000000",
                         [](const R& r) { return r[3] >= 0 && r[3] <= 1'000'000; }},
    OrxRecordRuleOver<R>{"metalFXOnly needs [2] interval 0, not {2}, and [4] a reason other than liveSafe (0), not {4}",
                         [](const R& r) {
                           return r.result != rawValue(OrxCinemaAdmissionRoute::metalFXOnly) ||
                                  (r[2] == 0 && r[4] != rawValue(OrxCinemaAdmissionReason::liveSafe));
                         }},
    OrxRecordRuleOver<R>{"fullFrameML needs [2] interval 0, not {2}, and [4] reason liveSafe (0), not {4}",
                         [](const R& r) {
                           return r.result != rawValue(OrxCinemaAdmissionRoute::fullFrameML) ||
                                  (r[2] == 0 && r[4] == rawValue(OrxCinemaAdmissionReason::liveSafe));
                         }},
    OrxRecordRuleOver<R>{"sparseAnchorResearch needs [2] an interval of at least 2, not {2}, and [4] reason "
                         "sparseResearch (4), not {4}",
                         [](const R& r) {
                           return r.result != rawValue(OrxCinemaAdmissionRoute::sparseAnchorResearch) ||
                                  (r[2] >= 2 && r[4] == rawValue(OrxCinemaAdmissionReason::sparseResearch));
                         }},
    OrxRecordRuleOver<R>{"calibration needs [2] interval 0, not {2}, and [4] reason calibration (5), not {4}",
                         [](const R& r) {
                           return r.result != rawValue(OrxCinemaAdmissionRoute::calibration) ||
                                  (r[2] == 0 && r[4] == rawValue(OrxCinemaAdmissionReason::calibration));
                         }},
    OrxRecordRuleOver<R>{"measurementRequired needs [2] interval 0, not {2}, and [4] reason invalidFacts (6), not {4}",
                         [](const R& r) {
                           return r.result != rawValue(OrxCinemaAdmissionRoute::measurementRequired) ||
                                  (r[2] == 0 && r[4] == rawValue(OrxCinemaAdmissionReason::invalidFacts));
                         }},
};

// The decider's tables.
inline constexpr auto& kOrxAuthorizationRecordRules = kOrxAuthorizationRecordRulesOver<OrxEmittedRecord>;
inline constexpr auto& kOrxSyncRecordRules = kOrxSyncRecordRulesOver<OrxEmittedRecord>;
inline constexpr auto& kOrxCinemaAdmissionRecordRules = kOrxCinemaAdmissionRecordRulesOver<OrxEmittedRecord>;
static_assert(kOrxSyncRecordRules[kOrxSyncOutputRulesStart - 1].refusal == kOrxRecordRepeatsResult<OrxEmittedRecord>.refusal);
static_assert(kOrxCinemaAdmissionRecordRules[kOrxCinemaOutputRulesStart - 1].refusal.starts_with("[4] reason"));

// Whether rules First… of the table accept the record: one inline comparison per rule, in order.
// Each rule's function is taken as a constant: called through the table, it would stay an indirect call.
template <const auto& Rules, std::size_t First = 0>
constexpr bool orxRecordAccepted(const OrxEmittedRecord& record) {
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    return ([&] {
      constexpr auto holds = Rules[First + I].holds;
      return holds(record);
    }() && ...);
  }(std::make_index_sequence<Rules.size() - First>());
}

// The kind's table over records of type Record, for tools that explain a refusal and for the prover.
template <class Record = OrxEmittedRecord>
constexpr std::span<const OrxRecordRuleOver<Record>> orxRecordRules(const OrxDecisionKind& kind) {
  switch (kind.id) {
    case OrxDecisionKindID::authorization:
      return kOrxAuthorizationRecordRulesOver<Record>;
    case OrxDecisionKindID::sync:
      return kOrxSyncRecordRulesOver<Record>;
    case OrxDecisionKindID::cinemaAdmission:
      break;
  }
  return kOrxCinemaAdmissionRecordRulesOver<Record>;
}

}  // namespace ravo::orx::internal
