// orx_approved_module_check MODULE FILE: the build translates a module to native code only when FILE is
// exactly the approved artifact (its SHA-256 is the build constant for MODULE) and has the interface the
// native binding expects. Anything else stops the build with a message saying how to fix it; the build
// never silently falls back. A metered module is fine: the build translates its metered rewrite
// (orx_executed_module), so native code charges fuel and counts stack exactly as the interpreter does.

#include <cstdio>
#include <string>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/runtime/OrxBuildConstants.h>
#include <ravo-orx/engine/OrxModuleInstance.h>

using namespace ravo::orx;
using namespace ravo::orx::internal;

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s MODULE FILE\n", argv[0]);
    return 2;
  }
  const std::string module = argv[1];
  try {
    const auto bytes = readArtifactFile(argv[2]);
    const auto& approved = OrxBuildConstants::expectedDigests();
    const auto entry = approved.find(module);
    const std::string digest = ORXSHA256::hex(bytes);
    if (entry == approved.end() || entry->second != digest) {
      std::fprintf(stderr,
                   "%s has SHA-256 %s, but this build approves %s for %s. Run 'ravo-orx policy build' "
                   "(or tools/build_orx.sh) from the repository root: it writes the artifacts and the "
                   "build constants that approve them together.\n",
                   argv[2], digest.c_str(), entry == approved.end() ? "nothing" : entry->second.c_str(),
                   module.c_str());
      return 1;
    }
    const auto interface = describeModuleInterface(bytes.data(), bytes.size());
    const std::vector<std::string> emitOnly{"func output.emit(i32, i32, i32, i32, i32) -> (i32)"};
    if (!interface || interface->imports != emitOnly) {
      std::fprintf(stderr, "%s: the native binding supports exactly one import, %s\n", argv[2], emitOnly[0].c_str());
      return 1;
    }
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
