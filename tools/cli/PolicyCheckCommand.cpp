#include <algorithm>
#include <filesystem>

#include <ravo-orx/core/ORXMessageText.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>
#include <ravo-orx/cli/OrxCliPolicyModule.h>
#include <ravo-orx/package_check/OrxDecisionByKind.h>
#include <ravo-orx/package_check/OrxPolicyCases.h>
#include <ravo-orx/package_check/OrxPolicyManifest.h>

namespace ravo::orx {

using namespace internal;

namespace {

void printField(std::string_view label, const std::string& value) {
  std::string line(label);
  line.resize(11, ' ');
  orxCliPrint(line + value);
}

std::string joined(const std::vector<std::string>& texts) {
  std::string text;
  for (const auto& item : texts) text += (text.empty() ? "" : "; ") + item;
  return text.empty() ? "none" : text;
}

// What the module's interface lacks for the manifest, or, without one, for any of the three decisions.
std::optional<std::string> contractProblem(const OrxModuleInterface& interface, std::span<const std::uint8_t> bytes,
                                           const std::optional<OrxPolicyManifest>& manifest) {
  auto exports = [&](const std::string& signature) {
    return std::find(interface.exports.begin(), interface.exports.end(), signature) != interface.exports.end();
  };
  if (manifest) {
    const auto problems = orxManifestContractProblems(*manifest, bytes);
    if (problems.empty()) return std::nullopt;
    return problems.front();
  }
  if (interface.imports.size() != 1 || !interface.imports[0].starts_with("func output.emit(")) {
    return "imports must be exactly the function output.emit";
  }
  for (const std::size_t facts : {8, 13}) {
    std::string signature = "func decide(";
    for (std::size_t i = 0; i < facts; ++i) signature += i ? ", i32" : "i32";
    if (exports(signature + ") -> (i32)")) return std::nullopt;
  }
  return "no export decide taking 8 or 13 i32 facts and returning i32";
}

// Runs the manifest's cases as `policy test` does; one FAIL line each on standard output.
int checkCases(const OrxCliPolicyModule& module, const OrxPolicyManifest& manifest) {
  std::size_t failed = 0;
  OrxPolicyRunFuel fuel;
  for (const auto& result : runPolicyCases(module.bytes, manifest, *orxDecisionKindOfModule(manifest.module), fuel)) {
    const std::string name = "\"" + ORXMessageText::printable(result.policyCase->name) + "\"";
    if (result.emits > 1) {
      orxCliPrint("WARN " + name + ": emitted " + std::to_string(result.emits) +
                  " times in one call; only the last emission counts");
    }
    if (result.problem.empty()) continue;
    orxCliPrint("FAIL " + name + ": " + result.problem);
    ++failed;
  }
  printField("cases", std::to_string(manifest.cases.size() - failed) + " passed, " + std::to_string(failed) + " failed");
  if (failed == 0) return 0;
  throw std::runtime_error(module.file + ": " + std::to_string(failed) + " of the manifest's " +
                           std::to_string(manifest.cases.size()) + " cases failed");
}

int runCheck(OrxCliArguments& arguments) {
  const std::string moduleFile = arguments.next("MODULE");
  const auto manifestFile = arguments.nextIfAny();
  arguments.finish();
  if (moduleFile == "-" && manifestFile == "-") {
    throw OrxCliUsageError("MODULE and MANIFEST cannot both be standard input");
  }
  const auto module = OrxCliPolicyModule::read(moduleFile);
  std::optional<OrxPolicyManifest> manifest;
  if (manifestFile) {
    const std::string text = orxCliReadInput(manifestFile, kOrxPolicyManifestByteLimit);
    manifest = OrxPolicyManifest::decode(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()),
                                         orxCliInputName(manifestFile));
  }

  const std::string name = manifest ? manifest->module : std::filesystem::path(module.file).stem().string();
  const auto loaded = module.load(name, /*allowPrecompiled=*/true);  // the host's refusal ends the check
  const auto interface = describeModuleInterface(module.bytes.data(), module.bytes.size());
  printField("module", module.file);
  printField("sha256", module.digest);
  printField("imports", joined(interface->imports));
  printField("exports", joined(interface->exports));
  const auto approved = module.approvedAs();
  printField("approved", approved ? "yes, as " + *approved : std::string("no, this build approves other bytes"));
  printField("execution", module.executionBound());
  printField("tier", std::string(orxCaseName(loaded->tier())));
  if (const auto problem = contractProblem(*interface, module.bytes, manifest)) {
    printField("contract", "refused: " + *problem);
    throw std::runtime_error(module.file + ": " + *problem);
  }
  printField("contract", manifest ? "matches " + orxCliInputName(manifestFile) : std::string("a policy module's"));
  if (manifest) return checkCases(module, *manifest);
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliPolicyCheckCommand{
    "check", "MODULE [MANIFEST]", "load a module as the runtime would and describe it",
    "MODULE is a module (.wasm) or a policy's source (.wat, .c, .rs), compiled as 'policy build' does.\n"
    "Loads MODULE through the runtime's module host and its load budgets, and prints its SHA-256, its\n"
    "imports and exports, whether this build approves its digest, how its execution is bounded (its\n"
    "proven worst case per call, or why it is metered) and the tier it would run on. It then checks the\n"
    "import/export contract: against MANIFEST's imports and decide signature when given, otherwise the\n"
    "contract every policy module keeps (one import output.emit, an export decide taking 8 or 13 i32\n"
    "facts). With MANIFEST it then runs the manifest's cases as 'policy test' does, printing a FAIL line\n"
    "for each that fails and the count. Either file may be '-' for standard input.\n"
    "Exit status: 0 the module is admitted (and every case passed), 1 the host refuses it (its own text\n"
    "on standard error), the manifest breaks its schema, the contract does not hold or a case failed,\n"
    "2 usage mistake.\n",
    runCheck};

}  // namespace ravo::orx
