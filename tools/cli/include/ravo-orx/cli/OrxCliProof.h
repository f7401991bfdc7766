#pragma once
// What `policy prove` and `policy diff` share: the proof's options from the command line (the
// manifest's ranges and properties, the time limit, the unroll bound) and their exit statuses.

#include <string>
#include <string_view>

#include <ravo-orx/cli/OrxCliArguments.h>
#include <ravo-orx/prove/OrxPolicyProver.h>

namespace ravo::orx {

// A question the prover could not answer (a gap of its model, a limit).
inline constexpr int kOrxCliUnknown = 4;
// The model and the runtime disagreed about a counterexample: a fault of the prover.
inline constexpr int kOrxCliProverFault = 5;

// Takes --manifest M, --timeout-ms N and --unroll N. Throws OrxCliUsageError for a malformed number,
// and std::exception for a manifest that does not read or is another kind's.
OrxProofOptions orxCliProofOptions(OrxCliArguments& arguments, const OrxDecisionKind& kind);

void orxCliReportProverFault(std::string_view program, const std::string& message);

// Runs `prover`, turning a disagreement between model and runtime into its message on standard error
// and kOrxCliProverFault.
template <class Prover>
int orxCliRunProver(std::string_view program, Prover prover) {
  try {
    return prover();
  } catch (const OrxProverDisagreement& error) {
    orxCliReportProverFault(program, error.what());
    return kOrxCliProverFault;
  }
}

// The options' help, shared by both commands' help texts (a literal, so that it joins theirs).
#define ORX_CLI_PROOF_OPTIONS_HELP                                                                          \
  "--manifest M gives the facts' ranges and the properties (docs/POLICY-MANIFEST.md); without it every\n" \
  "fact takes any 32-bit value. --timeout-ms N limits each query of the solver (default 5000), building\n" \
  "a module's model takes at most 60 s, the solver's memory is limited to 512 MB; --unroll N bounds the\n" \
  "iterations of a loop the model follows (default 64): a question that runs into a limit is answered\n"  \
  "unknown, never wrongly.\n"

}  // namespace ravo::orx
