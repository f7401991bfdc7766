#include "runtime/OrxPolicyDecisions.h"

namespace {

template <class E>
std::optional<E> inRange(std::int32_t raw, std::int32_t first, std::int32_t last) {
  if (raw < first || raw > last) return std::nullopt;
  return static_cast<E>(raw);
}

}  // namespace

std::optional<OrxAuthorizationReason> orxAuthorizationReason(std::int32_t raw) {
  if (raw == rawValue(OrxAuthorizationReason::runtimeUnavailable)) return OrxAuthorizationReason::runtimeUnavailable;
  if (raw == rawValue(OrxAuthorizationReason::invalidResult)) return OrxAuthorizationReason::invalidResult;
  return inRange<OrxAuthorizationReason>(raw, 0, rawValue(OrxAuthorizationReason::needsAdmin));
}

std::optional<OrxSyncAction> orxSyncAction(std::int32_t raw) {
  return inRange<OrxSyncAction>(raw, 0, rawValue(OrxSyncAction::seek));
}

std::optional<OrxCinemaAdmissionRoute> orxCinemaAdmissionRoute(std::int32_t raw) {
  return inRange<OrxCinemaAdmissionRoute>(raw, 0, rawValue(OrxCinemaAdmissionRoute::measurementRequired));
}

std::optional<OrxCinemaAdmissionReason> orxCinemaAdmissionReason(std::int32_t raw) {
  return inRange<OrxCinemaAdmissionReason>(raw, 0, rawValue(OrxCinemaAdmissionReason::invalidFacts));
}
