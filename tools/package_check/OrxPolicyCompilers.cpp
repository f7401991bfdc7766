#include <ravo-orx/package_check/OrxPolicyCompilers.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

#include <ravo-orx/package_check/OrxPolicyPreludes.h>
#include <ravo-orx/package_check/OrxProcess.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>

namespace ravo::orx {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExtensions[] = {".wat", ".c", ".rs"};  // indexed by OrxPolicyLanguage

// The fixed flags of each language; tools/README.md lists them for authors.
const std::vector<std::string> kCFlags{"--target=wasm32", "-std=c11", "-O2", "-ffreestanding", "-nostdlib", "-g0"};
const std::vector<std::string> kRustFlags{"--edition", "2021", "--target", "wasm32-unknown-unknown",
                                          "-C", "opt-level=2", "-C", "panic=abort", "-C", "debuginfo=0"};
// A policy's stack stays small: 64 KiB instead of the languages' usual megabyte of memory per instance.
const std::vector<std::string> kLinkFlags{"--no-entry", "--strip-all", "-z", "stack-size=65536"};
constexpr const char* kRustTarget = "wasm32-unknown-unknown";

void write(const fs::path& path, std::string_view text) {
  std::ofstream stream(path, std::ios::binary);
  stream << text;
  if (!(stream.close(), stream)) throw std::runtime_error("could not write " + path.string());
}

// Runs one compiler step; a refusal carries the compiler's whole diagnostic.
void run(const fs::path& source, std::vector<std::string> words) {
  const auto outcome = runOrxProcess(std::move(words));
  if (outcome.status == 0) return;
  const std::string diagnostic = orxTrimmed(outcome.err + outcome.out);
  if (diagnostic.starts_with(source.string() + ":")) throw std::runtime_error(diagnostic);
  throw std::runtime_error(source.string() + ": " + (diagnostic.empty() ? "refused without a message" : diagnostic));
}

std::vector<std::string> concat(std::vector<std::string> words, const std::vector<std::string>& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

fs::path firstOnPath(const std::string& name, const std::string& package) {
  const auto found = findAllOnPath(name);
  if (found.empty()) throw std::runtime_error(name + " was not found on PATH (Debian package " + package + ")");
  return found.front();
}

// The directory of rustc's wasm32 standard library, when it has one.
std::optional<fs::path> wasmStandardLibrary(const fs::path& rustc) {
  const auto outcome = runOrxProcess({rustc.string(), "--print", "sysroot"});
  if (outcome.status != 0) return std::nullopt;
  const fs::path library = fs::path(orxTrimmed(outcome.out)) / "lib/rustlib" / kRustTarget / "lib";
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(library, error)) {
    if (entry.path().filename().string().rfind("libcore-", 0) == 0) return library;
  }
  return std::nullopt;
}

// The executable itself, and the shared libraries that hold the compiler's code (LLVM, clang, lld,
// rustc's driver and standard library) as the dynamic loader resolves them; not the system's C and C++
// libraries, which do not decide what code is generated.
void addExecutableFiles(std::map<std::string, fs::path>& files, const fs::path& executable) {
  const fs::path resolved = fs::canonical(executable);
  files.emplace(resolved.filename().string(), resolved);
  const auto outcome = runOrxProcess({"/usr/bin/ldd", resolved.string()});
  std::istringstream lines(outcome.out);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string name, arrow, path;
    if (!(words >> name >> arrow >> path) || arrow != "=>") continue;
    for (const char* prefix : {"libLLVM", "libclang", "liblld", "librustc_driver", "libstd-"}) {
      if (name.rfind(prefix, 0) == 0) files.emplace(name, fs::canonical(path));
    }
  }
}

}  // namespace

std::optional<OrxPolicyLanguage> orxPolicyLanguageOf(const fs::path& file) {
  const std::string extension = file.extension().string();
  for (std::size_t language = 0; language < std::size(kExtensions); ++language) {
    if (extension == kExtensions[language]) return static_cast<OrxPolicyLanguage>(language);
  }
  return std::nullopt;
}

std::optional<OrxPolicySource> findOrxPolicySource(const fs::path& directory, std::string_view module) {
  std::vector<OrxPolicySource> sources;
  for (std::size_t language = 0; language < std::size(kExtensions); ++language) {
    const fs::path path = directory / (std::string(module) + std::string(kExtensions[language]));
    if (fs::exists(path)) sources.push_back({path, static_cast<OrxPolicyLanguage>(language)});
  }
  if (sources.size() <= 1) return sources.empty() ? std::nullopt : std::optional(sources.front());
  const std::string name(module);
  throw std::runtime_error("more than one source in " + directory.string() + ": a module has exactly one of " + name +
                           ".wat, " + name + ".c and " + name + ".rs");
}

OrxPolicyCompilers OrxPolicyCompilers::find() {
  const fs::path assembler = firstOnPath("wat2wasm", "wabt");
  const auto outcome = runOrxProcess({assembler.string(), "--version"});
  if (outcome.status != 0) throw std::runtime_error(assembler.string() + " --version: " + orxTrimmed(outcome.err));
  return {assembler, orxTrimmed(outcome.out)};
}

std::vector<std::uint8_t> OrxPolicyCompilers::compile(const OrxPolicySource& source) {
  // The compilers read the source themselves: it is held to the artifact files' limits first, so a FIFO
  // or a device is refused at once and an oversized source before a compiler spends its time on it.
  const internal::OrxBoundedInput checked(source.path, internal::kOrxArtifactFileByteLimit);
  switch (source.language) {
    case OrxPolicyLanguage::webAssemblyText: return assemble(source.path);
    case OrxPolicyLanguage::c: return compileC(source.path);
    case OrxPolicyLanguage::rust: return compileRust(source.path);
  }
  throw std::logic_error("unknown policy language");
}

std::vector<std::uint8_t> OrxPolicyCompilers::assemble(const fs::path& source) {
  const OrxScratchDirectory scratch("assemble");
  run(source, {assembler_.string(), source.string(), "-o", (scratch.path() / "module.wasm").string()});
  assemblerUsed_ = true;
  return internal::readArtifactFile(scratch.path() / "module.wasm");
}

const fs::path& OrxPolicyCompilers::linker() {
  if (!linker_) linker_ = firstOnPath("wasm-ld", "lld");
  return *linker_;
}

std::vector<std::uint8_t> OrxPolicyCompilers::compileC(const fs::path& source) {
  if (!c_) c_ = CCompiler{firstOnPath("clang", "clang")};
  const OrxScratchDirectory scratch("compile");
  write(scratch.path() / "orx_policy.h", kOrxCPrelude);
  const auto object = scratch.path() / "module.o", module = scratch.path() / "module.wasm";
  // Compiled and linked in two steps so that the linker is the wasm-ld found here, not clang's choice.
  run(source, concat(concat({c_->clang.string()}, kCFlags),
                     {"-I", scratch.path().string(), "-c", source.string(), "-o", object.string()}));
  run(source, concat(concat({linker().string()}, kLinkFlags), {object.string(), "-o", module.string()}));
  return internal::readArtifactFile(module);
}

std::vector<std::uint8_t> OrxPolicyCompilers::compileRust(const fs::path& source) {
  if (!rust_) {
    std::string tried;
    for (const auto& rustc : findAllOnPath("rustc")) {
      if (const auto library = wasmStandardLibrary(rustc)) {
        rust_ = RustCompiler{rustc, *library};
        break;
      }
      tried += " " + rustc.string();
    }
    if (!rust_) {
      throw std::runtime_error(source.string() + ": no rustc on PATH has the " + kRustTarget + " standard library" +
                               (tried.empty() ? " (no rustc found)" : " (tried" + tried + ")") +
                               "; install Debian's rustc and libstd-rust-dev-wasm32 (scripts/install-deps does), "
                               "or add the target to your own toolchain");
    }
  }
  const OrxScratchDirectory scratch("compile");
  const auto prelude = scratch.path() / "orx_policy.rs", crate = scratch.path() / "liborx_policy.rlib";
  const auto module = scratch.path() / "module.wasm";
  write(prelude, kOrxRustPrelude);
  const std::string rustc = rust_->rustc.string();
  // Panic locations name source files: the paths are remapped so that the bytes never depend on where
  // the repository or the scratch directory is.
  const std::vector<std::string> flags = concat(
      kRustFlags, {"--remap-path-prefix", scratch.path().string() + "=orx_policy", "--remap-path-prefix",
                   fs::absolute(source).parent_path().string() + "=policies"});
  run(prelude, concat(concat({rustc}, flags),
                      {"--crate-type", "rlib", "--crate-name", "orx_policy", prelude.string(), "-o", crate.string()}));
  std::vector<std::string> words = concat(concat({rustc}, flags),
                                          {"--crate-type", "cdylib", "--crate-name", "policy", "--extern",
                                           "orx_policy=" + crate.string(), "-C", "linker=" + linker().string()});
  for (const auto& flag : kLinkFlags) words.insert(words.end(), {"-C", "link-arg=" + flag});
  run(source, concat(words, {fs::absolute(source).string(), "-o", module.string()}));
  return internal::readArtifactFile(module);
}

std::vector<OrxCompilerFile> OrxPolicyCompilers::filesUsed() const {
  std::map<std::string, fs::path> files;
  if (assemblerUsed_) files.emplace("wat2wasm", fs::canonical(assembler_));
  if (c_) addExecutableFiles(files, c_->clang);
  if (rust_) {
    addExecutableFiles(files, rust_->rustc);
    for (const auto& entry : fs::directory_iterator(rust_->standardLibrary)) {
      files.emplace(std::string(kRustTarget) + "/" + entry.path().filename().string(), entry.path());
    }
  }
  if (c_ || rust_) addExecutableFiles(files, *linker_);
  std::vector<OrxCompilerFile> listed;
  for (auto& [name, path] : files) listed.push_back({name, std::move(path)});
  return listed;
}

}  // namespace ravo::orx
