#pragma once
// The assembler that turns policy sources (WebAssembly text) into modules: the `wat2wasm` found on
// PATH, run as a separate process. Its output depends only on the source and the assembler's own
// bytes, which is why the compiler identity names the assembler by its SHA-256.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace ravo::orx {

class OrxWatAssembler {
 public:
  // Finds wat2wasm on PATH and asks its version. Throws std::runtime_error when it is missing.
  static OrxWatAssembler find();

  const std::filesystem::path& executable() const { return executable_; }
  const std::string& version() const { return version_; }  // "1.0.32"

  // The module assembled from `source`. Throws std::runtime_error with the assembler's whole
  // diagnostic (its lines as it wrote them) when the assembler refuses it.
  std::vector<std::uint8_t> assemble(const std::filesystem::path& source) const;

 private:
  OrxWatAssembler(std::filesystem::path executable, std::string version)
      : executable_(std::move(executable)), version_(std::move(version)) {}

  std::filesystem::path executable_;
  std::string version_;
};

}  // namespace ravo::orx
