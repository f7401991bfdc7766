// Hostile and malformed modules are refused at instantiation or contained at decision time, each with
// the host's own texts, and a trapped call never poisons the next one.

#include <gtest/gtest.h>

#include "runtime/LoadedModule.h"
#include "runtime/tests/ModuleLoadError.h"
#include "runtime/tests/WatAssembler.h"

namespace {

constexpr const char* kEmitImport = R"wat((import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32))))wat";

std::string module(const std::string& body) { return std::string("(module ") + kEmitImport + "\n" + body + ")"; }

std::string loadError(const std::vector<std::uint8_t>& bytes) { return moduleLoadError("probe", bytes); }

TEST(OrxModuleHost, RefusesModulesThatCannotBeProvenSafeOrDoNotFitTheContract) {
  const std::string refused = "Could not instantiate ORX module probe: ";
  const std::string unbounded = refused + "VerifierError: execution cannot be bounded because ";
  // 21 levels, each calling the next twice: over two million instructions for one call.
  std::string doubling = "(func $f21 (result i32) (i32.const 1))\n";
  for (int level = 20; level >= 0; --level) {
    doubling += "(func $f" + std::to_string(level) + " (result i32) (i32.add (call $f" + std::to_string(level + 1) +
                ") (call $f" + std::to_string(level + 1) + ")))\n";
  }
  struct Case {
    const char* name;
    std::vector<std::uint8_t> bytes;
    std::string expected;  // a prefix of the load error
  };
  const std::vector<Case> cases = {
      {"not WebAssembly", {'h', 'e', 'l', 'l', 'o'}, refused + "CompileError: "},
      {"empty", {}, refused + "CompileError: "},
      {"truncated", [] {
         auto bytes = assembleWat(module(R"wat((func (export "decide") (result i32) (i32.const 0)))wat"));
         bytes.resize(bytes.size() / 2);
         return bytes;
       }(), refused + "CompileError: "},
      {"no decide export", assembleWat(module(R"wat((func (export "other") (result i32) (i32.const 0)))wat")),
       "ORX module probe has no decide export"},
      {"decide under another name", assembleWat(module(R"wat((func (export "Decide") (result i32) (i32.const 0)))wat")),
       "ORX module probe has no decide export"},
      {"wrong import",
       assembleWat(R"wat((module (import "env" "emit" (func (param i32))) (func (export "decide") (result i32) (i32.const 0))))wat"),
       refused + "LinkError: import env.emit is not provided (only the function output.emit is)"},
      {"emit imported as a memory",
       assembleWat(R"wat((module (import "output" "emit" (memory 1)) (func (export "decide") (result i32) (i32.const 0))))wat"),
       refused + "LinkError: import output.emit is not provided"},
      {"loop", assembleWat(module(R"wat((func (export "decide") (result i32) (loop $again (br $again)) (i32.const 0)))wat")),
       unbounded + "it contains a loop"},
      {"direct recursion",
       assembleWat(module(R"wat((func $d (export "decide") (param i32) (result i32) (call $d (local.get 0))))wat")),
       unbounded + "it contains a recursive call cycle"},
      {"mutual recursion",
       assembleWat(module(R"wat((func $a (result i32) (call $b)) (func $b (result i32) (call $a))
                              (func (export "decide") (result i32) (i32.const 0)))wat")),
       unbounded + "it contains a recursive call cycle"},
      {"indirect call",
       assembleWat(module(R"wat((type $t (func (result i32))) (table 1 funcref)
                              (func (export "decide") (result i32) (call_indirect (type $t) (i32.const 0))))wat")),
       unbounded + "it contains an indirect call"},
      {"start function",
       assembleWat(module(R"wat((func $init) (start $init) (func (export "decide") (result i32) (i32.const 0)))wat")),
       unbounded + "it has a start function"},
      {"memory that grows without bound",
       assembleWat(module(R"wat((memory 1) (func (export "decide") (result i32) (memory.grow (i32.const 1))))wat")),
       unbounded + "its memory may grow without bound"},
      {"memory that may grow past the cap",
       assembleWat(module(R"wat((memory 1 17) (func (export "decide") (result i32) (memory.grow (i32.const 1))))wat")),
       unbounded + "its memory may reach 17 pages (limit 16)"},
      {"memory that starts past the cap", assembleWat(module(R"wat((memory 17) (func (export "decide") (result i32) (i32.const 0)))wat")),
       unbounded + "its memory may reach 17 pages (limit 16)"},
      {"exponential call tree", assembleWat(module(doubling + R"wat((func (export "decide") (result i32) (call $f0)))wat")),
       unbounded + "a call may run more than 1000000 instructions"},
      // Both were found by fuzzing: wabt would allocate for the declared sizes and exhaust memory.
      {"data count far beyond the module's size",
       {0x00, 0x61, 0x73, 0x6D, 0x01, 0x00, 0x00, 0x00, 0x0C, 0x05, 0xFF, 0xFF, 0xFF, 0xFF, 0x0F},
       refused + "CompileError: data count 4294967295 exceeds what a module of 15 bytes can hold"},
      {"billions of declared locals",  // decide(i32 x 8) -> i32 declaring 0xFFFFFFF0 i32 locals
       {0x00, 0x61, 0x73, 0x6D, 0x01, 0x00, 0x00, 0x00, 0x01, 0x0D, 0x01, 0x60, 0x08, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F,
        0x7F, 0x7F, 0x7F, 0x01, 0x7F, 0x03, 0x02, 0x01, 0x00, 0x07, 0x0A, 0x01, 0x06, 0x64, 0x65, 0x63, 0x69, 0x64,
        0x65, 0x00, 0x00, 0x0A, 0x0C, 0x01, 0x0A, 0x01, 0xF0, 0xFF, 0xFF, 0xFF, 0x0F, 0x7F, 0x41, 0x00, 0x0B},
       unbounded + "a call may run more than 1000000 instructions"},
      {"data segment out of bounds",
       assembleWat(module(R"wat((memory 1 1) (data (i32.const 65535) "ab") (func (export "decide") (result i32) (i32.const 0)))wat")),
       refused + "RuntimeError: "},
  };
  for (const auto& c : cases) {
    const std::string error = loadError(c.bytes);
    EXPECT_EQ(error.substr(0, c.expected.size()), c.expected) << c.name << ": " << error;
  }
}

TEST(OrxModuleHost, AdmitsBoundedModulesThatOnlyLookDangerous) {
  const std::vector<std::string> admitted = {
      module(R"wat((memory 1 16) (func (export "decide") (result i32) (memory.grow (i32.const 1))))wat"),
      module(R"wat((memory 16) (func (export "decide") (result i32) (i32.const 0)))wat"),
      // Deep forward branches are fine: without loops nothing runs twice.
      module(R"wat((func (export "decide") (param i32) (result i32)
                  (block $out (block (block (br_if $out (local.get 0)))) ) (i32.const 1)))wat"),
      "(module (func (export \"decide\") (result i32) (i32.const 0)))",  // no emit import at all
  };
  for (const auto& text : admitted) EXPECT_EQ(loadError(assembleWat(text)), "") << text;
}

TEST(OrxModuleHost, ReportsEmissionsAndTrapsPerCallAndRecoversAfterATrap) {
  auto host = LoadedModule::instantiate("probe", assembleWat(module(R"wat(
    (func (export "decide") (param $mode i32) (result i32)
      (if (i32.eq (local.get $mode) (i32.const 1)) (then unreachable))
      (if (i32.eq (local.get $mode) (i32.const 2)) (then (return (i32.div_s (i32.const 1) (i32.const 0)))))
      (if (i32.eq (local.get $mode) (i32.const 3)) (then (return (i32.load (i32.const 70000)))))
      (if (i32.eq (local.get $mode) (i32.const 4)) (then (return (i32.const 7))))
      (drop (call $emit (i32.const 1) (i32.const 2) (i32.const 3) (i32.const 4) (i32.const 5)))
      (if (i32.eq (local.get $mode) (i32.const 5))
        (then (drop (call $emit (i32.const 9) (i32.const 8) (i32.const 7) (i32.const 6) (local.get $mode)))))
      (i32.const 0))
    (memory 1 1))wat")));
  struct Case {
    std::int32_t mode;
    std::string error;  // empty: no error expected
    std::vector<std::int32_t> emitted;
    bool emits;
  };
  const Case cases[] = {
      {0, "", {1, 2, 3, 4, 5}, true},
      {1, "RuntimeError: unreachable executed", {}, false},
      {2, "RuntimeError: integer divide by zero", {}, false},
      {0, "", {1, 2, 3, 4, 5}, true},  // the trap left nothing behind
      {1, "RuntimeError: unreachable executed", {}, false},
      {1, "RuntimeError: unreachable executed", {}, false},
      {5, "", {9, 8, 7, 6, 5}, true},  // locals still read right after traps in a row
      {3, "RuntimeError: out of bounds memory access", {}, false},
      {4, "", {}, false},              // returned without emitting: no list, not an empty one
      {5, "", {9, 8, 7, 6, 5}, true},  // only the last emit counts
  };
  for (const auto& c : cases) {
    std::int32_t argument = c.mode;
    auto call = host->invoke(std::span(&argument, 1));
    EXPECT_EQ(call.error.value_or("").substr(0, c.error.size()), c.error) << "mode " << c.mode;
    EXPECT_EQ(call.error.has_value(), !c.error.empty()) << "mode " << c.mode;
    ASSERT_EQ(call.emitted != nullptr, c.emits) << "mode " << c.mode;
    if (c.emits) {
      EXPECT_EQ(*call.emitted, c.emitted) << "mode " << c.mode;
    }
  }
}

TEST(OrxModuleHost, ConvertsOtherSignaturesTheWayAScriptHostWould) {
  struct Case {
    const char* name;
    std::string wat;
    std::optional<std::int32_t> result;
    std::vector<std::int32_t> emitted;
    bool typeError;
  };
  const Case cases[] = {
      {"float emit parameters pass through ToInt32, i64 ones are dropped",
       R"wat((module (import "output" "emit" (func $e (param f64 i64 f32 i32)))
           (func (export "decide") (result i32)
             (call $e (f64.const -2.9) (i64.const 5) (f32.const 4294967297) (i32.const 7)) (i32.const 1))))wat",
       1, {-2, 0, 7}, false},
      {"NaN becomes 0",
       R"wat((module (import "output" "emit" (func $e (param f64)))
           (func (export "decide") (result i32) (call $e (f64.const nan)) (i32.const 0))))wat",
       0, {0}, false},
      {"an emit returning i64 stores its values, then fails",
       R"wat((module (import "output" "emit" (func $e (param i32) (result i64)))
           (func (export "decide") (result i32) (drop (call $e (i32.const 3))) (i32.const 0))))wat",
       std::nullopt, {3}, true},
      {"decide returning nothing has no result",
       R"wat((module (func (export "decide"))))wat", std::nullopt, {}, false},
      {"decide returning f64 is converted",
       R"wat((module (func (export "decide") (result f64) (f64.const 3.99))))wat", 3, {}, false},
      {"decide with an i64 parameter cannot be called from a script",
       R"wat((module (func (export "decide") (param i64) (result i32) (i32.const 0))))wat", std::nullopt, {}, true},
      {"missing i32 arguments read as 0",
       R"wat((module (func (export "decide") (param i32 i32) (result i32) (local.get 1))))wat", 0, {}, false},
  };
  for (const auto& c : cases) {
    auto host = LoadedModule::instantiate("probe", assembleWat(c.wat));
    const std::int32_t argument = 11;
    auto call = host->invoke(std::span(&argument, 1));
    EXPECT_EQ(call.result, c.result) << c.name;
    EXPECT_EQ(call.error.has_value(), c.typeError) << c.name;
    if (c.typeError) {
      EXPECT_EQ(call.error->substr(0, 10), "TypeError:") << c.name;
    }
    EXPECT_EQ(call.emitted ? *call.emitted : std::vector<std::int32_t>{}, c.emitted) << c.name;
  }
}

}  // namespace
