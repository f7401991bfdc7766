#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliDecisions.h>
#include <ravo-orx/cli/OrxCliIO.h>
#include <ravo-orx/cli/OrxCliPolicyModule.h>

namespace ravo::orx {

using namespace internal;

namespace {

int runEval(OrxCliArguments& arguments) {
  const auto [module, kind, facts] = orxCliPolicyDecision(arguments, arguments.option("--facts"));
  OrxPolicyDecider decider(orxModulesWith(kind, module.load(kind.module, /*allowPrecompiled=*/false)));
  if (!module.approvedAs()) {
    orxCliWarn("ravo-orx policy eval",
               module.file + " (sha256 " + module.digest.substr(0, 8) + ") is not approved by this build");
  }
  return orxCliPrintAnswer(orxDecide(kind, decider, facts));
}

}  // namespace

constinit const OrxCliCommand kOrxCliPolicyEvalCommand{
    "eval", "MODULE.wasm authz|sync|cinema (FACT... | --facts FILE|-)", "take one decision with any module",
    "Loads MODULE ('-' for standard input) through the runtime's module host on the interpreter,\n"
    "approved or not, takes one decision with the facts given as for 'ravo-orx decide', and prints it\n"
    "exactly as decide does, with its \"source\". Standard error warns when this build does not approve\n"
    "the module. A module that traps, or runs out of its budget, answers fail-safe with source \"trap\"\n"
    "and exit status 3; one the host refuses to load exits with status 1 and the host's own text.\n",
    runEval};

}  // namespace ravo::orx
