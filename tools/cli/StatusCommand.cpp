#include <filesystem>

#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

namespace {

int runStatus(OrxCliArguments& arguments) {
  const std::optional<std::filesystem::path> directory = arguments.nextIfAny();
  arguments.finish();
  const OrxPolicyRuntime runtime(directory);
  orxCliPrint(runtime.statusDescription());
  if (!runtime.loadError()) return 0;
  // A load error means the artifacts were refused and the runtime answers with fail-safe decisions:
  // exit 1 so that a deployment script can check the artifacts without reading the text. Both lines
  // still go to standard output, since the status is the answer asked for.
  orxCliPrint(*runtime.loadError());
  return 1;
}

}  // namespace

constinit const OrxCliCommand kOrxCliStatusCommand{
    "status", "[DIR]", "load the policy artifacts and print the runtime's status",
    "Builds a policy runtime over the artifacts in DIR (without DIR: \"artifacts\" under the current\n"
    "directory, then the bundled location) and prints its status text. When the artifacts were\n"
    "refused in whole or in part, prints the load error on a second line and exits with status 1.\n",
    runStatus};

}  // namespace ravo::orx
