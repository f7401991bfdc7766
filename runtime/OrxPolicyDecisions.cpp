#include <ravo-orx/runtime/OrxPolicyDecisions.h>

namespace ravo::orx {

std::string_view orxCaseName(OrxAuthorizationReason value) {
  using R = OrxAuthorizationReason;
  switch (value) {
    case R::allowed: return "allowed";
    case R::unpaired: return "unpaired";
    case R::tokenExpired: return "tokenExpired";
    case R::rateLimited: return "rateLimited";
    case R::missingGrant: return "missingGrant";
    case R::notController: return "notController";
    case R::unknownCommand: return "unknownCommand";
    case R::needsAdmin: return "needsAdmin";
    case R::runtimeUnavailable: return "runtimeUnavailable";
    case R::invalidResult: return "invalidResult";
  }
  return {};
}

std::string_view orxCaseName(OrxSyncAction value) {
  switch (value) {
    case OrxSyncAction::hold: return "hold";
    case OrxSyncAction::nudge: return "nudge";
    case OrxSyncAction::seek: return "seek";
  }
  return {};
}

std::string_view orxCaseName(OrxCinemaAdmissionRoute value) {
  using R = OrxCinemaAdmissionRoute;
  switch (value) {
    case R::metalFXOnly: return "metalFXOnly";
    case R::fullFrameML: return "fullFrameML";
    case R::sparseAnchorResearch: return "sparseAnchorResearch";
    case R::calibration: return "calibration";
    case R::measurementRequired: return "measurementRequired";
  }
  return {};
}

std::string_view orxCaseName(OrxCinemaAdmissionReason value) {
  using R = OrxCinemaAdmissionReason;
  switch (value) {
    case R::liveSafe: return "liveSafe";
    case R::thermalOrMemory: return "thermalOrMemory";
    case R::sourceReservoir: return "sourceReservoir";
    case R::nonMLOverBudget: return "nonMLOverBudget";
    case R::sparseResearch: return "sparseResearch";
    case R::calibration: return "calibration";
    case R::invalidFacts: return "invalidFacts";
  }
  return {};
}

std::string_view orxCaseName(OrxDecisionSource value) {
  using S = OrxDecisionSource;
  switch (value) {
    case S::policy: return "policy";
    case S::moduleUnavailable: return "moduleUnavailable";
    case S::trap: return "trap";
    case S::invalidOutput: return "invalidOutput";
  }
  return {};
}

}  // namespace ravo::orx
