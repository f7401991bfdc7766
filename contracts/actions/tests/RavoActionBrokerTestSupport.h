#pragma once
// Fixtures shared by the broker suites: a fixed clock, scripted gates and a grant over the catalog.

#include <atomic>
#include <chrono>
#include <stdexcept>

#include <ravo-orx/contracts/actions/RavoActionExecutionBroker.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>

namespace ravo::orx {

namespace ravo_test {

using namespace std::chrono_literals;

inline const RavoTimePoint kNow = RavoTimePoint{} + 1'800'000'000s;

inline RavoTimePoint fixedNow() { return kNow; }

// Answers with a fixed result, or throws, and counts its calls.
class ScriptedGate final : public RavoActionGateChecking {
 public:
  explicit ScriptedGate(std::optional<RavoActionGateResult> result) : result_(std::move(result)) {}

  RavoActionGateResult evaluate(const RavoApplicationActionDescriptor&, const RavoActionProposal&,
                                const RavoActionGrant&) const override {
    calls_.fetch_add(1);
    if (!result_) throw std::runtime_error("gate down");
    return *result_;
  }
  int calls() const { return calls_.load(); }

 private:
  std::optional<RavoActionGateResult> result_;
  mutable std::atomic<int> calls_{0};
};

inline RavoActionGrant::Fields grantFields(std::int64_t maxUses) {
  return {.id = RavoUUID::random(),
          .generation = 3,
          .allowedActionIDs = {RavoPlayerActionIDs::pause(), RavoPlayerActionIDs::setVolume(),
                               RavoPlayerActionIDs::openHome(), RavoApplicationActionID("ravo.test.medium"),
                               RavoApplicationActionID("ravo.test.high"), RavoApplicationActionID("ravo.test.verified"),
                               RavoApplicationActionID("ravo.test.confirmed"),
                               RavoApplicationActionID("ravo.test.two")},
          .allowedCapabilities = {RavoScenarioCapability::mediaTransport(), RavoScenarioCapability::audioVolume(),
                                  RavoScenarioCapability("ravo.ui.navigate")},
          .allowedStableTargetIDs = {"t1"},
          .expiresAt = kNow + 60s,
          .maxUses = maxUses};
}

inline RavoActionProposal pauseProposal(RavoActionProposalOrigin origin = RavoActionProposalOrigin::userInterface) {
  return RavoActionProposal(RavoUUID::random(), RavoPlayerActionIDs::pause(), "t1", {}, origin);
}

}  // namespace ravo_test

}  // namespace ravo::orx
