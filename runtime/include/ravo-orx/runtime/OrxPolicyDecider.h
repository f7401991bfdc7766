#pragma once
// Takes the three decisions with whatever modules it was given: packs the facts, calls `decide`,
// accepts an answer only when the emitted record repeats it under the module's tag with every field in
// range, and otherwise returns the fail-safe decision and counts the failure. The ...WithSource calls
// also say whether the answer is the module's or which fail-safe path produced it. One non-recursive lock is
// held for the whole of each decision, so no two calls share an engine instance and no call observes
// another's emitted values. Never throws.
//
// With a recorder (the decision log), each decision's record is copied to it under the same lock.
//
// OrxPolicyRuntime feeds it only digest-verified modules; tests and the package check feed it modules
// directly.

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <ravo-orx/runtime/LoadedModule.h>
#include <ravo-orx/runtime/OrxDecisionRecord.h>
#include <ravo-orx/runtime/OrxPolicyDecisions.h>
#include <ravo-orx/runtime/OrxPolicyFacts.h>

namespace ravo::orx::internal {

struct OrxPolicyModules {
  std::unique_ptr<LoadedModule> authorization;
  std::unique_ptr<LoadedModule> sync;
  std::unique_ptr<LoadedModule> cinemaAdmission;
};

class OrxPolicyDecider {
 public:
  explicit OrxPolicyDecider(OrxPolicyModules modules);

  bool isAuthorizationAvailable() const;
  bool isSyncAvailable() const;
  bool isCinemaAdmissionAvailable() const;
  std::string statusDescription() const;
  // How each module runs, for tools: "authz precompiled / sync interpreted / cinema unavailable".
  std::string executionTiers() const;
  std::uint64_t failureCount() const;

  // Every later decision's record goes to `recorder` (null: none), which must outlive the decisions.
  void setRecorder(OrxDecisionRecorder* recorder);

  OrxAuthorizationDecision authorize(const AuthorizationFacts& facts) { return authorizeWithSource(facts).decision; }
  OrxSyncDecision correctSync(const SyncFacts& facts) { return correctSyncWithSource(facts).decision; }
  OrxCinemaAdmissionDecision decideCinemaAdmission(const CinemaAdmissionFacts& facts) {
    return decideCinemaAdmissionWithSource(facts).decision;
  }

  OrxSourcedDecision<OrxAuthorizationDecision> authorizeWithSource(const AuthorizationFacts& facts) noexcept;
  OrxSourcedDecision<OrxSyncDecision> correctSyncWithSource(const SyncFacts& facts) noexcept;
  OrxSourcedDecision<OrxCinemaAdmissionDecision> decideCinemaAdmissionWithSource(
      const CinemaAdmissionFacts& facts) noexcept;

  static bool isValidHostSyncOutput(OrxSyncAction action, std::int32_t rateX1000, std::int32_t correctionMilliseconds,
                                    std::int32_t reason);
  static bool isValidCinemaAdmissionOutput(OrxCinemaAdmissionRoute route, std::int32_t sparseAnchorIntervalFrames,
                                           std::int32_t safeBudgetTenthsMilliseconds, OrxCinemaAdmissionReason reason);

 private:
  // A decision and the values its module emitted (null when it emitted nothing or was not called).
  template <class Decision>
  struct Evaluation {
    OrxSourcedDecision<Decision> sourced;
    const std::vector<std::int32_t>* emitted = nullptr;
  };
  // One decision of a kind: `Rules` judge the emitted record, and `accept` turns an accepted record into
  // the decision; otherwise the decision is one of OrxFailSafeDecisions<Decision>.
  template <const auto& Rules, class Decision, class Facts, class Accept>
  OrxSourcedDecision<Decision> decide(const OrxDecisionKind& kind, const Facts& facts,
                                      const std::unique_ptr<LoadedModule>& module, Accept accept) noexcept;
  // The caller holds lock_.
  template <const auto& Rules, class Decision, class Facts, class Accept>
  Evaluation<Decision> evaluate(const OrxDecisionKind& kind, const Facts& facts,
                                const std::unique_ptr<LoadedModule>& module, Accept accept);
  template <class Decision>
  OrxSourcedDecision<Decision> fail(Decision failSafe, OrxDecisionSource source);

  mutable std::mutex lock_;
  OrxPolicyModules modules_;
  std::uint64_t runtimeFailureCount_ = 0;
  OrxDecisionRecorder* recorder_ = nullptr;
};

}  // namespace ravo::orx::internal
