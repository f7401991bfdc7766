#include <optional>
#include <string>

#include <ravo-orx/contracts/scenarios/RavoScenarioBuiltInCatalog.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioCanonicalizer.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioCatalog.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioRevisionDiffer.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

namespace {

// A decoded revision keeps the digest it was written with; one that this system would compute
// differently is still used, with a warning naming where it came from.
RavoScenarioRevision checkedRevision(const RavoJSON& json, const std::optional<std::string>& file) {
  auto revision = RavoScenarioRevision::fromJSON(json);
  if (!revision.graphDigestMatchesDraft()) {
    orxCliWarn("ravo-orx scenario", orxCliInputName(file) + ": RavoScenarioRevision.graphDigest does not match the draft's graph");
  }
  return revision;
}

RavoScenarioRevision readRevision(const std::optional<std::string>& file) {
  return checkedRevision(parseRavoJSON(orxCliReadInput(file)), file);
}

// Issues found are the answer asked for, printed on standard output; exit status 1 lets a script
// refuse the draft without reading them.
int validate(OrxCliArguments& arguments) {
  const auto file = arguments.nextIfAny();
  arguments.finish();
  const RavoJSON json = parseRavoJSON(orxCliReadInput(file));
  const bool isRevision = json.is_object() && json.contains("graphDigest");
  const auto draft = isRevision ? checkedRevision(json, file).draft() : RavoScenarioDraft::fromJSON(json);
  RavoJSON issues = RavoJSON::array();
  for (const auto& issue : RavoScenarioCatalog::validate(draft, RavoScenarioBuiltInCatalog::definitions())) {
    issues.push_back(issue.description());
  }
  orxCliPrintJSON(issues);
  return issues.empty() ? 0 : kOrxCliRefusedInput;
}

void digest(OrxCliArguments& arguments) {
  orxCliPrint(RavoScenarioCanonicalizer::digest(RavoScenarioGraph::fromJSONText(orxCliReadDocument(arguments))));
}

void diff(OrxCliArguments& arguments) {
  const std::string from = arguments.next("FROM");
  const std::string to = arguments.next("TO");
  arguments.finish();
  const auto older = readRevision(from);
  const auto newer = readRevision(to);
  orxCliPrintJSON(RavoScenarioRevisionDiffer::compare(older, newer).toJSON());
}

int runScenario(OrxCliArguments& arguments) {
  const std::string action = arguments.next("validate, digest or diff");
  if (action == "validate") return validate(arguments);
  if (action == "digest") {
    digest(arguments);
  } else if (action == "diff") {
    diff(arguments);
  } else {
    throw OrxCliUsageError("unknown scenario command \"" + action + "\"; expected validate, digest or diff");
  }
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliScenarioCommand{
    "scenario", "validate [FILE] | digest [FILE] | diff FROM TO", "validate, digest or compare scenarios",
    "validate  reads a scenario draft, or a revision, as JSON and prints the draft's validation issues\n"
    "          against the built-in node catalog as a JSON array of texts, empty when the draft is valid;\n"
    "          exits with status 1 when it lists any.\n"
    "digest    reads a scenario graph as JSON and prints its 64-hex-digit graph digest.\n"
    "diff      reads two scenario revisions as JSON, the older FROM and the newer TO, and prints\n"
    "          what changed as JSON.\n"
    "A revision whose stored graph digest is not the one computed here for its draft is used as it\n"
    "stands, with a warning on standard error.\n",
    runScenario};

}  // namespace ravo::orx
