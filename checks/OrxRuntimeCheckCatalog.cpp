#include <ravo-orx/checks/OrxRuntimeCheckCatalog.h>

#include <ravo-orx/checks/AlteredEvidenceRuntime.h>

namespace ravo::orx {

namespace {

using namespace orx_check_facts;
using Failure = std::optional<std::string>;

std::string text(bool value) { return value ? "true" : "false"; }

template <class E>
std::string text(E value) {
  return std::to_string(rawValue(value));
}

Failure authorizationFailure(const OrxAuthorizationDecision& decision, bool allowed, OrxAuthorizationReason reason) {
  if (decision.isAllowed == allowed && decision.reason == reason) return std::nullopt;
  return "decision=" + text(decision.isAllowed) + ", reason=" + text(decision.reason);
}

Failure cinemaRouteFailure(const OrxCinemaAdmissionDecision& decision, bool passed) {
  if (passed) return std::nullopt;
  return "route=" + text(decision.route) + ", reason=" + text(decision.reason);
}

// A tampered copy must come up without its authorization module; no runtime at all also fails.
Failure tamperRefused(const std::filesystem::path& artifacts, const OrxEvidenceEdit& edit, const char* message) {
  auto runtime = alteredEvidenceRuntime(artifacts, edit);
  if (runtime && !runtime->isAuthorizationAvailable()) return std::nullopt;
  return message;
}

void duplicateFirstModuleRecord(nlohmann::json& evidence) {
  auto modules = evidence.find("modules");
  if (modules == evidence.end() || !modules->is_array() || modules->empty()) return;
  for (const auto& record : *modules) {
    if (!record.is_object()) return;
  }
  modules->push_back(modules->front());
}

void replaceCompilerIdentity(nlohmann::json& evidence) { evidence["compilerIdentity"] = "unreviewed compiler"; }

}  // namespace

std::vector<OrxRuntimeCheck> orxRuntimeCheckCatalog(OrxPolicyRuntime& runtime, const std::filesystem::path& artifacts) {
  OrxPolicyRuntime* shared = &runtime;
  using Reason = OrxAuthorizationReason;
  using Route = OrxCinemaAdmissionRoute;
  return {
      {"digest-bound artifacts load",
       [shared]() -> Failure {
         if (shared->isAuthorizationAvailable() && shared->isSyncAvailable() && shared->isCinemaAdmissionAvailable()) {
           return std::nullopt;
         }
         return shared->statusDescription();
       }},
      {"controller command is allowed",
       [shared] { return authorizationFailure(shared->authorize(controllerCommand), true, Reason::allowed); }},
      {"renderer main-screen command is denied",
       [shared] {
         auto facts = controllerCommand;
         facts.role = 1;
         return authorizationFailure(shared->authorize(facts), false, Reason::notController);
       }},
      {"expired token is denied",
       [shared] {
         auto facts = controllerCommand;
         facts.tokenAgeMilliseconds = 900001;
         return authorizationFailure(shared->authorize(facts), false, Reason::tokenExpired);
       }},
      {"sync holds in band",
       [shared]() -> Failure {
         auto decision = shared->correctSync(syncInBand);
         if (decision.action == OrxSyncAction::hold && decision.rateX1000 == 1000) return std::nullopt;
         return "action=" + text(decision.action) + ", rate=" + std::to_string(decision.rateX1000);
       }},
      {"sync nudges small drift",
       [shared]() -> Failure {
         auto decision = shared->correctSync(syncSmallDrift);
         if (decision.action == OrxSyncAction::nudge && decision.rateX1000 == 967) return std::nullopt;
         return "action=" + text(decision.action) + ", rate=" + std::to_string(decision.rateX1000);
       }},
      {"sync seeks large drift",
       [shared]() -> Failure {
         auto facts = syncInBand;
         facts.driftMilliseconds = 2000;
         auto decision = shared->correctSync(facts);
         if (decision.action == OrxSyncAction::seek && decision.correctionMilliseconds == -2000) return std::nullopt;
         return "action=" + text(decision.action) + ", correction=" + std::to_string(decision.correctionMilliseconds);
       }},
      {"Cinema admits only measured live-safe ML",
       [shared] {
         auto decision = shared->decideCinemaAdmission(cinemaMeasured);
         return cinemaRouteFailure(decision, decision.route == Route::fullFrameML &&
                                                 decision.safeBudgetTenthsMilliseconds == 272 &&
                                                 decision.reason == OrxCinemaAdmissionReason::liveSafe);
       }},
      {"Cinema sends slow ML to research, not playback",
       [shared]() -> Failure {
         auto facts = cinemaMeasured;
         facts.modelTenthsMilliseconds = 5000;
         auto decision = shared->decideCinemaAdmission(facts);
         if (decision.route == Route::sparseAnchorResearch && decision.sparseAnchorIntervalFrames > 1) {
           return std::nullopt;
         }
         return "route=" + text(decision.route) + ", interval=" + std::to_string(decision.sparseAnchorIntervalFrames);
       }},
      {"Cinema thermal pressure retains MetalFX",
       [shared] {
         auto facts = cinemaMeasured;
         facts.thermalState = 2;
         auto decision = shared->decideCinemaAdmission(facts);
         return cinemaRouteFailure(decision, decision.route == Route::metalFXOnly &&
                                                 decision.reason == OrxCinemaAdmissionReason::thermalOrMemory);
       }},
      {"host rejects out-of-range sync output",
       []() -> Failure {
         if (!OrxPolicyRuntime::isValidHostSyncOutput(OrxSyncAction::nudge, 5000, 0, 3) &&
             !OrxPolicyRuntime::isValidHostSyncOutput(OrxSyncAction::seek, 1000, 2147483647, 4)) {
           return std::nullopt;
         }
         return "out-of-range output accepted";
       }},
      {"duplicate evidence records are rejected",
       [artifacts] { return tamperRefused(artifacts, duplicateFirstModuleRecord, "duplicate evidence was accepted"); }},
      {"compiler identity tampering is rejected",
       [artifacts] {
         return tamperRefused(artifacts, replaceCompilerIdentity, "unreviewed compiler identity was accepted");
       }},
  };
}

}  // namespace ravo::orx
