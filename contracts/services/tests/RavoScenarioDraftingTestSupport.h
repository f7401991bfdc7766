#pragma once
// Drafts, providers and proposers shared by the drafting suites.

#include <functional>

#include <ravo-orx/contracts/services/RavoScenarioDraftProposer.h>
#include <ravo-orx/contracts/services/RavoScenarioDraftingService.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioBuiltInCatalog.h>
#include "contracts/scenarios/tests/RavoScenarioTestUUID.h"

namespace ravo::orx {

namespace drafting_test {

inline RavoUUID numbered(int n) { return ravoTestUUID(n); }

// A manual trigger feeding a playback action: valid against the built-in catalog. The model asks to
// arm it on every occurrence and marks it active, which the service must undo.
inline RavoScenarioDraft proposedDraft(const char* triggerType = "ravo.trigger.manual") {
  RavoScenarioGraph graph({{numbered(1), RavoScenarioNodeTypeID(triggerType), "1.0.0", {}},
                           {numbered(2), RavoScenarioNodeTypeID("ravo.action.playback"), "1.0.0", {"player.main"}}},
                          {{numbered(1), "event", numbered(2), "event"}},
                          {RavoScenarioCapability::audioVolume(), RavoScenarioCapability::mediaTransport()});
  return {numbered(9), "Quiet evenings", std::move(graph), RavoScenarioActivationRequest::recurring,
          RavoScenarioLifecycle::active};
}

// Answers every request with `draft` under a fresh response id.
inline RavoScenarioDraftingResponse answer(const RavoScenarioDraftingRequest& request,
                                           RavoScenarioDraft draft = proposedDraft()) {
  return {RavoUUID::random(), request.id(), std::move(draft), {}};
}

class FunctionProposer : public RavoScenarioDraftProposer {
 public:
  using Function = std::function<RavoScenarioDraftingResponse(const RavoScenarioDraftingRequest&)>;
  explicit FunctionProposer(Function function) : function_(std::move(function)) {}
  RavoScenarioDraftingResponse proposeDraft(const RavoScenarioDraftingRequest& request) override {
    return function_(request);
  }

 private:
  Function function_;
};

inline RavoModelProviderRecord eligible(const RavoModelProviderDescriptor& descriptor, bool confirmed = false) {
  return {descriptor, RavoModelProviderState::eligible, confirmed};
}

inline RavoScenarioDraftingService builtInService() {
  return RavoScenarioDraftingService(RavoScenarioBuiltInCatalog::definitions());
}

}  // namespace drafting_test

}  // namespace ravo::orx
