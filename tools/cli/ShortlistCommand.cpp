#include <ravo-orx/contracts/actions/RavoCapabilityFabric.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

namespace {

int runShortlist(OrxCliArguments& arguments) {
  const auto limitText = arguments.option("--limit");
  const std::string text = arguments.next("TEXT");
  arguments.finish();
  constexpr auto maximum = static_cast<std::int64_t>(RavoCapabilityFabric::maximumShortlist);
  const std::int64_t limit = limitText ? orxCliInteger(*limitText, "--limit", 1, maximum) : maximum;
  RavoJSON ids = RavoJSON::array();
  for (const auto& descriptor : RavoCapabilityFabric::builtIn().shortlist(text, limit)) {
    ids.push_back(descriptor.id().rawValue());
  }
  orxCliPrintJSON(ids);
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliShortlistCommand{
    "shortlist", "TEXT [--limit N]", "rank the built-in actions against a text",
    "Prints the ids of at most N (1 to 24, default 24) built-in actions ranked against TEXT, best first,\n"
    "as a JSON array. Actions that do not match at all fill the list after those that do.\n",
    runShortlist};

}  // namespace ravo::orx
