// The decisions runtime behind the C API: an orx_runtime is an OrxPolicyRuntime, and the C structs are
// the C++ facts and decisions field for field.

#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

#include <ravo-orx/orx.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>
#include <ravo-orx/runtime/OrxDecisionLogSinks.h>
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

// The C options as the runtime's; throws std::invalid_argument or the file sink's refusal.
OrxDecisionLogOptions logOptions(const orx_decision_log_options& c) {
  OrxDecisionLogOptions options;
  if (c.file) {
    const auto sync = c.file_sync == ORX_LOG_SYNC_AFTER_BATCH ? OrxDecisionLogFileSync::afterBatch
                      : c.file_sync == ORX_LOG_SYNC_AFTER_SEAL ? OrxDecisionLogFileSync::afterSeal
                                                               : OrxDecisionLogFileSync::none;
    options.sink = std::make_shared<OrxDecisionLogFileSink>(c.file, sync);
  } else if (c.callback) {
    options.sink = std::make_shared<OrxDecisionLogCallbackSink>(
        [callback = c.callback, context = c.context](std::string_view line, OrxDecisionLogLineType type) {
          callback(context, line.data(), line.size(), type == OrxDecisionLogLineType::seal ? 1 : 0);
        });
  } else {
    throw std::invalid_argument("a decision log needs a file or a callback");
  }
  if (c.buffer_records) options.bufferRecords = c.buffer_records;
  if (c.block_records) options.blockRecords = c.block_records;
  options.whenFull = c.when_full == ORX_LOG_WHEN_FULL_BLOCK ? OrxDecisionLogWhenFull::block : OrxDecisionLogWhenFull::drop;
  return options;
}

orx_status opened(orx_runtime* runtime) {
  const OrxPolicyRuntime& opened = runtime->runtime;
  if (!opened.loadError()) return ORX_OK;
  bool any = opened.isAuthorizationAvailable() || opened.isSyncAvailable() || opened.isCinemaAdmissionAvailable();
  return orxCFailure(any ? ORX_STATUS_PARTIALLY_AVAILABLE : ORX_STATUS_UNAVAILABLE, *opened.loadError());
}

std::optional<std::filesystem::path> directoryOf(const char* artifacts_directory) {
  if (!artifacts_directory) return std::nullopt;
  return artifacts_directory;
}

// The runtime's log, or null after recording why there is none.
const OrxDecisionLog* logOf(const orx_runtime* runtime) {
  if (!runtime) {
    orxCFailure(ORX_STATUS_NULL_ARGUMENT, "runtime is NULL");
    return nullptr;
  }
  const OrxDecisionLog* log = runtime->runtime.decisionLog();
  if (!log) orxCFailure(ORX_STATUS_UNAVAILABLE, "the runtime was opened without a decision log");
  return log;
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
    *runtime = new orx_runtime{OrxPolicyRuntime(directoryOf(artifacts_directory))};
    return opened(*runtime);
  });
}

orx_status orx_runtime_open_with_log(const char* artifacts_directory, const orx_decision_log_options* log,
                                     orx_runtime** runtime) {
  if (!runtime || !log) return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "runtime or log is NULL");
  *runtime = nullptr;
  return orxCCall([&]() -> orx_status {
    OrxDecisionLogOptions options;
    try {
      options = logOptions(*log);
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      return orxCFailure(ORX_STATUS_INVALID_INPUT, error.what());
    }
    try {
      *runtime = new orx_runtime{OrxPolicyRuntime(directoryOf(artifacts_directory), std::move(options))};
    } catch (const std::invalid_argument& error) {
      return orxCFailure(ORX_STATUS_INVALID_INPUT, error.what());
    }
    return opened(*runtime);
  });
}

orx_status orx_runtime_log_flush(orx_runtime* runtime) {
  if (!logOf(runtime)) return runtime ? ORX_STATUS_UNAVAILABLE : ORX_STATUS_NULL_ARGUMENT;
  return orxCCall([&] {
    runtime->runtime.decisionLog()->flush();
    return ORX_OK;
  });
}

orx_status orx_runtime_log_head(const orx_runtime* runtime, char digest[ORX_DIGEST_TEXT_SIZE]) {
  if (!digest) return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "digest is NULL");
  digest[0] = '\0';
  const OrxDecisionLog* log = logOf(runtime);
  if (!log) return runtime ? ORX_STATUS_UNAVAILABLE : ORX_STATUS_NULL_ARGUMENT;
  return orxCCall([&] {
    if (const auto head = log->head()) std::memcpy(digest, head->c_str(), std::min<std::size_t>(head->size() + 1, ORX_DIGEST_TEXT_SIZE));
    return ORX_OK;
  });
}

orx_status orx_runtime_log_counts(const orx_runtime* runtime, uint64_t* written, uint64_t* dropped, uint64_t* lost) {
  if (!written || !dropped || !lost) return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "a count is NULL");
  const OrxDecisionLog* log = logOf(runtime);
  if (!log) return runtime ? ORX_STATUS_UNAVAILABLE : ORX_STATUS_NULL_ARGUMENT;
  *written = log->recordsWritten();
  *dropped = log->recordsDropped();
  *lost = log->recordsLost();
  return orxCCall([&] {
    const auto error = log->error();
    return error ? orxCFailure(ORX_STATUS_LOG_FAILED, *error) : ORX_OK;
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
