#pragma once
// Where a subcommand's document comes from and where its result goes. Results are written to standard
// output only, each ending with a newline, so that scripts can take them as they are.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/cli/OrxCliArguments.h>

namespace ravo::orx {

// The most bytes a subcommand reads as one document (canon, digest, evidence, scenario). Every document
// subcommand holds its input and more (canon about 2.6 times it), and a stream such as a pipe from
// /dev/zero never ends: without a bound either would take the machine's memory. 256 MiB is over ten
// times the largest graph or document we benchmark. Facts, manifests and modules have smaller limits of
// their own.
inline constexpr std::uint64_t kOrxCliInputByteLimit = std::uint64_t{256} << 20;

// How messages name an input: the file, printable (ORXMessageText::printable: a carriage return in a
// name shows as \r), or "standard input" when no file is named or it is "-".
std::string orxCliInputName(const std::optional<std::string>& file);

// Every input is read through OrxBoundedInput (ravo-orx/runtime/OrxArtifactFiles.h): a named file must
// be a regular file within the limit, checked before a byte is read, so a FIFO, a device or a link to
// /dev/zero is refused at once; standard input ("-", or no file) may be a pipe, and is refused one byte
// past the limit. Each throws RuntimeError "could not read <name>: <reason>".

// The bytes of `file`, or of standard input when no file is named or it is "-", exactly as they are.
std::string orxCliReadInput(const std::optional<std::string>& file, std::uint64_t byteLimit = kOrxCliInputByteLimit);
// The same bytes handed to `consume` piece by piece as they are read, for commands that need not hold
// a whole file (hashing one of gigabytes): no limit on the total.
void orxCliReadInPieces(const std::optional<std::string>& file,
                        const std::function<void(std::string_view)>& consume);

// Hands each line of `file` (or standard input), without its newline, to `consume`, reading it in
// pieces: a log of any length is read in constant memory. A line longer than `lineLimit` is refused
// before it is held ("could not read <file>: line N is longer than <limit> bytes"). Returns what follows
// the last newline (empty when the input ends with one), which is not handed on.
std::string orxCliReadLines(const std::optional<std::string>& file, std::size_t lineLimit,
                     const std::function<void(std::string_view line)>& consume);

// Takes the optional FILE that ends a subcommand's arguments, refuses anything left over, and reads
// the document.
std::string orxCliReadDocument(OrxCliArguments& arguments);

// Writes "<program>: warning: <text>" and a newline to standard error; the result is still printed.
void orxCliWarn(std::string_view program, std::string_view text);

// Writes `text` and a newline to standard output.
void orxCliPrint(std::string_view text);
// Writes `json` compactly, on one line.
void orxCliPrintJSON(const RavoJSON& json);

}  // namespace ravo::orx
