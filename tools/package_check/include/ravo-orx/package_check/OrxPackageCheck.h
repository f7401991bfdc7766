#pragma once
// The package check of one module: loads it through the runtime's own module host (so the engine, the
// load budgets and the execution bound judge it exactly as at run time), checks its manifest's ABI lanes and
// its import/export contract, and runs every case of the manifest. Its report,
// "<module>.package-check.json", is deterministic: no times, no paths.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include <ravo-orx/package_check/OrxPolicyManifest.h>

namespace ravo::orx {

struct OrxPackageCheck {
  std::string report;                  // the bytes of "<module>.package-check.json"
  std::vector<std::string> failures;   // empty when the module passed
  nlohmann::ordered_json evidence;     // the module's record in "evidence.json"
  std::optional<OrxPolicyManifest> manifest;  // as read, when it keeps its schema
};

OrxPackageCheck checkPolicyPackage(const std::string& module, std::span<const std::uint8_t> source,
                                   std::span<const std::uint8_t> manifest, std::span<const std::uint8_t> wasm,
                                   const std::string& compilerIdentity);

}  // namespace ravo::orx
