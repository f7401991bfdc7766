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
  using R = OrxAuthorizationReason;
  static constexpr std::array entries{
      std::pair{R::allowed, std::string_view("allowed")},
      std::pair{R::unpaired, std::string_view("unpaired")},
      std::pair{R::tokenExpired, std::string_view("tokenExpired")},
      std::pair{R::rateLimited, std::string_view("rateLimited")},
      std::pair{R::missingGrant, std::string_view("missingGrant")},
      std::pair{R::notController, std::string_view("notController")},
      std::pair{R::unknownCommand, std::string_view("unknownCommand")},
      std::pair{R::needsAdmin, std::string_view("needsAdmin")},
      std::pair{R::runtimeUnavailable, std::string_view("runtimeUnavailable")},
      std::pair{R::invalidResult, std::string_view("invalidResult")},
  };
};

template <>
struct ORXRawValueTable<OrxSyncAction> {
  static constexpr std::array entries{
      std::pair{OrxSyncAction::hold, std::string_view("hold")},
      std::pair{OrxSyncAction::nudge, std::string_view("nudge")},
      std::pair{OrxSyncAction::seek, std::string_view("seek")},
  };
};

template <>
struct ORXRawValueTable<OrxCinemaAdmissionRoute> {
  using R = OrxCinemaAdmissionRoute;
  static constexpr std::array entries{
      std::pair{R::metalFXOnly, std::string_view("metalFXOnly")},
      std::pair{R::fullFrameML, std::string_view("fullFrameML")},
      std::pair{R::sparseAnchorResearch, std::string_view("sparseAnchorResearch")},
      std::pair{R::calibration, std::string_view("calibration")},
      std::pair{R::measurementRequired, std::string_view("measurementRequired")},
  };
};

template <>
struct ORXRawValueTable<OrxCinemaAdmissionReason> {
  using R = OrxCinemaAdmissionReason;
  static constexpr std::array entries{
      std::pair{R::liveSafe, std::string_view("liveSafe")},
      std::pair{R::thermalOrMemory, std::string_view("thermalOrMemory")},
      std::pair{R::sourceReservoir, std::string_view("sourceReservoir")},
      std::pair{R::nonMLOverBudget, std::string_view("nonMLOverBudget")},
      std::pair{R::sparseResearch, std::string_view("sparseResearch")},
      std::pair{R::calibration, std::string_view("calibration")},
      std::pair{R::invalidFacts, std::string_view("invalidFacts")},
  };
};

template <>
struct ORXRawValueTable<OrxDecisionSource> {
  using S = OrxDecisionSource;
  static constexpr std::array entries{
      std::pair{S::policy, std::string_view("policy")},
      std::pair{S::moduleUnavailable, std::string_view("moduleUnavailable")},
      std::pair{S::trap, std::string_view("trap")},
      std::pair{S::invalidOutput, std::string_view("invalidOutput")},
  };
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

// Raw value to case; an unknown raw value yields nothing. Inline because every decision converts its
// answer: returned out of line, the optional goes through memory and the caller waits on it.
template <OrxModuleEnumeration E>
constexpr std::optional<E> orxCaseInRange(std::int32_t raw, E last) {
  if (raw < 0 || raw > rawValue(last)) return std::nullopt;
  return static_cast<E>(raw);
}

constexpr std::optional<OrxAuthorizationReason> orxAuthorizationReason(std::int32_t raw) {
  if (raw == rawValue(OrxAuthorizationReason::runtimeUnavailable)) return OrxAuthorizationReason::runtimeUnavailable;
  if (raw == rawValue(OrxAuthorizationReason::invalidResult)) return OrxAuthorizationReason::invalidResult;
  return orxCaseInRange(raw, OrxAuthorizationReason::needsAdmin);
}
constexpr std::optional<OrxSyncAction> orxSyncAction(std::int32_t raw) {
  return orxCaseInRange(raw, OrxSyncAction::seek);
}
constexpr std::optional<OrxCinemaAdmissionRoute> orxCinemaAdmissionRoute(std::int32_t raw) {
  return orxCaseInRange(raw, OrxCinemaAdmissionRoute::measurementRequired);
}
constexpr std::optional<OrxCinemaAdmissionReason> orxCinemaAdmissionReason(std::int32_t raw) {
  return orxCaseInRange(raw, OrxCinemaAdmissionReason::invalidFacts);
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

// A decision with its source, so a fail-safe answer can be told from the module's own without comparing
// failure counts around the call.
template <class Decision>
struct OrxSourcedDecision {
  Decision decision;
  OrxDecisionSource source;

  friend bool operator==(const OrxSourcedDecision&, const OrxSourcedDecision&) = default;
};

}  // namespace ravo::orx
