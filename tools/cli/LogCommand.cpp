#include <array>

#include <ravo-orx/cli/OrxCliCommand.h>

namespace ravo::orx {

namespace {

constexpr std::array kSubcommands{&kOrxCliLogVerifyCommand, &kOrxCliLogReplayCommand};

}  // namespace

constinit const OrxCliCommand kOrxCliLogCommand{
    "log", "SUBCOMMAND [ARGUMENTS]", "verify and replay decision logs",
    "A decision log holds one canonical JSON line per decision and per block seal; each seal lists the\n"
    "digests of its block's records and the digest of the seal before it (docs/DECISION-LOG.md). A log\n"
    "is written by a runtime made with one, or by 'ravo-orx decide ... --log FILE'.\n",
    nullptr, kSubcommands};

}  // namespace ravo::orx
