#include <array>

#include <ravo-orx/cli/OrxCliCommand.h>

namespace ravo::orx {

namespace {

constexpr std::array kSubcommands{&kOrxCliPolicyCheckCommand, &kOrxCliPolicyTestCommand, &kOrxCliPolicyEvalCommand,
                                  &kOrxCliPolicyBenchCommand, &kOrxCliPolicyProveCommand, &kOrxCliPolicyDiffCommand,
                                  &kOrxCliPolicyBuildCommand};

}  // namespace

constinit const OrxCliCommand kOrxCliPolicyCommand{
    "policy", "SUBCOMMAND [ARGUMENTS]", "check, test, try, time, prove and build policy modules",
    "The policy author's toolchain. Changing a policy takes three steps: edit policies/<module>.wat and\n"
    "the cases of its manifest, run 'ravo-orx policy build' from the repository root, rebuild the project.\n",
    nullptr, kSubcommands};

}  // namespace ravo::orx
