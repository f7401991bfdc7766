#include <filesystem>

#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliDecisions.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

namespace {

// A runtime whose modules did not load answers fail-safe, as it would to an embedding host: the
// decision is printed like any other, with its source, a warning saying why goes to standard error, and
// the exit status 3 tells a script the answer was not the policy's own.
int runDecide(OrxCliArguments& arguments) {
  const std::optional<std::filesystem::path> artifacts = arguments.option("--artifacts");
  const std::optional<std::string> factsFile = arguments.option("--facts");
  const OrxDecisionKind& kind = orxCliPolicyKind(arguments);
  const auto facts = orxCliFacts(arguments, kind, factsFile);
  OrxPolicyRuntime runtime(artifacts);
  if (runtime.loadError()) {
    orxCliWarn("ravo-orx decide", "the policy artifacts did not load: " + *runtime.loadError());
  }
  return orxCliPrintAnswer(orxDecide(kind, runtime, facts));
}

}  // namespace

constinit const OrxCliCommand kOrxCliDecideCommand{
    "decide", "authz|sync|cinema (FACT... | --facts FILE|-) [--artifacts DIR]",
    "take one policy decision and print it as JSON",
    "Builds a policy runtime over DIR (default: the bundled artifacts, as for status), takes one\n"
    "decision with the facts given as 32-bit integers in this order, or with --facts as a JSON object\n"
    "keyed by their names ({\"role\": 2, \"command\": 6, ...}; '-' reads it from standard input), and\n"
    "prints the decision as JSON, enumeration cases by name, with \"source\": \"policy\" for the module's\n"
    "own answer. A module that did not load, trapped or answered out of range gives the fail-safe\n"
    "decision with source \"moduleUnavailable\", \"trap\" or \"invalidOutput\" and exit status 3; when the\n"
    "artifacts did not load, a warning on standard error says why.\n"
    "\n"
    "  authz   role command grantFlags tokenAgeMilliseconds tokenTTLMilliseconds rateUsed rateLimit\n"
    "          controlMode\n"
    "          -> {\"isAllowed\":...,\"reason\":...,\"policyVersion\":...,\"source\":...}\n"
    "  sync    driftMilliseconds roundTripMilliseconds jitterMilliseconds bufferAheadMilliseconds\n"
    "          rateX100 stallCount syncAgeMilliseconds toleranceMilliseconds\n"
    "          -> {\"action\":...,\"rateX1000\":...,\"correctionMilliseconds\":...,\"reason\":...,\"source\":...}\n"
    "  cinema  sourceFPSX100 targetFPSX100 sourceReservoirMilliseconds headroom thermalState\n"
    "          memoryPressure bridgeTenthsMilliseconds temporalTenthsMilliseconds\n"
    "          interpolationTenthsMilliseconds metalFXTenthsMilliseconds finalDetailTenthsMilliseconds\n"
    "          modelTenthsMilliseconds modelSampleCount\n"
    "          -> {\"route\":...,\"sparseAnchorIntervalFrames\":...,\"safeBudgetTenthsMilliseconds\":...,\n"
    "              \"reason\":...,\"source\":...}\n",
    runDecide};

}  // namespace ravo::orx
