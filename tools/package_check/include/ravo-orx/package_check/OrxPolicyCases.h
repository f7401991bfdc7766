#pragma once
// Runs a manifest's cases against a module the way the runtime would decide them: each case must make
// the module emit exactly the case's five values, and the runtime's decision path must accept that
// record as the decision it stands for.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxDecisionByKind.h>
#include <ravo-orx/package_check/OrxPolicyManifest.h>

namespace ravo::orx {

struct OrxPolicyCaseResult {
  const OrxPolicyCase* policyCase;
  std::string problem;                // empty when the case passed: "expected [..], emitted [..]"
  std::optional<std::int32_t> reason;  // the reason code the module emitted, if it emitted a record
  std::size_t emits = 0;               // how often the call emitted: more than once is worth a warning
};

// `manifest` is decoded (its facts are the kind's). Throws RuntimeError with the module host's text
// when the module does not load.
std::vector<OrxPolicyCaseResult> runPolicyCases(std::span<const std::uint8_t> wasm, const OrxPolicyManifest& manifest,
                                                const OrxDecisionKind& kind);

}  // namespace ravo::orx
