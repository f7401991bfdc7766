#pragma once
// The compilers that turn a policy's source of record into its module. A module has exactly one source
// in the policies directory, and its extension chooses the language:
//   <module>.wat  WebAssembly text, assembled by wat2wasm;
//   <module>.c    C, compiled by clang --target=wasm32 against orx_policy.h and linked by wasm-ld;
//   <module>.rs   Rust, `no_std`, compiled by a rustc that has the wasm32 standard library, against the
//                 crate orx_policy, and linked by wasm-ld.
// Each runs as a separate process with fixed flags that make its output depend only on the source and
// the compiler's own files (no debug information, no producers section, no paths), so building twice
// gives the same bytes, and the compiler identity can name the compilers by their files' digests.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ravo::orx {

enum class OrxPolicyLanguage { webAssemblyText, c, rust };

struct OrxPolicySource {
  std::filesystem::path path;
  OrxPolicyLanguage language;
};

// The language of a source of record, by its extension; nothing for any other file.
std::optional<OrxPolicyLanguage> orxPolicyLanguageOf(const std::filesystem::path& file);

// The one source of `module` in `directory`, or nothing when it has none. Throws std::runtime_error
// when it has several.
std::optional<OrxPolicySource> findOrxPolicySource(const std::filesystem::path& directory, std::string_view module);

// A file a compiler is made of, under the name the compiler identity lists it by.
struct OrxCompilerFile {
  std::string name;
  std::filesystem::path path;
};

class OrxPolicyCompilers {
 public:
  // Finds wat2wasm on PATH and asks its version (the compiler identity's version); the C and Rust
  // compilers are found when a source first needs them. Throws std::runtime_error when wat2wasm is
  // missing.
  static OrxPolicyCompilers find();

  const std::filesystem::path& assemblerPath() const { return assembler_; }
  const std::string& assemblerVersion() const { return assemblerVersion_; }

  // The module compiled from `source`. Throws std::runtime_error "<source>: <the compiler's whole
  // diagnostic>" when the compiler refuses it, or saying which compiler is missing and how to get it.
  std::vector<std::uint8_t> compile(const OrxPolicySource& source);

  // The files of every compiler that has compiled a source so far, each once, sorted by name.
  std::vector<OrxCompilerFile> filesUsed() const;

 private:
  struct CCompiler {
    std::filesystem::path clang;
  };
  struct RustCompiler {
    std::filesystem::path rustc;
    std::filesystem::path standardLibrary;  // <sysroot>/lib/rustlib/wasm32-unknown-unknown/lib
  };

  OrxPolicyCompilers(std::filesystem::path assembler, std::string version)
      : assembler_(std::move(assembler)), assemblerVersion_(std::move(version)) {}

  std::vector<std::uint8_t> assemble(const std::filesystem::path& source);
  std::vector<std::uint8_t> compileC(const std::filesystem::path& source);
  std::vector<std::uint8_t> compileRust(const std::filesystem::path& source);
  const std::filesystem::path& linker();

  std::filesystem::path assembler_;
  std::string assemblerVersion_;
  bool assemblerUsed_ = false;
  std::optional<CCompiler> c_;
  std::optional<RustCompiler> rust_;
  std::optional<std::filesystem::path> linker_;
};

}  // namespace ravo::orx
