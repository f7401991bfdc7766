// ravo-orx COMMAND [ARGUMENTS]: the canonical core, the host contract, the policy runtime and its
// policy authors' toolchain, the application actions and the scenarios, from the command line. Results
// go to standard output; every error is one line on standard error. Exit status: 0 success, 1 refused
// input, 2 usage mistake, 3 a fail-safe decision.

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <ravo-orx/core/ORXMessageText.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

namespace {

constexpr std::string_view kExitStatuses =
    "Exit status: 0 success, 1 refused input, 2 usage mistake, 3 fail-safe decision, unless a command's\n"
    "help gives its own.";

constexpr std::array kCommands{&kOrxCliCanonCommand,    &kOrxCliDigestCommand,    &kOrxCliEvidenceCommand,
                               &kOrxCliStatusCommand,   &kOrxCliDecideCommand,    &kOrxCliLogCommand,
                               &kOrxCliPolicyCommand,
                               &kOrxCliResolveCommand,  &kOrxCliShortlistCommand, &kOrxCliScenarioCommand,
                               &kOrxCliVersionCommand};

bool isHelp(std::string_view word) { return word == "--help" || word == "-h"; }

std::string commandList(std::span<const OrxCliCommand* const> commands) {
  std::string list;
  for (const auto* command : commands) {
    std::string line = "  " + std::string(command->name);
    line.resize(std::max<std::size_t>(14, line.size() + 1), ' ');
    list += line + std::string(command->summary) + "\n";
  }
  return list;
}

std::string toolHelp() {
  return "usage: ravo-orx COMMAND [ARGUMENTS]\n\ncommands:\n" + commandList(kCommands) +
         "\nDocuments are read from standard input unless a FILE is named ('-' names standard input too).\n"
         "Results go to standard output, errors to standard error as one line.\n" +
         std::string(kExitStatuses) + "\n'ravo-orx COMMAND --help' (or -h) describes one command; 'ravo-orx --version'\n"
         "prints the version.";
}

std::string commandHelp(const OrxCliCommand& command, const std::string& program) {
  if (!command.subcommands.empty()) {
    return "usage: " + program + " " + std::string(command.synopsis) + "\n\n" + std::string(command.details) +
           "\nsubcommands:\n" + commandList(command.subcommands) + "\n'" + program +
           " SUBCOMMAND --help' describes one.\n" + std::string(kExitStatuses);
  }
  const std::string synopsis = command.synopsis.empty() ? "" : " " + std::string(command.synopsis);
  const std::string usage = "usage: " + program + synopsis + "\n\n";
  const std::string_view details = command.details;
  // A command whose statuses mean more (prove's 4 unknown, say) states them all at the end of its details.
  if (details.find("Exit status:") != std::string_view::npos) {
    return usage + std::string(details.substr(0, details.find_last_not_of('\n') + 1));
  }
  return usage + std::string(details) + "\n" + std::string(kExitStatuses);
}

// Error texts are printed as the system wrote them, folded onto one line, with any other control byte
// (a carriage return in a file name, a terminal's escape sequence in a document) shown as an escape.
void printError(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  text = internal::ORXMessageText::printable(text) + '\n';
  std::fwrite(text.data(), 1, text.size(), stderr);
}

// `program` is "ravo-orx", "ravo-orx COMMAND" or "ravo-orx COMMAND SUBCOMMAND", whichever has the help
// that answers the mistake.
int usageMistake(const std::string& program, std::string_view message) {
  printError(program + ": " + std::string(message) + " (see '" + program + " --help')");
  return kOrxCliUsageMistake;
}

const OrxCliCommand* commandNamed(std::span<const OrxCliCommand* const> commands, std::string_view name) {
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [&](const OrxCliCommand* candidate) { return candidate->name == name; });
  return found == commands.end() ? nullptr : *found;
}

int run(const OrxCliCommand& command, const std::string& program, OrxCliArguments& arguments) {
  try {
    if (!command.subcommands.empty()) {
      const auto word = arguments.nextIfAny();
      if (!word || isHelp(*word)) {
        if (!word && !arguments.flag("--help")) throw OrxCliUsageError("missing SUBCOMMAND");
        orxCliPrint(commandHelp(command, program));
        return 0;
      }
      const OrxCliCommand* subcommand = commandNamed(command.subcommands, *word);
      if (!subcommand) throw OrxCliUsageError("unknown subcommand \"" + *word + "\"");
      return run(*subcommand, program + " " + *word, arguments);
    }
    if (arguments.flag("--help") || arguments.flag("-h")) {
      orxCliPrint(commandHelp(command, program));
      return 0;
    }
    return command.run(arguments);
  } catch (const OrxCliUsageError& error) {
    return usageMistake(program, error.what());
  } catch (const std::exception& error) {
    // The policy toolchain runs inside builds and CI, whose logs mix many tools: its every message
    // names the command.
    printError((program.starts_with("ravo-orx policy ") ? program + ": " : std::string()) + error.what());
    return kOrxCliRefusedInput;
  }
}

// Results are buffered, so a full disk or a closed pipe may show only when standard output is flushed;
// a result that was not written whole is a failure, whatever the subcommand answered.
int finishOutput(int status) {
  const int error = std::fflush(stdout) != 0 ? errno : std::ferror(stdout) ? EIO : 0;
  if (error == 0) return status;
  printError("ravo-orx: could not write standard output: " + std::string(std::strerror(error)));
  return kOrxCliRefusedInput;
}

int dispatch(std::vector<std::string> words) {
  if (words.empty()) {
    std::fputs((toolHelp() + "\n").c_str(), stderr);
    return kOrxCliUsageMistake;
  }
  if (isHelp(words.front())) {
    orxCliPrint(toolHelp());
    return 0;
  }
  if (words.front() == "--version") words.front() = "version";
  const OrxCliCommand* command = commandNamed(kCommands, words.front());
  if (!command) return usageMistake("ravo-orx", "unknown command \"" + words.front() + "\"");
  OrxCliArguments arguments(std::vector<std::string>(words.begin() + 1, words.end()));
  return run(*command, "ravo-orx " + words.front(), arguments);
}

}  // namespace

}  // namespace ravo::orx

using namespace ravo::orx;

int main(int argc, char** argv) {
  // The runtime logs every load, and every load failure, to standard error. The tool keeps standard
  // error for its own one-line errors, so the runtime's messages are dropped: `status` prints the
  // load error itself.
  setOrxLogSink([](OrxLogLevel, std::string_view) {});

  return finishOutput(dispatch(std::vector<std::string>(argv + 1, argv + argc)));
}
