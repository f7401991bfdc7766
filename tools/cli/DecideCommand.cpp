#include <algorithm>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include <ravo-orx/runtime/OrxDecisionLogSinks.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliDecisions.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

namespace {

// A log written from the command line never drops a record: the decision waits for room instead.
OrxDecisionLogOptions fileLog(const std::optional<std::string>& logFile) {
  OrxDecisionLogOptions options;
  if (!logFile) return options;
  options.sink = std::make_shared<OrxDecisionLogFileSink>(*logFile, OrxDecisionLogFileSync::afterSeal);
  options.whenFull = OrxDecisionLogWhenFull::block;
  return options;
}

// One decision per line of facts, one answer per line; the exit status is 3 when any was fail-safe.
// A line that is not facts stops the run with its line number: the answers before it stand (and are
// logged).
int decideLines(const OrxDecisionKind& kind, OrxPolicyRuntime& runtime, const std::optional<std::string>& file) {
  int status = 0;
  std::uint64_t lineNumber = 0;
  const auto decideLine = [&](std::string_view line) {
    ++lineNumber;
    if (line.find_first_not_of(" \t\r") == std::string_view::npos) return;
    std::vector<std::int32_t> facts;
    try {
      facts = orxCliFactsFromJSON(line, kind);
    } catch (const std::exception& error) {
      throw std::runtime_error(orxCliInputName(file) + " line " + std::to_string(lineNumber) + ": " + error.what());
    }
    status = std::max(status, orxCliPrintAnswer(orxDecide(kind, runtime, facts)));
  };
  const std::string last = orxCliReadLines(file, kOrxCliFactsByteLimit, decideLine);
  if (!last.empty()) decideLine(last);
  return status;
}

// A runtime whose modules did not load answers fail-safe, as it would to an embedding host: the
// decision is printed like any other, with its source, a warning saying why goes to standard error, and
// the exit status 3 tells a script the answer was not the policy's own.
int runDecide(OrxCliArguments& arguments) {
  const std::optional<std::filesystem::path> artifacts = arguments.option("--artifacts");
  const std::optional<std::string> factsFile = arguments.option("--facts");
  const std::optional<std::string> factsLines = arguments.option("--facts-lines");
  const std::optional<std::string> logFile = arguments.option("--log");
  const OrxDecisionKind& kind = orxCliPolicyKind(arguments);
  if (factsFile && factsLines) throw OrxCliUsageError("--facts and --facts-lines do not go together");
  std::vector<std::int32_t> facts;
  if (factsLines) {
    arguments.finish();
  } else {
    facts = orxCliFacts(arguments, kind, factsFile);
  }
  OrxPolicyRuntime runtime(artifacts, fileLog(logFile));
  if (runtime.loadError()) {
    orxCliWarn("ravo-orx decide", "the policy artifacts did not load: " + *runtime.loadError());
  }
  const int status = factsLines ? decideLines(kind, runtime, factsLines) : orxCliPrintAnswer(orxDecide(kind, runtime, facts));
  if (auto* log = runtime.decisionLog()) {
    log->flush();
    if (log->error()) throw std::runtime_error("the decision log was not written whole: " + *log->error());
  }
  return status;
}

}  // namespace

constinit const OrxCliCommand kOrxCliDecideCommand{
    "decide", "authz|sync|cinema (FACT... | --facts FILE|- | --facts-lines FILE|-) [--artifacts DIR] [--log FILE]",
    "take one policy decision and print it as JSON",
    "Builds a policy runtime over DIR (default: the bundled artifacts, as for status), takes one\n"
    "decision with the facts given as 32-bit integers in this order, or with --facts as a JSON object\n"
    "keyed by their names ({\"role\": 2, \"command\": 6, ...}; '-' reads it from standard input), and\n"
    "prints the decision as JSON, enumeration cases by name, with \"source\": \"policy\" for the module's\n"
    "own answer. A module that did not load, trapped or answered out of range gives the fail-safe\n"
    "decision with source \"moduleUnavailable\", \"trap\" or \"invalidOutput\" and exit status 3; when the\n"
    "artifacts did not load, a warning on standard error says why.\n"
    "\n"
    "With --facts-lines, each line of FILE ('-': standard input) is one facts object as for --facts, and\n"
    "one decision is printed per line, in order; blank lines are skipped, a line that is not facts stops\n"
    "the run with its line number (exit status 1), and the status is 3 when any decision was fail-safe.\n"
    "With --log FILE, every decision is appended to the decision log FILE (created when missing; an\n"
    "existing log is continued and sealed when the command ends; see 'ravo-orx log').\n"
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
