#pragma once
// The three decisions, their enumerations (signed 32-bit raw values shared with the policy modules)
// and the fail-safe decisions taken whenever a module cannot be trusted to answer.

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

#include <ravo-orx/core/ORXRawValue.h>

namespace ravo::orx {

enum class OrxAuthorizationReason : std::int32_t {
  allowed = 0,
  unpaired = 1,
  tokenExpired = 2,
  rateLimited = 3,
  missingGrant = 4,
  notController = 5,
  unknownCommand = 6,
  needsAdmin = 7,
  runtimeUnavailable = 100,
  invalidResult = 101,
};

enum class OrxSyncAction : std::int32_t { hold = 0, nudge = 1, seek = 2 };

enum class OrxCinemaAdmissionRoute : std::int32_t {
  metalFXOnly = 0,
  fullFrameML = 1,
  sparseAnchorResearch = 2,
  calibration = 3,
  measurementRequired = 4,
};

enum class OrxCinemaAdmissionReason : std::int32_t {
  liveSafe = 0,
  thermalOrMemory = 1,
  sourceReservoir = 2,
  nonMLOverBudget = 3,
  sparseResearch = 4,
  calibration = 5,
  invalidFacts = 6,
};

// Where a decision came from: the module's validated answer, or the fail-safe decision taken because
// the module was not loaded, trapped, or emitted an answer that failed validation.
enum class OrxDecisionSource : std::uint8_t { policy, moduleUnavailable, trap, invalidOutput };

template <>
struct ORXRawValueTable<OrxAuthorizationReason> {
  static constexpr std::array<std::pair<OrxAuthorizationReason, std::string_view>, 10> entries{{
      {OrxAuthorizationReason::allowed, "allowed"},
      {OrxAuthorizationReason::unpaired, "unpaired"},
      {OrxAuthorizationReason::tokenExpired, "tokenExpired"},
      {OrxAuthorizationReason::rateLimited, "rateLimited"},
      {OrxAuthorizationReason::missingGrant, "missingGrant"},
      {OrxAuthorizationReason::notController, "notController"},
      {OrxAuthorizationReason::unknownCommand, "unknownCommand"},
      {OrxAuthorizationReason::needsAdmin, "needsAdmin"},
      {OrxAuthorizationReason::runtimeUnavailable, "runtimeUnavailable"},
      {OrxAuthorizationReason::invalidResult, "invalidResult"},
  }};
};

template <>
struct ORXRawValueTable<OrxSyncAction> {
  static constexpr std::array<std::pair<OrxSyncAction, std::string_view>, 3> entries{{
      {OrxSyncAction::hold, "hold"},
      {OrxSyncAction::nudge, "nudge"},
      {OrxSyncAction::seek, "seek"},
  }};
};

template <>
struct ORXRawValueTable<OrxCinemaAdmissionRoute> {
  static constexpr std::array<std::pair<OrxCinemaAdmissionRoute, std::string_view>, 5> entries{{
      {OrxCinemaAdmissionRoute::metalFXOnly, "metalFXOnly"},
      {OrxCinemaAdmissionRoute::fullFrameML, "fullFrameML"},
      {OrxCinemaAdmissionRoute::sparseAnchorResearch, "sparseAnchorResearch"},
      {OrxCinemaAdmissionRoute::calibration, "calibration"},
      {OrxCinemaAdmissionRoute::measurementRequired, "measurementRequired"},
  }};
};

template <>
struct ORXRawValueTable<OrxCinemaAdmissionReason> {
  static constexpr std::array<std::pair<OrxCinemaAdmissionReason, std::string_view>, 7> entries{{
      {OrxCinemaAdmissionReason::liveSafe, "liveSafe"},
      {OrxCinemaAdmissionReason::thermalOrMemory, "thermalOrMemory"},
      {OrxCinemaAdmissionReason::sourceReservoir, "sourceReservoir"},
      {OrxCinemaAdmissionReason::nonMLOverBudget, "nonMLOverBudget"},
      {OrxCinemaAdmissionReason::sparseResearch, "sparseResearch"},
      {OrxCinemaAdmissionReason::calibration, "calibration"},
      {OrxCinemaAdmissionReason::invalidFacts, "invalidFacts"},
  }};
};

template <>
struct ORXRawValueTable<OrxDecisionSource> {
  static constexpr std::array<std::pair<OrxDecisionSource, std::string_view>, 4> entries{{
      {OrxDecisionSource::policy, "policy"},
      {OrxDecisionSource::moduleUnavailable, "moduleUnavailable"},
      {OrxDecisionSource::trap, "trap"},
      {OrxDecisionSource::invalidOutput, "invalidOutput"},
  }};
};

// The case's name as written in the enumeration ("tokenExpired", "nudge", "invalidOutput"), for
// reports and tools.
template <ORXRawValued E>
constexpr std::string_view orxCaseName(E value) {
  return orxRawValue(value);
}

// The enumerations exchanged with policy modules: signed 32-bit raw values.
template <class E>
concept OrxModuleEnumeration = std::is_enum_v<E> && std::is_same_v<std::underlying_type_t<E>, std::int32_t>;

template <OrxModuleEnumeration E>
constexpr std::int32_t rawValue(E value) {
  return static_cast<std::int32_t>(value);
}

// Whether a raw value is a case of an enumeration. Generic over the value's type, so that the prover
// asks the same question of a symbolic value; the conversions below are built on these tests.
template <OrxModuleEnumeration E, class Value>
constexpr auto orxIsCaseUpTo(const Value& raw, E last) {
  return raw >= 0 && raw <= rawValue(last);
}
template <class Value>
constexpr auto orxIsAuthorizationReason(const Value& raw) {
  return orxIsCaseUpTo(raw, OrxAuthorizationReason::needsAdmin) ||
         raw == rawValue(OrxAuthorizationReason::runtimeUnavailable) ||
         raw == rawValue(OrxAuthorizationReason::invalidResult);
}
template <class Value>
constexpr auto orxIsSyncAction(const Value& raw) {
  return orxIsCaseUpTo(raw, OrxSyncAction::seek);
}
template <class Value>
constexpr auto orxIsCinemaAdmissionRoute(const Value& raw) {
  return orxIsCaseUpTo(raw, OrxCinemaAdmissionRoute::measurementRequired);
}
template <class Value>
constexpr auto orxIsCinemaAdmissionReason(const Value& raw) {
  return orxIsCaseUpTo(raw, OrxCinemaAdmissionReason::invalidFacts);
}

// Raw value to case; an unknown raw value yields nothing. Inline because every decision converts its
// answer: returned out of line, the optional goes through memory and the caller waits on it.
template <OrxModuleEnumeration E>
constexpr std::optional<E> orxCaseIf(bool known, std::int32_t raw) {
  if (!known) return std::nullopt;
  return static_cast<E>(raw);
}

constexpr std::optional<OrxAuthorizationReason> orxAuthorizationReason(std::int32_t raw) {
  return orxCaseIf<OrxAuthorizationReason>(orxIsAuthorizationReason(raw), raw);
}
constexpr std::optional<OrxSyncAction> orxSyncAction(std::int32_t raw) {
  return orxCaseIf<OrxSyncAction>(orxIsSyncAction(raw), raw);
}
constexpr std::optional<OrxCinemaAdmissionRoute> orxCinemaAdmissionRoute(std::int32_t raw) {
  return orxCaseIf<OrxCinemaAdmissionRoute>(orxIsCinemaAdmissionRoute(raw), raw);
}
constexpr std::optional<OrxCinemaAdmissionReason> orxCinemaAdmissionReason(std::int32_t raw) {
  return orxCaseIf<OrxCinemaAdmissionReason>(orxIsCinemaAdmissionReason(raw), raw);
}

struct OrxAuthorizationDecision {
  bool isAllowed;
  OrxAuthorizationReason reason;
  std::int32_t policyVersion;

  static constexpr OrxAuthorizationDecision runtimeUnavailable() {
    return {false, OrxAuthorizationReason::runtimeUnavailable, 0};
  }
  static constexpr OrxAuthorizationDecision invalid() { return {false, OrxAuthorizationReason::invalidResult, 0}; }
  friend bool operator==(const OrxAuthorizationDecision&, const OrxAuthorizationDecision&) = default;
};

// Sync reason codes run from 0 to this; the modules define what each means.
inline constexpr std::int32_t kOrxMaxSyncReason = 5;

struct OrxSyncDecision {
  OrxSyncAction action;
  std::int32_t rateX1000;
  std::int32_t correctionMilliseconds;
  std::int32_t reason;

  static constexpr OrxSyncDecision hold() { return {OrxSyncAction::hold, 1000, 0, 1}; }
  friend bool operator==(const OrxSyncDecision&, const OrxSyncDecision&) = default;
};

struct OrxCinemaAdmissionDecision {
  OrxCinemaAdmissionRoute route;
  std::int32_t sparseAnchorIntervalFrames;
  std::int32_t safeBudgetTenthsMilliseconds;
  OrxCinemaAdmissionReason reason;

  static constexpr OrxCinemaAdmissionDecision metalFXOnly() {
    return {OrxCinemaAdmissionRoute::metalFXOnly, 0, 0, OrxCinemaAdmissionReason::invalidFacts};
  }
  friend bool operator==(const OrxCinemaAdmissionDecision&, const OrxCinemaAdmissionDecision&) = default;
};

// Each decision's fail-safe answers: when no module answered (none loaded, or it trapped) and when the
// module's emitted record was refused.
template <class Decision>
struct OrxFailSafeDecisions;
template <>
struct OrxFailSafeDecisions<OrxAuthorizationDecision> {
  static constexpr OrxAuthorizationDecision unavailable = OrxAuthorizationDecision::runtimeUnavailable();
  static constexpr OrxAuthorizationDecision invalid = OrxAuthorizationDecision::invalid();
};
template <>
struct OrxFailSafeDecisions<OrxSyncDecision> {
  static constexpr OrxSyncDecision unavailable = OrxSyncDecision::hold();
  static constexpr OrxSyncDecision invalid = OrxSyncDecision::hold();
};
template <>
struct OrxFailSafeDecisions<OrxCinemaAdmissionDecision> {
  static constexpr OrxCinemaAdmissionDecision unavailable = OrxCinemaAdmissionDecision::metalFXOnly();
  static constexpr OrxCinemaAdmissionDecision invalid = OrxCinemaAdmissionDecision::metalFXOnly();
};

// A decision with its source, so a fail-safe answer can be told from the module's own without comparing
// failure counts around the call.
template <class Decision>
struct OrxSourcedDecision {
  Decision decision;
  OrxDecisionSource source;

  friend bool operator==(const OrxSourcedDecision&, const OrxSourcedDecision&) = default;
};

}  // namespace ravo::orx
