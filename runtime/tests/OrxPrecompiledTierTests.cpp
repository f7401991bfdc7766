// The precompiled tier must be indistinguishable from the interpreter: same results, same emitted
// records, same traps, over boundary and random facts; and its traps stay on their own thread.

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <thread>
#include <vector>

#include "runtime/LoadedModule.h"
#include "runtime/OrxPolicyRuntime.h"
#include "runtime/engine/wasm2c/PrecompiledTrap.h"
#include "runtime/tests/WatAssembler.h"

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
    auto precompiled = LoadedModule::instantiate(name, bytes);
    auto interpreted = LoadedModule::instantiate(name, bytes, /*allowPrecompiled=*/false);
    ASSERT_EQ(precompiled->tier(), OrxExecutionTier::precompiled) << name;
    ASSERT_EQ(interpreted->tier(), OrxExecutionTier::interpreted) << name;

    std::mt19937 random(20261123);
    std::vector<std::int32_t> facts(arity);
    for (int round = 0; round < 100'000; ++round) {
      for (auto& fact : facts) fact = generatedValue(random);
      const auto fast = precompiled->invoke(facts);
      const auto reference = interpreted->invoke(facts);
      ASSERT_EQ(fast.result, reference.result) << name << " round " << round;
      ASSERT_EQ(fast.error, reference.error) << name << " round " << round;
      ASSERT_EQ(fast.emitted != nullptr, reference.emitted != nullptr) << name << " round " << round;
      if (fast.emitted) {
        ASSERT_EQ(*fast.emitted, *reference.emitted) << name << " round " << round;
      }
    }
  }
}

TEST(OrxPrecompiledTier, OnlyTheApprovedBytesBindNativeCode) {
  auto other = LoadedModule::instantiate(
      "other", assembleWat(R"wat((module (func (export "decide") (result i32) (i32.const 0))))wat"));
  EXPECT_EQ(other->tier(), OrxExecutionTier::interpreted);
  OrxPolicyRuntime runtime(std::filesystem::path("artifacts"));
  EXPECT_EQ(runtime.executionTiers(), "authz precompiled / sync precompiled / cinema precompiled");
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
