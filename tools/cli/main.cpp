// ravo-orx COMMAND [ARGUMENTS]: the canonical core, the host contract, the policy runtime, the
// application actions and the scenarios, from the command line. Results go to standard output; every
// error is one line on standard error. Exit status: 0 success, 1 refused input, 2 usage mistake.

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "runtime/OrxLog.h"
#include "tools/cli/OrxCliCommand.h"
#include "tools/cli/OrxCliIO.h"

namespace {

constexpr int kRefusedInput = 1;
constexpr int kUsageMistake = 2;
constexpr std::string_view kExitStatuses = "Exit status: 0 success, 1 refused input, 2 usage mistake.";

constexpr std::array kCommands{&kOrxCliCanonCommand,     &kOrxCliDigestCommand,  &kOrxCliEvidenceCommand,
                               &kOrxCliStatusCommand,    &kOrxCliDecideCommand,  &kOrxCliResolveCommand,
                               &kOrxCliShortlistCommand, &kOrxCliScenarioCommand};

std::string toolHelp() {
  std::string help = "usage: ravo-orx COMMAND [ARGUMENTS]\n\ncommands:\n";
  for (const auto* command : kCommands) {
    std::string line = "  " + std::string(command->name);
    line.resize(std::max<std::size_t>(14, line.size() + 1), ' ');
    help += line + std::string(command->summary) + "\n";
  }
  return help +
         "\nDocuments are read from standard input unless a FILE is named. Results go to standard output,\n"
         "errors to standard error as one line. " +
         std::string(kExitStatuses) + "\n'ravo-orx COMMAND --help' describes one command.";
}

std::string commandHelp(const OrxCliCommand& command) {
  return "usage: ravo-orx " + std::string(command.name) + " " + std::string(command.synopsis) + "\n\n" +
         std::string(command.details) + "\n" + std::string(kExitStatuses);
}

// Error texts are printed as the system wrote them, folded onto one line.
void printError(std::string text) {
  for (char& c : text) c = (c == '\n' || c == '\r') ? ' ' : c;
  text += '\n';
  std::fwrite(text.data(), 1, text.size(), stderr);
}

// `program` is "ravo-orx" or "ravo-orx COMMAND", whichever has the help that answers the mistake.
int usageMistake(const std::string& program, std::string_view message) {
  printError(program + ": " + std::string(message) + " (see '" + program + " --help')");
  return kUsageMistake;
}

int run(const OrxCliCommand& command, OrxCliArguments& arguments) {
  try {
    if (arguments.flag("--help")) {
      orxCliPrint(commandHelp(command));
      return 0;
    }
    return command.run(arguments);
  } catch (const OrxCliUsageError& error) {
    return usageMistake("ravo-orx " + std::string(command.name), error.what());
  } catch (const std::exception& error) {
    printError(error.what());
    return kRefusedInput;
  }
}

// Results are buffered, so a full disk or a closed pipe may show only when standard output is flushed;
// a result that was not written whole is a failure, whatever the subcommand answered.
int finishOutput(int status) {
  const int error = std::fflush(stdout) != 0 ? errno : std::ferror(stdout) ? EIO : 0;
  if (error == 0) return status;
  printError("ravo-orx: could not write standard output: " + std::string(std::strerror(error)));
  return kRefusedInput;
}

int dispatch(const std::vector<std::string>& words) {
  if (words.empty()) return usageMistake("ravo-orx", "missing COMMAND");
  if (words.front() == "--help") {
    orxCliPrint(toolHelp());
    return 0;
  }
  const auto command = std::find_if(kCommands.begin(), kCommands.end(),
                                    [&](const OrxCliCommand* candidate) { return candidate->name == words.front(); });
  if (command == kCommands.end()) return usageMistake("ravo-orx", "unknown command \"" + words.front() + "\"");
  OrxCliArguments arguments(std::vector<std::string>(words.begin() + 1, words.end()));
  return run(**command, arguments);
}

}  // namespace

int main(int argc, char** argv) {
  // The runtime logs every load, and every load failure, to standard error. The tool keeps standard
  // error for its own one-line errors, so the runtime's messages are dropped: `status` prints the
  // load error itself.
  setOrxLogSink([](OrxLogLevel, std::string_view) {});

  return finishOutput(dispatch(std::vector<std::string>(argv + 1, argv + argc)));
}
