#include <ravo-orx/package_check/OrxDecisionByKind.h>

namespace ravo::orx {

using namespace internal;

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

RavoJSON orxDecisionEmitted(const OrxDecisionKind& kind, std::span<const std::int32_t> emits) {
  switch (kind.id) {
    case OrxDecisionKindID::authorization: {
      const auto reason = orxAuthorizationReason(emits[3]);
      if ((emits[1] != 0 && emits[1] != 1) || !reason) return {};
      return orxDecisionJSON(OrxAuthorizationDecision{emits[1] == 1, *reason, emits[4]});
    }
    case OrxDecisionKindID::sync: {
      const auto action = orxSyncAction(emits[1]);
      return action ? orxDecisionJSON(OrxSyncDecision{*action, emits[2], emits[3], emits[4]}) : RavoJSON();
    }
    case OrxDecisionKindID::cinemaAdmission:
      break;
  }
  const auto route = orxCinemaAdmissionRoute(emits[1]);
  const auto reason = orxCinemaAdmissionReason(emits[4]);
  return route && reason ? orxDecisionJSON(OrxCinemaAdmissionDecision{*route, emits[2], emits[3], *reason})
                         : RavoJSON();
}

OrxPolicyModules orxModulesWith(const OrxDecisionKind& kind, std::unique_ptr<LoadedModule> module) {
  OrxPolicyModules modules;
  switch (kind.id) {
    case OrxDecisionKindID::authorization: modules.authorization = std::move(module); break;
    case OrxDecisionKindID::sync: modules.sync = std::move(module); break;
    case OrxDecisionKindID::cinemaAdmission: modules.cinemaAdmission = std::move(module); break;
  }
  return modules;
}

}  // namespace ravo::orx
