// The policy compilers and their preludes: what an author writes against must agree with the runtime's
// description of each decision kind, and a module's bytes must depend on its source alone.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxPolicyCompilers.h>
#include <ravo-orx/package_check/OrxPolicyPreludes.h>
#include <ravo-orx/package_check/OrxProcess.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>

namespace ravo::orx {
namespace {

namespace fs = std::filesystem;

void writeText(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

// The module, or nothing (with why in `missing`) where the language's compiler is not installed.
std::optional<std::vector<std::uint8_t>> compiledUnlessMissing(OrxPolicyCompilers& compilers, const fs::path& source,
                                                             std::string& missing) {
  try {
    return compilers.compile({source, *orxPolicyLanguageOf(source)});
  } catch (const std::runtime_error& error) {
    if (std::string(error.what()).find("no rustc on PATH") == std::string::npos) throw;
    missing = error.what();
    return std::nullopt;
  }
}

std::string upper(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return result;
}

// The parameter names of the C prelude's ORX_DECIDE_<KIND> macro, in order.
std::vector<std::string> decideParameters(std::string_view kind) {
  const std::string prelude(kOrxCPrelude);
  const auto start = prelude.find("#define ORX_DECIDE_" + upper(kind));
  EXPECT_NE(start, std::string::npos) << kind;
  const auto open = prelude.find("decide(", start), close = prelude.find(')', open);
  const std::string parameters = prelude.substr(open, close - open);
  std::vector<std::string> names;
  const std::regex parameter("int32_t ([A-Za-z0-9]+)");
  for (auto it = std::sregex_iterator(parameters.begin(), parameters.end(), parameter); it != std::sregex_iterator();
       ++it) {
    names.push_back((*it)[1]);
  }
  return names;
}

TEST(OrxPolicyPreludes, AgreeWithEveryDecisionKind) {
  for (const auto& kind : kOrxDecisionKinds) {
    SCOPED_TRACE(kind.name);
    const std::string tag = std::to_string(kind.emitTag);
    EXPECT_NE(std::string(kOrxCPrelude).find("#define ORX_" + upper(kind.name) + "_TAG " + tag + "\n"),
              std::string::npos);
    EXPECT_NE(std::string(kOrxRustPrelude).find("pub const " + upper(kind.name) + "_TAG: i32 = " + tag + ";"),
              std::string::npos);
    EXPECT_EQ(decideParameters(kind.name), std::vector<std::string>(kind.factNames.begin(), kind.factNames.end()));
  }
}

TEST(OrxPolicySources, OneSourcePerModuleChosenByExtension) {
  const fs::path directory = fs::temp_directory_path() / ("orx-sources-" + std::to_string(::getpid()));
  fs::create_directories(directory);
  EXPECT_EQ(findOrxPolicySource(directory, "player_authz"), std::nullopt);
  std::ofstream(directory / "player_authz.rs") << "";
  std::ofstream(directory / "player_authz.wasm") << "";
  const auto found = findOrxPolicySource(directory, "player_authz");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->language, OrxPolicyLanguage::rust);
  EXPECT_EQ(found->path, directory / "player_authz.rs");
  std::ofstream(directory / "player_authz.c") << "";
  EXPECT_THROW(findOrxPolicySource(directory, "player_authz"), std::runtime_error);
  EXPECT_EQ(orxPolicyLanguageOf("a/b.wat"), OrxPolicyLanguage::webAssemblyText);
  EXPECT_EQ(orxPolicyLanguageOf("b.c"), OrxPolicyLanguage::c);
  EXPECT_EQ(orxPolicyLanguageOf("b.wasm"), std::nullopt);
  EXPECT_EQ(orxPolicyLanguageOf("c"), std::nullopt);
  fs::remove_all(directory);
}

// Whether a module has a custom section (names, producers, debug information): each could carry a
// compiler's version, a path or a symbol that the source does not decide.
bool hasCustomSection(const std::vector<std::uint8_t>& module) {
  std::size_t at = 8;
  while (at < module.size()) {
    const std::uint8_t id = module[at++];
    std::size_t size = 0;
    for (int shift = 0; at < module.size(); shift += 7) {
      const std::uint8_t byte = module[at++];
      size |= static_cast<std::size_t>(byte & 0x7f) << shift;
      if (!(byte & 0x80)) break;
    }
    if (id == 0) return true;
    at += size;
  }
  return false;
}

// The initial size of the module's memory in 64 KiB pages: the linker puts the stack there.
std::uint64_t initialMemoryPages(const std::vector<std::uint8_t>& module) {
  std::size_t at = 8;
  const auto leb = [&] {
    std::uint64_t value = 0;
    for (int shift = 0; at < module.size(); shift += 7) {
      const std::uint8_t byte = module[at++];
      value |= static_cast<std::uint64_t>(byte & 0x7f) << shift;
      if (!(byte & 0x80)) break;
    }
    return value;
  };
  while (at < module.size()) {
    const std::uint8_t id = module[at++];
    const std::size_t size = leb(), end = at + size;
    if (id == 5 && leb() >= 1) {
      leb();  // limits flags
      return leb();
    }
    at = end;
  }
  return 0;
}

// The same source compiled from two places, under two names, gives the same bytes: no path, time or
// scratch directory reaches a module. The compilers used are then listed for the compiler identity.
TEST(OrxPolicyCompilers, ModulesDependOnTheSourceAlone) {
  const fs::path examples = fs::path(ORX_REPOSITORY_ROOT) / "examples/policies";
  const fs::path scratch = fs::temp_directory_path() / ("orx-compile-" + std::to_string(::getpid()));
  struct Row {
    const char* example;
    std::vector<std::string> listed;  // files the compiler listing must then name
  };
  for (const Row& row : {Row{"c/player_authz.c", {"clang", "lld", "libLLVM-14.so.1"}},
                         Row{"rust/player_authz.rs", {"rustc", "lld"}}, Row{"wat/player_authz.wat", {"wat2wasm"}}}) {
    SCOPED_TRACE(row.example);
    auto compilers = OrxPolicyCompilers::find();
    const fs::path source = examples / row.example;
    const fs::path elsewhere = scratch / "somewhere/else" / ("renamed" + source.extension().string());
    fs::create_directories(elsewhere.parent_path());
    fs::copy_file(source, elsewhere, fs::copy_options::overwrite_existing);
    std::string missing;
    const auto here = compiledUnlessMissing(compilers, source, missing);
    if (!here) GTEST_SKIP() << missing;
    EXPECT_EQ(here, compiledUnlessMissing(compilers, elsewhere, missing));
    EXPECT_EQ(std::vector<std::uint8_t>(here->begin(), here->begin() + 4), (std::vector<std::uint8_t>{0, 'a', 's', 'm'}));
    EXPECT_FALSE(hasCustomSection(*here));
    if (source.extension() != ".wat") {
      EXPECT_LE(initialMemoryPages(*here), 2u) << "a 64 KiB stack and the data";
    }
    std::vector<std::string> names;
    for (const auto& file : compilers.filesUsed()) names.push_back(file.name);
    for (const auto& name : row.listed) EXPECT_NE(std::find(names.begin(), names.end(), name), names.end()) << name;
  }
  fs::remove_all(scratch);
}

// A Rust policy that indexes an array keeps a panic location, which names its source file: the path is
// remapped, so the bytes still do not depend on where the source is.
TEST(OrxPolicyCompilers, RustPanicLocationsDoNotNameTheSourcesDirectory) {
  const OrxScratchDirectory scratch("panic-location");
  const std::string source = R"(#![no_std]
use orx_policy::*;
#[no_mangle]
pub extern "C" fn decide(role: i32, command: i32, _: i32, _: i32, _: i32, _: i32, _: i32, _: i32) -> i32 {
    let versions = [3, 4, 5];
    let version = versions[role as usize];
    emit(AUTHZ_TAG, 0, command, 5, version);
    0
}
)";
  auto compilers = OrxPolicyCompilers::find();
  writeText(scratch.path() / "one/policy.rs", source);
  writeText(scratch.path() / "two/deeper/policy.rs", source);
  std::string missing;
  const auto here = compiledUnlessMissing(compilers, scratch.path() / "one/policy.rs", missing);
  if (!here) GTEST_SKIP() << missing;
  EXPECT_EQ(here, compiledUnlessMissing(compilers, scratch.path() / "two/deeper/policy.rs", missing));
  EXPECT_NE(std::string(here->begin(), here->end()).find("policies/policy.rs"), std::string::npos);
}

// A compiler's refusal is shown whole, prefixed with the source only when the compiler did not name it.
TEST(OrxPolicyCompilers, RefusalsCarryTheCompilersOwnDiagnostic) {
  const OrxScratchDirectory scratch("refusals");
  const struct {
    const char* file;
    const char* text;
    const char* diagnostic;
  } cases[] = {
      {"syntax.c", "int decide(int a) { return a +; }\n", "error: expected expression"},
      // The linker names its object file, not the source.
      {"unlinked.c",
       "int helper(int);\n__attribute__((export_name(\"decide\"))) int decide(int a) { return helper(a); }\n",
       "undefined symbol: helper"},
      {"syntax.wat", "(module (func $f (result i32) (i32.const)))\n", "error:"},
  };
  auto compilers = OrxPolicyCompilers::find();
  for (const auto& c : cases) {
    const fs::path source = scratch.path() / c.file;
    writeText(source, c.text);
    try {
      compilers.compile({source, *orxPolicyLanguageOf(source)});
      ADD_FAILURE() << c.file << " compiled";
    } catch (const std::runtime_error& error) {
      const std::string message = error.what();
      EXPECT_TRUE(message.starts_with(source.string() + ":")) << message;
      EXPECT_NE(message.find(c.diagnostic), std::string::npos) << message;
      EXPECT_EQ(message.find(source.string() + ": " + source.string()), std::string::npos) << message;
    }
  }
}

// A process ended by a signal reports 128 plus the signal, never success; PATH lists only files that
// can be run.
TEST(OrxProcess, ReportsSignalsAndFindsOnlyExecutables) {
  EXPECT_EQ(runOrxProcess({"/bin/sh", "-c", "kill -9 $$"}).status, 128 + 9);
  EXPECT_EQ(runOrxProcess({"/bin/sh", "-c", "exit 3"}).status, 3);
  const auto echoed = runOrxProcess({"/bin/sh", "-c", "echo out; echo err >&2"});
  EXPECT_EQ(echoed.out, "out\n");
  EXPECT_EQ(echoed.err, "err\n");

  const OrxScratchDirectory scratch("path");
  const fs::path plain = scratch.path() / "plain", runnable = scratch.path() / "runnable";
  writeText(plain / "orx-tool", "");
  writeText(runnable / "orx-tool", "#!/bin/sh\n");
  fs::permissions(runnable / "orx-tool", fs::perms::owner_all);
  const char* saved = std::getenv("PATH");
  const std::string previous = saved ? saved : "";
  ::setenv("PATH", (plain.string() + ":" + runnable.string()).c_str(), 1);
  const auto found = findAllOnPath("orx-tool");
  ::setenv("PATH", previous.c_str(), 1);
  EXPECT_EQ(found, std::vector<fs::path>{runnable / "orx-tool"});
}

}  // namespace
}  // namespace ravo::orx
