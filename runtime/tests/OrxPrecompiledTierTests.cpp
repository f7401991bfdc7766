// The precompiled tier must be indistinguishable from the interpreter: same results, same emitted
// records, same traps, over boundary and random facts; and its traps stay on their own thread.

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <random>
#include <thread>
#include <vector>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include <ravo-orx/engine/wasm2c/PrecompiledTrap.h>
#include "runtime/tests/MeteredTestModules.h"
#include "runtime/tests/WatAssembler.h"

namespace ravo::orx {

using namespace internal;

extern "C" void wasm_rt_trap(int code);  // the wasm2c runtime's trap entry, thrown to the calling guard

namespace {

// Boundary values first, then values near the policies' own thresholds, then anything.
std::int32_t generatedValue(std::mt19937& random) {
  static constexpr std::int32_t kBoundaries[] = {0, 1, -1, 2, 3, 50, 51, 100, 500, 501, 999, 1000, 1001, 2000,
                                                 2500, 5000, 6000, 900000, 86400000, 86400001, -86400001,
                                                 std::numeric_limits<std::int32_t>::min(),
                                                 std::numeric_limits<std::int32_t>::max()};
  switch (random() % 3) {
    case 0: return kBoundaries[random() % std::size(kBoundaries)];
    case 1: return static_cast<std::int32_t>(random() % 20001) - 10000;
    default: return static_cast<std::int32_t>(random());
  }
}

TEST(OrxPrecompiledTier, AgreesWithTheInterpreterOnEveryGeneratedFact) {
  struct Module {
    const char* name;
    size_t arity;
  };
  for (const auto& [name, arity] : {Module{"player_authz", 8}, Module{"sync_correction", 8}, Module{"cinema_admission", 13}}) {
    const auto bytes = readTestFile(std::string("artifacts/") + name + ".wasm");
    auto precompiled = loadModule(name, bytes);
    auto interpreted = loadModule(name, bytes, /*allowPrecompiled=*/false);
    ASSERT_EQ(precompiled->tier(), OrxExecutionTier::precompiled) << name;
    ASSERT_EQ(interpreted->tier(), OrxExecutionTier::interpreted) << name;

    std::mt19937 random(20261123);
    std::vector<std::int32_t> facts(arity);
    for (int round = 0; round < 100'000; ++round) {
      for (auto& fact : facts) fact = generatedValue(random);
      const auto fast = precompiled->invoke(facts);
      const auto reference = interpreted->invoke(facts);
      ASSERT_EQ(fast.result, reference.result) << name << " round " << round;
      using Text = std::optional<std::string>;
      ASSERT_EQ(Text(fast.error), Text(reference.error)) << name << " round " << round;
      ASSERT_EQ(fast.emitted != nullptr, reference.emitted != nullptr) << name << " round " << round;
      if (fast.emitted) {
        ASSERT_EQ(*fast.emitted, *reference.emitted) << name << " round " << round;
      }
    }
  }
}

// Metered code behaves alike on both tiers too, budgets included: the same results, emissions, growth
// refusals and traps. A trap's text on the native tier is the interpreter's without its detail (wasm2c
// reports only the kind of an out-of-bounds access).
TEST(OrxPrecompiledTier, AgreesWithTheInterpreterOnMeteredModules) {
  struct Call {
    const char* module;
    std::vector<std::int32_t> arguments;
    std::optional<std::string> error;  // expected on both tiers (the interpreter's may say more)
  };
  const std::string exhausted = "RuntimeError: execution budget exhausted";
  const Call calls[] = {
      {"metered_loop", {0}, std::nullopt},
      {"metered_loop", {1000}, std::nullopt},
      {"metered_loop", {40'000}, std::nullopt},
      {"metered_loop", {10'000'000}, exhausted},
      {"metered_loop", {-1}, exhausted},
      {"metered_loop", {7}, std::nullopt},  // the next call after exhaustion decides normally
      {"metered_recursion", {100, 0}, std::nullopt},
      {"metered_recursion", {100, 255}, std::nullopt},  // grows to the cap of 256 pages
      {"metered_recursion", {0, 1}, std::nullopt},      // past the cap: memory.grow returns -1
      {"metered_recursion", {1'000'000, 0}, "RuntimeError: call stack exhausted"},
      {"metered_recursion", {5, 0}, std::nullopt},
      {"metered_bulk", {16, 8, 100}, std::nullopt},
      {"metered_bulk", {524'288, 524'288, 1'048'568}, exhausted},  // 1 MiB moved exceeds the fuel
      {"metered_bulk", {400'000, 400'000, 0}, std::nullopt},
      {"metered_bulk", {0, 0, 1'048'570}, "RuntimeError: out of bounds memory access"},
      {"metered_bulk", {3, 3, 3}, std::nullopt},
      {"metered_references", {700}, std::nullopt},
      {"metered_references", {700}, std::nullopt},  // each call counts its own references from 0
      {"metered_references", {1'000}, exhausted},
      {"metered_references", {700}, std::nullopt},
  };
  std::map<std::string, std::pair<std::unique_ptr<OrxModuleInstance>, std::unique_ptr<LoadedModule>>> tiers;
  for (const char* name : {"metered_loop", "metered_recursion", "metered_bulk", "metered_references"}) {
    auto native = precompiledTestModule(name);
    ASSERT_EQ(native.startError, std::nullopt) << name;
    const auto source = readTestFile(std::filesystem::path(ORX_METERED_TEST_MODULES) / name += ".wasm");
    tiers[name] = {std::move(native.instance), loadModule(name, source, /*allowPrecompiled=*/false)};
  }
  for (const auto& call : calls) {
    auto& [native, interpreted] = tiers.at(call.module);
    const std::string what = std::string(call.module) + " " + ::testing::PrintToString(call.arguments);
    const auto fast = native->invoke(call.arguments.data(), call.arguments.size());
    const auto reference = interpreted->invoke(call.arguments);
    EXPECT_EQ(fast.result, reference.result) << what;
    EXPECT_EQ(std::optional<std::string>(fast.error), call.error) << what;
    ASSERT_EQ(static_cast<bool>(reference.error), call.error.has_value()) << what;
    if (call.error) {
      EXPECT_EQ(reference.error->substr(0, call.error->size()), *call.error) << what;
    }
    ASSERT_EQ(fast.emitted != nullptr, reference.emitted != nullptr) << what;
    if (fast.emitted) {
      EXPECT_EQ(*fast.emitted, *reference.emitted) << what;
    }
  }
  // Spot checks against values worked out by hand, so agreement is not agreement on a wrong answer.
  std::int32_t thousand = 1000;
  EXPECT_EQ(*tiers.at("metered_loop").first->invoke(&thousand, 1).emitted,
            (std::vector<std::int32_t>{5301, 2, 1000, 262'015'092, 1000}));
  const std::int32_t pastTheCap[] = {3, 1};
  EXPECT_EQ(*tiers.at("metered_recursion").first->invoke(pastTheCap, 2).emitted,
            (std::vector<std::int32_t>{5302, 3, -1, 256, 7}));
}

TEST(OrxPrecompiledTier, OnlyTheApprovedBytesBindNativeCode) {
  auto other = loadModule(
      "other", assembleWat(R"wat((module (func (export "decide") (result i32) (i32.const 0))))wat"));
  EXPECT_EQ(other->tier(), OrxExecutionTier::interpreted);
  OrxPolicyRuntime runtime(std::filesystem::path("artifacts"));
  EXPECT_EQ(runtime.executionTiers(), "authz precompiled / sync precompiled / cinema precompiled");
}

// The build step that guards translation: only a file whose bytes are the approved artifact's passes,
// and a refusal says how to fix it.
TEST(OrxPrecompiledTier, TheBuildTranslatesOnlyTheApprovedArtifact) {
  const std::filesystem::path scratch =
      std::filesystem::temp_directory_path() / ("orx-approved-check-" + std::to_string(::getpid()));
  std::filesystem::create_directories(scratch);
  const std::filesystem::path altered = scratch / "player_authz.wasm";
  std::filesystem::copy_file("artifacts/player_authz.wasm", altered, std::filesystem::copy_options::overwrite_existing);
  std::ofstream(altered, std::ios::binary | std::ios::app) << '\0';
  const auto check = [](const std::string& module, const std::filesystem::path& file) {
    const std::string command = std::string(ORX_APPROVED_MODULE_CHECK) + " " + module + " " + file.string() + " 2>&1";
    FILE* pipe = ::popen(command.c_str(), "r");
    std::string output;
    for (int c; (c = std::fgetc(pipe)) != EOF;) output.push_back(static_cast<char>(c));
    const int status = ::pclose(pipe);
    return std::pair(WEXITSTATUS(status), output);
  };
  const struct {
    const char* what;
    std::string module;
    std::filesystem::path file;
    int status;
    std::string says;
  } cases[] = {
      {"the approved artifact", "player_authz", "artifacts/player_authz.wasm", 0, ""},
      {"another module's artifact", "player_authz", "artifacts/sync_correction.wasm", 1, "but this build approves"},
      {"one byte more", "player_authz", altered, 1, "Run 'ravo-orx policy build'"},
      {"a module the build does not know", "unknown_policy", "artifacts/player_authz.wasm", 1, "approves nothing for unknown_policy"},
  };
  for (const auto& c : cases) {
    const auto [status, output] = check(c.module, c.file);
    EXPECT_EQ(status, c.status) << c.what << ": " << output;
    EXPECT_NE(output.find(c.says), std::string::npos) << c.what << ": " << output;
  }
  std::filesystem::remove_all(scratch);
}

TEST(OrxPrecompiledTier, TrapsReturnToTheTrappingThreadsOwnCall) {
  constexpr int kThreads = 4;
  std::vector<int> mismatches(kThreads, 0);
  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        for (int i = 0; i < 2000; ++i) {
          const int code = 1 + (t + i) % 6;
          if (orxRunTrapGuarded([code] { wasm_rt_trap(code); }) != code) ++mismatches[t];
        }
      });
    }
  }
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(mismatches[t], 0) << "thread " << t;
}

}  // namespace

}  // namespace ravo::orx
