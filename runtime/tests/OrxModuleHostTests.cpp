// Hostile and malformed modules are refused at instantiation or contained at decision time, each with
// the host's own texts, and a trapped call never poisons the next one.

#include <gtest/gtest.h>

#include <algorithm>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include "runtime/tests/ModuleBytes.h"
#include "runtime/tests/ModuleLoadError.h"
#include "runtime/tests/WatAssembler.h"

namespace ravo::orx {

using namespace internal;

namespace {

constexpr const char* kEmitImport = R"wat((import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32))))wat";

std::string module(const std::string& body) { return std::string("(module ") + kEmitImport + "\n" + body + ")"; }

std::string loadError(const std::vector<std::uint8_t>& bytes) { return moduleLoadError("probe", bytes); }

TEST(OrxModuleHost, RefusesWhatAScriptHostRefuses) {
  const std::string refused = "Could not instantiate ORX module probe: ";
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
      {"data segment out of bounds",
       assembleWat(module(R"wat((memory 1 1) (data (i32.const 65535) "ab") (func (export "decide") (result i32) (i32.const 0)))wat")),
       refused + "RuntimeError: "},
  };
  for (const auto& c : cases) {
    const std::string error = loadError(c.bytes);
    EXPECT_EQ(error.substr(0, c.expected.size()), c.expected) << c.name << ": " << error;
  }
}

// wabt reports a reader's errors on standard error unless its client takes them; every message must
// end up in the refusal text instead, outside the log sink nothing may print.
TEST(OrxModuleHost, WritesNothingToStandardError) {
  const std::vector<ModuleBytes> refused = {
      {'h', 'e', 'l', 'l', 'o'},
      moduleHeader() + section(10, {0x01, 0x05, 0x00, 0x03, 0x40, 0x0B}),  // a loop in a body without a function
      moduleOfFunctions(vectorOf(functionType(0, 1), 1), 1, functionBody(0, {0x03, 0x40, 0x0C, 0x05})),  // bad branch
      moduleOfFunctions(vectorOf(functionType(0, 1), 1), 1, functionBody(0, repeated({0x02, 0x40}, 2'000))),
  };
  ::testing::internal::CaptureStderr();
  for (const auto& bytes : refused) {
    EXPECT_NE(loadError(bytes), "");
    describeModuleInterface(bytes.data(), bytes.size());
    describeExecutionBound(bytes.data(), bytes.size());
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

// An import section of one table named t.t: funcref, `initial` elements, no maximum.
ModuleBytes importedTable(std::uint64_t initial) {
  return section(2, leb(1) + leb(1) + ModuleBytes{'t'} + leb(1) + ModuleBytes{'t', 0x01, 0x70, 0x00} + leb(initial));
}

ModuleBytes textBytes(const std::string& text) { return leb(text.size()) + ModuleBytes(text.begin(), text.end()); }

// A module importing `module`.`name` as a function, and exporting one function under each of `exports`.
ModuleBytes importingAndExporting(const std::string& module, const std::string& name,
                                  const std::vector<std::string>& exports) {
  ModuleBytes exportSection = leb(exports.size());
  for (const auto& exported : exports) exportSection = exportSection + textBytes(exported) + ModuleBytes{0x00, 0x01};
  return moduleHeader() + section(1, vectorOf(functionType(0, 1), 1)) +
         section(2, leb(1) + textBytes(module) + textBytes(name) + ModuleBytes{0x00, 0x00}) +
         section(3, vectorOf({0x00}, 1)) + section(7, exportSection) + section(10, vectorOf(functionBody(0, {0x41, 0x00}), 1));
}

// Names and messages a refusal quotes from a module are cut to 256 bytes and escaped, whatever their size.
TEST(OrxModuleHost, QuotesTheModulesOwnBytesShortAndEscaped) {
  const std::string refused = "Could not instantiate ORX module probe: ";
  const std::string ellipsis = "\xE2\x80\xA6";
  std::string colours;
  while (colours.size() < 3 * 1024 * 1024) colours += "\x1B[31mred\x1B[0m";
  std::string accents;
  for (int i = 0; i < 300; ++i) accents += "\xC3\xA9";
  std::string quotedColours;  // 21 sequences of 12 bytes and the first 4 bytes of the next
  for (int i = 0; i < 21; ++i) quotedColours += "\\x1B[31mred\\x1B[0m";
  quotedColours += "\\x1B[31" + ellipsis;
  std::string quotedAccents;
  for (int i = 0; i < 128; ++i) quotedAccents += "\xC3\xA9";
  quotedAccents += ellipsis;
  struct Case {
    const char* name;
    ModuleBytes bytes;
    std::string expected;  // the refusal, or a part of it when wabt words it
    bool exact;
  };
  const std::vector<Case> cases = {
      {"a 3 MiB module name of colour sequences", importingAndExporting(colours, "emit", {"decide"}),
       refused + "LinkError: import " + quotedColours + ".emit is not provided (only the function output.emit is)", true},
      {"a field name of 300 two-byte characters", importingAndExporting("output", accents, {"decide"}),
       refused + "LinkError: import output." + quotedAccents + " is not provided (only the function output.emit is)", true},
      {"a duplicate export named with a terminal title sequence",
       importingAndExporting("output", "emit", {"\x1B]0;x\x07", "\x1B]0;x\x07"}),
       "error: duplicate export \"\\x1B]0;x\\x07\"", false},
  };
  for (const auto& c : cases) {
    const std::string error = loadError(c.bytes);
    if (c.exact) {
      EXPECT_EQ(error, c.expected) << c.name;
    } else {
      EXPECT_NE(error.find(c.expected), std::string::npos) << c.name << ": " << error;
    }
    EXPECT_LT(error.size(), 1'024u) << c.name;
    EXPECT_TRUE(std::none_of(error.begin(), error.end(), [](char byte) { return byte == 0x1B || byte == 0x07; }))
        << c.name;
  }
  const auto bytes = importingAndExporting("output", "emit", {"decide", "\x1B[2J"});
  const auto interface = describeModuleInterface(bytes.data(), bytes.size());
  ASSERT_TRUE(interface.has_value());
  EXPECT_EQ(interface->exports, (std::vector<std::string>{"func decide() -> (i32)", "func \\x1B[2J() -> (i32)"}));
}

TEST(OrxModuleHost, RefusesModulesOverALoadBudgetNamingTheBudget) {
  const std::string refused = "Could not instantiate ORX module probe: CompileError: load budget exceeded: ";
  const ModuleBytes returnZero = functionBody(0, {0x41, 0x00});
  const ModuleBytes oneTable = {0x70, 0x01, 0x00, 0x00};  // funcref, limits 0..0
  const ModuleBytes passiveSegment = ModuleBytes{0x01, 0x00} + vectorOf({0x00}, 5'001);  // 5,001 entries of function 0
  struct Case {
    const char* name;
    ModuleBytes bytes;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {"a type of 10,000 parameters shared by 10,000 functions (50 KB)",
       moduleOfFunctions(vectorOf(functionType(10'000, 0), 1), 10'000, functionBody(0, {})),
       "parameters per function type 10000 (budget 1000)"},
      {"1,001 results", moduleOfFunctions(vectorOf(functionType(0, 1'001), 1), 1, returnZero),
       "results per function type 1001 (budget 1000)"},
      {"1,000 parameters in each of 201 functions", moduleOfFunctions(vectorOf(functionType(1'000, 1), 1), 201, returnZero),
       "parameters and results over all types and functions 200200 (budget 200000)"},
      {"10,001 types", moduleOfFunctions(vectorOf(functionType(0, 1), 10'001), 1, returnZero),
       "function types 10001 (budget 10000)"},
      {"2,000,000 empty functions in 8 MB",
       moduleOfFunctions(vectorOf(functionType(0, 0), 1), 2'000'000, functionBody(0, {})),
       "module bytes 8000041 (budget 4194304)"},
      {"20,000 empty functions", moduleOfFunctions(vectorOf(functionType(0, 0), 1), 20'000, functionBody(0, {})),
       "functions 20000 (budget 10000)"},
      {"100,000 tables", moduleHeader() + section(4, vectorOf({0x70, 0x01, 0x80, 0x08, 0x80, 0x08}, 100'000)),
       "tables 100000 (budget 16)"},
      {"17 tables", moduleHeader() + section(4, vectorOf(oneTable, 17)), "tables 17 (budget 16)"},
      {"two tables of 6,000 elements", moduleHeader() + section(4, vectorOf({0x70, 0x00, 0xF0, 0x2E}, 2)),
       "table elements 12000 (budget 10000)"},
      {"101 imports", moduleHeader() + section(2, leb(101)), "imports 101 (budget 100)"},
      {"1,001 exports", moduleHeader() + section(7, leb(1'001)), "exports 1001 (budget 1000)"},
      {"1,001 globals", moduleHeader() + section(6, leb(1'001)), "globals 1001 (budget 1000)"},
      {"1,001 element segments", moduleHeader() + section(9, leb(1'001)), "element segments 1001 (budget 1000)"},
      {"1,001 data segments", moduleHeader() + section(11, leb(1'001)), "data segments 1001 (budget 1000)"},
      // Found by fuzzing: wabt reserves room for the declared data count as it reads it.
      {"a data count of four billion", moduleHeader() + section(12, leb(0xFFFFFFFF)),
       "data segments 4294967295 (budget 1000)"},
      {"2,001 locals", moduleOfFunctions(vectorOf(functionType(0, 1), 1), 1, functionBody(2'001, {0x41, 0x00})),
       "locals per function 2001 (budget 2000)"},
      {"billions of locals", moduleOfFunctions(vectorOf(functionType(0, 1), 1), 1, functionBody(0xFFFFFFF0, {0x41, 0x00})),
       "locals per function 4294967280 (budget 2000)"},
      {"two groups of 1,001 locals in one function",
       moduleOfFunctions(vectorOf(functionType(0, 1), 1), 1, [] {
         const ModuleBytes body = leb(2) + leb(1'001) + ModuleBytes{0x7F} + leb(1'001) + ModuleBytes{0x7F, 0x41, 0x00, 0x0B};
         return leb(body.size()) + body;
       }()),
       "locals per function 2002 (budget 2000)"},
      {"an imported function and a function section declaring 10,000 more",
       moduleHeader() + section(2, leb(1) + leb(1) + ModuleBytes{'o'} + leb(1) + ModuleBytes{'f', 0x00, 0x00}) +
           section(3, leb(10'000)),
       "functions 10001 (budget 10000)"},
      {"257 initial memory pages", moduleHeader() + section(5, leb(1) + ModuleBytes{0x00} + leb(257)),
       "initial memory pages 257 (budget 256)"},
      {"an imported memory of 257 pages",
       moduleHeader() + section(2, leb(1) + leb(1) + ModuleBytes{'o'} + leb(1) + ModuleBytes{'m', 0x02, 0x00} + leb(257)),
       "initial memory pages 257 (budget 256)"},
      {"4 MiB and one byte", moduleHeader() + section(0, leb(1) + ModuleBytes{'x'} + ModuleBytes(4 * 1024 * 1024, 0)),
       "module bytes 4194319 (budget 4194304)"},
      {"an imported table and 16 defined ones", moduleHeader() + importedTable(0) + section(4, vectorOf(oneTable, 16)),
       "tables 17 (budget 16)"},
      {"an imported table of 10,001 elements", moduleHeader() + importedTable(10'001), "table elements 10001 (budget 10000)"},
      {"an imported table of 6,000 elements and a defined one of 6,000",
       moduleHeader() + importedTable(6'000) + section(4, vectorOf({0x70, 0x00, 0xF0, 0x2E}, 1)),
       "table elements 12000 (budget 10000)"},
      {"1,025 nested ifs",
       moduleOfFunctions(vectorOf(functionType(0, 1), 1), 1,
                         functionBody(0, repeated({0x41, 0x00, 0x04, 0x40}, 1'025) + repeated({0x0B}, 1'025) + ModuleBytes{0x41, 0x00})),
       "block nesting 1025 (budget 1024)"},
      {"two element segments of 5,001 entries", moduleHeader() + section(9, leb(2) + passiveSegment + passiveSegment),
       "element segment entries 10002 (budget 10000)"},
      // Metered for its references: 10 instructions charge the entry, 4 count each table.get.
      {"62,498 reads of a table, whose metering adds 250,002 instructions",
       moduleHeader() + section(1, vectorOf(functionType(0, 1), 1)) + section(3, vectorOf({0x00}, 1)) +
           section(4, vectorOf({0x6F, 0x00, 0x01}, 1)) +
           section(10, vectorOf(functionBody(0, repeated({0x41, 0x00, 0x25, 0x00, 0x1A}, 62'498) + ModuleBytes{0x41, 0x00}), 1)),
       "instructions added by metering 250002 (budget 250000)"},
  };
  for (const auto& c : cases) EXPECT_EQ(loadError(c.bytes), refused + c.expected) << c.name;
}

std::string times(int count, const std::string& text) {
  std::string out;
  for (int i = 0; i < count; ++i) out += text;
  return out;
}

// A call tree costing 999,004 fuel units and `padding`: $leaf is 997 nops and end (998), $mid calls it
// 1,000 times and ends (1,001 + 998,000), decide is the padding, a call of $mid, i32.const and end.
std::string callTreeOfCost(int padding) {
  return "(module (func $leaf " + times(997, "nop ") + ")\n(func $mid " + times(1'000, "(call $leaf)") +
         ")\n(func (export \"decide\") (result i32) " + times(padding, "nop ") + "(call $mid) (i32.const 0)))";
}

// The instruction budget counts what wabt checks and allocates per instruction, so a list or a large
// signature cannot ride on one instruction. Each module repeats one piece of code until the count
// passes 250,000, and is refused as soon as it does; the value is counted by hand in each row.
TEST(OrxModuleHost, CountsListsAndCheckedValuesTowardTheInstructionBudget) {
  const std::string refused =
      "Could not instantiate ORX module probe: CompileError: load budget exceeded: instructions over all functions ";
  // Type 0: decide's, () -> (i32); type 1: (i32) -> (i32); type 2: (i32 i32) -> (i32).
  const ModuleBytes types = leb(3) + functionType(0, 1) + functionType(1, 1) + functionType(2, 1);
  struct Case {
    const char* name;
    ModuleBytes code;  // decide's body, without the final end
    std::string expected;
  };
  const std::vector<Case> cases = {
      // block 1, i32.const 1, then the br_table: 1 and 250,000 targets.
      {"a br_table counts its targets",
       ModuleBytes{0x02, 0x40, 0x41, 0x00, 0x0E} + leb(250'000) + ModuleBytes(250'001, 0x00) + ModuleBytes{0x0B, 0x41, 0x00},
       "250003"},
      // Three i32.const, then the select: 1 and 250,000 types.
      {"a typed select counts its types",
       ModuleBytes{0x41, 0x00, 0x41, 0x00, 0x41, 0x00, 0x1C} + leb(250'000) + ModuleBytes(250'000, 0x7F), "250004"},
      // i32.const 1, then 3 a call (the call, its parameter and result): the 83,334th call's opcode makes 250,001.
      {"a call counts its callee's parameter and result",
       ModuleBytes{0x41, 0x00} + repeated({0x10, 0x01}, 83'334), "250001"},
      // i32.const 1, then 4 a block of type 1 (block, its parameter and result, end): the 62,500th end makes 250,001.
      {"a block counts its type's parameter and result",
       ModuleBytes{0x41, 0x00} + repeated({0x02, 0x01, 0x0B}, 62'500), "250001"},
      // 11 a loop of type 2 (two i32.const, loop 1 + 3, br 1 + the 2 parameters it keeps, end, drop): after
      // 22,727 of them 249,997, then two i32.const and the loop make 250,003.
      {"a branch to a loop counts the parameters it keeps",
       repeated({0x41, 0x00, 0x41, 0x00, 0x03, 0x02, 0x0C, 0x00, 0x0B, 0x1A}, 22'728) + ModuleBytes{0x41, 0x00}, "250003"},
      // 7 a block with a result (block 1 + 1, i32.const, br 1 + the result it keeps, end, drop): after 35,714
      // of them 249,998, then block 2 and i32.const make 250,001.
      {"a branch to a block counts the result it keeps",
       repeated({0x02, 0x7F, 0x41, 0x00, 0x0C, 0x00, 0x0B, 0x1A}, 35'715) + ModuleBytes{0x41, 0x00}, "250001"},
      // 9 an if with a result and an else (i32.const, if 1 + 1, i32.const, else 1 + the result, i32.const, end,
      // drop): after 27,777 of them 249,993, then eight more make 250,001 at the end.
      {"an else counts its result",
       repeated({0x41, 0x00, 0x04, 0x7F, 0x41, 0x00, 0x05, 0x41, 0x00, 0x0B, 0x1A}, 27'778) + ModuleBytes{0x41, 0x00},
       "250001"},
      // 3 an i32.const and a return of decide's result: the 83,334th return's opcode makes 250,001.
      {"a return counts the function's results", repeated({0x41, 0x00, 0x0F}, 83'334), "250001"},
  };
  const std::string decide = "decide";
  for (const auto& c : cases) {
    // decide, then a function of type 1 that returns its parameter, for the calls.
    const ModuleBytes bytes = moduleHeader() + section(1, types) + section(3, leb(2) + ModuleBytes{0x00, 0x01}) +
                              section(7, leb(1) + leb(decide.size()) + ModuleBytes(decide.begin(), decide.end()) +
                                             ModuleBytes{0x00, 0x00}) +
                              section(10, leb(2) + functionBody(0, c.code) + functionBody(0, {0x20, 0x00}));
    EXPECT_EQ(loadError(bytes), refused + c.expected + " (budget 250000)") << c.name;
  }
}

TEST(OrxModuleHost, RunsOnlyModulesProvenBoundedUnmetered) {
  // 21 levels, each calling the next twice: over two million instructions for one call.
  std::string doubling = "(func $f21 (result i32) (i32.const 1))\n";
  for (int level = 20; level >= 0; --level) {
    doubling += "(func $f" + std::to_string(level) + " (result i32) (i32.add (call $f" + std::to_string(level + 1) +
                ") (call $f" + std::to_string(level + 1) + ")))\n";
  }
  // Two frames of 4 + 1998 units under the entry's 4: over the stack budget of 4000 units.
  std::string manyLocals = "(local";
  for (int i = 0; i < 1998; ++i) manyLocals += " i32";
  manyLocals += ")";
  // Frames of 4 + 1000 parameters: three under decide's 4 make 3016 units, four 4020.
  const auto parameterChain = [](int depth) {
    std::string params = "(param";
    std::string arguments;
    for (int i = 0; i < 1000; ++i) {
      params += " i32";
      arguments += "(local.get 0)";
    }
    params += ")";
    std::string wat = "(module (func $f" + std::to_string(depth) + " " + params + " (result i32) (i32.const 1))\n";
    for (int level = depth - 1; level >= 1; --level) {
      wat += "(func $f" + std::to_string(level) + " " + params + " (result i32) (call $f" + std::to_string(level + 1) +
             " " + arguments + "))\n";
    }
    std::string constants;
    for (int i = 0; i < 1000; ++i) constants += "(i32.const 0)";
    return wat + "(func (export \"decide\") (result i32) (call $f1 " + constants + ")))";
  };
  struct Case {
    const char* name;
    std::string wat;
    std::uint64_t worstCaseFuel;  // 0: metered
    std::string meteringReason;
  };
  const Case cases[] = {
      {"straight-line code: i32.const and end", R"wat((module (func (export "decide") (result i32) (i32.const 7))))wat", 2, ""},
      {"a call costs its callee and each local one unit",
       R"wat((module (func $f (result i32) (local i32 i32) (i32.const 1))
                    (func (export "decide") (result i32) (call $f))))wat", 6, ""},
      {"forward branches only", module(R"wat((func (export "decide") (param i32) (result i32)
                  (block $out (block (block (br_if $out (local.get 0)))) ) (i32.const 1)))wat"), 10, ""},
      {"growth within the caps", module(R"wat((memory 1 256) (func (export "decide") (result i32) (memory.grow (i32.const 1))))wat"), 3, ""},
      {"a loop", module(R"wat((func (export "decide") (result i32) (loop $again (br $again)) (i32.const 0)))wat"), 0,
       "it contains a loop"},
      {"recursion", module(R"wat((func $a (result i32) (call $b)) (func $b (result i32) (call $a))
                              (func (export "decide") (result i32) (i32.const 0)))wat"), 0, "it contains a recursive call cycle"},
      {"an indirect call", module(R"wat((type $t (func (result i32))) (table 1 funcref)
                              (func (export "decide") (result i32) (call_indirect (type $t) (i32.const 0))))wat"), 0,
       "it contains an indirect call"},
      {"a bulk fill", module(R"wat((memory 1) (func (export "decide") (result i32)
                              (memory.fill (i32.const 0) (i32.const 0) (i32.const 10)) (i32.const 0)))wat"), 0,
       "it moves memory in bulk"},
      {"a memory whose maximum is one page past the cap",
       module(R"wat((memory 1 257) (func (export "decide") (result i32) (memory.grow (i32.const 1))))wat"), 0,
       "its memory may grow past its cap"},
      {"a call chain deeper than the stack budget",
       module("(func $b (result i32) " + manyLocals + " (i32.const 1)) (func $a (result i32) " + manyLocals +
              R"wat( (call $b)) (func (export "decide") (result i32) (call $a)))wat"), 0,
       "a call chain may need more than 4000 stack units"},
      {"a memory without a maximum that grows",
       module(R"wat((memory 1) (func (export "decide") (result i32) (memory.grow (i32.const 1))))wat"), 0,
       "its memory may grow past its cap"},
      {"an exponential call tree", module(doubling + R"wat((func (export "decide") (result i32) (call $f0)))wat"), 0,
       "a call may cost more than 1000000 fuel units"},
      {"parameters cost nothing on entry (three i32.const, call, end; i32.const, end)",
       R"wat((module (func $f (param i32 i32 i32) (result i32) (i32.const 1))
                    (func (export "decide") (result i32) (call $f (i32.const 0) (i32.const 0) (i32.const 0)))))wat", 7, ""},
      // decide, $f1 and $f2 each push 1,000 values, call and end; $f3 is i32.const and end.
      {"three frames of 1,000 parameters", parameterChain(3), 3 * 1002 + 2, ""},
      {"four frames of 1,000 parameters", parameterChain(4), 0, "a call chain may need more than 4000 stack units"},
      // The bound covers every function a call may reach, whichever is exported and wherever it is.
      {"decide first, a costlier function after it",
       R"wat((module (func (export "decide") (result i32) (i32.const 7))
                    (func $heavy (result i32) nop nop nop nop nop nop nop nop nop nop (i32.const 0))))wat", 12, ""},
      {"a call tree of exactly the fuel budget", callTreeOfCost(996), 1'000'000, ""},
      {"a call tree of one unit more", callTreeOfCost(997), 0, "a call may cost more than 1000000 fuel units"},
      {"decide after an import and the function it calls (call, call, add, end; i32.const, end twice)",
       module(R"wat((func $two (result i32) (i32.const 2))
                    (func (export "decide") (result i32) (i32.add (call $two) (call $two))))wat"), 8, ""},
  };
  for (const auto& c : cases) {
    const auto bytes = assembleWat(c.wat);
    const auto bound = describeExecutionBound(bytes.data(), bytes.size());
    ASSERT_TRUE(bound.has_value()) << c.name;
    EXPECT_EQ(bound->bounded, c.worstCaseFuel != 0) << c.name;
    EXPECT_EQ(bound->worstCaseFuel, c.worstCaseFuel) << c.name;
    EXPECT_EQ(bound->meteringReason, c.meteringReason) << c.name;
    EXPECT_EQ(bound->fuelPerCall, 1'000'000u) << c.name;
  }
  for (const char* name : {"player_authz", "sync_correction", "cinema_admission"}) {
    const auto bytes = readTestFile(std::string("artifacts/") + name + ".wasm");
    const auto bound = describeExecutionBound(bytes.data(), bytes.size());
    ASSERT_TRUE(bound.has_value()) << name;
    EXPECT_TRUE(bound->bounded) << name << ": " << bound->meteringReason;
  }
  EXPECT_FALSE(describeExecutionBound(nullptr, 0).has_value());
}

// A metered call does what the module's code says and pays for the work the interpreter does for it;
// the empty loop in most modules has them metered.
TEST(OrxModuleHost, MeteredCallsKeepTheirMeaningAndPayForTheirWork) {
  const std::string exhausted = "RuntimeError: execution budget exhausted";
  // Loops over `turns` after 1,000 reads of a table, or `calls` calls after them.
  const std::string reads = times(1'000, "(drop (table.get 0 (i32.const 0)))");
  const std::string readsThenLoop = "(module (table 1 externref) (func (export \"decide\") (param $turns i32) (result i32) (local $i i32) " +
                                    reads + R"wat((loop $again (local.set $i (i32.add (local.get $i) (i32.const 1)))
                                        (br_if $again (i32.lt_u (local.get $i) (local.get $turns)))) (i32.const 7))))wat";
  const auto readsThenCalls = [&](int calls) {
    return "(module (table 1 externref) (func $nothing) (func (export \"decide\") (result i32) " + reads +
           times(calls, "(call $nothing)") + " (i32.const 7)))";
  };
  // Turns `turns` times in a loop whose branch keeps its 1,000 parameters.
  const std::string i32s = times(1'000, " i32");
  const std::string keepingLoop = "(module (func (export \"decide\") (param $turns i32) (result i32) (local $i i32) " +
                                  times(1'000, "(i32.const 0)") + "(loop (param" + i32s + ") (result" + i32s + ")" +
                                  R"wat( (local.set $i (i32.add (local.get $i) (i32.const 1)))
                                    (br_if 0 (i32.lt_u (local.get $i) (local.get $turns))))
                                  )wat" + times(1'000, "drop ") + "(i32.const 7)))";
  const std::string wideCalls = "(module (func $wide (local" + times(1'999, " i32") + R"wat())
      (func (export "decide") (param $calls i32) (result i32) (local $i i32)
        (loop $again (call $wide) (local.set $i (i32.add (local.get $i) (i32.const 1)))
          (br_if $again (i32.lt_u (local.get $i) (local.get $calls))))
        (i32.const 7))))wat";
  struct Case {
    const char* name;
    std::string wat;
    std::vector<std::int32_t> arguments;
    std::optional<std::int32_t> result;
    std::string error;
  };
  const std::vector<Case> cases = {
      {"a bulk fill's scratch local leaves the parameters alone",
       R"wat((module (memory 1) (func (export "decide") (param i32 i32) (result i32)
           (loop $never) (memory.fill (i32.const 0) (i32.const 0) (local.get 1)) (local.get 0))))wat",
       {11, 3}, 11, ""},
      {"a memory grows no further than its own maximum",
       R"wat((module (memory 1 2) (func (export "decide") (result i32) (loop $never) (memory.grow (i32.const 2)))))wat",
       {}, -1, ""},
      {"a table grows no further than its own maximum",
       R"wat((module (table 1 3 funcref)
           (func (export "decide") (result i32) (loop $never) (table.grow 0 (ref.null func) (i32.const 3)))))wat",
       {}, -1, ""},
      {"a fill of 2^31 bytes is charged as many units, not fewer",
       R"wat((module (memory 1) (func (export "decide") (result i32)
           (loop $never) (memory.fill (i32.const 0) (i32.const 0) (i32.const 0x80000000)) (i32.const 0))))wat",
       {}, std::nullopt, exhausted},
      {"400 calls of a function with 1,999 locals", wideCalls, {400}, 7, ""},
      {"600 calls of a function with 1,999 locals, each charged its locals", wideCalls, {600}, std::nullopt, exhausted},
      {"500 turns of a loop keeping 1,000 values", keepingLoop, {500}, 7, ""},
      {"1,000 turns of a loop keeping 1,000 values, each charged the values kept", keepingLoop, {1'000}, std::nullopt,
       exhausted},
      {"100 turns of a loop after 1,000 reads of a table", readsThenLoop, {100}, 7, ""},
      {"1,000 turns after 1,000 reads, each branch charged the references pushed", readsThenLoop, {1'000}, std::nullopt,
       exhausted},
      {"500 calls after 1,000 reads of a table", readsThenCalls(500), {}, 7, ""},
      {"1,000 calls after 1,000 reads, each return charged the references pushed", readsThenCalls(1'000), {},
       std::nullopt, exhausted},
      {"ref.null and ref.func push the same references once metered",
       R"wat((module (type $answer (func (result i32))) (table 1 funcref) (elem declare func $seven)
           (func $seven (result i32) (i32.const 7))
           (func (export "decide") (result i32) (loop $never)
             (table.set 0 (i32.const 0) (ref.func $seven))
             (i32.add (call_indirect (type $answer) (i32.const 0))
               (i32.mul (i32.const 10) (i32.add (ref.is_null (ref.null extern)) (ref.is_null (ref.func $seven))))))))wat",
       {}, 17, ""},
      {"a call tree of exactly the fuel budget runs as it is", callTreeOfCost(996), {}, 0, ""},
      {"a call tree of one unit more is metered and runs out", callTreeOfCost(997), {}, std::nullopt, exhausted},
  };
  for (const auto& c : cases) {
    auto host = loadModule("probe", assembleWat(c.wat));
    const auto call = host->invoke(c.arguments);
    EXPECT_EQ(call.result, c.result) << c.name;
    EXPECT_EQ(std::optional<std::string>(call.error).value_or(""), c.error) << c.name;
  }
}

TEST(OrxModuleHost, ReportsEmissionsAndTrapsPerCallAndRecoversAfterATrap) {
  auto host = loadModule("probe", assembleWat(module(R"wat(
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
    const std::optional<std::string> error = call.error;
    EXPECT_EQ(error.value_or("").substr(0, c.error.size()), c.error) << "mode " << c.mode;
    EXPECT_EQ(static_cast<bool>(call.error), !c.error.empty()) << "mode " << c.mode;
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
      {"decide returning i64 hands a script a BigInt, which ToInt32 refuses, after it emitted",
       R"wat((module (import "output" "emit" (func $e (param i32)))
           (func (export "decide") (result i64) (call $e (i32.const 4)) (i64.const 1))))wat",
       std::nullopt, {4}, true},
      {"decide returning v128 cannot be called from a script",
       R"wat((module (import "output" "emit" (func $e (param i32)))
           (func (export "decide") (result v128) (call $e (i32.const 4)) (v128.const i32x4 0 0 0 0))))wat",
       std::nullopt, {}, true},
      {"decide returning a null reference converts to 0",
       R"wat((module (func (export "decide") (result externref) (ref.null extern))))wat", 0, {}, false},
      {"decide returning two values converts the array to 0",
       R"wat((module (func (export "decide") (result i32 i64) (i32.const 5) (i64.const 6))))wat", 0, {}, false},
      {"decide with an i64 parameter cannot be called from a script",
       R"wat((module (func (export "decide") (param i64) (result i32) (i32.const 0))))wat", std::nullopt, {}, true},
      {"missing i32 arguments read as 0",
       R"wat((module (func (export "decide") (param i32 i32) (result i32) (local.get 1))))wat", 0, {}, false},
  };
  for (const auto& c : cases) {
    auto host = loadModule("probe", assembleWat(c.wat));
    const std::int32_t argument = 11;
    auto call = host->invoke(std::span(&argument, 1));
    EXPECT_EQ(call.result, c.result) << c.name;
    EXPECT_EQ(static_cast<bool>(call.error), c.typeError) << c.name;
    if (c.typeError) {
      EXPECT_EQ(call.error->substr(0, 10), "TypeError:") << c.name;
    }
    EXPECT_EQ(call.emitted ? *call.emitted : std::vector<std::int32_t>{}, c.emitted) << c.name;
  }
}

}  // namespace

}  // namespace ravo::orx
