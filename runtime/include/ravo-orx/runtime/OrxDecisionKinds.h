#pragma once
// The three decision kinds, each described once: the command-line name, the module, the facts in
// argument order, the emitted record's tag and where its reason stands, the reasons a module may answer
// with, what `decide` is taken to return when it returns nothing, the text logged when it traps, and
// the fields of its decision as the decision log writes them and an accepted record holds them. The runtime, the toolchain, the
// command line and the check runner read this table; the decisions' own records, enumerations and
// fail-safe constants are in OrxPolicyDecisions.h.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <tuple>

#include <ravo-orx/runtime/OrxPolicyDecisions.h>
#include <ravo-orx/runtime/OrxPolicyFacts.h>

namespace ravo::orx {

enum class OrxDecisionKindID { authorization, sync, cinemaAdmission };

// How a decision field is written as text: a boolean, an integer, or the name of a case of one of the
// decisions' enumerations.
enum class OrxDecisionFieldForm { boolean, integer, authorizationReason, syncAction, cinemaRoute, cinemaReason };

struct OrxDecisionField {
  std::string_view name;
  OrxDecisionFieldForm form;
  // Where an accepted emitted record holds the field's value ([1] is decide's result); a boolean field
  // is true when that value is 1.
  std::size_t emittedIndex;
};

struct OrxDecisionKind {
  OrxDecisionKindID id;
  std::string_view name;    // "authz", "sync", "cinema": how tools and status texts name it
  std::string_view module;  // "player_authz", ...: the module file and evidence record
  std::int32_t emitTag;     // [0] of the emitted record
  std::size_t reasonIndex;  // where the reason code stands in the emitted record
  std::int32_t resultWhenNone;  // the `decide` result when the call returns no value
  std::string_view trapLog;     // logged, followed by the trap's text, when `decide` traps
  std::span<const std::string_view> factNames;
  // The names of the reason codes a module may answer with, indexed by code; the host's own
  // runtimeUnavailable and invalidResult are not among them, and sync codes have only numbers.
  std::span<const std::string_view> reasonNames;
  // The decision record's fields in declaration order, each held as a signed 32-bit value.
  std::span<const OrxDecisionField> decisionFields;
  // The fact the emitted record must repeat as its value [2] (authorization's command), by its index.
  std::optional<std::size_t> echoedFact = std::nullopt;
};

namespace internal {

// The names of the first N cases of E, by raw value 0 to N-1.
template <class E, std::size_t N>
constexpr std::array<std::string_view, N> orxFirstCaseNames() {
  std::array<std::string_view, N> names{};
  for (std::size_t code = 0; code < N; ++code) names[code] = orxCaseName(static_cast<E>(code));
  return names;
}

inline constexpr std::array<std::string_view, 8> kAuthorizationFactNames{
    "role", "command", "grantFlags", "tokenAgeMilliseconds", "tokenTTLMilliseconds", "rateUsed", "rateLimit",
    "controlMode"};
inline constexpr std::array<std::string_view, 8> kSyncFactNames{
    "driftMilliseconds", "roundTripMilliseconds", "jitterMilliseconds",  "bufferAheadMilliseconds",
    "rateX100",          "stallCount",            "syncAgeMilliseconds", "toleranceMilliseconds"};
inline constexpr std::array<std::string_view, 13> kCinemaAdmissionFactNames{
    "sourceFPSX100",          "targetFPSX100",         "sourceReservoirMilliseconds",
    "headroom",               "thermalState",          "memoryPressure",
    "bridgeTenthsMilliseconds", "temporalTenthsMilliseconds", "interpolationTenthsMilliseconds",
    "metalFXTenthsMilliseconds", "finalDetailTenthsMilliseconds", "modelTenthsMilliseconds",
    "modelSampleCount"};
static_assert(kAuthorizationFactNames.size() == std::tuple_size_v<decltype(AuthorizationFacts{}.arguments())>);
static_assert(kSyncFactNames.size() == std::tuple_size_v<decltype(SyncFacts{}.arguments())>);
static_assert(kCinemaAdmissionFactNames.size() == std::tuple_size_v<decltype(CinemaAdmissionFacts{}.arguments())>);

inline constexpr auto kAuthorizationReasonNames =
    orxFirstCaseNames<OrxAuthorizationReason, rawValue(OrxAuthorizationReason::needsAdmin) + 1>();
inline constexpr std::array<std::string_view, 6> kSyncReasonNames{"0", "1", "2", "3", "4", "5"};
static_assert(kSyncReasonNames.size() == kOrxMaxSyncReason + 1);
inline constexpr auto kCinemaAdmissionReasonNames =
    orxFirstCaseNames<OrxCinemaAdmissionReason, rawValue(OrxCinemaAdmissionReason::invalidFacts) + 1>();

inline constexpr std::array<OrxDecisionField, 3> kAuthorizationDecisionFields{{
    {"isAllowed", OrxDecisionFieldForm::boolean, 1},
    {"reason", OrxDecisionFieldForm::authorizationReason, 3},
    {"policyVersion", OrxDecisionFieldForm::integer, 4},
}};
inline constexpr std::array<OrxDecisionField, 4> kSyncDecisionFields{{
    {"action", OrxDecisionFieldForm::syncAction, 1},
    {"rateX1000", OrxDecisionFieldForm::integer, 2},
    {"correctionMilliseconds", OrxDecisionFieldForm::integer, 3},
    {"reason", OrxDecisionFieldForm::integer, 4},
}};
inline constexpr std::array<OrxDecisionField, 4> kCinemaAdmissionDecisionFields{{
    {"route", OrxDecisionFieldForm::cinemaRoute, 1},
    {"sparseAnchorIntervalFrames", OrxDecisionFieldForm::integer, 2},
    {"safeBudgetTenthsMilliseconds", OrxDecisionFieldForm::integer, 3},
    {"reason", OrxDecisionFieldForm::cinemaReason, 4},
}};

}  // namespace internal

// In load order, which is also the order of the status texts.
inline constexpr std::array<OrxDecisionKind, 3> kOrxDecisionKinds{
    OrxDecisionKind{OrxDecisionKindID::authorization, "authz", "player_authz", 5201, 3, 0,
                    "ORX authorization trapped; denying command: ",
                    internal::kAuthorizationFactNames, internal::kAuthorizationReasonNames,
                    internal::kAuthorizationDecisionFields, 1},
    OrxDecisionKind{OrxDecisionKindID::sync, "sync", "sync_correction", 5301, 4, 0,
                    "ORX sync correction trapped; holding: ",
                    internal::kSyncFactNames, internal::kSyncReasonNames, internal::kSyncDecisionFields},
    OrxDecisionKind{OrxDecisionKindID::cinemaAdmission, "cinema", "cinema_admission", 5401, 4, -1,
                    "ORX Cinema admission trapped; retaining MetalFX: ",
                    internal::kCinemaAdmissionFactNames, internal::kCinemaAdmissionReasonNames,
                    internal::kCinemaAdmissionDecisionFields},
};

// The fact an emitted record of the kind repeats, from the facts in argument order; 0 when it repeats none.
constexpr std::int32_t orxEchoedFact(const OrxDecisionKind& kind, std::span<const std::int32_t> facts) {
  return kind.echoedFact ? facts[*kind.echoedFact] : 0;
}

constexpr const OrxDecisionKind& orxDecisionKind(OrxDecisionKindID id) {
  return kOrxDecisionKinds[static_cast<std::size_t>(id)];
}

// The kind with this command-line name ("authz"), or null.
constexpr const OrxDecisionKind* orxDecisionKindNamed(std::string_view name) {
  for (const auto& kind : kOrxDecisionKinds) {
    if (kind.name == name) return &kind;
  }
  return nullptr;
}

// The kind whose module has this name ("player_authz"), or null.
constexpr const OrxDecisionKind* orxDecisionKindOfModule(std::string_view module) {
  for (const auto& kind : kOrxDecisionKinds) {
    if (kind.module == module) return &kind;
  }
  return nullptr;
}

}  // namespace ravo::orx
