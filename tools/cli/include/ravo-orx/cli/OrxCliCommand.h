#pragma once
// One subcommand of the ravo-orx tool: its name, its help, and the function that runs it, or the
// subcommands it groups ("policy check", "policy test", ...).

#include <span>
#include <string_view>

#include <ravo-orx/cli/OrxCliArguments.h>

namespace ravo::orx {

// Exit statuses: 0 success, 1 refused input, 2 usage mistake, 3 a fail-safe decision.
inline constexpr int kOrxCliRefusedInput = 1;
inline constexpr int kOrxCliUsageMistake = 2;
inline constexpr int kOrxCliFailSafe = 3;

struct OrxCliCommand {
  std::string_view name;
  std::string_view synopsis;  // the arguments after the name: "TAG [FILE]"
  std::string_view summary;   // one line for the tool's help
  std::string_view details;   // the rest of the subcommand's own help
  // Prints the result and returns the exit status. Throws OrxCliUsageError for a usage mistake and
  // any other std::exception for input it refuses. Null for a group of subcommands.
  int (*run)(OrxCliArguments& arguments);
  std::span<const OrxCliCommand* const> subcommands = {};
};

extern const OrxCliCommand kOrxCliCanonCommand;
extern const OrxCliCommand kOrxCliDigestCommand;
extern const OrxCliCommand kOrxCliEvidenceCommand;
extern const OrxCliCommand kOrxCliStatusCommand;
extern const OrxCliCommand kOrxCliDecideCommand;
extern const OrxCliCommand kOrxCliResolveCommand;
extern const OrxCliCommand kOrxCliShortlistCommand;
extern const OrxCliCommand kOrxCliScenarioCommand;
extern const OrxCliCommand kOrxCliPolicyCommand;
extern const OrxCliCommand kOrxCliVersionCommand;
extern const OrxCliCommand kOrxCliLogCommand;

extern const OrxCliCommand kOrxCliPolicyCheckCommand;
extern const OrxCliCommand kOrxCliPolicyTestCommand;
extern const OrxCliCommand kOrxCliPolicyEvalCommand;
extern const OrxCliCommand kOrxCliPolicyBenchCommand;
extern const OrxCliCommand kOrxCliPolicyBuildCommand;
extern const OrxCliCommand kOrxCliPolicyProveCommand;
extern const OrxCliCommand kOrxCliPolicyDiffCommand;

extern const OrxCliCommand kOrxCliLogVerifyCommand;
extern const OrxCliCommand kOrxCliLogReplayCommand;

}  // namespace ravo::orx
