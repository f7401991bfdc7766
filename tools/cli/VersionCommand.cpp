#include <ravo-orx/runtime/OrxVersion.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

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

}  // namespace ravo::orx
