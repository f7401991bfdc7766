#pragma once
// The policy runtime: loads the three digest-bound policy modules and takes the decisions they govern.
// Construction never fails: every problem is recorded in loadError() and in which modules are
// available; a runtime with missing modules answers with the fail-safe decisions for its whole life.
// Decisions never throw. Thread-safe after construction.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "runtime/OrxPolicyDecider.h"

class OrxPolicyRuntime {
 public:
  // Loads from `artifactsDirectory`, or from the first bundled location holding "evidence.json".
  explicit OrxPolicyRuntime(std::optional<std::filesystem::path> artifactsDirectory = std::nullopt);

  bool isAuthorizationAvailable() const { return decider_.isAuthorizationAvailable(); }
  bool isSyncAvailable() const { return decider_.isSyncAvailable(); }
  bool isCinemaAdmissionAvailable() const { return decider_.isCinemaAdmissionAvailable(); }
  const std::optional<std::string>& loadError() const { return loadError_; }
  std::string statusDescription() const { return decider_.statusDescription(); }
  std::string executionTiers() const { return decider_.executionTiers(); }
  std::uint64_t failureCount() const { return decider_.failureCount(); }

  OrxAuthorizationDecision authorize(const AuthorizationFacts& facts) { return decider_.authorize(facts); }
  OrxSyncDecision correctSync(const SyncFacts& facts) { return decider_.correctSync(facts); }
  OrxCinemaAdmissionDecision decideCinemaAdmission(const CinemaAdmissionFacts& facts) {
    return decider_.decideCinemaAdmission(facts);
  }

  // The same decisions with their source: "policy" or the fail-safe path taken (see OrxDecisionSource).
  OrxSourcedDecision<OrxAuthorizationDecision> authorizeWithSource(const AuthorizationFacts& facts) {
    return decider_.authorizeWithSource(facts);
  }
  OrxSourcedDecision<OrxSyncDecision> correctSyncWithSource(const SyncFacts& facts) {
    return decider_.correctSyncWithSource(facts);
  }
  OrxSourcedDecision<OrxCinemaAdmissionDecision> decideCinemaAdmissionWithSource(const CinemaAdmissionFacts& facts) {
    return decider_.decideCinemaAdmissionWithSource(facts);
  }

  static bool isValidHostSyncOutput(OrxSyncAction action, std::int32_t rateX1000, std::int32_t correctionMilliseconds,
                                    std::int32_t reason) {
    return OrxPolicyDecider::isValidHostSyncOutput(action, rateX1000, correctionMilliseconds, reason);
  }
  static bool isValidCinemaAdmissionOutput(OrxCinemaAdmissionRoute route, std::int32_t sparseAnchorIntervalFrames,
                                           std::int32_t safeBudgetTenthsMilliseconds, OrxCinemaAdmissionReason reason) {
    return OrxPolicyDecider::isValidCinemaAdmissionOutput(route, sparseAnchorIntervalFrames,
                                                          safeBudgetTenthsMilliseconds, reason);
  }

  // The bundled artifact locations, in search order; throws RuntimeError when none holds evidence.
  static std::filesystem::path locateArtifacts();

 private:
  struct Loaded {
    OrxPolicyModules modules;
    std::optional<std::string> loadError;
  };
  explicit OrxPolicyRuntime(Loaded loaded);
  static Loaded load(const std::optional<std::filesystem::path>& artifactsDirectory);

  std::optional<std::string> loadError_;
  OrxPolicyDecider decider_;
};
