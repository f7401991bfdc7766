#include <ravo-orx/package_check/OrxPolicyKind.h>

#include <array>

namespace ravo::orx {

using namespace internal;

namespace {

constexpr std::array<std::string_view, 8> kAuthorizationFacts{
    "role", "command", "grantFlags", "tokenAgeMilliseconds", "tokenTTLMilliseconds", "rateUsed", "rateLimit",
    "controlMode"};
constexpr std::array<std::string_view, 8> kSyncFacts{
    "driftMilliseconds", "roundTripMilliseconds", "jitterMilliseconds",  "bufferAheadMilliseconds",
    "rateX100",          "stallCount",            "syncAgeMilliseconds", "toleranceMilliseconds"};
constexpr std::array<std::string_view, 13> kCinemaFacts{"sourceFPSX100",
                                                        "targetFPSX100",
                                                        "sourceReservoirMilliseconds",
                                                        "headroom",
                                                        "thermalState",
                                                        "memoryPressure",
                                                        "bridgeTenthsMilliseconds",
                                                        "temporalTenthsMilliseconds",
                                                        "interpolationTenthsMilliseconds",
                                                        "metalFXTenthsMilliseconds",
                                                        "finalDetailTenthsMilliseconds",
                                                        "modelTenthsMilliseconds",
                                                        "modelSampleCount"};

// The reasons a module answers with; the host's own runtimeUnavailable and invalidResult are not among them.
constexpr std::array<std::string_view, 8> kAuthorizationReasons{
    "allowed", "unpaired", "tokenExpired", "rateLimited", "missingGrant", "notController", "unknownCommand",
    "needsAdmin"};
// Sync reason codes have no names in the host; the module defines what each means.
constexpr std::array<std::string_view, 6> kSyncReasons{"0", "1", "2", "3", "4", "5"};
constexpr std::array<std::string_view, 7> kCinemaReasons{
    "liveSafe", "thermalOrMemory", "sourceReservoir", "nonMLOverBudget", "sparseResearch", "calibration",
    "invalidFacts"};

constexpr std::array kKinds{
    OrxPolicyKind{"authz", "player_authz", OrxPolicyDecision::authorization, kAuthorizationFacts,
                  kAuthorizationReasons, 3},
    OrxPolicyKind{"sync", "sync_correction", OrxPolicyDecision::sync, kSyncFacts, kSyncReasons, 4},
    OrxPolicyKind{"cinema", "cinema_admission", OrxPolicyDecision::cinemaAdmission, kCinemaFacts, kCinemaReasons, 4},
};

}  // namespace

const OrxPolicyKind* orxPolicyKindNamed(std::string_view name) {
  for (const auto& kind : kKinds) {
    if (kind.name == name) return &kind;
  }
  return nullptr;
}

const OrxPolicyKind* orxPolicyKindOfModule(std::string_view module) {
  for (const auto& kind : kKinds) {
    if (kind.module == module) return &kind;
  }
  return nullptr;
}

RavoJSON orxDecisionJSON(const OrxAuthorizationDecision& decision) {
  return {{"isAllowed", decision.isAllowed},
          {"reason", orxCaseName(decision.reason)},
          {"policyVersion", decision.policyVersion}};
}

RavoJSON orxDecisionJSON(const OrxSyncDecision& decision) {
  return {{"action", orxCaseName(decision.action)},
          {"rateX1000", decision.rateX1000},
          {"correctionMilliseconds", decision.correctionMilliseconds},
          {"reason", decision.reason}};
}

RavoJSON orxDecisionJSON(const OrxCinemaAdmissionDecision& decision) {
  return {{"route", orxCaseName(decision.route)},
          {"sparseAnchorIntervalFrames", decision.sparseAnchorIntervalFrames},
          {"safeBudgetTenthsMilliseconds", decision.safeBudgetTenthsMilliseconds},
          {"reason", orxCaseName(decision.reason)}};
}

RavoJSON orxDecisionEmitted(const OrxPolicyKind& kind, std::span<const std::int32_t> emits) {
  switch (kind.decision) {
    case OrxPolicyDecision::authorization: {
      const auto reason = orxAuthorizationReason(emits[3]);
      if ((emits[1] != 0 && emits[1] != 1) || !reason) return {};
      return orxDecisionJSON(OrxAuthorizationDecision{emits[1] == 1, *reason, emits[4]});
    }
    case OrxPolicyDecision::sync: {
      const auto action = orxSyncAction(emits[1]);
      return action ? orxDecisionJSON(OrxSyncDecision{*action, emits[2], emits[3], emits[4]}) : RavoJSON();
    }
    case OrxPolicyDecision::cinemaAdmission:
      break;
  }
  const auto route = orxCinemaAdmissionRoute(emits[1]);
  const auto reason = orxCinemaAdmissionReason(emits[4]);
  return route && reason ? orxDecisionJSON(OrxCinemaAdmissionDecision{*route, emits[2], emits[3], *reason})
                         : RavoJSON();
}

OrxPolicyModules orxModulesWith(const OrxPolicyKind& kind, std::unique_ptr<LoadedModule> module) {
  OrxPolicyModules modules;
  switch (kind.decision) {
    case OrxPolicyDecision::authorization: modules.authorization = std::move(module); break;
    case OrxPolicyDecision::sync: modules.sync = std::move(module); break;
    case OrxPolicyDecision::cinemaAdmission: modules.cinemaAdmission = std::move(module); break;
  }
  return modules;
}

}  // namespace ravo::orx
