#pragma once
// Runs a manifest's cases against a module the way the runtime would decide them: each case must make
// the module emit exactly the case's five values, and the runtime's decision path must accept that
// record as the decision it stands for.

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxDecisionByKind.h>
#include <ravo-orx/package_check/OrxPolicyManifest.h>

namespace ravo::orx {

struct OrxPolicyCaseResult {
  const OrxPolicyCase* policyCase;
  std::string problem;                // empty when the case passed: "expected [..], emitted [..]"
  std::size_t emits = 0;              // how often the call emitted: more than once is worth a warning
};

// The fuel the cases of one run may use together, counted once per case as its measured call used it.
// Each case runs its call three times (the raw call, the runtime's own decision and the measured call),
// and a call may use up to its whole execution budget (kOrxFuelPerCall), which takes the interpreter 30
// to 40 ms for the three: 10,000 cases that each run out of fuel would keep a run busy for about six
// minutes. A thousand such cases fit, about 40 seconds. A bundled policy's case uses at most 336 units.
inline constexpr std::uint64_t kOrxPolicyRunFuelLimit = 1'000'000'000;

// What a run has used of its fuel (kOrxPolicyRunFuelLimit; a test may give a smaller limit). One run (`policy test` over all its manifests, one
// `policy check`, one module's package check) keeps one.
class OrxPolicyRunFuel {
 public:
  explicit OrxPolicyRunFuel(std::uint64_t limit = kOrxPolicyRunFuelLimit) : limit_(limit) {}
  // Adds a case's fuel; throws OrxPolicyRunFuelExhausted once the run has used more than the limit.
  void charge(std::uint64_t fuel);

 private:
  std::uint64_t limit_;
  std::uint64_t used_ = 0;
};

// The run's cases used more than kOrxPolicyRunFuelLimit; the cases after it did not run.
class OrxPolicyRunFuelExhausted : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// `manifest` is decoded (its facts are the kind's). Throws RuntimeError with the module host's text
// when the module does not load, and OrxPolicyRunFuelExhausted when the run's fuel runs out.
std::vector<OrxPolicyCaseResult> runPolicyCases(std::span<const std::uint8_t> wasm, const OrxPolicyManifest& manifest,
                                                const OrxDecisionKind& kind, OrxPolicyRunFuel& fuel);

}  // namespace ravo::orx
