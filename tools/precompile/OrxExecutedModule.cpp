// orx_executed_module IN OUT: writes the bytes the module host runs for the module IN (IN itself when
// statically bounded, else its metered rewrite), so that the build translates to native code exactly
// what the interpreter would run. Exits 1 when the host would refuse IN.

#include <cstdio>
#include <fstream>

#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/engine/OrxModuleInstance.h>

using namespace ravo::orx;
using namespace ravo::orx::internal;

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s IN OUT\n", argv[0]);
    return 2;
  }
  try {
    const auto bytes = readArtifactFile(argv[1]);
    const auto executed = executedModuleBytes(bytes.data(), bytes.size());
    if (!executed) {
      std::fprintf(stderr, "%s: the module host refuses this module\n", argv[1]);
      return 1;
    }
    std::ofstream out(argv[2], std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(executed->data()), static_cast<std::streamsize>(executed->size()));
    if (!out) {
      std::fprintf(stderr, "%s: could not be written\n", argv[2]);
      return 1;
    }
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
