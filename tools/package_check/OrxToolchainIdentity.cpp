#include <ravo-orx/package_check/OrxToolchainIdentity.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <vector>

#include <ravo-orx/core/ORXSHA256.h>

namespace ravo::orx {

namespace {

// Streamed: a compiler's libraries are hundreds of megabytes.
std::string listingLine(const std::filesystem::path& file, const std::string& name) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  ORXSHA256 hasher;
  std::vector<char> chunk(1 << 20);
  while (stream.read(chunk.data(), static_cast<std::streamsize>(chunk.size())) || stream.gcount() > 0) {
    hasher.update(std::string_view(chunk.data(), static_cast<std::size_t>(stream.gcount())));
  }
  if (stream.bad()) throw std::runtime_error("cannot read " + file.string());
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
