// The policy compilers and their preludes: what an author writes against must agree with the runtime's
// description of each decision kind, and a module's bytes must depend on its source alone.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxPolicyCompilers.h>
#include <ravo-orx/package_check/OrxPolicyPreludes.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>

namespace ravo::orx {
namespace {

namespace fs = std::filesystem;

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
    std::vector<std::uint8_t> here, there;
    try {
      here = compilers.compile({source, *orxPolicyLanguageOf(source)});
      there = compilers.compile({elsewhere, *orxPolicyLanguageOf(source)});
    } catch (const std::runtime_error& error) {
      if (std::string(error.what()).find("no rustc on PATH") != std::string::npos) GTEST_SKIP() << error.what();
      throw;
    }
    EXPECT_EQ(here, there);
    EXPECT_EQ(std::vector<std::uint8_t>(here.begin(), here.begin() + 4), (std::vector<std::uint8_t>{0, 'a', 's', 'm'}));
    EXPECT_FALSE(hasCustomSection(here));
    std::vector<std::string> names;
    for (const auto& file : compilers.filesUsed()) names.push_back(file.name);
    for (const auto& name : row.listed) EXPECT_NE(std::find(names.begin(), names.end(), name), names.end()) << name;
  }
  fs::remove_all(scratch);
}

}  // namespace
}  // namespace ravo::orx
