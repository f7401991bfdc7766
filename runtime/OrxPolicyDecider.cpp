#include <ravo-orx/runtime/OrxPolicyDecider.h>

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

#include <ravo-orx/runtime/OrxDecisionKinds.h>
#include <ravo-orx/runtime/OrxEmittedRecordRules.h>
#include <ravo-orx/runtime/OrxLog.h>

namespace ravo::orx::internal {

namespace {

constexpr const OrxDecisionKind& kAuthorization = orxDecisionKind(OrxDecisionKindID::authorization);
constexpr const OrxDecisionKind& kSync = orxDecisionKind(OrxDecisionKindID::sync);
constexpr const OrxDecisionKind& kCinema = orxDecisionKind(OrxDecisionKindID::cinemaAdmission);

OrxEmittedRecord emittedRecord(const OrxDecisionKind& kind, const OrxInvocation& call, std::int32_t result,
                               std::span<const std::int32_t> facts) {
  const auto* emitted = call.emitted;
  return {kind.emitTag, result, orxEchoedFact(kind, facts), emitted ? emitted->data() : nullptr,
          emitted ? emitted->size() : 0};
}

void logTrap(const OrxDecisionKind& kind, const OrxInvocation& call) {
  std::string message(kind.trapLog);
  message += *call.error;
  orxLog(OrxLogLevel::error, message);
}

std::string digestPrefix(const std::unique_ptr<LoadedModule>& module) { return module->digest().substr(0, 8); }

}  // namespace

OrxPolicyDecider::OrxPolicyDecider(OrxPolicyModules modules) : modules_(std::move(modules)) {}

bool OrxPolicyDecider::isAuthorizationAvailable() const {
  std::lock_guard guard(lock_);
  return modules_.authorization != nullptr;
}

bool OrxPolicyDecider::isSyncAvailable() const {
  std::lock_guard guard(lock_);
  return modules_.sync != nullptr;
}

bool OrxPolicyDecider::isCinemaAdmissionAvailable() const {
  std::lock_guard guard(lock_);
  return modules_.cinemaAdmission != nullptr;
}

std::uint64_t OrxPolicyDecider::failureCount() const {
  std::lock_guard guard(lock_);
  return runtimeFailureCount_;
}

std::string OrxPolicyDecider::statusDescription() const {
  std::lock_guard guard(lock_);
  const auto& [authorization, sync, cinema] = modules_;
  if (!authorization && !sync && !cinema) return "ORX unavailable \u00B7 native safe mode";
  if (authorization && sync && cinema) {
    return "ORX active \u00B7 " + digestPrefix(authorization) + " / " + digestPrefix(sync) + " / " + digestPrefix(cinema);
  }
  auto part = [](std::string_view label, const std::unique_ptr<LoadedModule>& module) {
    return std::string(label) + (module ? " " + digestPrefix(module) : std::string(" unavailable"));
  };
  return "ORX partial \u00B7 " + part(kAuthorization.name, authorization) + " / " + part(kSync.name, sync) +
         " / " + part(kCinema.name, cinema);
}

std::string OrxPolicyDecider::executionTiers() const {
  std::lock_guard guard(lock_);
  auto tier = [](std::string_view label, const std::unique_ptr<LoadedModule>& module) {
    return std::string(label) + " " + std::string(module ? orxCaseName(module->tier()) : "unavailable");
  };
  return tier(kAuthorization.name, modules_.authorization) + " / " + tier(kSync.name, modules_.sync) + " / " +
         tier(kCinema.name, modules_.cinemaAdmission);
}

template <class Decision>
OrxSourcedDecision<Decision> OrxPolicyDecider::fail(Decision failSafe, OrxDecisionSource source) {
  ++runtimeFailureCount_;
  return {failSafe, source};
}

void OrxPolicyDecider::setRecorder(OrxDecisionRecorder* recorder) {
  std::lock_guard guard(lock_);
  recorder_ = recorder;
}

// Without a recorder a decision costs what it always did: one test of a pointer. With one, the record
// is filled and copied while the lock is held (so records keep the order of the module's calls), and
// only a record that found no room is handed back, after the lock is released.
template <const auto& Rules, class Decision, class Facts, class Accept>
OrxSourcedDecision<Decision> OrxPolicyDecider::decide(const OrxDecisionKind& kind, const Facts& facts,
                                                      const std::unique_ptr<LoadedModule>& module,
                                                      Accept accept) noexcept {
  std::unique_lock guard(lock_);
  OrxDecisionRecorder* const recorder = recorder_;
  if (recorder) recorder->waitForRoom(guard);
  const Evaluation<Decision> evaluation = evaluate<Rules, Decision>(kind, facts, module, accept);
  if (!recorder) return evaluation.sourced;
  OrxDecisionRecord record;
  record.kind = kind.id;
  record.source = evaluation.sourced.source;
  if (module) {
    record.hasModule = true;
    std::copy_n(module->digest().data(), std::min(module->digest().size(), kOrxDigestHexLength),
                record.moduleSha256.data());
  }
  const auto arguments = facts.arguments();
  std::copy(arguments.begin(), arguments.end(), record.facts.begin());
  if (const auto* emitted = evaluation.emitted) {
    record.hasEmission = true;
    record.emittedLength = static_cast<std::uint32_t>(std::min<std::size_t>(emitted->size(), UINT32_MAX));
    std::copy_n(emitted->begin(), std::min(emitted->size(), kOrxLoggedEmits), record.emitted.begin());
  }
  record.decision = orxDecisionFieldValues(evaluation.sourced.decision);
  if (recorder->append(record)) return evaluation.sourced;
  guard.unlock();
  recorder->overflowed(record);
  return evaluation.sourced;
}

// The module's answer when its emitted record passes every rule of the kind's table; otherwise the
// kind's fail-safe decision, counted, with the path that produced it.
template <const auto& Rules, class Decision, class Facts, class Accept>
auto OrxPolicyDecider::evaluate(const OrxDecisionKind& kind, const Facts& facts,
                                const std::unique_ptr<LoadedModule>& module, Accept accept)
    -> Evaluation<Decision> {
  using FailSafes = OrxFailSafeDecisions<Decision>;
  if (!module) return {fail(FailSafes::unavailable, OrxDecisionSource::moduleUnavailable)};
  const auto arguments = facts.arguments();
  const OrxInvocation call = module->invoke(arguments);
  const std::int32_t result = call.result.value_or(kind.resultWhenNone);
  if (call.error) {
    logTrap(kind, call);
    return {fail(FailSafes::unavailable, OrxDecisionSource::trap), call.emitted};
  }
  const OrxEmittedRecord record = emittedRecord(kind, call, result, arguments);
  if (!orxRecordAccepted<Rules>(record)) return {fail(FailSafes::invalid, OrxDecisionSource::invalidOutput), call.emitted};
  return {{accept(record), OrxDecisionSource::policy}, call.emitted};
}

OrxSourcedDecision<OrxAuthorizationDecision> OrxPolicyDecider::authorizeWithSource(
    const AuthorizationFacts& facts) noexcept {
  return decide<kOrxAuthorizationRecordRules, OrxAuthorizationDecision>(
      kAuthorization, facts, modules_.authorization, [](OrxRecord r) { return OrxAuthorizationDecision{r.result == 1, *orxAuthorizationReason(r[3]), r[4]}; });
}

OrxSourcedDecision<OrxSyncDecision> OrxPolicyDecider::correctSyncWithSource(const SyncFacts& facts) noexcept {
  return decide<kOrxSyncRecordRules, OrxSyncDecision>(
      kSync, facts, modules_.sync, [](OrxRecord r) { return OrxSyncDecision{*orxSyncAction(r.result), r[2], r[3], r[4]}; });
}

OrxSourcedDecision<OrxCinemaAdmissionDecision> OrxPolicyDecider::decideCinemaAdmissionWithSource(
    const CinemaAdmissionFacts& facts) noexcept {
  return decide<kOrxCinemaAdmissionRecordRules, OrxCinemaAdmissionDecision>(
      kCinema, facts, modules_.cinemaAdmission, [](OrxRecord r) {
        return OrxCinemaAdmissionDecision{*orxCinemaAdmissionRoute(r.result), r[2], r[3],
                                          *orxCinemaAdmissionReason(r[4])};
      });
}

// The output rules read the record's values and the result only; the tag and the repeated result are
// filled in so that the record is whole.
bool OrxPolicyDecider::isValidHostSyncOutput(OrxSyncAction action, std::int32_t rateX1000,
                                             std::int32_t correctionMilliseconds, std::int32_t reason) {
  const std::int32_t values[] = {kSync.emitTag, rawValue(action), rateX1000, correctionMilliseconds, reason};
  return orxRecordAccepted<kOrxSyncRecordRules, kOrxSyncOutputRulesStart>(
      {kSync.emitTag, rawValue(action), 0, values, std::size(values)});
}

bool OrxPolicyDecider::isValidCinemaAdmissionOutput(OrxCinemaAdmissionRoute route,
                                                    std::int32_t sparseAnchorIntervalFrames,
                                                    std::int32_t safeBudgetTenthsMilliseconds,
                                                    OrxCinemaAdmissionReason reason) {
  const std::int32_t values[] = {kCinema.emitTag, rawValue(route), sparseAnchorIntervalFrames,
                                 safeBudgetTenthsMilliseconds, rawValue(reason)};
  return orxRecordAccepted<kOrxCinemaAdmissionRecordRules, kOrxCinemaOutputRulesStart>(
      {kCinema.emitTag, rawValue(route), 0, values, std::size(values)});
}

}  // namespace ravo::orx::internal
