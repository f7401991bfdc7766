#pragma once
// One subcommand of the ravo-orx tool: its name, its help, and the function that runs it.

#include <string_view>

#include "tools/cli/OrxCliArguments.h"

struct OrxCliCommand {
  std::string_view name;
  std::string_view synopsis;  // the arguments after the name: "TAG [FILE]"
  std::string_view summary;   // one line for the tool's help
  std::string_view details;   // the rest of the subcommand's own help
  // Prints the result and returns the exit status. Throws OrxCliUsageError for a usage mistake and
  // any other std::exception for input it refuses.
  int (*run)(OrxCliArguments& arguments);
};

extern const OrxCliCommand kOrxCliCanonCommand;
extern const OrxCliCommand kOrxCliDigestCommand;
extern const OrxCliCommand kOrxCliEvidenceCommand;
extern const OrxCliCommand kOrxCliStatusCommand;
extern const OrxCliCommand kOrxCliDecideCommand;
extern const OrxCliCommand kOrxCliResolveCommand;
extern const OrxCliCommand kOrxCliShortlistCommand;
extern const OrxCliCommand kOrxCliScenarioCommand;
