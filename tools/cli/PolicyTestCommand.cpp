#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>

#include <ravo-orx/runtime/OrxEvidence.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>
#include <ravo-orx/package_check/OrxPolicyCases.h>
#include <ravo-orx/package_check/OrxPolicyCompilers.h>

namespace ravo::orx {

using namespace internal;

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kManifestSuffix = ".manifest.json";

struct Tally {
  std::size_t passed = 0;
  std::size_t failed = 0;
};

std::vector<fs::path> manifestsIn(const fs::path& directory) {
  std::vector<fs::path> manifests;
  for (const auto& entry : fs::directory_iterator(directory)) {
    if (entry.path().filename().string().ends_with(kManifestSuffix)) manifests.push_back(entry.path());
  }
  std::sort(manifests.begin(), manifests.end());
  if (manifests.empty()) throw std::runtime_error("no *.manifest.json in " + directory.string());
  return manifests;
}

// The module compiled from its source beside the manifest, or the .wasm beside it. The compilers are
// found (which runs the assembler once for its version) when a run first needs them, and kept for the run.
std::vector<std::uint8_t> moduleBytes(const fs::path& directory, const std::string& module,
                                      std::optional<OrxPolicyCompilers>& compilers) {
  if (const auto source = findOrxPolicySource(directory, module)) {
    if (!compilers) compilers = OrxPolicyCompilers::find();
    return compilers->compile(*source);
  }
  return readArtifactFile(directory / orxModuleFileName(module));
}

// The reasons no passing case answered with: what the cases leave untested.
std::string coverage(const OrxDecisionKind& kind, const std::vector<OrxPolicyCaseResult>& results) {
  std::set<std::int32_t> produced;
  for (const auto& result : results) {
    if (result.problem.empty() && result.reason) produced.insert(*result.reason);
  }
  std::string missing;
  for (std::size_t code = 0; code < kind.reasonNames.size(); ++code) {
    if (!produced.contains(static_cast<std::int32_t>(code))) missing += " " + std::string(kind.reasonNames[code]);
  }
  return missing.empty() ? "its cases produce every reason" : "its cases never produce reason" + missing;
}

void testModule(const fs::path& manifestFile, bool verbose, bool reportCoverage,
                std::optional<OrxPolicyCompilers>& compilers, Tally& tally) {
  const auto manifest = OrxPolicyManifest::decode(readArtifactFile(manifestFile), manifestFile.string());
  const OrxDecisionKind* kind = orxDecisionKindOfModule(manifest.module);
  const std::string module = manifest.module;
  std::vector<OrxPolicyCaseResult> results;
  try {
    if (!kind) throw std::runtime_error("no decision of this runtime is taken by module \"" + module + "\"");
    results = runPolicyCases(moduleBytes(manifestFile.parent_path(), module, compilers), manifest, *kind);
  } catch (const std::exception& error) {
    // A module that cannot run fails every one of its cases, reported once.
    orxCliPrint("FAIL " + module + ": " + error.what());
    tally.failed += manifest.cases.size();
    return;
  }
  for (const auto& result : results) {
    const std::string label = module + " \"" + result.policyCase->name + "\"";
    if (!result.problem.empty()) {
      orxCliPrint("FAIL " + label + ": " + result.problem);
      ++tally.failed;
      continue;
    }
    if (verbose) orxCliPrint("PASS " + label);
    ++tally.passed;
  }
  if (reportCoverage) orxCliPrint("coverage " + module + ": " + coverage(*kind, results));
}

int runTest(OrxCliArguments& arguments) {
  const bool verbose = arguments.flag("-v") || arguments.flag("--verbose");
  const bool reportCoverage = arguments.flag("--coverage");
  const fs::path directory = arguments.nextIfAny().value_or("policies");
  arguments.finish();
  Tally tally;
  std::optional<OrxPolicyCompilers> compilers;
  for (const auto& manifest : manifestsIn(directory)) testModule(manifest, verbose, reportCoverage, compilers, tally);
  orxCliPrint(std::to_string(tally.passed) + " passed, " + std::to_string(tally.failed) + " failed");
  return tally.failed == 0 ? 0 : kOrxCliRefusedInput;
}

}  // namespace

constinit const OrxCliCommand kOrxCliPolicyTestCommand{
    "test", "[DIR] [-v] [--coverage]", "run the cases of every policy manifest",
    "Runs every case of every *.manifest.json in DIR (default: policies) against its module, assembled\n"
    "from <module>.wat beside the manifest with wat2wasm, or <module>.wasm when there is no source,\n"
    "through the runtime's decision path: the module must emit exactly the case's five values and the\n"
    "runtime must accept them as the decision they stand for. Prints one FAIL line per failing case,\n"
    "naming the module, the case, the expected and the emitted values; -v prints a PASS line for every\n"
    "passing case too; --coverage prints, per module, the reason codes no passing case produced. The\n"
    "last line is \"N passed, M failed\". Exit status 1 when any case failed.\n",
    runTest};

}  // namespace ravo::orx
