// The decisions runtime behind the C API: an orx_runtime is an OrxPolicyRuntime, and the C structs are
// the C++ facts and decisions field for field.

#include <new>
#include <type_traits>

#include <ravo-orx/orx.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>

#include "OrxCApiCalls.h"

struct orx_runtime {
  ravo::orx::OrxPolicyRuntime runtime;
};

namespace ravo::orx::internal {
namespace {

static_assert(ORX_SOURCE_POLICY == static_cast<int>(OrxDecisionSource::policy));
static_assert(ORX_SOURCE_MODULE_UNAVAILABLE == static_cast<int>(OrxDecisionSource::moduleUnavailable));
static_assert(ORX_SOURCE_TRAP == static_cast<int>(OrxDecisionSource::trap));
static_assert(ORX_SOURCE_INVALID_OUTPUT == static_cast<int>(OrxDecisionSource::invalidOutput));
static_assert(ORX_DECISION_AUTHORIZATION == static_cast<int>(OrxDecisionKindID::authorization));
static_assert(ORX_DECISION_SYNC == static_cast<int>(OrxDecisionKindID::sync));
static_assert(ORX_DECISION_CINEMA_ADMISSION == static_cast<int>(OrxDecisionKindID::cinemaAdmission));
// The facts are read as the C++ structs they mirror: same fields, same order, nothing else.
static_assert(sizeof(orx_authorization_facts) == sizeof(AuthorizationFacts));
static_assert(sizeof(orx_sync_facts) == sizeof(SyncFacts));
static_assert(sizeof(orx_cinema_admission_facts) == sizeof(CinemaAdmissionFacts));

AuthorizationFacts facts(const orx_authorization_facts& c) {
  return {c.role, c.command, c.grantFlags, c.tokenAgeMilliseconds, c.tokenTTLMilliseconds, c.rateUsed,
          c.rateLimit, c.controlMode};
}
SyncFacts facts(const orx_sync_facts& c) {
  return {c.driftMilliseconds, c.roundTripMilliseconds, c.jitterMilliseconds, c.bufferAheadMilliseconds,
          c.rateX100,          c.stallCount,            c.syncAgeMilliseconds, c.toleranceMilliseconds};
}
CinemaAdmissionFacts facts(const orx_cinema_admission_facts& c) {
  return {c.sourceFPSX100,
          c.targetFPSX100,
          c.sourceReservoirMilliseconds,
          c.headroom,
          c.thermalState,
          c.memoryPressure,
          c.bridgeTenthsMilliseconds,
          c.temporalTenthsMilliseconds,
          c.interpolationTenthsMilliseconds,
          c.metalFXTenthsMilliseconds,
          c.finalDetailTenthsMilliseconds,
          c.modelTenthsMilliseconds,
          c.modelSampleCount};
}

orx_authorization_decision decision(const OrxSourcedDecision<OrxAuthorizationDecision>& d) {
  return {d.decision.isAllowed ? 1 : 0, rawValue(d.decision.reason), d.decision.policyVersion,
          static_cast<orx_decision_source>(d.source)};
}
orx_sync_decision decision(const OrxSourcedDecision<OrxSyncDecision>& d) {
  return {rawValue(d.decision.action), d.decision.rateX1000, d.decision.correctionMilliseconds, d.decision.reason,
          static_cast<orx_decision_source>(d.source)};
}
orx_cinema_admission_decision decision(const OrxSourcedDecision<OrxCinemaAdmissionDecision>& d) {
  return {rawValue(d.decision.route), d.decision.sparseAnchorIntervalFrames, d.decision.safeBudgetTenthsMilliseconds,
          rawValue(d.decision.reason), static_cast<orx_decision_source>(d.source)};
}

// One decision: the runtime's answer, or with a missing argument the fail-safe one, so that a caller
// that ignores the status still acts on a safe decision.
template <class CFacts, class CDecision, class Decide, class FailSafe>
orx_status decide(orx_runtime* runtime, const CFacts* cFacts, CDecision* out, Decide decideWith, FailSafe failSafe) {
  if (!runtime || !cFacts || !out) {
    if (out) *out = decision(failSafe());
    return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "runtime, facts or decision is NULL");
  }
  *out = decision(decideWith(runtime->runtime, facts(*cFacts)));
  return ORX_OK;
}

template <class Decision>
OrxSourcedDecision<Decision> unavailable(Decision failSafe) {
  return {failSafe, OrxDecisionSource::moduleUnavailable};
}

}  // namespace
}  // namespace ravo::orx::internal

using namespace ravo::orx;
using namespace ravo::orx::internal;

extern "C" {

orx_status orx_runtime_open(const char* artifacts_directory, orx_runtime** runtime) {
  if (!runtime) return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "runtime is NULL");
  *runtime = nullptr;
  return orxCCall([&]() -> orx_status {
    std::optional<std::filesystem::path> directory;
    if (artifacts_directory) directory = artifacts_directory;
    *runtime = new orx_runtime{OrxPolicyRuntime(std::move(directory))};
    const OrxPolicyRuntime& opened = (*runtime)->runtime;
    if (!opened.loadError()) return ORX_OK;
    bool any = opened.isAuthorizationAvailable() || opened.isSyncAvailable() || opened.isCinemaAdmissionAvailable();
    return orxCFailure(any ? ORX_STATUS_PARTIALLY_AVAILABLE : ORX_STATUS_UNAVAILABLE, *opened.loadError());
  });
}

void orx_runtime_close(orx_runtime* runtime) { delete runtime; }

orx_status orx_runtime_load_error(const orx_runtime* runtime, char* buffer, size_t capacity, size_t* length) {
  if (!runtime) return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "runtime is NULL");
  const auto& error = runtime->runtime.loadError();
  return orxCCopyText(error ? std::string_view(*error) : std::string_view(), buffer, capacity, length);
}

orx_status orx_runtime_status(const orx_runtime* runtime, char* buffer, size_t capacity, size_t* length) {
  if (!runtime) return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "runtime is NULL");
  return orxCCall([&] {
    return orxCCopyText(runtime->runtime.statusDescription(), buffer, capacity, length);
  });
}

int32_t orx_runtime_is_available(const orx_runtime* runtime, orx_decision_kind kind) {
  if (!runtime) return 0;
  switch (kind) {
    case ORX_DECISION_AUTHORIZATION: return runtime->runtime.isAuthorizationAvailable() ? 1 : 0;
    case ORX_DECISION_SYNC: return runtime->runtime.isSyncAvailable() ? 1 : 0;
    case ORX_DECISION_CINEMA_ADMISSION: return runtime->runtime.isCinemaAdmissionAvailable() ? 1 : 0;
    default: return 0;
  }
}

orx_status orx_runtime_failure_count(const orx_runtime* runtime, uint64_t* count) {
  if (!runtime || !count) return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "runtime or count is NULL");
  *count = runtime->runtime.failureCount();
  return ORX_OK;
}

orx_status orx_authorize(orx_runtime* runtime, const orx_authorization_facts* facts,
                         orx_authorization_decision* decision) {
  return decide(
      runtime, facts, decision, [](OrxPolicyRuntime& r, const auto& f) { return r.authorizeWithSource(f); },
      [] { return unavailable(OrxAuthorizationDecision::runtimeUnavailable()); });
}

orx_status orx_correct_sync(orx_runtime* runtime, const orx_sync_facts* facts, orx_sync_decision* decision) {
  return decide(
      runtime, facts, decision, [](OrxPolicyRuntime& r, const auto& f) { return r.correctSyncWithSource(f); },
      [] { return unavailable(OrxSyncDecision::hold()); });
}

orx_status orx_decide_cinema_admission(orx_runtime* runtime, const orx_cinema_admission_facts* facts,
                                       orx_cinema_admission_decision* decision) {
  return decide(
      runtime, facts, decision,
      [](OrxPolicyRuntime& r, const auto& f) { return r.decideCinemaAdmissionWithSource(f); },
      [] { return unavailable(OrxCinemaAdmissionDecision::metalFXOnly()); });
}

}  // extern "C"
