// The policy authors' toolchain, `ravo-orx policy ...`, driven like its users drive it: on the bundled
// policies, on copies with one thing wrong, and on modules that trap or never stop.

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <future>
#include <regex>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/runtime/OrxBuildConstants.h>

#include "runtime/tests/WatAssembler.h"
#include "tools/cli/tests/OrxCliBuildTree.h"
#include "tools/cli/tests/OrxCliToolRunner.h"

namespace ravo::orx {

namespace {

using namespace orx_cli_test;

const Words kPlays{"2", "6", "63", "1000", "900000", "0", "600", "1"};
const std::string kAllowed = R"({"isAllowed":true,"reason":"allowed","policyVersion":3,"source":"policy"})";
const std::string kTrapped =
    R"({"isAllowed":false,"reason":"runtimeUnavailable","policyVersion":0,"source":"trap"})";

Words with(Words words, const Words& extra) {
  words.insert(words.end(), extra.begin(), extra.end());
  return words;
}

void writeFile(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

void replaceIn(const fs::path& path, const std::string& from, const std::string& to) {
  std::string text = fileText(path);
  const auto at = text.find(from);
  ASSERT_NE(at, std::string::npos) << from;
  writeFile(path, text.replace(at, from.size(), to));
}

// An authorization-shaped module whose decide body is `body`.
std::string authorizationModule(const std::string& body) {
  return R"((module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
  (func (export "decide") (param i32 i32 i32 i32 i32 i32 i32 i32) (result i32) )" +
         body + "))";
}

// Modules the bundle does not approve, written into a scratch directory.
struct Modules {
  Modules() : scratch("ravo-orx-modules-") {
    for (const auto& [name, body] : {std::pair<std::string, std::string>{"trap", "unreachable"},
                                     {"loop", "(loop $forever (br $forever)) (i32.const 0)"}}) {
      const auto bytes = assembleWat(authorizationModule(body));
      writeFile(scratch.path / (name + ".wasm"), std::string(bytes.begin(), bytes.end()));
    }
  }
  std::string trap() const { return (scratch.path / "trap.wasm").string(); }
  std::string loop() const { return (scratch.path / "loop.wasm").string(); }
  Scratch scratch;
};

TEST(RavoOrxPolicy, Test) {
  const Scratch scratch("ravo-orx-policies-");
  const fs::path wrong = scratch.path / "wrong", partial = scratch.path / "partial", binary = scratch.path / "binary",
                 broken = scratch.path / "broken", empty = scratch.path / "empty", unnamed = scratch.path / "unnamed";
  fs::copy(kRoot / "policies", wrong);
  replaceIn(wrong / "player_authz.manifest.json",
            R"("token exactly at its TTL is expired", "facts": [2, 6, 63, 900000, 900000, 0, 600, 1], "emits": [5201, 0, 6, 2, 3])",
            R"("token exactly at its TTL is expired", "facts": [2, 6, 63, 900000, 900000, 0, 600, 1], "emits": [5201, 0, 6, 3, 3])");
  // Three sync cases only: two holds (reason 0) and a nudge (reason 3).
  fs::create_directories(partial);
  fs::copy(kRoot / "policies/sync_correction.wat", partial);
  std::string manifest = fileText(kRoot / "policies/sync_correction.manifest.json");
  const auto third = manifest.find("    {\"case\": \"drift just past the tolerance");
  writeFile(partial / "sync_correction.manifest.json", manifest.substr(0, manifest.rfind(",\n", third)) + "\n  ]\n}\n");
  // A module without its source is taken from the .wasm beside the manifest.
  fs::create_directories(binary);
  fs::copy(kRoot / "policies/cinema_admission.manifest.json", binary);
  fs::copy(kRoot / "artifacts/cinema_admission.wasm", binary);
  fs::copy(partial, broken);
  writeFile(broken / "sync_correction.wat", "(module (func $oops)");
  fs::create_directories(empty);
  // Seven facts where the sync decision takes eight, named and given so in every case: the decision would
  // read past each case's facts.
  fs::copy(partial, unnamed);
  const fs::path unnamedManifest = unnamed / "sync_correction.manifest.json";
  writeFile(unnamedManifest, std::regex_replace(fileText(unnamedManifest), std::regex(R"(, -?\d+\], "emits")"),
                                                R"(], "emits")"));
  replaceIn(unnamedManifest, R"(, "toleranceMilliseconds"])", "]");

  expectOutcomes({
      {{"policy", "test"}, "", printed("79 passed, 0 failed")},
      {{"policy", "test", wrong.string()}, "",
       {"FAIL player_authz \"token exactly at its TTL is expired\": expected [5201, 0, 6, 3, 3], emitted "
        "[5201, 0, 6, 2, 3]\n78 passed, 1 failed\n",
        "", 1}},
      {{"policy", "test", "-v", partial.string()}, "",
       printed("PASS sync_correction \"drift inside the tolerance holds\"\n"
               "PASS sync_correction \"drift at the tolerance holds\"\n"
               "PASS sync_correction \"small drift ahead nudges slower\"\n3 passed, 0 failed")},
      {{"policy", "test", binary.string(), "--coverage"}, "",
       printed("coverage cinema_admission: its cases reach every reason and decision the module can give\n"
               "24 passed, 0 failed")},
      {{"policy", "test", broken.string()}, "",
       {"FAIL sync_correction: " + broken.string() + "/sync_correction.wat:1:21: error: unexpected token EOF, "
        "expected ).\n(module (func $oops)\n                    ^\n0 passed, 3 failed\n", "", 1}},
      {{"policy", "test", unnamed.string()}, "",
       {"FAIL sync_correction: " + unnamedManifest.string() + ": \"facts\": [driftMilliseconds, "
        "roundTripMilliseconds, jitterMilliseconds, bufferAheadMilliseconds, rateX100, stallCount, "
        "syncAgeMilliseconds] are not the runtime's sync_correction facts [driftMilliseconds, roundTripMilliseconds, "
        "jitterMilliseconds, bufferAheadMilliseconds, rateX100, stallCount, syncAgeMilliseconds, "
        "toleranceMilliseconds]\n0 passed, 1 failed\n", "", 1}},
      {{"policy", "test", empty.string()}, "", refused("policy test", "no *.manifest.json in " + empty.string())},
      {{"policy", "test", "/nonexistent"}, "", refused("policy test", "no such manifest or directory: /nonexistent")},
      {{"policy", "test", "--frobnicate"}, "", misused("policy test", "unknown option --frobnicate")},
  });
  const auto verbose = run({"policy", "test", "-v"}, "");
  EXPECT_EQ(std::count(verbose.out.begin(), verbose.out.end(), '\n'), 80) << verbose;
}

// Every refusal of the manifest's schema, each by one edit of the bundled authorization manifest: the
// message names the key (and the case), and the run fails.
TEST(RavoOrxPolicy, TestRefusesEveryBreachOfTheManifestSchema) {
  const Scratch scratch("ravo-orx-schema-");
  const std::string original = fileText(kRoot / "policies/player_authz.manifest.json");
  const std::string first = R"("controller main-screen command is allowed")";
  const std::string firstFacts = R"("facts": [2, 6, 63, 1000, 900000, 0, 600, 1], "emits": [5201, 1, 6, 0, 3])";
  struct Row {
    std::string from, to, message;
  };
  const std::vector<Row> rows{
      {R"("emitTag": 5201,)", R"("emitTag": 5201, "emitTags": 1,)",
       R"(unknown key "emitTags" (the schema is docs/POLICY-MANIFEST.md))"},
      {R"(  "hostAbi": "0.11",)" "\n", "", R"(missing key "hostAbi")"},
      {R"("emitTag": 5201)", R"("emitTag": "5201")", R"("emitTag": expected an integer from -2147483648 to 2147483647)"},
      {R"("emitTag": 5201)", R"("emitTag": 4294972497)", R"("emitTag": expected an integer from -2147483648 to 2147483647)"},
      {R"("emitTag": 5201)", R"("emitTag": 5201.5)", R"("emitTag": expected an integer from -2147483648 to 2147483647)"},
      {R"("emitTag": 5201)", R"("emitTag": 9999)", R"("emitTag": 9999 is not 5201, the runtime's for player_authz)"},
      {R"("orxAbi": "0.10")", R"("orxAbi": "0.9")", R"("orxAbi": 0.9 is not 0.10, the runtime's for player_authz)"},
      {R"("hostAbi": "0.11")", R"("hostAbi": 11)", R"("hostAbi": expected a string)"},
      {R"("hostAbi": "0.11")", R"("hostAbi": "0.12")", R"("hostAbi": 0.12 is not 0.11, the runtime's for player_authz)"},
      {R"("module": "player_authz")", R"("module": "player_auth")", R"("module": "player_auth" is no module of this runtime)"},
      {R"("imports": [")", R"("imports": [7, ")", R"("imports"[0]: expected a string)"},
      {R"("facts": ["role", )", R"("facts": ["rôle", )", R"("facts": [rôle, command)"},
      {first + ", " + firstFacts, first + R"(, "facts": [2, 6, 63, 1000, 900000, 0, 600], "emits": [5201, 1, 6, 0, 3])",
       "case " + first + R"(: "facts": has 7 values instead of 8)"},
      {first + ", " + firstFacts, first + R"(, "facts": [2, 6, 63, 1000, 900000, 0, 600, 1], "emits": [5201, 1, 6])",
       "case " + first + R"(: "emits": has 3 values instead of 5)"},
      {first + ", " + firstFacts, first + ", " + firstFacts + R"(, "note": "x")",
       R"("cases"[0]: unknown key "note" (the schema is docs/POLICY-MANIFEST.md))"},
      {R"("renderer main-screen command needs a controller")", first,
       "case " + first + ": the name is given to another case before it"},
      {original.substr(original.find("\"cases\"")), "\"cases\": []\n}\n",
       R"("cases": no cases: a manifest tests its module with at least one)"},
      {R"("imports": [")", R"("imports": [)" + [] {
         std::string many;
         for (int i = 0; i < 100; ++i) many += "\"x\", ";
         return many;
       }() + "\"",
       R"("imports": more than 100 items, the most a list of a manifest holds)"},
      {firstFacts, R"("facts": [2, 6, 63, 1000, 900000, 0, 600, 1], "emits": {"tag": 5201})",
       R"("cases"[0]: "emits": expected an array)"},
      {"\n}\n", "\n}\n[]", "malformed JSON"},
      {"\n}\n", std::string("\n}\n\0", 4), "malformed JSON: unexpected NUL byte"},
      // What the prover is told: a range that ends just before it starts is empty; a skip says why.
      {"\n}\n", R"(, "factRanges": [{"fact": "role", "from": 3, "to": 2}]
}
)", R"("factRanges"[0]: the range 3..2 is empty)"},
      {"\n}\n", ",\"proof\": {\"skip\": \" \\t \"}\n}\n", R"("proof": "skip": a skipped proof states its reason)"},
  };
  for (const auto& row : rows) {
    const fs::path manifest = scratch.path / "player_authz.manifest.json";
    writeFile(manifest, original);
    replaceIn(manifest, row.from, row.to);
    const auto outcome = run({"policy", "test", manifest.string()}, "");
    EXPECT_TRUE(outcome.status == 1 && outcome.err.empty() &&
                outcome.out.starts_with("FAIL player_authz: " + manifest.string() + ": ") &&
                outcome.out.find(row.message) != std::string::npos && outcome.out.ends_with("0 passed, 1 failed\n"))
        << row.to << "\n" << outcome;
  }
}

// The manifest's contract with the module, held by `test` as by `build`: imports and decide.
TEST(RavoOrxPolicy, TestHoldsTheModuleToTheManifestsContract) {
  const Scratch scratch("ravo-orx-contract-");
  fs::copy(kRoot / "policies/player_authz.wat", scratch.path);
  const fs::path manifest = scratch.path / "player_authz.manifest.json";
  const std::string emit = "func output.emit(i32, i32, i32, i32, i32) -> (i32)";
  const std::string decide = "func decide(i32, i32, i32, i32, i32, i32, i32, i32) -> (i32)";
  for (const auto& [from, to, problem] : std::vector<std::array<std::string, 3>>{
           {emit, "func output.emit(i32) -> (i32)",
            "\"imports\": the module imports [" + emit + "], the manifest lists [func output.emit(i32) -> (i32)]"},
           {decide, "func decide(i32) -> (i32)", "\"decide\": the module exports no func decide(i32) -> (i32)"}}) {
    fs::copy(kRoot / "policies/player_authz.manifest.json", manifest, fs::copy_options::overwrite_existing);
    replaceIn(manifest, from, to);
    EXPECT_EQ(run({"policy", "test", "--run", "admin", manifest.string()}, ""),
              (Outcome{"FAIL player_authz: " + problem + "\n0 passed, 5 failed\n", "", 1}));
  }
}

// A case names decide's result as the record's second value: a decide that returns nothing fails it,
// even when it emits exactly the record and the runtime, reading nothing as 0, would accept it.
TEST(RavoOrxPolicy, TestHoldsDecideToTheResultTheCaseNames) {
  const Scratch scratch("ravo-orx-void-decide-");
  writeFile(scratch.path / "player_authz.wat", R"((module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
  (func (export "decide") (param i32 i32 i32 i32 i32 i32 i32 i32)
    (drop (call $emit (i32.const 5201) (i32.const 0) (local.get 1) (i32.const 5) (i32.const 3)))))
)");
  const fs::path manifest = scratch.path / "player_authz.manifest.json";
  fs::copy(kRoot / "policies/player_authz.manifest.json", manifest);
  replaceIn(manifest, "\"decide\": \"func decide(i32, i32, i32, i32, i32, i32, i32, i32) -> (i32)\"",
            "\"decide\": \"func decide(i32, i32, i32, i32, i32, i32, i32, i32) -> ()\"");
  EXPECT_EQ(run({"policy", "test", "--run", "renderer main-screen", manifest.string()}, ""),
            (Outcome{"FAIL player_authz \"renderer main-screen command needs a controller\": expected "
                     "[5201, 0, 6, 5, 3] and decide returning 0, decide returned nothing\n0 passed, 1 failed\n", "", 1}));
}

// --run selects by "module/case", --json reports on standard output, --junit writes JUnit XML.
TEST(RavoOrxPolicy, TestSelectsCasesAndWritesReportsForMachines) {
  const Scratch scratch("ravo-orx-reports-");
  const fs::path junit = scratch.path / "results.xml";
  const std::string selection = "player_authz/admin may|sync_correction/drift at the";
  expectOutcomes({
      {{"policy", "test", "-v", "--run", selection, "policies/player_authz.manifest.json", "policies"}, "",
       printed("PASS player_authz \"admin may change settings\"\n"
               "PASS player_authz \"admin may not pair without the pairing grant\"\n"
               "PASS player_authz \"admin may change settings\"\n"
               "PASS player_authz \"admin may not pair without the pairing grant\"\n"
               "PASS sync_correction \"drift at the tolerance holds\"\n5 passed, 0 failed")},
      {{"policy", "test", "--json", "--run", "drift at the", "--junit", junit.string()}, "",
       printed(R"({"passed":1,"failed":0,"modules":[{"module":"sync_correction","cases":[)"
               R"({"case":"drift at the tolerance holds","status":"pass"}]}]})")},
      {{"policy", "test", "--run", "no such case"}, "", refused("policy test", "no case matches --run \"no such case\"")},
      {{"policy", "test", "--run", std::string(1001, 'x')}, "",
       misused("policy test", "--run takes a pattern of at most 1000 bytes, got 1001")},
      {{"policy", "test", "--run", "("}, "",
       misused("policy test", "--run \"(\" is not a regular expression: U_REGEX_MISMATCHED_PAREN at character 2")},
      // Under a file: no directory can be made there, and nothing is left behind.
      {{"policy", "test", "--junit", (junit / "results.xml").string()}, "",
       refused("policy test", "could not write " + (junit / "results.xml").string() + ": Not a directory")},
  });
  EXPECT_EQ(fileText(junit),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<testsuites name=\"ravo-orx policy test\" tests=\"1\" failures=\"0\">\n"
            "  <testsuite name=\"sync_correction\" tests=\"1\" failures=\"0\">\n"
            "    <testcase classname=\"sync_correction\" name=\"drift at the tolerance holds\"/>\n"
            "  </testsuite>\n</testsuites>\n");
  EXPECT_EQ(std::vector<fs::path>(fs::directory_iterator(scratch.path), {}), std::vector<fs::path>{junit});

  // A failing case, with text XML must escape, in both reports.
  fs::copy(kRoot / "policies/player_authz.wat", scratch.path);
  const fs::path manifest = scratch.path / "player_authz.manifest.json";
  fs::copy(kRoot / "policies/player_authz.manifest.json", manifest);
  replaceIn(manifest, R"("admin may change settings", "facts": [3, 8, 255, 1000, 900000, 0, 600, 1], "emits": [5201, 1, 8, 0, 3])",
            R"("admin <may> & \"changes\"", "facts": [3, 8, 255, 1000, 900000, 0, 600, 1], "emits": [5201, 1, 8, 0, 4])");
  const auto failing = run({"policy", "test", "--json", "--run", "<may>", "--junit", junit.string(), manifest.string()}, "");
  EXPECT_EQ(failing, (Outcome{R"({"passed":0,"failed":1,"modules":[{"module":"player_authz","cases":[{"case":)"
                              R"("admin <may> & \"changes\"","status":"fail","problem":"expected [5201, 1, 8, 0, 4], )"
                              R"(emitted [5201, 1, 8, 0, 3]"}]}]})" "\n", "", 1}));
  EXPECT_NE(fileText(junit).find("    <testcase classname=\"player_authz\" name=\"admin &lt;may&gt; &amp; &quot;changes"
                                 "&quot;\">\n      <failure message=\"expected [5201, 1, 8, 0, 4], emitted "
                                 "[5201, 1, 8, 0, 3]\"/>\n    </testcase>\n"),
            std::string::npos)
      << fileText(junit);

  // XML 1.0 cannot hold most control characters at all, escaped or not: they become '?'.
  replaceIn(manifest, R"("admin <may> & \"changes\"")", R"("bell\u0007 escape\u001b[31m tab\t")");
  EXPECT_EQ(run({"policy", "test", "--run", "bell", "--junit", junit.string(), manifest.string()}, "").status, 1);
  EXPECT_NE(fileText(junit).find("name=\"bell? escape?[31m tab&#9;\""), std::string::npos) << fileText(junit);
}

// --run searches on a matcher that neither recurses per character nor runs without end: a case name of
// a megabyte is searched like any other, and a pattern that would backtrack past its limits is refused.
TEST(RavoOrxPolicy, TestSearchesLongCaseNamesWithinLimits) {
  const Scratch scratch("ravo-orx-long-name-");
  fs::copy(kRoot / "policies/player_authz.wat", scratch.path);
  const fs::path manifest = scratch.path / "player_authz.manifest.json";
  fs::copy(kRoot / "policies/player_authz.manifest.json", manifest);
  const std::string name(1 << 20, 'a');
  replaceIn(manifest, "controller main-screen command is allowed", name);
  const std::string subject = "\"player_authz/" + name.substr(0, 51) + "\u2026\"";
  expectOutcomes({
      {{"policy", "test", "--run", "a$", manifest.string()}, "", printed("1 passed, 0 failed")},
      {{"policy", "test", "--run", "(a|aa)*c", manifest.string()}, "",
       misused("policy test", "--run \"(a|aa)*c\" could not be searched for in " + subject + ": U_REGEX_STACK_OVERFLOW")},
      {{"policy", "test", "--run", "(.*)*x", manifest.string()}, "",
       misused("policy test", "--run \"(.*)*x\" could not be searched for in " + subject + ": U_REGEX_TIME_OUT")},
  });
}

// A record the runtime refuses, explained by its rule; a second emission warned of; fuel and stack told.
TEST(RavoOrxPolicy, EvalExplainsTheDecision) {
  const Scratch scratch("ravo-orx-explain-");
  auto module = [&](const std::string& name, const std::string& body) {
    const auto bytes = assembleWat(authorizationModule(body));
    writeFile(scratch.path / name, std::string(bytes.begin(), bytes.end()));
    return (scratch.path / name).string();
  };
  const std::string twice = module("twice.wasm",
                                   "(drop (call $emit (i32.const 5201) (i32.const 1) (local.get 1) (i32.const 0) "
                                   "(i32.const 9))) (drop (call $emit (i32.const 5201) (i32.const 1) (local.get 1) "
                                   "(i32.const 0) (i32.const 0))) (i32.const 1)");
  const std::string budget = " units, stack 0 of 4000 units (a call's frame is 4 plus its parameters and locals, so "
                             "recursion of a one-parameter function stops after 800 calls)\n";
  const auto explained = run(with({"policy", "eval", "-v", twice, "authz"}, kPlays), "");
  EXPECT_EQ(explained.out, R"({"isAllowed":false,"reason":"invalidResult","policyVersion":0,"source":"invalidOutput"})" "\n");
  EXPECT_EQ(explained.status, 3);
  EXPECT_TRUE(explained.err.ends_with("ravo-orx policy eval: decide returned 1\n"
                                      "ravo-orx policy eval: emitted [5201, 1, 6, 0, 0]\n"
                                      "ravo-orx policy eval: refused: [4] policy version 0 is outside 1…10000\n"
                                      "ravo-orx policy eval: warning: emitted 2 times in one call; only the last "
                                      "emission counts\n"
                                      "ravo-orx policy eval: fuel 24 of 1000000" + budget))
      << explained;
  // Eleven calls of a one-parameter function deep: 11 frames of 4 + 1 stack units.
  const auto deep = assembleWat(R"((module
  (import "output" "emit" (func $emit (param i32 i32 i32 i32 i32) (result i32)))
  (func $down (param i32) (result i32)
    (if (result i32) (local.get 0) (then (call $down (i32.sub (local.get 0) (i32.const 1)))) (else (i32.const 0))))
  (func (export "decide") (param i32 i32 i32 i32 i32 i32 i32 i32) (result i32) (call $down (i32.const 10)))))");
  writeFile(scratch.path / "deep.wasm", std::string(deep.begin(), deep.end()));
  const auto recursed = run(with({"policy", "eval", "-v", (scratch.path / "deep.wasm").string(), "authz"}, kPlays), "");
  EXPECT_TRUE(recursed.status == 3 &&
              std::regex_search(recursed.err, std::regex("refused: decide emitted nothing\n.*: fuel [0-9]+ of 1000000 "
                                                         "units, stack 55 of 4000 units")))
      << recursed;
  // Without -v only why: the rule, here that the record does not repeat the facts' command.
  const std::string echo = module("echo.wasm", "(drop (call $emit (i32.const 5201) (i32.const 0) (i32.const 7) "
                                               "(i32.const 0) (i32.const 3))) (i32.const 0)");
  const auto refused = run(with({"policy", "eval", echo, "authz"}, kPlays), "");
  EXPECT_TRUE(refused.status == 3 &&
              refused.err.ends_with("ravo-orx policy eval: refused: [2] command 7 is not the facts' command 6\n"))
      << refused;
}

// `check` with a manifest runs its cases; `test` warns of a case whose call emitted twice.
TEST(RavoOrxPolicy, CheckRunsTheCasesAndTestWarnsOfASecondEmission) {
  const Scratch scratch("ravo-orx-cases-");
  const fs::path manifest = scratch.path / "player_authz.manifest.json";
  fs::copy(kRoot / "policies/player_authz.manifest.json", manifest);
  replaceIn(manifest, R"("admin may change settings", "facts": [3, 8, 255, 1000, 900000, 0, 600, 1], "emits": [5201, 1, 8, 0, 3])",
            R"("admin may change settings", "facts": [3, 8, 255, 1000, 900000, 0, 600, 1], "emits": [5201, 1, 8, 0, 4])");
  const auto checked = run({"policy", "check", "artifacts/player_authz.wasm", manifest.string()}, "");
  EXPECT_TRUE(checked.status == 1 &&
              checked.out.ends_with("FAIL \"admin may change settings\": expected [5201, 1, 8, 0, 4], emitted "
                                    "[5201, 1, 8, 0, 3]\ncases      31 passed, 1 failed\n") &&
              checked.err == "ravo-orx policy check: artifacts/player_authz.wasm: 1 of the manifest's 32 cases failed\n")
      << checked;

  std::string source = fileText(kRoot / "policies/player_authz.wat");
  const auto emit = source.find("(drop (call $emit");
  ASSERT_NE(emit, std::string::npos);
  source.insert(emit, "(drop (call $emit (i32.const 0) (i32.const 0) (i32.const 0) (i32.const 0) (i32.const 0))) ");
  writeFile(scratch.path / "player_authz.wat", source);
  fs::copy(kRoot / "policies/player_authz.manifest.json", manifest, fs::copy_options::overwrite_existing);
  EXPECT_EQ(run({"policy", "test", "--run", "admin may change", manifest.string()}, ""),
            printed("WARN player_authz \"admin may change settings\": emitted 2 times in one call; only the last "
                    "emission counts\n1 passed, 0 failed"));
}

TEST(RavoOrxPolicy, Eval) {
  const Modules modules;
  auto notApproved = [](const std::string& module, const std::string& digest) {
    return "ravo-orx policy eval: warning: " + module + " (sha256 " + digest + ") is not approved by this build\n";
  };
  expectOutcomes({
      {with({"policy", "eval", "artifacts/player_authz.wasm", "authz"}, kPlays), "", printed(kAllowed)},
      {{"policy", "eval", "--facts", "-", "artifacts/player_authz.wasm", "authz"},
       R"({"role": 2, "command": 6, "grantFlags": 63, "tokenAgeMilliseconds": 1000, "tokenTTLMilliseconds": 900000,
           "rateUsed": 0, "rateLimit": 600, "controlMode": 1})",
       printed(kAllowed)},
      {with({"policy", "eval", "-", "authz"}, kPlays), fileText(kRoot / "artifacts/player_authz.wasm"),
       printed(kAllowed)},
      {with({"policy", "eval", modules.trap(), "authz"}, kPlays), "",
       {kTrapped + "\n",
        notApproved(modules.trap(), "fc2130c4") + "ravo-orx policy eval: trapped: RuntimeError: unreachable executed\n",
        3}},
      // A module that never stops runs out of its execution budget.
      {with({"policy", "eval", modules.loop(), "authz"}, kPlays), "",
       {kTrapped + "\n",
        notApproved(modules.loop(), "353a710f") +
            "ravo-orx policy eval: trapped: RuntimeError: execution budget exhausted\n",
        3}},
      {with({"policy", "eval", "/nonexistent.wasm", "authz"}, kPlays), "",
       refused("policy eval", "could not read /nonexistent.wasm: No such file or directory")},
      {{"policy", "eval", "--facts=-", "-", "authz"}, "",
       misused("policy eval", "MODULE and --facts cannot both be standard input")},
      {{"policy", "eval", modules.trap(), "sync", "1"}, "", misused("policy eval", "sync takes 8 facts, got 1")},
      {{"policy", "eval"}, "", misused("policy eval", "missing MODULE")},
  });
}

TEST(RavoOrxPolicy, Check) {
  const Modules modules;
  // One byte past the module host's 4 MiB, and past a manifest's 4 MiB: refused unread (sparse files).
  const fs::path module = modules.scratch.path / "large.wasm", manifest = modules.scratch.path / "large.manifest.json";
  for (const auto& large : {module, manifest}) {
    std::ofstream(large).close();
    fs::resize_file(large, (4u << 20) + 1);
  }
  const std::string pastLimit = ": file of 4194305 bytes exceeds the limit of 4194304";
  const std::string authz = "artifacts/player_authz.wasm";
  const std::string description =
      "module     " + authz +
      "\nsha256     c3ea776c8111d6bad7552b1afbae282fa7f5596cc0f25fd4645b69a88da2a3d7\n"
      "imports    func output.emit(i32, i32, i32, i32, i32) -> (i32)\n"
      "exports    func decide(i32, i32, i32, i32, i32, i32, i32, i32) -> (i32)\n"
      "approved   yes, as player_authz\n"
      "execution  statically bounded: at most 244 of 1000000 fuel units per call\n";
  const auto loop = run({"policy", "check", modules.loop()}, "");
  EXPECT_TRUE(loop.status == 0 && loop.out.ends_with("\napproved   no, this build approves other bytes\n"
                                                     "execution  metered (it contains a loop): a call that exceeds "
                                                     "1000000 fuel units traps\ntier       interpreted\n"
                                                     "contract   a policy module's\n"))
      << loop;
  expectOutcomes({
      {{"policy", "check", authz, "policies/player_authz.manifest.json"}, "",
       printed(description + "tier       precompiled\ncontract   matches policies/player_authz.manifest.json\n"
                             "cases      32 passed, 0 failed")},
      {{"policy", "check", authz, "policies/cinema_admission.manifest.json"}, "",
       {description +
            "tier       precompiled\ncontract   refused: \"decide\": the module exports no func decide(i32, i32, i32, "
            "i32, i32, i32, i32, i32, i32, i32, i32, i32, i32) -> (i32)\n",
        "ravo-orx policy check: " + authz + ": \"decide\": the module exports no func decide(i32, i32, i32, i32, "
        "i32, i32, i32, i32, i32, i32, i32, i32, i32) -> (i32)\n",
        1}},
      {{"policy", "check", "-", "policies/player_authz.manifest.json"}, fileText(kRoot / authz),
       printed("module     standard input" + description.substr(description.find('\n')) +
               "tier       precompiled\ncontract   matches policies/player_authz.manifest.json\ncases      32 passed, 0 failed")},
      {{"policy", "check", authz, "-"}, "{}",
       refused("policy check", "standard input: missing key \"module\"")},
      {{"policy", "check", "-", "-"}, "",
       misused("policy check", "MODULE and MANIFEST cannot both be standard input")},
      {{"policy", "check", "policies/player_authz.manifest.json"}, "",
       refused("policy check",
               "Could not instantiate ORX module player_authz.manifest: CompileError: 0000004: error: bad magic value")},
      {{"policy", "check", authz, "/nonexistent.json"}, "",
       refused("policy check", "could not read /nonexistent.json: No such file or directory")},
      {{"policy", "check", module.string()}, "", refused("policy check", "could not read " + module.string() + pastLimit)},
      {{"policy", "check", authz, manifest.string()}, "",
       refused("policy check", "could not read " + manifest.string() + pastLimit)},
  });
}

// A module's names reach the terminal cut short and with their control bytes escaped, and so does any
// other error line (here a file name).
TEST(RavoOrxPolicy, ErrorsAndDescriptionsEscapeWhatAModuleOrFileNames) {
  const Scratch scratch("ravo-orx-escapes-");
  const auto write = [&](const std::string& name, const std::string& wat) {
    const auto bytes = assembleWat(wat);
    writeFile(scratch.path / name, std::string(bytes.begin(), bytes.end()));
    return (scratch.path / name).string();
  };
  const std::string colours = write("colours.wasm", R"wat((module (import "\1b[31mred" "emit" (func))
      (func (export "decide") (result i32) (i32.const 0))))wat");
  const std::string exports = write("exports.wasm", R"wat((module (import "output" "emit" (func (param i32)))
      (func (export "decide") (result i32) (i32.const 0)) (func (export "\1b[2J") (result i32) (i32.const 0))))wat");
  const std::string garbage = (scratch.path / "bad\x1B[31m.wasm").string();
  writeFile(garbage, "hello");

  EXPECT_EQ(run({"policy", "check", colours}, ""),
            refused("policy check", "Could not instantiate ORX module colours: LinkError: import \\x1B[31mred.emit is "
                                    "not provided (only the function output.emit is)"));
  const auto described = run({"policy", "check", exports}, "");
  EXPECT_NE(described.out.find("\nexports    func decide() -> (i32); func \\x1B[2J() -> (i32)\n"), std::string::npos)
      << described;
  EXPECT_EQ(described.out.find('\x1B'), std::string::npos) << described;
  EXPECT_EQ(run({"policy", "check", garbage}, ""),
            refused("policy check", "Could not instantiate ORX module bad\\x1B[31m: CompileError: 0000004: error: bad "
                                    "magic value"));
}

TEST(RavoOrxPolicy, Bench) {
  const Modules modules;
  const auto timed = run(with({"policy", "bench", "--runs", "3", "--decisions=200", "artifacts/sync_correction.wasm",
                               "sync"},
                              kPlays),
                         "");
  EXPECT_TRUE(timed.status == 0 && timed.err.empty() &&
              std::regex_match(timed.out, std::regex("artifacts/sync_correction.wasm: [0-9]+\\.[0-9]{3} \u00B5s/decision "
                                                     "on the precompiled tier \\(median of 3 runs of 200 decisions\\)\n")))
      << timed;
  const auto trapped = run(with({"policy", "bench", "--runs=1", "--decisions=10", modules.loop(), "authz"}, kPlays), "");
  EXPECT_TRUE(trapped.status == 3 && trapped.out.find(" on the interpreted tier (median of 1 runs of 10 decisions)\n") !=
                                         std::string::npos &&
              trapped.err == "ravo-orx policy bench: warning: these facts give the fail-safe decision (trap)\n")
      << trapped;
  expectOutcomes({
      {with({"policy", "bench", "--runs", "0", modules.trap(), "authz"}, kPlays), "",
       misused("policy bench", "--runs must be an integer from 1 to 101, got \"0\"")},
      {with({"policy", "bench", modules.trap(), "authz"}, with(kPlays, {"--decisions=0"})), "",
       misused("policy bench", "--decisions must be an integer from 1 to 100000000, got \"0\"")},
      {with({"policy", "bench", "--decisions", "-1", modules.trap(), "authz"}, kPlays), "",
       misused("policy bench", "--decisions must be an integer from 1 to 100000000, got \"-1\"")},
      {with({"policy", "bench", "policies/player_authz.manifest.json", "authz"}, kPlays), "",
       refused("policy bench", "Could not instantiate ORX module player_authz: CompileError: 0000004: error: bad magic value")},
  });
}

const std::vector<std::string> kBuiltFiles{
    "artifacts/player_authz.wasm",         "artifacts/player_authz.package-check.json",
    "artifacts/sync_correction.wasm",      "artifacts/sync_correction.package-check.json",
    "artifacts/cinema_admission.wasm",     "artifacts/cinema_admission.package-check.json",
    "artifacts/evidence.json",             "artifacts/OrxBuildConstants.cpp"};

TEST(RavoOrxPolicy, BuildReproducesTheCommittedArtifactsAndConstants) {
  const BuildTree tree;
  std::string wrote;
  for (const auto& file : kBuiltFiles) wrote += "wrote " + file + "\n";
  const std::string modules =
      "player_authz      pass  wasm c3ea776c\nsync_correction   pass  wasm 7155bd93\n"
      "cinema_admission  pass  wasm 92624572\ncompiler   " + internal::OrxBuildConstants::compilerIdentity() + "\n";
  ASSERT_EQ(tree.build(), (Outcome{modules + wrote + "rebuild the project to approve the new artifacts\n", "", 0}));
  // The same sources and toolchain give exactly the committed bytes: the committed artifacts and
  // constants are current, and the build is deterministic.
  for (const auto& file : kBuiltFiles) EXPECT_EQ(fileText(tree.root / file), fileText(kRoot / file)) << file;

  const auto writtenAt = fs::last_write_time(tree.root / "artifacts/evidence.json");
  EXPECT_EQ(tree.build(), (Outcome{modules + "artifacts and build constants unchanged\n", "", 0}));
  EXPECT_EQ(fs::last_write_time(tree.root / "artifacts/evidence.json"), writtenAt);
}

// While one build holds the repository, another waits, says so, and then builds. Its modules skip
// their proofs, so that a build that did not wait would be done well within the time it is held.
TEST(RavoOrxPolicy, ASecondBuildWaitsForTheFirst) {
  const BuildTree tree;
  for (const std::string module : {"player_authz", "sync_correction", "cinema_admission"}) {
    replaceIn(tree.root / "policies" / (module + ".manifest.json"), "{\n",
              "{\n  \"proof\": {\"skip\": \"the build lock is under test, not the modules\"},\n");
  }
  const int held = ::open((tree.root / kConstantsHeader).c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);
  auto second = std::async(std::launch::async, [&] { return tree.build(); });
  EXPECT_EQ(second.wait_for(std::chrono::milliseconds(1500)), std::future_status::timeout);
  EXPECT_FALSE(fs::exists(tree.root / "artifacts"));
  ::close(held);
  const Outcome outcome = second.get();
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "ravo-orx policy build: waiting for another policy build in this repository\n");
  EXPECT_TRUE(fs::exists(tree.root / "artifacts/evidence.json"));
}

TEST(RavoOrxPolicy, BuildWritesNothingWhenACheckFails) {
  const BuildTree tree;
  replaceIn(tree.root / "policies/player_authz.wat", "(global $policyVersion i32 (i32.const 3))",
            "(global $policyVersion i32 (i32.const 4))");
  replaceIn(tree.root / "policies/cinema_admission.manifest.json", "\"orxAbi\": \"0.10\"", "\"orxAbi\": \"0.9\"");
  const auto outcome = tree.build();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_TRUE(outcome.err.starts_with("ravo-orx policy build: player_authz: controller main-screen command is allowed: expected "
                                      "[5201, 1, 6, 0, 3], emitted [5201, 1, 6, 0, 4]\n"))
      << outcome.err;
  EXPECT_TRUE(outcome.err.ends_with("ravo-orx policy build: cinema_admission: cinema_admission.manifest.json: \"orxAbi\": 0.9 is not 0.10, "
                                    "the runtime's for cinema_admission\n"
                                    "ravo-orx policy build: the package check failed; nothing was written\n"))
      << outcome.err;
  EXPECT_FALSE(fs::exists(tree.root / "artifacts"));

  const Scratch elsewhere("ravo-orx-elsewhere-");
  expectOutcomes({{{"policy", "build"}, "",
                   refused("policy build", "it runs from the repository root (no " + kConstantsHeader.string() +
                           " and tools/package_check/ here)")},
                  {{"policy", "build", "extra"}, "", misused("policy build", "unexpected argument \"extra\"")}},
                 elsewhere.path);
}

// The allow-list example in each language stands in for the bundled authorization policy: the build
// compiles it, approves it under an identity naming the compilers used, and is byte-identical twice.
TEST(RavoOrxPolicy, BuildCompilesEverySourceLanguage) {
  struct Row {
    const char* example;
    const char* execution;  // the module's execution bound, as `policy check` says it
    bool otherCompilers;    // compilers beyond the bundled policies' assembler
  };
  for (const Row& row : {Row{"c/player_authz.c", "metered (it contains a loop)", true},
                         Row{"rust/player_authz.rs", "statically bounded", true},
                         Row{"wat/player_authz.wat", "metered (it contains a loop)", false}}) {
    SCOPED_TRACE(row.example);
    const BuildTree tree;
    const fs::path source = kRoot / "examples/policies" / row.example;
    fs::remove(tree.root / "policies/player_authz.wat");
    fs::copy(source, tree.root / "policies" / source.filename());
    const auto check = run({"policy", "build", "--check"}, "", tree.root);
    EXPECT_EQ(check.status, 1) << check;
    EXPECT_NE(check.out.find("would write artifacts/player_authz.wasm\n"), std::string::npos) << check;
    EXPECT_FALSE(fs::exists(tree.root / "artifacts"));

    const auto built = tree.build();
    ASSERT_EQ(built.status, 0) << built;
    const auto from = built.out.find("compiler   ") + 11;
    const std::string identity = built.out.substr(from, built.out.find('\n', from) - from);
    EXPECT_TRUE(std::regex_match(identity, std::regex("ORX [0-9]+\\.[0-9]+\\.[0-9]+ commit [0-9a-f]{40}"))) << identity;
    EXPECT_EQ(identity != internal::OrxBuildConstants::compilerIdentity(), row.otherCompilers) << identity;
    EXPECT_NE(fileText(tree.root / "artifacts/evidence.json").find(ORXSHA256::hex(fileText(source))), std::string::npos);
    const std::string module = fileText(tree.root / "artifacts/player_authz.wasm");
    EXPECT_EQ(tree.build().out.find("wrote"), std::string::npos) << "a second build writes nothing";
    EXPECT_EQ(fileText(tree.root / "artifacts/player_authz.wasm"), module);
    EXPECT_EQ(run({"policy", "build", "--dry-run"}, "", tree.root).status, 0) << "up to date";
    EXPECT_NE(run({"policy", "check", "artifacts/player_authz.wasm"}, "", tree.root).out.find(row.execution),
              std::string::npos);
    // The tools take the source itself and compile it as the build does.
    const auto evaluated = run({"policy", "eval", source.string(), "authz", "1", "6", "63", "1000", "900000", "0",
                                "600", "1"}, "");
    EXPECT_EQ(evaluated.out, "{\"isAllowed\":false,\"reason\":\"notController\",\"policyVersion\":3,\"source\":\"policy\"}\n")
        << evaluated;
  }
}

// A module has one source of record; a compiler's refusal reaches the author whole.
TEST(RavoOrxPolicy, BuildRefusesAmbiguousOrBrokenSources) {
  const BuildTree tree;
  fs::copy(kRoot / "examples/policies/c/player_authz.c", tree.root / "policies/player_authz.c");
  EXPECT_EQ(tree.build(), refused("ravo-orx policy build: player_authz: more than one source in policies: a module has "
                                  "exactly one of player_authz.wat, player_authz.c and player_authz.rs\n"
                                  "ravo-orx policy build: the package check failed; nothing was written"));
  fs::remove(tree.root / "policies/player_authz.wat");
  writeFile(tree.root / "policies/player_authz.c", "#include <orx_policy.h>\nORX_DECIDE_AUTHZ { return role +; }\n");
  const auto broken = tree.build();
  EXPECT_EQ(broken.status, 1);
  EXPECT_NE(broken.err.find("policies/player_authz.c:2:33: error: expected expression\n"
                            "ORX_DECIDE_AUTHZ { return role +; }\n"),
            std::string::npos)
      << broken;
  EXPECT_FALSE(fs::exists(tree.root / "artifacts"));
}

// A rustc without the wasm32 standard library (a toolchain manager's, first on PATH) is passed over for
// one that has it; with none, the author is told what is missing.
TEST(RavoOrxPolicy, RustPoliciesNeedARustcWithTheWasmTarget) {
  const BuildTree tree;
  fs::remove(tree.root / "policies/player_authz.wat");
  fs::copy(kRoot / "examples/policies/rust/player_authz.rs", tree.root / "policies/player_authz.rs");
  const fs::path managed = tree.root / "managed-bin", system = tree.root / "system-bin";
  fs::create_directories(managed);
  fs::create_directories(system);
  writeFile(managed / "rustc", "#!/bin/sh\necho " + (tree.root / "managed-sysroot").string() + "\n");
  fs::permissions(managed / "rustc", fs::perms::owner_all);
  for (const char* tool : {"wat2wasm", "wasm-ld"}) fs::create_symlink(fs::path("/usr/bin") / tool, system / tool);
  const std::string path = std::getenv("PATH");
  const auto withPath = [&](const std::string& value) {
    ::setenv("PATH", value.c_str(), 1);
    auto outcome = tree.build();
    ::setenv("PATH", path.c_str(), 1);
    return outcome;
  };
  const auto missing = withPath(managed.string() + ":" + system.string());
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.err.find("no rustc on PATH has the wasm32-unknown-unknown standard library (tried " +
                             (managed / "rustc").string() + "); install Debian's rustc and libstd-rust-dev-wasm32"),
            std::string::npos)
      << missing;
  const auto found = withPath(managed.string() + ":" + path);
  EXPECT_EQ(found.status, 0) << found;
}

}  // namespace

}  // namespace ravo::orx
