#include "runtime/OrxVersion.h"
#include "tools/cli/OrxCliCommand.h"
#include "tools/cli/OrxCliIO.h"

namespace {

int runVersion(OrxCliArguments& arguments) {
  arguments.finish();
  orxCliPrint("ravo-orx " + std::string(kRavoORXVersion));
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliVersionCommand{
    "version", "", "print the version of the tool and its libraries (also: ravo-orx --version)",
    "Prints \"ravo-orx\" and the version of the tool and the libraries it is built from.\n", runVersion};
