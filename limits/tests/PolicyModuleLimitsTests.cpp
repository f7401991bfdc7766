// A module that tries to emit a million values is refused before it runs; the most a module can
// emit within the instruction bound is contained at decision time with one counted failure.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/LoadedModule.h"
#include "runtime/OrxLog.h"
#include "runtime/OrxPolicyDecider.h"
#include "runtime/tests/ModuleLoadError.h"
#include "runtime/tests/WatAssembler.h"

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

std::string loadError(const std::vector<std::uint8_t>& bytes) { return moduleLoadError("flood", bytes); }

// A million emit calls, as a thousand calls of a function that emits a thousand times. (One emit of a
// million arguments is refused by the same rule: pushing the arguments alone takes a million
// instructions.)
TEST(PolicyModuleLimits, AMillionEmittedValuesAreRefusedAtInstantiation) {
  EXPECT_EQ(loadError(emittingModule(1'000, 1'000, "(i32.const 1)")),
            "Could not instantiate ORX module flood: VerifierError: execution cannot be bounded because a call may run "
            "more than 1000000 instructions");
}

// What a module may do inside the bound: an emit without arguments costs three instructions (the
// call, the host call and the drop), so 330,000 of them fit. The decision fails safe and counts once.
TEST(PolicyModuleLimits, TheLargestAdmittedFloodFailsSafeWithOneCountedFailure) {
  std::vector<std::string> logLines;
  setOrxLogSink([&](OrxLogLevel, std::string_view message) { logLines.emplace_back(message); });
  struct Case {
    const char* name;
    std::string ending;
    OrxAuthorizationDecision expected;
    std::vector<std::string> expectedLog;
  };
  const Case cases[] = {
      {"only empty records", "(i32.const 1)", OrxAuthorizationDecision::invalid(), {}},
      {"trap after the flood", "(unreachable)", OrxAuthorizationDecision::runtimeUnavailable(),
       {"ORX authorization trapped; denying command: RuntimeError: unreachable executed"}},
  };
  for (const auto& c : cases) {
    logLines.clear();
    OrxPolicyDecider decider({LoadedModule::instantiate("flood", emittingModule(330, 1'000, c.ending)), nullptr,
                              nullptr});
    EXPECT_EQ(decider.authorize(AuthorizationFacts{}), c.expected) << c.name;
    EXPECT_EQ(decider.failureCount(), 1u) << c.name;
    EXPECT_EQ(logLines, c.expectedLog) << c.name;
  }
  setOrxLogSink({});
}

}  // namespace
