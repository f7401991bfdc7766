#include "tools/package_check/OrxToolchainIdentity.h"

#include <algorithm>
#include <vector>

#include "core/ORXSHA256.h"
#include "runtime/OrxArtifactFiles.h"

OrxToolchainIdentity OrxToolchainIdentity::of(const OrxWatAssembler& assembler,
                                              const std::filesystem::path& repositoryRoot) {
  const std::string assemblerDigest = ORXSHA256::hex(readArtifactFile(assembler.executable()));
  std::vector<std::string> sources;
  for (const auto& entry : std::filesystem::directory_iterator(repositoryRoot / "tools/package_check")) {
    if (entry.is_regular_file()) sources.push_back("tools/package_check/" + entry.path().filename().string());
  }
  std::sort(sources.begin(), sources.end());
  std::string listing = assemblerDigest + "  wat2wasm\n";
  for (const auto& source : sources) listing += ORXSHA256::hex(readArtifactFile(repositoryRoot / source)) + "  " + source + "\n";
  return {"ORX " + assembler.version() + " commit " + assemblerDigest.substr(0, 40), ORXSHA256::hex(listing)};
}
