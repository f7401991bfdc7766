// orx_package_check: checks the assembled policy modules against their package manifests and writes
// the provenance the runtime verifies.
//
//   orx_package_check POLICIES ARTIFACTS WAT2WASM WAT2WASM_VERSION BUILD_SCRIPT
//
// For each module it loads "<module>.wasm" from ARTIFACTS through the runtime's own module host (so the
// engine and its load and execution budgets judge it exactly as at run time), checks the import and
// export contract of its manifest, runs every case of the manifest's table and compares every emitted
// value, then writes "<module>.package-check.json". Finally it writes "evidence.json" and prints the
// build constants. Exits 1 when any module fails. Everything written is deterministic: no times, no
// paths, so rebuilding unchanged sources reproduces every byte.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "core/ORXSHA256.h"
#include "runtime/LoadedModule.h"
#include "runtime/OrxArtifactFiles.h"

namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr const char* kModules[] = {"player_authz", "sync_correction", "cinema_admission"};

std::string textOf(const std::vector<std::uint8_t>& bytes) { return std::string(bytes.begin(), bytes.end()); }

void writeFile(const fs::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
  if (!out) throw std::runtime_error("could not write " + path.string());
}

std::string formatList(const std::vector<std::int32_t>& values) {
  std::string text = "[";
  for (size_t i = 0; i < values.size(); ++i) text += (i ? ", " : "") + std::to_string(values[i]);
  return text + "]";
}

struct ModuleReport {
  Json evidence;  // the module's record in evidence.json
  bool passed = true;
};

// Checks one module; `failures` collects what differs from the manifest.
ModuleReport checkModule(const std::string& name, const fs::path& policies, const fs::path& artifacts) {
  const auto source = readArtifactFile(policies / (name + ".wat"));
  const auto manifestBytes = readArtifactFile(policies / (name + ".manifest.json"));
  const auto wasm = readArtifactFile(artifacts / (name + ".wasm"));
  const Json manifest = Json::parse(textOf(manifestBytes));
  std::vector<std::string> failures;

  if (manifest.at("module") != name) failures.push_back("manifest names module " + manifest.at("module").dump());

  Json contract;
  if (auto interface = describeModuleInterface(wasm.data(), wasm.size())) {
    contract = {{"imports", interface->imports}, {"exports", interface->exports}};
    if (Json(interface->imports) != manifest.at("imports")) failures.push_back("imports differ from the manifest");
    const auto& decide = manifest.at("decide").get_ref<const std::string&>();
    if (std::find(interface->exports.begin(), interface->exports.end(), decide) == interface->exports.end()) {
      failures.push_back("no export " + decide);
    }
  } else {
    failures.push_back("not a valid WebAssembly module");
  }

  Json cases = Json::array();
  try {
    auto module = LoadedModule::instantiate(name, wasm, /*allowPrecompiled=*/false);
    for (const auto& row : manifest.at("cases")) {
      const auto facts = row.at("facts").get<std::vector<std::int32_t>>();
      const auto expected = row.at("emits").get<std::vector<std::int32_t>>();
      const OrxInvocation call = module->invoke(facts);
      std::string problem;
      if (call.error) {
        problem = "trapped: " + *call.error;
      } else if (!call.emitted || *call.emitted != expected) {
        problem = "emitted " + (call.emitted ? formatList(*call.emitted) : std::string("nothing")) + ", expected " +
                  formatList(expected);
      } else if (!call.result || *call.result != expected.at(1)) {
        problem = "decide returned " + (call.result ? std::to_string(*call.result) : std::string("nothing"));
      }
      cases.push_back({{"case", row.at("case")}, {"status", problem.empty() ? "pass" : "fail"}});
      if (!problem.empty()) failures.push_back(row.at("case").get<std::string>() + ": " + problem);
    }
  } catch (const std::exception& error) {
    failures.push_back(error.what());
  }

  const bool passed = failures.empty();
  Json report = {{"module", name},
                 {"status", passed ? "pass" : "fail"},
                 {"sourceSha256", ORXSHA256::hex(source)},
                 {"packageManifestSha256", ORXSHA256::hex(manifestBytes)},
                 {"wasmSha256", ORXSHA256::hex(wasm)},
                 {"contract", contract},
                 {"boundedExecution", passed ? "verified" : "not verified"},
                 {"cases", cases},
                 {"failures", failures}};
  const std::string reportText = report.dump(2) + "\n";
  writeFile(artifacts / (name + ".package-check.json"), reportText);
  for (const auto& failure : failures) std::fprintf(stderr, "%s: %s\n", name.c_str(), failure.c_str());

  return {Json{{"module", name},
               {"orxAbi", manifest.at("orxAbi")},
               {"hostAbi", manifest.at("hostAbi")},
               {"compilerIdentity", ""},  // filled in by the caller
               {"sourceSha256", ORXSHA256::hex(source)},
               {"packageManifestSha256", ORXSHA256::hex(manifestBytes)},
               {"wasmSha256", ORXSHA256::hex(wasm)},
               {"packageCheckSha256", ORXSHA256::hex(reportText)},
               {"packageCheckStatus", passed ? "pass" : "fail"}},
          passed};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) {
    std::fprintf(stderr, "usage: %s POLICIES ARTIFACTS WAT2WASM WAT2WASM_VERSION BUILD_SCRIPT\n", argv[0]);
    return 2;
  }
  try {
    const fs::path policies = argv[1], artifacts = argv[2], build_script = argv[5];
    const std::string assemblerDigest = ORXSHA256::hex(readArtifactFile(argv[3]));
    // See tools/README.md for these two definitions.
    const std::string compilerIdentity = std::string("ORX ") + argv[4] + " commit " + assemblerDigest.substr(0, 40);
    const std::string toolchainBundle = ORXSHA256::hex(assemblerDigest + "  wat2wasm\n" +
                                                       ORXSHA256::hex(readArtifactFile(build_script)) +
                                                       "  tools/build_orx.sh\n");

    Json records = Json::array();
    bool passed = true;
    for (const char* name : kModules) {
      auto report = checkModule(name, policies, artifacts);
      report.evidence["compilerIdentity"] = compilerIdentity;
      records.push_back(report.evidence);
      passed = passed && report.passed;
    }
    const Json evidence = {{"generatedBy", "tools/build_orx.sh"},
                           {"profile", "mock-output-v011"},
                           {"compilerIdentity", compilerIdentity},
                           {"toolchainBundleSha256", toolchainBundle},
                           {"modules", records}};
    writeFile(artifacts / "evidence.json", evidence.dump(2) + "\n");

    std::printf("compilerIdentity       %s\n", compilerIdentity.c_str());
    std::printf("toolchainBundleSha256  %s\n", toolchainBundle.c_str());
    for (const auto& record : records) {
      std::printf("%-22s wasm %s\n%-22s source %s\n%-22s manifest %s\n", record["module"].get<std::string>().c_str(),
                  record["wasmSha256"].get<std::string>().c_str(), "", record["sourceSha256"].get<std::string>().c_str(),
                  "", record["packageManifestSha256"].get<std::string>().c_str());
    }
    if (!passed) {
      std::fprintf(stderr, "package check failed\n");
      return 1;
    }
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "package check failed: %s\n", error.what());
    return 1;
  }
}
