// The hostile-module suite: modules an attacker or a careless compiler could hand the host, each with
// what must happen (refused with the host's text, or admitted and deciding exactly or failing safe) and
// a ceiling on the time and extra resident memory that loading it and taking two decisions may cost.
// Every admitted module serves as the sync module and answers "seek" with a correction it computed, so
// the decision shows the computation ran to completion.

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyDecider.h>
#include <ravo-orx/runtime/RuntimeError.h>
#include "runtime/tests/ModuleBytes.h"
#include "runtime/tests/SanitizerSlowdown.h"
#include "runtime/tests/WatAssembler.h"

namespace ravo::orx {

using namespace internal;

namespace {

// A sync module whose decide emits [5301, 2, 1000, $compute(), 0] and returns 2 (seek), with `parts`
// defining $compute and whatever it needs.
ModuleBytes seeking(const std::string& parts) {
  return assembleWat(R"wat((module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
  )wat" + parts + R"wat(
  (func (export "decide") (param i32 i32 i32 i32 i32 i32 i32 i32) (result i32)
    (drop (call $emit (i32.const 5301) (i32.const 2) (i32.const 1000) (call $compute) (i32.const 0)))
    (i32.const 2))))wat");
}

OrxSyncDecision seek(std::int32_t correction) { return {OrxSyncAction::seek, 1000, correction, 0}; }

std::string times(int count, const std::string& text) {
  std::string out;
  out.reserve(text.size() * count);
  for (int i = 0; i < count; ++i) out += text;
  return out;
}

// A loop that drops a value and keeps one through a br_table, forever.
constexpr const char* kBrTableLoop =
    "(loop $l (block $b (result i32) (i32.const 1) (i32.const 1) (i32.const 0) (br_table $b $b)) drop (br $l))";

// A function $many returning 1,000 values: 1,000 values on the stack for one call instruction.
const std::string kMany = "(func $many (result" + times(1'000, " i32") + ") " + times(1'000, "(i32.const 0)") + ")";

// `count` calls of a function $nothing, in a loop that has the module metered.
ModuleBytes callSites(std::uint64_t count) {
  const ModuleBytes types = leb(2) + functionType(0, 1) + functionType(0, 0);
  const std::string decide = "decide";
  return moduleHeader() + section(1, types) + section(3, leb(2) + ModuleBytes{0x00, 0x01}) +
         section(7, leb(1) + leb(decide.size()) + ModuleBytes(decide.begin(), decide.end()) + ModuleBytes{0x00, 0x00}) +
         section(10, leb(2) + functionBody(0, ModuleBytes{0x03, 0x40, 0x0B} + repeated({0x10, 0x01}, count) + ModuleBytes{0x41, 0x00}) +
                         functionBody(0, {}));
}

std::uint64_t statusKilobytes(const char* field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(field, 0) == 0) return std::stoull(line.substr(std::string(field).size()));
  }
  return 0;
}

// Peak resident memory since the last reset, beyond what was resident at the reset.
class ResidentGrowth {
 public:
  ResidentGrowth() {
    std::ofstream("/proc/self/clear_refs") << "5";  // resets the peak to the current resident size
    base_ = statusKilobytes("VmRSS:");
  }
  double megabytes() const {
    const std::uint64_t peak = statusKilobytes("VmHWM:");
    return peak > base_ ? static_cast<double>(peak - base_) / 1024 : 0;
  }

 private:
  std::uint64_t base_;
};

struct Row {
  const char* name;
  std::function<ModuleBytes()> bytes;
  std::string loadError;            // "" when the module must load
  OrxSyncDecision decision;         // the second of two decisions
  std::uint64_t failures;           // counted over both
  std::string trap;                 // the error text logged for the first decision, if it trapped
  double seconds;                   // ceiling for loading and both decisions
  double megabytes;                 // ceiling for the extra resident memory they need
};

TEST(OrxHostileModules, EachIsRefusedOrContainedWithinItsCeiling) {
  const std::string refused = "Could not instantiate ORX module probe: ";
  const std::string budget = refused + "CompileError: load budget exceeded: ";
  const std::string exhausted = "RuntimeError: execution budget exhausted";
  const auto hold = OrxSyncDecision::hold();
  const std::string loopForever = R"wat((func $compute (result i32) (loop $again (br $again)) (i32.const 0)))wat";

  const std::vector<Row> rows = {
      {"50 KB: a type of 10,000 parameters shared by 10,000 functions",
       [] { return moduleOfFunctions(vectorOf(functionType(10'000, 0), 1), 10'000, functionBody(0, {})); },
       budget + "parameters per function type 10000 (budget 1000)", hold, 0, "", 0.25, 64},
      {"410 KB: the same type shared by 100,000 functions",
       [] { return moduleOfFunctions(vectorOf(functionType(10'000, 0), 1), 100'000, functionBody(0, {})); },
       budget + "parameters per function type 10000 (budget 1000)", hold, 0, "", 0.25, 64},
      {"the largest signatures the budgets allow: 198 functions of 1,000 parameters (decide never emits)",
       [] { return moduleOfFunctions(vectorOf(functionType(1'000, 1), 1), 198, functionBody(0, {0x41, 0x00})); },
       "", hold, 2, "", 0.25, 64},
      {"4,000 types of 1,000 parameters (4 MB)",
       [] { return moduleOfFunctions(vectorOf(functionType(1'000, 0), 4'000), 1, functionBody(0, {})); },
       budget + "parameters and results over all types and functions 201000 (budget 200000)", hold, 0, "", 0.25, 64},
      {"100,000 tables of 1,024 elements",
       [] { return moduleHeader() + section(4, vectorOf({0x70, 0x01, 0x80, 0x08, 0x80, 0x08}, 100'000)); },
       budget + "tables 100000 (budget 16)", hold, 0, "", 0.25, 64},
      {"2,000,000 empty functions in 8 MB",
       [] { return moduleOfFunctions(vectorOf(functionType(0, 0), 1), 2'000'000, functionBody(0, {})); },
       budget + "module bytes 8000041 (budget 4194304)", hold, 0, "", 0.25, 64},
      {"10,000 empty functions, the most allowed (decide never emits)",
       [] { return moduleOfFunctions(vectorOf(functionType(0, 0), 1), 10'000, functionBody(0, {})); },
       "", hold, 2, "", 0.25, 64},
      {"250,001 instructions",
       [] { return moduleOfFunctions(vectorOf(functionType(0, 1), 1), 1, functionBody(0, repeated({0x01}, 249'999) + ModuleBytes{0x41, 0x00})); },
       budget + "instructions over all functions 250001 (budget 250000)", hold, 0, "", 0.25, 64},
      {"a passive element segment of 3,000,000 entries, in a module with a loop",
       [] {
         const ModuleBytes types = vectorOf(functionType(0, 1), 1);
         const ModuleBytes loopBody = functionBody(0, {0x03, 0x40, 0x0B, 0x41, 0x00});
         return moduleHeader() + section(1, types) + section(3, vectorOf({0x00}, 1)) +
                section(9, leb(1) + ModuleBytes{0x01, 0x00} + vectorOf({0x00}, 3'000'000)) +
                section(10, vectorOf(loopBody, 1));
       },
       budget + "element segment entries 3000000 (budget 10000)", hold, 0, "", 0.25, 64},
      {"element segments of 10,000 entries, the most allowed, metered (decide never emits)",
       [] {
         const ModuleBytes types = vectorOf(functionType(0, 1), 1);
         const ModuleBytes loopBody = functionBody(0, {0x03, 0x40, 0x0B, 0x41, 0x00});
         const std::string decide = "decide";
         return moduleHeader() + section(1, types) + section(3, vectorOf({0x00}, 1)) +
                section(7, leb(1) + leb(decide.size()) + ModuleBytes(decide.begin(), decide.end()) + ModuleBytes{0x00, 0x00}) +
                section(9, leb(1) + ModuleBytes{0x01, 0x00} + vectorOf({0x00}, 10'000)) +
                section(10, vectorOf(loopBody, 1));
       },
       "", hold, 2, "", 0.25, 64},
      {"1,025 nested blocks",
       [] {
         return moduleOfFunctions(vectorOf(functionType(0, 1), 1), 1,
                                  functionBody(0, repeated({0x02, 0x40}, 1'025) + repeated({0x0B}, 1'025) + ModuleBytes{0x41, 0x00}));
       },
       budget + "block nesting 1025 (budget 1024)", hold, 0, "", 0.25, 64},
      {"249,000 instructions in a loop, metered through wabt's IR (decide never emits)",
       [] {
         return moduleOfFunctions(vectorOf(functionType(0, 1), 1), 1,
                                  functionBody(0, ModuleBytes{0x03, 0x40} + repeated({0x41, 0x00, 0x1A}, 83'000) +
                                                      ModuleBytes{0x0B, 0x41, 0x00}));
       },
       "", hold, 2, "", 1, 64},
      {"1,024 nested blocks in a loop, metered (decide never emits)",
       [] {
         return moduleOfFunctions(vectorOf(functionType(0, 1), 1), 1,
                                  functionBody(0, ModuleBytes{0x03, 0x40} + repeated({0x02, 0x40}, 1'023) +
                                                      repeated({0x0B}, 1'024) + ModuleBytes{0x41, 0x00}));
       },
       "", hold, 2, "", 0.25, 64},
      {"an infinite loop", [&] { return seeking(loopForever); }, "", hold, 2, exhausted, 0.5, 64},
      {"infinite recursion",
       [] { return seeking(R"wat((func $compute (result i32) (call $compute)))wat"); },
       "", hold, 2, "RuntimeError: call stack exhausted", 0.5, 64},
      {"a start function that loops forever",
       [&] { return seeking(loopForever + R"wat((func $init (drop (call $compute))) (start $init))wat"); },
       refused + exhausted, hold, 0, "", 0.5, 64},
      {"memory.fill of 16 MiB, again and again",
       [] {
         return seeking(R"wat((memory 256) (func $compute (result i32)
             (loop $again (memory.fill (i32.const 0) (i32.const 1) (i32.const 16777216)) (br $again)) (i32.const 0)))wat");
       },
       "", hold, 2, exhausted, 0.5, 64},
      {"memory.copy of 1 MiB, again and again",
       [] {
         return seeking(R"wat((memory 32) (func $compute (result i32)
             (loop $again (memory.copy (i32.const 0) (i32.const 1048576) (i32.const 1048576)) (br $again))
             (i32.const 0)))wat");
       },
       "", hold, 2, exhausted, 0.5, 64},
      {"memory.init of a 64 KiB segment, again and again",
       [] {
         return seeking("(memory 1) (data $blob \"" + std::string(65'536, 'x') + R"wat(")
             (func $compute (result i32)
               (loop $again (memory.init $blob (i32.const 0) (i32.const 0) (i32.const 65536)) (br $again))
               (i32.const 0)))wat");
       },
       "", hold, 2, exhausted, 0.5, 64},
      {"a memory grown until growth is refused",
       [] {
         return seeking(R"wat((memory 1) (func $compute (result i32)
             (loop $again (br_if $again (i32.ne (memory.grow (i32.const 1)) (i32.const -1))))
             (memory.size)))wat");
       },
       "", seek(256), 0, "", 0.5, 64},
      {"a table grown past its cap",
       [] {
         return seeking(R"wat((table 1 funcref) (func $compute (result i32)
             (drop (table.grow 0 (ref.null func) (i32.const 9000)))
             (i32.add (i32.mul (table.grow 0 (ref.null func) (i32.const 1000)) (i32.const 100000)) (table.size 0))))wat");
       },
       "", seek(-100'000 + 9'001), 0, "", 0.5, 64},
      {"a bounded 1,000-iteration loop",
       [] {
         return seeking(R"wat((func $compute (result i32) (local $i i32) (local $sum i32)
             (loop $again
               (local.set $i (i32.add (local.get $i) (i32.const 1)))
               (local.set $sum (i32.add (local.get $sum) (local.get $i)))
               (br_if $again (i32.lt_u (local.get $i) (i32.const 1000))))
             (local.get $sum)))wat");
       },
       "", seek(500'500), 0, "", 0.5, 64},
      {"a depth-100 recursion",
       [] {
         return seeking(R"wat((func $sum (param $n i32) (result i32)
               (if (result i32) (i32.eqz (local.get $n)) (then (i32.const 0))
                 (else (i32.add (local.get $n) (call $sum (i32.sub (local.get $n) (i32.const 1)))))))
             (func $compute (result i32) (call $sum (i32.const 100))))wat");
       },
       "", seek(5'050), 0, "", 0.5, 64},
      {"an indirect call",
       [] {
         return seeking(R"wat((type $answer (func (result i32))) (table funcref (elem $seven))
             (func $seven (result i32) (i32.const 7))
             (func $compute (result i32) (call_indirect (type $answer) (i32.const 0))))wat");
       },
       "", seek(7), 0, "", 0.5, 64},
      // The entry charge covers both arms of an if: five calls cost more than one call's fuel.
      {"five calls of a function whose else arm runs 200,000 instructions",
       [] {
         std::string nops;
         for (int i = 0; i < 200'000; ++i) nops += "nop ";
         return seeking("(func $heavy (if (i32.const 0) (then) (else " + nops + ")))" + R"wat(
             (func $compute (result i32) (call $heavy) (call $heavy) (call $heavy) (call $heavy) (call $heavy)
               (i32.const 7)))wat");
       },
       "", hold, 2, exhausted, 0.5, 64},
      // An indirect call counts the largest frame: four frames of 4 + 1 + 996 units pass the stack budget.
      {"an indirect recursion four frames of 1,001 units deep",
       [] {
         std::string locals = "(local";
         for (int i = 0; i < 996; ++i) locals += " i32";
         return seeking(R"wat((type $down (func (param i32) (result i32))) (table funcref (elem $deep))
             (func $deep (param $n i32) (result i32) )wat" + locals + R"wat()
               (if (result i32) (i32.eqz (local.get $n)) (then (i32.const 0))
                 (else (i32.add (i32.const 1)
                   (call_indirect (type $down) (i32.sub (local.get $n) (i32.const 1)) (i32.const 0))))))
             (func $compute (result i32) (call $deep (i32.const 3))))wat");
       },
       "", hold, 2, "RuntimeError: call stack exhausted", 0.5, 64},
      // A call gives its frame back: five calls in turn of 1,000 units never hold more than one. The
      // empty loop has the module metered.
      {"five calls in turn of a function with a 1,000-unit frame, metered",
       [] {
         std::string locals = "(local";
         for (int i = 0; i < 996; ++i) locals += " i32";
         return seeking("(func $one (result i32) " + locals + R"wat() (i32.const 1))
             (func $compute (result i32) (loop $never)
               (i32.add (call $one) (i32.add (call $one) (i32.add (call $one) (i32.add (call $one) (call $one)))))))wat");
       },
       "", seek(5), 0, "", 0.5, 64},
      {"a start function that returns",
       [] {
         return seeking(R"wat((global $ready (mut i32) (i32.const 0))
             (func $init (global.set $ready (i32.const 11))) (start $init)
             (func $compute (result i32) (global.get $ready)))wat");
       },
       "", seek(11), 0, "", 0.5, 64},
      // Only a module the host metered has budget globals and a start function under these names.
      {"a bounded module exporting functions named orx:fuel, orx:stack and orx:start",
       [] {
         return seeking(R"wat((global $seen (mut i32) (i32.const 7))
             (func (export "orx:fuel") (result i32) (i32.const 0))
             (func (export "orx:stack") (global.set $seen (i32.const 98)))
             (func (export "orx:start") (global.set $seen (i32.const 99)))
             (func $compute (result i32) (global.get $seen)))wat");
       },
       "", seek(7), 0, "", 0.5, 64},
      {"a 32-page memory",
       [] {
         return seeking(R"wat((memory 32) (func $compute (result i32)
             (i32.store (i32.const 2097148) (i32.const 42)) (i32.load (i32.const 2097148))))wat");
       },
       "", seek(42), 0, "", 0.5, 64},
      {"a decide returning i64 (a BigInt to a script, which ToInt32 refuses) after a valid emission",
       [] {
         return assembleWat(R"wat((module
             (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
             (func (export "decide") (param i32 i32 i32 i32 i32 i32 i32 i32) (result i64)
               (drop (call $emit (i32.const 5301) (i32.const 0) (i32.const 1000) (i32.const 0) (i32.const 0)))
               (i64.const 0))))wat");
       },
       "", hold, 2, "TypeError: an argument or result has a type that cannot cross the boundary", 0.5, 64},
      // The interpreter records every reference pushed; metering turns ref.null into a global's read,
      // which it does not record. Before, each br_table walked the records: up to 0.9 s a decision.
      {"124,000 null references pushed and dropped, then a br_table loop (372 KB)",
       [] { return seeking("(func $compute (result i32) " + times(124'000, "ref.null extern drop ") + kBrTableLoop + " (i32.const 0))"); },
       "", hold, 2, exhausted, 1, 100},
      {"108,000 null references pushed above 16,000 values, then a br_table loop",
       [] {
         return seeking(kMany + "(func $compute (result i32) " + times(16, "(call $many)") +
                        times(108'000, "ref.null extern drop ") + times(16'000, "drop ") + kBrTableLoop + " (i32.const 0))");
       },
       "", hold, 2, exhausted, 1, 100},
      // References read from a table are recorded; each branch is charged the references read so far.
      {"40,000 references read from a table above 20,000 values, then a br_table loop",
       [] {
         return seeking(kMany + "(table 1 externref) (func $compute (result i32) (local $n i32) " + times(20, "(call $many)") +
                        R"wat((loop $read (drop (table.get 0 (i32.const 0)))
                                (local.set $n (i32.add (local.get $n) (i32.const 1)))
                                (br_if $read (i32.lt_u (local.get $n) (i32.const 40000)))))wat" +
                        times(20'000, "drop ") + kBrTableLoop + " (i32.const 0))");
       },
       "", hold, 2, exhausted, 0.5, 64},
      // The host pushes a reference per parameter; the thread that recorded them is replaced after the call.
      {"a decide of 1,000 externref parameters (never emits)",
       [] { return assembleWat("(module (func (export \"decide\") (param" + times(1'000, " externref") + ") (result i32) (i32.const 0)))"); },
       "", hold, 2, "", 0.25, 64},
      // A branch moves the values it keeps: before it was charged for them, 95 ms a decision.
      {"a loop whose branch keeps 1,000 values",
       [] {
         const std::string i32s = times(1'000, " i32");
         return seeking("(func $compute (result i32) " + times(1'000, "(i32.const 0)") + "(loop (param" + i32s + ") (result" +
                        i32s + ") (i32.const 7) (br_if 0 (i32.const 1)) drop)" + times(1'000, "drop ") + "(i32.const 0))");
       },
       "", hold, 2, exhausted, 0.5, 64},
      {"4,000,000 br_table targets (4 MB)",
       [] {
         return moduleOfFunctions(vectorOf(functionType(0, 1), 1), 1,
                                  functionBody(0, ModuleBytes{0x02, 0x40, 0x41, 0x00, 0x0E} + leb(4'000'000) +
                                                      ModuleBytes(4'000'001, 0x00) + ModuleBytes{0x0B, 0x41, 0x00}));
       },
       budget + "instructions over all functions 4000003 (budget 250000)", hold, 0, "", 0.25, 64},
      // Each value type wabt checks counts: before, 3.8 s, 9.3 s and 1.7 s to load. Assembled byte by
      // byte, since wat2wasm itself takes seconds to check them.
      {"62,000 blocks of a type of 1,000 parameters and results (437 KB)",
       [] {
         const ModuleBytes types = leb(2) + functionType(0, 1) + functionType(1'000, 1'000);
         return moduleOfFunctions(types, 1,
                                  functionBody(0, repeated({0x41, 0x00}, 1'000) +
                                                      repeated({0x02, 0x01, 0x41, 0x07, 0x0C, 0x00, 0x0B}, 62'000) +
                                                      repeated({0x1A}, 1'000) + ModuleBytes{0x41, 0x00}));
       },
       budget + "instructions over all functions 250331 (budget 250000)", hold, 0, "", 0.25, 64},
      {"100,000 calls of a function of 1,000 parameters and results (208 KB)",
       [] {
         ModuleBytes gets;
         for (std::uint64_t i = 0; i < 1'000; ++i) gets = gets + ModuleBytes{0x20} + leb(i);
         const ModuleBytes types = leb(2) + functionType(0, 1) + functionType(1'000, 1'000);
         const std::string decide = "decide";
         return moduleHeader() + section(1, types) + section(3, leb(2) + ModuleBytes{0x01, 0x00}) +
                section(7, leb(1) + leb(decide.size()) + ModuleBytes(decide.begin(), decide.end()) + ModuleBytes{0x00, 0x01}) +
                section(10, leb(2) + functionBody(0, gets) +
                                functionBody(0, repeated({0x41, 0x00}, 1'000) + repeated({0x10, 0x00}, 100'000) +
                                                    repeated({0x1A}, 1'000) + ModuleBytes{0x41, 0x00}));
       },
       budget + "instructions over all functions 250125 (budget 250000)", hold, 0, "", 0.25, 64},
      {"200,000 branches keeping 1,000 values (404 KB)",
       [] {
         const ModuleBytes types = leb(2) + functionType(0, 1) + functionType(0, 1'000);
         return moduleOfFunctions(types, 1,
                                  functionBody(0, ModuleBytes{0x02, 0x01} + repeated({0x41, 0x00}, 1'000) +
                                                      repeated({0x0C, 0x00}, 200'000) + ModuleBytes{0x0B} +
                                                      repeated({0x1A}, 1'000) + ModuleBytes{0x41, 0x00}));
       },
       budget + "instructions over all functions 250249 (budget 250000)", hold, 0, "", 0.25, 64},
      // Metering adds 14 instructions around a call site and 10 at each entry and loop: 30 + 14 x 17,855.
      {"250,000 call sites in a metered module (500 KB)", [] { return callSites(249'990); },
       budget + "instructions added by metering 3499890 (budget 250000)", hold, 0, "", 0.25, 64},
      {"17,855 call sites, the most metering may add to (decide never emits)", [] { return callSites(17'855); },
       "", hold, 2, "", 1, 100},
      {"17,856 call sites", [] { return callSites(17'856); },
       budget + "instructions added by metering 250014 (budget 250000)", hold, 0, "", 0.25, 64},
      {"a loop that runs out of fuel once, then decides normally",
       [&] {
         return seeking(R"wat((global $calls (mut i32) (i32.const 0))
             (func $compute (result i32)
               (global.set $calls (i32.add (global.get $calls) (i32.const 1)))
               (if (i32.eq (global.get $calls) (i32.const 1)) (then (loop $again (br $again))))
               (i32.const 9)))wat");
       },
       "", seek(9), 1, exhausted, 0.5, 64},
  };

  for (const auto& row : rows) {
    const ModuleBytes bytes = row.bytes();
    std::vector<std::string> logged;
    setOrxLogSink([&](OrxLogLevel, std::string_view message) { logged.emplace_back(message); });
    const ResidentGrowth growth;
    const auto start = std::chrono::steady_clock::now();

    std::string loadError;
    OrxSyncDecision decision = OrxSyncDecision::hold();
    std::uint64_t failures = 0;
    try {
      OrxPolicyDecider decider({nullptr, loadModule("probe", bytes), nullptr});
      const SyncFacts facts{0, 0, 0, 0, 100, 0, 0, 0};
      decider.correctSync(facts);
      decision = decider.correctSync(facts);
      failures = decider.failureCount();
    } catch (const RuntimeError& error) {
      loadError = error.message;
    }

    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double megabytes = growth.megabytes();
    setOrxLogSink(nullptr);
    if (row.loadError.ends_with(": ")) {
      EXPECT_EQ(loadError.substr(0, row.loadError.size()), row.loadError) << row.name;
    } else {
      EXPECT_EQ(loadError, row.loadError) << row.name;
    }
    EXPECT_EQ(decision, row.decision) << row.name;
    EXPECT_EQ(failures, row.failures) << row.name;
    const std::string firstLog = logged.empty() ? "" : logged.front();
    EXPECT_EQ(firstLog, row.trap.empty() ? "" : "ORX sync correction trapped; holding: " + row.trap) << row.name;
    EXPECT_LE(seconds, row.seconds * kSanitizerSlowdown) << row.name;
    EXPECT_LE(megabytes, row.megabytes * (kSanitizerSlowdown > 1 ? 4 : 1)) << row.name;
  }
}

}  // namespace

}  // namespace ravo::orx
