#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>

#include <ravo-orx/core/ORXMessageText.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/runtime/OrxEvidence.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>
#include <ravo-orx/cli/OrxCliPattern.h>
#include <ravo-orx/cli/OrxCliTestReport.h>
#include <ravo-orx/package_check/OrxDurableFiles.h>
#include <ravo-orx/package_check/OrxPolicyCases.h>
#include <ravo-orx/package_check/OrxPolicyCompilers.h>
#include <ravo-orx/prove/OrxPolicyProver.h>

namespace ravo::orx {

using namespace internal;

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kManifestSuffix = ".manifest.json";

struct Options {
  bool verbose = false;
  bool coverage = false;
  std::optional<OrxCliPattern> run;  // selects cases by "module/case"
};

std::string printable(const fs::path& path) { return ORXMessageText::printable(path.string()); }

// The manifests named: each directory's *.manifest.json in name order, and manifest files as given.
std::vector<fs::path> manifestsIn(const std::vector<fs::path>& paths) {
  std::vector<fs::path> manifests;
  for (const auto& path : paths) {
    std::error_code error;
    if (!fs::is_directory(path, error)) {
      if (!fs::exists(path, error)) throw std::runtime_error("no such manifest or directory: " + printable(path));
      manifests.push_back(path);
      continue;
    }
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(path)) {
      if (entry.path().filename().string().ends_with(kManifestSuffix)) found.push_back(entry.path());
    }
    if (found.empty()) throw std::runtime_error("no *.manifest.json in " + printable(path));
    std::sort(found.begin(), found.end());
    manifests.insert(manifests.end(), found.begin(), found.end());
  }
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

// What the passing cases leave untested: each named decision value the module can give, by the model
// within the manifest's ranges, that no passing case reaches, with facts that reach it.
std::vector<std::string> coverage(const OrxPolicyManifest& manifest, const OrxDecisionKind& kind,
                                  std::span<const std::uint8_t> wasm, const std::vector<OrxPolicyCaseResult>& results) {
  const std::string label = "coverage " + manifest.module + ": ";
  std::vector<std::vector<std::int32_t>> passing;
  for (const auto& result : results) {
    if (result.problem.empty()) passing.push_back(result.policyCase->facts);
  }
  std::vector<std::string> notes;
  try {
    for (const auto& missed : orxUnreachedDecisions(wasm, kind, OrxProofOptions::of(kind, manifest), passing)) {
      notes.push_back(label + "no case reaches " + missed);
    }
  } catch (const std::exception& error) {
    return {label + "not computed: " + error.what()};
  }
  if (notes.empty()) notes.push_back(label + "its cases reach every reason and decision the module can give");
  return notes;
}

bool selected(const Options& options, const std::string& module, const std::string& name) {
  return !options.run || options.run->foundIn(module + "/" + name);
}

// Runs the selected cases of one manifest, charging them to the run's fuel; prints its coverage when
// asked (text reports only).
OrxCliModuleRun runManifest(const fs::path& file, const Options& options, std::optional<OrxPolicyCompilers>& compilers,
                            OrxPolicyRunFuel& fuel, std::vector<std::string>& notes) {
  std::string name = printable(file.filename());
  if (name.ends_with(kManifestSuffix)) name.resize(name.size() - kManifestSuffix.size());
  OrxPolicyManifest manifest;
  try {
    const auto bytes = OrxBoundedInput(file, kOrxPolicyManifestByteLimit).readAll<std::vector<std::uint8_t>>();
    manifest = OrxPolicyManifest::decode(bytes, printable(file));
  } catch (const std::exception& error) {
    return {name, error.what(), {{"manifest", error.what(), std::nullopt}}};
  }
  OrxCliModuleRun run{manifest.module, std::nullopt, {}};
  OrxPolicyManifest chosen = manifest;
  std::erase_if(chosen.cases, [&](const auto& c) { return !selected(options, manifest.module, c.name); });
  if (chosen.cases.empty()) return run;
  const OrxDecisionKind& kind = *orxDecisionKindOfModule(manifest.module);  // decode checked it
  std::vector<OrxPolicyCaseResult> results;
  std::vector<std::uint8_t> bytes;
  try {
    bytes = moduleBytes(file.parent_path(), manifest.module, compilers);
    if (const auto problems = orxManifestContractProblems(manifest, bytes); !problems.empty()) {
      throw std::runtime_error(problems.front());
    }
    results = runPolicyCases(bytes, chosen, kind, fuel);
  } catch (const OrxPolicyRunFuelExhausted&) {
    throw;  // ends the run, not just this module's
  } catch (const std::exception& error) {
    // A module that cannot run fails every selected case, with one reason.
    run.failure = error.what();
    for (const auto& policyCase : chosen.cases) run.cases.push_back({policyCase.name, error.what(), std::nullopt});
    return run;
  }
  for (const auto& result : results) {
    std::optional<std::string> warning;
    if (result.emits > 1) {
      warning = "emitted " + std::to_string(result.emits) + " times in one call; only the last emission counts";
    }
    run.cases.push_back({result.policyCase->name, result.problem, warning});
  }
  if (options.coverage) std::ranges::move(coverage(manifest, kind, bytes, results), std::back_inserter(notes));
  return run;
}

void printText(const OrxCliTestReport& report, const Options& options, const std::vector<std::string>& notes) {
  for (const auto& module : report.modules) {
    if (module.failure) {
      orxCliPrint("FAIL " + module.module + ": " + *module.failure);
      continue;
    }
    for (const auto& outcome : module.cases) {
      const std::string label = module.module + " \"" + ORXMessageText::printable(outcome.name) + "\"";
      if (outcome.warning) orxCliPrint("WARN " + label + ": " + *outcome.warning);
      if (!outcome.problem.empty()) orxCliPrint("FAIL " + label + ": " + outcome.problem);
      else if (options.verbose) orxCliPrint("PASS " + label);
    }
  }
  for (const auto& note : notes) orxCliPrint(note);
  orxCliPrint(std::to_string(report.passed()) + " passed, " + std::to_string(report.failed()) + " failed");
}

int runTest(OrxCliArguments& arguments) {
  Options options;
  options.verbose = arguments.flag("-v") || arguments.flag("--verbose");
  options.coverage = arguments.flag("--coverage");
  const bool json = arguments.flag("--json");
  const auto junit = arguments.option("--junit");
  const auto pattern = arguments.option("--run");
  if (pattern) options.run.emplace("--run", *pattern);
  std::vector<fs::path> paths;
  while (const auto path = arguments.nextIfAny()) paths.emplace_back(*path);
  arguments.finish();
  if (paths.empty()) paths.emplace_back("policies");

  OrxCliTestReport report;
  std::vector<std::string> notes;
  std::optional<OrxPolicyCompilers> compilers;
  OrxPolicyRunFuel fuel;
  for (const auto& manifest : manifestsIn(paths)) {
    auto run = runManifest(manifest, options, compilers, fuel, notes);
    if (!run.cases.empty()) report.modules.push_back(std::move(run));  // --run selected none of its cases
  }
  // Only a filter can select nothing: a manifest without cases is refused.
  if (report.passed() + report.failed() == 0) {
    throw std::runtime_error("no case matches --run \"" + ORXMessageText::printable(*pattern) + "\"");
  }
  if (junit) orxReplaceFile(*junit, orxCliTestReportJUnit(report));
  if (json) orxCliPrint(orxCliTestReportJSON(report));
  else printText(report, options, notes);
  return report.failed() == 0 ? 0 : kOrxCliRefusedInput;
}

}  // namespace

constinit const OrxCliCommand kOrxCliPolicyTestCommand{
    "test", "[DIR|MANIFEST...] [-v] [--coverage] [--run REGEX] [--junit FILE] [--json]",
    "run the cases of policy manifests",
    "Runs every case of every *.manifest.json in each DIR, and of each MANIFEST named (default: the\n"
    "directory policies), against its module: assembled from <module>.wat beside the manifest with\n"
    "wat2wasm, or <module>.wasm when there is no source. The manifest must keep the schema of\n"
    "docs/POLICY-MANIFEST.md and the module its contract (imports, decide). Each case runs through the\n"
    "runtime's decision path: the module must emit exactly the case's five values and the runtime must\n"
    "accept them as the decision they stand for.\n"
    "Prints one FAIL line per failing case (the module, the case, the expected and emitted values, or\n"
    "the assembler's whole diagnostic), a WARN line for a case whose call emitted more than once; -v\n"
    "prints a PASS line for every passing case too. --coverage asks the prover, per module, which reason,\n"
    "boolean, action or route the module can give within the manifest's fact ranges that no passing case\n"
    "reaches, and prints a line for each with facts that reach it (see policy prove for its limits).\n"
    "The last line is \"N passed, M failed\".\n"
    "A manifest holds at most 10000 cases, and the cases of one run use at most 1000000000 fuel units\n"
    "together (each case's call counted once); a run that needs more stops with exit status 1.\n"
    "--run REGEX runs only the cases whose \"module/case\" the regular expression (ICU's syntax, at most\n"
    "1000 bytes) matches anywhere; a search that needs more than about a second is a usage mistake.\n"
    "--junit FILE also writes the results as JUnit XML (written whole or not at all); --json prints them\n"
    "as one JSON object instead of the lines above.\n"
    "Exit status: 0 every case passed, 1 a case failed or a manifest or module could not run, or no case\n"
    "matches --run, or FILE could not be written, 2 usage mistake.\n",
    runTest};

}  // namespace ravo::orx
