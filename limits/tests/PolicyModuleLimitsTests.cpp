// A module that tries to emit a million values runs out of fuel at decision time; the most a module
// can emit within the proven bound runs unmetered. Either is contained with one counted failure.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyDecider.h>
#include "runtime/tests/WatAssembler.h"

namespace ravo::orx {

using namespace internal;

namespace {

// decide calls $leaf `fanOut` times and $leaf calls emit (without arguments) `leafEmits` times, then
// decide ends with `ending`, an expression of type i32.
std::vector<std::uint8_t> emittingModule(int fanOut, int leafEmits, const std::string& ending) {
  std::string leaf;
  for (int i = 0; i < leafEmits; ++i) leaf += "(drop (call $emit))";
  std::string decide;
  for (int i = 0; i < fanOut; ++i) decide += "(call $leaf)";
  return assembleWat("(module (import \"output\" \"emit\" (func $emit (result i32)))\n(func $leaf " + leaf +
                     ")\n(func (export \"decide\") (result i32) " + decide + " " + ending + "))");
}

// An emit without arguments costs three fuel units (the call, the host call and the drop), so 330,000
// of them fit the execution budget and a million (a thousand calls of a function that emits a thousand
// times) do not. The decision fails safe and counts once either way.
TEST(PolicyModuleLimits, FloodsOfEmittedValuesFailSafeWithOneCountedFailure) {
  std::vector<std::string> logLines;
  setOrxLogSink([&](OrxLogLevel, std::string_view message) { logLines.emplace_back(message); });
  struct Case {
    const char* name;
    int fanOut;
    std::string ending;
    OrxAuthorizationDecision expected;
    std::vector<std::string> expectedLog;
  };
  const Case cases[] = {
      {"only empty records", 330, "(i32.const 1)", OrxAuthorizationDecision::invalid(), {}},
      {"trap after the flood", 330, "(unreachable)", OrxAuthorizationDecision::runtimeUnavailable(),
       {"ORX authorization trapped; denying command: RuntimeError: unreachable executed"}},
      {"a million emits", 1'000, "(i32.const 1)", OrxAuthorizationDecision::runtimeUnavailable(),
       {"ORX authorization trapped; denying command: RuntimeError: execution budget exhausted"}},
  };
  for (const auto& c : cases) {
    logLines.clear();
    OrxPolicyDecider decider({loadModule("flood", emittingModule(c.fanOut, 1'000, c.ending)), nullptr,
                              nullptr});
    EXPECT_EQ(decider.authorize(AuthorizationFacts{}), c.expected) << c.name;
    EXPECT_EQ(decider.failureCount(), 1u) << c.name;
    EXPECT_EQ(logLines, c.expectedLog) << c.name;
  }
  setOrxLogSink({});
}

}  // namespace

}  // namespace ravo::orx
