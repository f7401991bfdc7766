#include <ravo-orx/package_check/OrxToolchainIdentity.h>

#include <algorithm>
#include <vector>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>

namespace ravo::orx {

namespace {

// Streamed: a compiler's libraries are hundreds of megabytes.
std::string listingLine(const std::filesystem::path& file, const std::string& name) {
  ORXSHA256 hasher;
  internal::OrxBoundedInput(file, internal::OrxBoundedInput::kUnbounded).readPieces([&](std::string_view piece) {
    hasher.update(piece);
  });
  return ORXSHA256::toHex(hasher.finalize()) + "  " + name + "\n";
}

}  // namespace

OrxToolchainIdentity OrxToolchainIdentity::of(const OrxPolicyCompilers& compilers,
                                              const std::filesystem::path& repositoryRoot) {
  std::string compilerListing;
  for (const auto& file : compilers.filesUsed()) compilerListing += listingLine(file.path, file.name);
  std::vector<std::string> sources;
  // Every file of the folder, its headers' include root and the preludes included, named by its path
  // from the root.
  for (const auto& entry : std::filesystem::recursive_directory_iterator(repositoryRoot / "tools/package_check")) {
    if (entry.is_regular_file()) {
      sources.push_back(entry.path().lexically_relative(repositoryRoot).generic_string());
    }
  }
  std::sort(sources.begin(), sources.end());
  std::string bundleListing = listingLine(compilers.assemblerPath(), "wat2wasm");
  for (const auto& source : sources) bundleListing += listingLine(repositoryRoot / source, source);
  return {"ORX " + compilers.assemblerVersion() + " commit " + ORXSHA256::hex(compilerListing).substr(0, 40),
          ORXSHA256::hex(bundleListing)};
}

}  // namespace ravo::orx
