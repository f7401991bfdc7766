#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliDecisions.h>
#include <ravo-orx/cli/OrxCliIO.h>
#include <ravo-orx/cli/OrxCliPolicyModule.h>
#include <ravo-orx/cli/OrxCliProof.h>

namespace ravo::orx {

namespace {

constexpr std::string_view kProgram = "ravo-orx policy prove";

std::string_view verdictName(OrxProofVerdict verdict) {
  switch (verdict) {
    case OrxProofVerdict::proved: return "proved ";
    case OrxProofVerdict::refuted: return "refuted";
    case OrxProofVerdict::unknown: break;
  }
  return "unknown";
}

int runProve(OrxCliArguments& arguments) {
  const std::string file = arguments.next("MODULE");
  const OrxDecisionKind& kind = orxCliPolicyKind(arguments);
  const OrxProofOptions options = orxCliProofOptions(arguments, kind);
  arguments.finish();
  const auto module = OrxCliPolicyModule::read(file);
  return orxCliRunProver(kProgram, [&] {
    std::size_t counts[3] = {};
    for (const auto& result : orxProvePolicy(module.bytes, kind, options)) {
      ++counts[static_cast<std::size_t>(result.verdict)];
      orxCliPrint(std::string(verdictName(result.verdict)) + "  " + result.obligation +
                  (result.detail.empty() ? "" : ": " + result.detail));
    }
    orxCliPrint(std::to_string(counts[0]) + " proved, " + std::to_string(counts[1]) + " refuted, " +
                std::to_string(counts[2]) + " unknown");
    return counts[1] ? kOrxCliRefusedInput : counts[2] ? kOrxCliUnknown : 0;
  });
}

}  // namespace

constinit const OrxCliCommand kOrxCliPolicyProveCommand{
    "prove", "MODULE authz|sync|cinema [--manifest M] [--timeout-ms N] [--unroll N]",
    "prove a module's decisions valid for every facts vector",
    "MODULE is a module (.wasm) or a policy's source (.wat, .c, .rs), compiled as 'policy build' does.\n"
    "Loads MODULE through the runtime's module host, builds a model of its decide from its code, and\n"
    "proves for every facts vector within the ranges: that decide never traps, that the host accepts\n"
    "every record it emits (one obligation per check of the kind's validation), and that each property\n"
    "of the manifest holds of the host's decision, its fail-safe decisions included. Prints one line per\n"
    "obligation: \"proved\"; \"refuted\" with a counterexample, the facts as a JSON object (as\n"
    "'policy eval --facts' reads them) and the decision they give, replayed through the runtime's own\n"
    "decision path; or \"unknown\" with why (a loop past the unroll bound, an instruction the model does\n"
    "not follow, a module that keeps state between calls, the time or memory limit). The last line\n"
    "counts them.\n" ORX_CLI_PROOF_OPTIONS_HELP
    "Exit status: 0 every obligation proved, 1 one was refuted, the host refuses MODULE or a file cannot\n"
    "be read, 2 usage mistake, 4 none was refuted but one is unknown, 5 the runtime's replay of a\n"
    "counterexample disagreed with the model (a fault of the prover; both answers on standard error).\n",
    runProve};

}  // namespace ravo::orx
