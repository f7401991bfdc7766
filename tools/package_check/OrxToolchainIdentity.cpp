#include <ravo-orx/package_check/OrxToolchainIdentity.h>

#include <algorithm>
#include <vector>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>

namespace ravo::orx {

using namespace internal;

OrxToolchainIdentity OrxToolchainIdentity::of(const OrxWatAssembler& assembler,
                                              const std::filesystem::path& repositoryRoot) {
  const std::string assemblerDigest = ORXSHA256::hex(readArtifactFile(assembler.executable()));
  std::vector<std::string> sources;
  // Every file of the folder, its headers' include root included, named by its path from the root.
  for (const auto& entry : std::filesystem::recursive_directory_iterator(repositoryRoot / "tools/package_check")) {
    if (entry.is_regular_file()) {
      sources.push_back(entry.path().lexically_relative(repositoryRoot).generic_string());
    }
  }
  std::sort(sources.begin(), sources.end());
  std::string listing = assemblerDigest + "  wat2wasm\n";
  for (const auto& source : sources) listing += ORXSHA256::hex(readArtifactFile(repositoryRoot / source)) + "  " + source + "\n";
  return {"ORX " + assembler.version() + " commit " + assemblerDigest.substr(0, 40), ORXSHA256::hex(listing)};
}

}  // namespace ravo::orx
