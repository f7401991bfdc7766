#include <cstdio>

#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliDecisions.h>
#include <ravo-orx/cli/OrxCliIO.h>
#include <ravo-orx/cli/OrxCliPolicyModule.h>
#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/package_check/OrxExplainedCall.h>

namespace ravo::orx {

using namespace internal;

namespace {

constexpr std::string_view kProgram = "ravo-orx policy eval";

void explain(std::string_view text) {
  std::fprintf(stderr, "%.*s: %.*s\n", static_cast<int>(kProgram.size()), kProgram.data(),
               static_cast<int>(text.size()), text.data());
}

std::string listed(const std::vector<std::int32_t>& values) {
  std::string text;
  for (const auto value : values) text += (text.empty() ? "" : ", ") + std::to_string(value);
  return "[" + text + "]";
}

// Why the decision is what it is, on standard error: always the trap or the refusing rule and a second
// emission, everything with -v.
void explainCall(const OrxExplainedCall& call, bool verbose) {
  if (verbose) {
    explain(call.result ? "decide returned " + std::to_string(*call.result) : std::string("decide returned nothing"));
    explain(call.emitted ? "emitted " + listed(*call.emitted) : std::string("emitted nothing"));
  }
  if (call.trap) explain("trapped: " + *call.trap);
  if (call.refusal) explain("refused: " + *call.refusal);
  if (call.measure.emits > 1) {
    orxCliWarn(kProgram, "emitted " + std::to_string(call.measure.emits) +
                             " times in one call; only the last emission counts");
  }
  if (verbose) explain(orxDescribeMeasure(call.measure));
}

int runEval(OrxCliArguments& arguments) {
  const bool verbose = arguments.flag("-v") || arguments.flag("--verbose");
  const auto [module, kind, facts] = orxCliPolicyDecision(arguments, arguments.option("--facts"));
  OrxPolicyDecider decider(orxModulesWith(kind, module.load(kind.module, /*allowPrecompiled=*/false)));
  if (!module.approvedAs()) {
    orxCliWarn(kProgram, module.file + " (sha256 " + module.digest.substr(0, 8) + ") is not approved by this build");
  }
  // A second instance, metered and counting, explains the call the decision made.
  const auto measured = loadMeasuredModule(kind.module, module.bytes);
  explainCall(orxExplainCall(*measured, kind, facts), verbose);
  return orxCliPrintAnswer(orxDecide(kind, decider, facts));
}

}  // namespace

constinit const OrxCliCommand kOrxCliPolicyEvalCommand{
    "eval", "MODULE authz|sync|cinema (FACT... | --facts FILE|-) [-v]", "take one decision with any module",
    "MODULE is a module (.wasm) or a policy's source (.wat, .c, .rs), compiled as 'policy build' does.\n"
    "Loads MODULE ('-' for standard input) through the runtime's module host on the interpreter,\n"
    "approved or not, takes one decision with the facts given as for 'ravo-orx decide', and prints it\n"
    "exactly as decide does, with its \"source\". Standard error says why a decision is fail-safe: the\n"
    "trap's text, or the runtime's check that refused the emitted record (\"refused: [4] policy version\n"
    "0 is outside 1…10000\": the emitted value and the rule), and warns when this build does not approve\n"
    "the module or the call emitted more than once (only the last emission counts). -v also shows what\n"
    "decide returned and emitted, and the fuel and stack the call used against its budgets (1000000\n"
    "fuel units; 4000 stack units, a frame being 4 plus its function's parameters and locals).\n"
    "Exit status: 0 the module's own decision, 1 the host refuses to load the module (its own text on\n"
    "standard error) or a file cannot be read, 2 usage mistake, 3 a fail-safe decision (a trap, a budget\n"
    "run out, or a refused record).\n",
    runEval};

}  // namespace ravo::orx
