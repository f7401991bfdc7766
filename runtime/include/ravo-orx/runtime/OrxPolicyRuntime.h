#pragma once
// The policy runtime: loads the three digest-bound policy modules and takes the decisions they govern.
// Construction never fails: every problem is recorded in loadError() and in which modules are
// available; a runtime with missing modules answers with the fail-safe decisions for its whole life.
// Decisions never throw. Thread-safe after construction.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <ravo-orx/runtime/OrxDecisionLog.h>
#include <ravo-orx/runtime/OrxPolicyDecisions.h>
#include <ravo-orx/runtime/OrxPolicyFacts.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

namespace internal {
class OrxPolicyDecider;
}

class RAVO_ORX_API OrxPolicyRuntime {
 public:
  // Loads from `artifactsDirectory`, or from the first location holding "evidence.json" of
  // locateArtifacts(). Never throws.
  explicit OrxPolicyRuntime(std::optional<std::filesystem::path> artifactsDirectory = std::nullopt);
  // The same, with every decision appended to a decision log (OrxDecisionLog.h) when `log` has a sink.
  // Throws only what making the log throws (options without a sink do not make one).
  OrxPolicyRuntime(std::optional<std::filesystem::path> artifactsDirectory, OrxDecisionLogOptions log);
  // Writes and seals what the log still holds.
  ~OrxPolicyRuntime();
  OrxPolicyRuntime(const OrxPolicyRuntime&) = delete;
  OrxPolicyRuntime& operator=(const OrxPolicyRuntime&) = delete;

  bool isAuthorizationAvailable() const noexcept;
  bool isSyncAvailable() const noexcept;
  bool isCinemaAdmissionAvailable() const noexcept;
  const std::optional<std::string>& loadError() const noexcept { return loadError_; }
  std::string statusDescription() const;
  // How each module runs, for tools: "authz precompiled / sync interpreted / cinema unavailable".
  std::string executionTiers() const;
  std::uint64_t failureCount() const noexcept;
  // The decision log, or null when the runtime was made without one.
  OrxDecisionLog* decisionLog() noexcept { return decisionLog_.get(); }
  const OrxDecisionLog* decisionLog() const noexcept { return decisionLog_.get(); }

  OrxAuthorizationDecision authorize(const AuthorizationFacts& facts) noexcept {
    return authorizeWithSource(facts).decision;
  }
  OrxSyncDecision correctSync(const SyncFacts& facts) noexcept { return correctSyncWithSource(facts).decision; }
  OrxCinemaAdmissionDecision decideCinemaAdmission(const CinemaAdmissionFacts& facts) noexcept {
    return decideCinemaAdmissionWithSource(facts).decision;
  }

  // The same decisions with their source: "policy" or the fail-safe path taken (see OrxDecisionSource).
  OrxSourcedDecision<OrxAuthorizationDecision> authorizeWithSource(const AuthorizationFacts& facts) noexcept;
  OrxSourcedDecision<OrxSyncDecision> correctSyncWithSource(const SyncFacts& facts) noexcept;
  OrxSourcedDecision<OrxCinemaAdmissionDecision> decideCinemaAdmissionWithSource(
      const CinemaAdmissionFacts& facts) noexcept;

  static bool isValidHostSyncOutput(OrxSyncAction action, std::int32_t rateX1000, std::int32_t correctionMilliseconds,
                                    std::int32_t reason) noexcept;
  static bool isValidCinemaAdmissionOutput(OrxCinemaAdmissionRoute route, std::int32_t sparseAnchorIntervalFrames,
                                           std::int32_t safeBudgetTenthsMilliseconds,
                                           OrxCinemaAdmissionReason reason) noexcept;

  // The first of these that holds "evidence.json": "artifacts" in the working directory,
  // "Resources/ORX" two levels above the executable, the installed artifacts ("share/ravo-orx/artifacts")
  // of the prefix holding the executable, those of the prefix holding the shared library libravo-orx
  // (when the runtime is loaded from it), and those of the prefix this library was built for.
  // Throws RuntimeError ("Bundled ORX artifacts were not found") when none does.
  static std::filesystem::path locateArtifacts();

 private:
  std::optional<std::string> loadError_;
  std::unique_ptr<internal::OrxPolicyDecider> decider_;
  std::unique_ptr<OrxDecisionLog> decisionLog_;
};

}  // namespace ravo::orx
