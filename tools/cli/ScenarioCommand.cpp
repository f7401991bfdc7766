#include "contracts/scenarios/RavoScenarioBuiltInCatalog.h"
#include "contracts/scenarios/RavoScenarioCanonicalizer.h"
#include "contracts/scenarios/RavoScenarioCatalog.h"
#include "contracts/scenarios/RavoScenarioRevisionDiffer.h"
#include "tools/cli/OrxCliCommand.h"
#include "tools/cli/OrxCliIO.h"

namespace {

template <class Record>
Record decode(const std::string& text) {
  return Record::fromJSON(parseRavoJSON(text));
}

void validate(OrxCliArguments& arguments) {
  const auto draft = decode<RavoScenarioDraft>(orxCliReadDocument(arguments));
  RavoJSON issues = RavoJSON::array();
  for (const auto& issue : RavoScenarioCatalog::validate(draft, RavoScenarioBuiltInCatalog::definitions())) {
    issues.push_back(issue.description());
  }
  orxCliPrintJSON(issues);
}

void digest(OrxCliArguments& arguments) {
  orxCliPrint(RavoScenarioCanonicalizer::digest(RavoScenarioGraph::fromJSONText(orxCliReadDocument(arguments))));
}

void diff(OrxCliArguments& arguments) {
  const std::string from = arguments.next("FROM");
  const std::string to = arguments.next("TO");
  arguments.finish();
  const auto older = decode<RavoScenarioRevision>(orxCliReadInput(from));
  const auto newer = decode<RavoScenarioRevision>(orxCliReadInput(to));
  orxCliPrintJSON(RavoScenarioRevisionDiffer::compare(older, newer).toJSON());
}

int runScenario(OrxCliArguments& arguments) {
  const std::string action = arguments.next("validate, digest or diff");
  if (action == "validate") {
    validate(arguments);
  } else if (action == "digest") {
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
    "validate  reads a scenario draft as JSON and prints its validation issues against the built-in\n"
    "          node catalog as a JSON array of texts, empty when the draft is valid.\n"
    "digest    reads a scenario graph as JSON and prints its 64-hex-digit graph digest.\n"
    "diff      reads two scenario revisions as JSON, the older FROM and the newer TO, and prints\n"
    "          what changed as JSON.\n",
    runScenario};
