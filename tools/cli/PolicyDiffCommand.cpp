#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliDecisions.h>
#include <ravo-orx/cli/OrxCliIO.h>
#include <ravo-orx/cli/OrxCliPolicyModule.h>
#include <ravo-orx/cli/OrxCliProof.h>

namespace ravo::orx {

namespace {

constexpr std::string_view kProgram = "ravo-orx policy diff";

std::string listed(const std::vector<std::string>& names) {
  std::string text;
  for (const auto& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

int runDiff(OrxCliArguments& arguments) {
  const bool allFields = arguments.flag("--all-fields");
  const std::string oldFile = arguments.next("OLD");
  const std::string newFile = arguments.next("NEW");
  if (oldFile == "-" && newFile == "-") throw OrxCliUsageError("OLD and NEW cannot both be standard input");
  const OrxDecisionKind& kind = orxCliPolicyKind(arguments);
  const OrxProofOptions options = orxCliProofOptions(arguments, kind);
  arguments.finish();
  const auto oldModule = OrxCliPolicyModule::read(oldFile);
  const auto newModule = OrxCliPolicyModule::read(newFile);
  return orxCliRunProver(kProgram, [&] {
    const OrxPolicyDiff diff = orxDiffPolicies(oldModule.bytes, newModule.bytes, kind, options, allFields);
    for (std::size_t i = 0; i < diff.differences.size(); ++i) {
      const auto& difference = diff.differences[i];
      orxCliPrint("difference " + std::to_string(i + 1) + ": " + listed(difference.fields));
      orxCliPrint("  facts " + difference.facts);
      orxCliPrint("  old   " + difference.oldDecision);
      orxCliPrint("  new   " + difference.newDecision);
    }
    if (diff.truncated) orxCliPrint("(more ways of differing than these)");
    for (const auto& summary : diff.fieldSummaries) orxCliPrint(summary);
    if (!diff.differences.empty()) {
      orxCliPrint("different: " + std::to_string(diff.differences.size()) + (diff.truncated ? " or more" : "") +
                  (diff.differences.size() == 1 ? " way" : " ways"));
      return kOrxCliRefusedInput;
    }
    if (diff.unknown) {
      orxCliPrint("unknown: " + *diff.unknown);
      return kOrxCliUnknown;
    }
    orxCliPrint("equivalent");
    return 0;
  });
}

}  // namespace

constinit const OrxCliCommand kOrxCliPolicyDiffCommand{
    "diff", "OLD NEW authz|sync|cinema [--manifest M] [--all-fields] [--timeout-ms N] [--unroll N]",
    "decide whether two modules give the same decisions",
    "OLD and NEW are modules (.wasm) or policy sources (.wat, .c, .rs), compiled as 'policy build' does.\n"
    "Decides whether they give the same decision (its fields, fail-safe decisions included) for every\n"
    "facts vector within the ranges. When they do not, prints one counterexample per distinct set of\n"
    "differing fields, each with its facts (a JSON object, as 'policy eval --facts' reads it) and both\n"
    "decisions, replayed through the runtime's own decision path; then one line per field saying whether\n"
    "it is the same for every facts vector, differs for some, or for every one. --all-fields compares\n"
    "what the modules emit too: whether the call traps, decide's result, how many values it emitted and\n"
    "the first five.\n" ORX_CLI_PROOF_OPTIONS_HELP
    "Exit status: 0 equivalent, 1 different, the host refuses a module or a file cannot be read, 2 usage\n"
    "mistake, 4 no difference found but equivalence is unknown, 5 the runtime's replay of a\n"
    "counterexample disagreed with the model (a fault of the prover; both answers on standard error).\n",
    runDiff};

}  // namespace ravo::orx
