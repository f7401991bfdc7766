#include "core/ORXCanonicalJSON.h"
#include "tools/cli/OrxCliCommand.h"
#include "tools/cli/OrxCliIO.h"

namespace {

int runCanon(OrxCliArguments& arguments) {
  const std::string input = orxCliReadDocument(arguments);
  orxCliPrint(ORXCanonicalJSON::parse(std::string_view(input)).canonicalString());
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliCanonCommand{
    "canon", "[FILE]", "print the canonical text of canonical ORX JSON",
    "Parses the document strictly as canonical ORX JSON (strings, booleans, 64-bit integers, arrays\n"
    "and objects with unique keys; whitespace, escapes and key order as written) and prints it with no\n"
    "whitespace, keys sorted and minimal escapes.\n",
    runCanon};
