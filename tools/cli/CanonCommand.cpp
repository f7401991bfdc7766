#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

namespace {

int runCanon(OrxCliArguments& arguments) {
  const std::string input = orxCliReadDocument(arguments);
  orxCliPrint(ORXCanonicalJSON::canonicalize(input));
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliCanonCommand{
    "canon", "[FILE]", "print the canonical text of canonical ORX JSON",
    "Parses the document strictly as canonical ORX JSON (strings, booleans, 64-bit integers, arrays and\n"
    "objects with unique keys, in any spacing, escapes and key order) and prints its canonical text: no\n"
    "whitespace, keys sorted, minimal escapes.\n",
    runCanon};

}  // namespace ravo::orx
