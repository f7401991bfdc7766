// A run of manifest cases charges each case's fuel to the run, and stops once the run has used more
// than its limit: the cases after that one do not run.

#include <gtest/gtest.h>

#include <string>

#include <ravo-orx/package_check/OrxPolicyCases.h>
#include <ravo-orx/package_check/OrxPolicyManifest.h>
#include "runtime/tests/WatAssembler.h"

namespace ravo::orx {
namespace {

// An authorization manifest of `count` cases named "case 0", "case 1", …, each expecting an allow.
OrxPolicyManifest manifestWithCases(int count) {
  std::string cases;
  for (int i = 0; i < count; ++i) {
    cases += std::string(i ? "," : "") + R"({"case": "case )" + std::to_string(i) +
             R"(", "facts": [2, 6, 63, 1000, 900000, 0, 600, 1], "emits": [5201, 1, 6, 0, 3]})";
  }
  const std::string text =
      R"json({"module": "player_authz", "orxAbi": "0.10", "hostAbi": "0.11",
          "imports": ["func output.emit(i32, i32, i32, i32, i32) -> (i32)"],
          "decide": "func decide(i32, i32, i32, i32, i32, i32, i32, i32) -> (i32)", "emitTag": 5201,
          "facts": ["role", "command", "grantFlags", "tokenAgeMilliseconds", "tokenTTLMilliseconds", "rateUsed",
                    "rateLimit", "controlMode"],
          "cases": [)json" + cases + "]}";
  return OrxPolicyManifest::decode(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()), "m");
}

// decide loops until its fuel runs out: each call costs a whole execution budget.
std::vector<std::uint8_t> loopingModule() {
  return assembleWat(R"((module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
  (func (export "decide") (param i32 i32 i32 i32 i32 i32 i32 i32) (result i32)
    (loop $forever (br $forever)) (i32.const 0))))");
}

TEST(OrxPolicyCases, ARunStopsOnceItsCasesHaveUsedItsFuel) {
  const auto module = loopingModule();
  const auto manifest = manifestWithCases(5);
  const auto& kind = *orxDecisionKindOfModule("player_authz");
  struct Row {
    const char* name;
    std::uint64_t limit;
    bool exhausted;
  };
  // Every case runs out of its 1,000,000 units: the third one takes the run past 2,500,000.
  for (const Row& row : {Row{"room for every case", 6'000'000, false}, Row{"room for two cases", 2'500'000, true}}) {
    OrxPolicyRunFuel fuel(row.limit);
    try {
      const auto results = runPolicyCases(module, manifest, kind, fuel);
      EXPECT_FALSE(row.exhausted) << row.name;
      ASSERT_EQ(results.size(), 5u) << row.name;
      EXPECT_NE(results[4].problem.find("trapped: RuntimeError: execution budget exhausted"), std::string::npos);
    } catch (const OrxPolicyRunFuelExhausted& error) {
      EXPECT_TRUE(row.exhausted) << row.name;
      EXPECT_STREQ(error.what(), "the cases used more than 2500000 fuel units, the most one run may use; the cases "
                                 "after it were not run (docs/POLICY-MANIFEST.md, \"Budgets\")");
    }
  }
  // One run's fuel spans its manifests: what the first used is gone for the second.
  OrxPolicyRunFuel shared(6'000'000);
  runPolicyCases(module, manifestWithCases(3), kind, shared);
  EXPECT_THROW(runPolicyCases(module, manifestWithCases(3), kind, shared), OrxPolicyRunFuelExhausted);
}

}  // namespace
}  // namespace ravo::orx
