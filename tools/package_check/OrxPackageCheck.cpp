#include <ravo-orx/package_check/OrxPackageCheck.h>

#include <algorithm>
#include <optional>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/engine/OrxModuleInstance.h>
#include <ravo-orx/package_check/OrxPolicyCases.h>
#include <ravo-orx/runtime/OrxEvidence.h>

namespace ravo::orx {

using namespace internal;

namespace {

using Json = nlohmann::ordered_json;

Json checkContract(const OrxPolicyManifest& manifest, std::span<const std::uint8_t> wasm,
                   std::vector<std::string>& failures) {
  const auto problems = orxManifestContractProblems(manifest, wasm);
  failures.insert(failures.end(), problems.begin(), problems.end());
  const auto interface = describeModuleInterface(wasm.data(), wasm.size());
  if (!interface) return {};
  return {{"imports", interface->imports}, {"exports", interface->exports}};
}

Json runCases(const OrxPolicyManifest& manifest, std::span<const std::uint8_t> wasm,
              std::vector<std::string>& failures) {
  Json cases = Json::array();
  OrxPolicyRunFuel fuel;
  try {
    for (const auto& result : runPolicyCases(wasm, manifest, *orxDecisionKindOfModule(manifest.module), fuel)) {
      cases.push_back({{"case", result.policyCase->name}, {"status", result.problem.empty() ? kOrxPackageCheckPassing : "fail"}});
      if (!result.problem.empty()) failures.push_back(result.policyCase->name + ": " + result.problem);
    }
  } catch (const std::exception& error) {
    failures.push_back(error.what());
  }
  return cases;
}

}  // namespace

OrxPackageCheck checkPolicyPackage(const std::string& module, std::span<const std::uint8_t> source,
                                   std::span<const std::uint8_t> manifestBytes, std::span<const std::uint8_t> wasm,
                                   const std::string& compilerIdentity) {
  std::vector<std::string> failures;
  std::optional<OrxPolicyManifest> manifest;
  try {
    manifest = OrxPolicyManifest::decode(manifestBytes, module + ".manifest.json");
  } catch (const std::exception& error) {
    failures.push_back(error.what());
  }
  Json contract, cases = Json::array();
  if (manifest) {
    if (manifest->module != module) failures.push_back("manifest names module \"" + manifest->module + "\"");
    contract = checkContract(*manifest, wasm, failures);
    cases = runCases(*manifest, wasm, failures);
  }

  const bool passed = failures.empty();
  const Json report = {{"module", module},
                       {"status", passed ? kOrxPackageCheckPassing : "fail"},
                       {"sourceSha256", ORXSHA256::hex(source)},
                       {"packageManifestSha256", ORXSHA256::hex(manifestBytes)},
                       {"wasmSha256", ORXSHA256::hex(wasm)},
                       {"contract", contract},
                       {"boundedExecution", passed ? "verified" : "not verified"},
                       {"cases", cases},
                       {"failures", failures}};
  std::string reportText = report.dump(2) + "\n";
  Json evidence = {{"module", module},
                   {"orxAbi", manifest ? manifest->orxAbi : ""},
                   {"hostAbi", manifest ? manifest->hostAbi : ""},
                   {"compilerIdentity", compilerIdentity},
                   {"sourceSha256", ORXSHA256::hex(source)},
                   {"packageManifestSha256", ORXSHA256::hex(manifestBytes)},
                   {"wasmSha256", ORXSHA256::hex(wasm)},
                   {"packageCheckSha256", ORXSHA256::hex(reportText)},
                   {"packageCheckStatus", passed ? kOrxPackageCheckPassing : "fail"}};
  return {std::move(reportText), std::move(failures), std::move(evidence), std::move(manifest)};
}

}  // namespace ravo::orx
