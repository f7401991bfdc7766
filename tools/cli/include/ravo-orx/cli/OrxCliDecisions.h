#pragma once
// What `decide`, `policy eval` and `policy bench` share: the decision named on the command line, its
// facts (as words in argument order, or as a JSON object keyed by the fact names with
// "--facts FILE|-"), and the decision printed as JSON with its source.

#include <cstddef>
#include <cstdint>
#include <vector>

#include <ravo-orx/cli/OrxCliArguments.h>
#include <ravo-orx/package_check/OrxDecisionByKind.h>

namespace ravo::orx {

// The most bytes of one facts object: a file given with --facts, or a line of --facts-lines. An object
// of the 13 cinema facts is under 1 KiB, so this is ample, and anything past it is refused unread.
inline constexpr std::size_t kOrxCliFactsByteLimit = 64 << 10;

// The kind named by the next word: authz, sync or cinema.
const OrxDecisionKind& orxCliPolicyKind(OrxCliArguments& arguments);

// The facts of one decision of `kind`, from the words left or from `factsFile`; takes every word and
// finishes the arguments. Throws OrxCliUsageError for a wrong count, a missing or unknown name or a
// value that is not a 32-bit integer (never wrapped into one), and std::exception for a file that does
// not read (a named file must be a regular file of at most kOrxCliFactsByteLimit) or is not JSON.
std::vector<std::int32_t> orxCliFacts(OrxCliArguments& arguments, const OrxDecisionKind& kind,
                                      const std::optional<std::string>& factsFile);

// The facts of one decision of `kind` from a JSON object keyed by the fact names, as --facts takes
// them. Throws like orxCliFacts, refusing an unknown name or a value that is no fact as it reads it.
std::vector<std::int32_t> orxCliFactsFromJSON(std::string_view json, const OrxDecisionKind& kind);

// Prints the decision with its "source"; returns 0 for the module's own answer, 3 for a fail-safe one.
int orxCliPrintAnswer(const OrxPolicyAnswer& answer);

}  // namespace ravo::orx
