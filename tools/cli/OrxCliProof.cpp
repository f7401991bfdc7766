#include <ravo-orx/cli/OrxCliProof.h>

#include <cstdio>

#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

OrxProofOptions orxCliProofOptions(OrxCliArguments& arguments, const OrxDecisionKind& kind) {
  const auto manifestFile = arguments.option("--manifest");
  const auto timeout = arguments.option("--timeout-ms");
  const auto unroll = arguments.option("--unroll");
  OrxProofOptions options = OrxProofOptions::unrestricted(kind);
  if (manifestFile) {
    const std::string text = orxCliReadInput(manifestFile);
    const auto manifest = OrxPolicyManifest::decode(
        std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()), orxCliInputName(manifestFile));
    if (manifest.module != kind.module) {
      throw std::runtime_error(orxCliInputName(manifestFile) + " is the manifest of " + manifest.module + ", not of " +
                               std::string(kind.module));
    }
    options = OrxProofOptions::of(kind, manifest);
  }
  if (timeout) options.timeoutMilliseconds = static_cast<unsigned>(orxCliInteger(*timeout, "--timeout-ms", 1, 3'600'000));
  if (unroll) options.unrollBound = static_cast<unsigned>(orxCliInteger(*unroll, "--unroll", 1, 4096));
  return options;
}

void orxCliReportProverFault(std::string_view program, const std::string& message) {
  std::fprintf(stderr, "%.*s: %s\n", static_cast<int>(program.size()), program.data(), message.c_str());
}

}  // namespace ravo::orx
