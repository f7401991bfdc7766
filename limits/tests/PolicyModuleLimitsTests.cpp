// A module that tries to emit a million values runs out of fuel at decision time; the most a module
// can emit within the proven bound runs unmetered. Either is contained with one counted failure. And
// whatever a module pushes, many decisions leave memory as the first left it.

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <string>
#include <vector>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyDecider.h>
#include "runtime/tests/SanitizerSlowdown.h"
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

std::uint64_t residentKilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmRSS:", 0) == 0) return std::stoull(line.substr(6));
  }
  return 0;
}

std::string times(int count, const std::string& text) {
  std::string out;
  for (int i = 0; i < count; ++i) out += text;
  return out;
}

// wabt's interpreter records every reference it pushes, the host's arguments included, and forgot the
// records of a call that did not trap: before, each row grew the process by 8 MB to 195 MB.
TEST(PolicyModuleLimits, ManyDecisionsLeaveMemoryAsTheFirstLeftIt) {
  struct Case {
    const char* name;
    std::string wat;
    std::size_t arguments;
    int decisions;
    double seconds;  // ceiling for all the decisions, ten times what they take alone
  };
  const std::string emitAllow = R"wat((drop (call $emit (i32.const 5301) (i32.const 1) (i32.const 0) (i32.const 1)
                                         (i32.const 0) (i32.const 0) (i32.const 0) (i32.const 0))))wat";
  const std::string emitImport = R"wat((import "output" "emit" (func $emit (param i32 i32 i32 i32 i32 i32 i32 i32) (result i32))))wat";
  const Case cases[] = {
      {"a million decisions reading a reference from a table and taking one",
       R"wat((module (table 1 externref)
           (func (export "decide") (param externref) (result i32) (drop (table.get 0 (i32.const 0))) (i32.const 1))))wat",
       1, 1'000'000, 10},  // under 1 µs each, a fresh thread and metering included
      {"decide taking 1,000 externref parameters",
       "(module (func (export \"decide\") (param" + times(1'000, " externref") + ") (result i32) (i32.const 0)))", 0,
       50'000, 5},
      {"pushing and dropping 4,000 null references, then allowing",
       "(module " + emitImport + " (func (export \"decide\") (result i32) " + times(4'000, "ref.null extern drop ") +
           emitAllow + " (i32.const 1)))",
       0, 3'000, 5},
      {"reading 1,000 references from a table, then allowing",
       "(module " + emitImport + " (table 1 externref) (func (export \"decide\") (result i32) " +
           times(1'000, "(drop (table.get 0 (i32.const 0))) ") + emitAllow + " (i32.const 1)))",
       0, 4'000, 5},
  };
  for (const auto& c : cases) {
    auto module = loadModule("growth", assembleWat(c.wat));
    const std::vector<std::int32_t> arguments(c.arguments, 0);
    module->invoke(arguments);
    const std::uint64_t afterFirst = residentKilobytes();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 1; i < c.decisions; ++i) ASSERT_FALSE(module->invoke(arguments).error) << c.name;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const std::uint64_t afterAll = residentKilobytes();
    // AddressSanitizer keeps freed memory in quarantine by design, so memory is compared in plain builds.
    if (kSanitizerSlowdown == 1) {
      EXPECT_LE(afterAll, afterFirst + 4 * 1024) << c.name << ": " << afterFirst << " KB after the first decision, "
                                                 << afterAll << " KB after " << c.decisions;
    }
    EXPECT_LE(seconds, c.seconds * kSanitizerSlowdown) << c.name;
  }
}

}  // namespace

}  // namespace ravo::orx
