// `ravo-orx policy prove`, `policy diff`, `policy test --coverage` and the proof step of `policy build`,
// run as an author runs them: every exit status, the counterexamples and witnesses they print (replayed,
// so their facts reach what they claim), and the build refusing a module whose record the host can
// refuse unless its manifest says why.
#include <regex>

#include "tools/cli/tests/OrxCliBuildTree.h"
#include "tools/cli/tests/OrxCliToolRunner.h"

namespace ravo::orx {

namespace {

using namespace orx_cli_test;

const std::string kAuthz = (kRoot / "policies/player_authz.wat").string();
const std::string kAuthzManifest = (kRoot / "policies/player_authz.manifest.json").string();
const std::string kExamples = (kRoot / "examples/policies").string() + "/";

// `text` with `from`, which must occur in it exactly once, replaced by `to`.
std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const auto at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  EXPECT_EQ(text.find(from, at + 1), std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

// The authorization policy with one line changed.
std::string authzWith(const std::string& from, const std::string& to) { return replaced(fileText(kAuthz), from, to); }

// The token is live while age < TTL; the copy keeps it live at age == TTL.
const std::string kLiveToken = "(i32.ge_s (local.get $tokenAgeMilliseconds) (local.get $tokenTTLMilliseconds))";
const std::string kLiveTokenOffByOne = "(i32.gt_s (local.get $tokenAgeMilliseconds) (local.get $tokenTTLMilliseconds))";
// Every record carries the policy version; the copy emits version 0 for command 77.
const std::string kVersion = "                      (global.get $policyVersion)))";
const std::string kVersionZeroFor77 =
    "                      (select (i32.const 0) (global.get $policyVersion)"
    " (i32.eq (local.get $command) (i32.const 77)))))";

TEST(RavoOrxPolicyProof, ProveAndDiffAnswerWithTheirExitStatuses) {
  const Scratch scratch("ravo-orx-proof-");
  const auto write = [&](const std::string& name, const std::string& text) {
    std::ofstream(scratch.path / name, std::ios::binary) << text;
    return (scratch.path / name).string();
  };
  const auto offByOne = write("offbyone.wat", authzWith(kLiveToken, kLiveTokenOffByOne));
  const auto versionZero = write("version0.wat", authzWith(kVersion, kVersionZeroFor77));
  std::string manifest = fileText(kAuthzManifest);
  manifest.insert(manifest.rfind('}'), ",\"properties\": [\"tokenAgeMilliseconds >= tokenTTLMilliseconds implies not "
                                       "isAllowed\", \"role != 2 and role != 3 implies not isAllowed\"]");
  const auto withProperties = write("props.manifest.json", manifest);
  // Admins only: no facts within the ranges make a controller ask for an admin's command.
  write("player_authz.wat", fileText(kAuthz));
  std::string adminsOnly = fileText(kAuthzManifest);
  adminsOnly.insert(adminsOnly.rfind('}'), ",\"factRanges\": [{\"fact\": \"role\", \"from\": 3, \"to\": 3}]");
  const auto ranged = write("ranged.manifest.json", adminsOnly);

  struct Row {
    Words arguments;
    int status;
    std::vector<std::string> lines;  // each must match a whole line of standard output
    std::string err = "";            // a part of standard error
  };
  const Row rows[] = {
      // Every bundled module is valid.
      {{"policy", "prove", kAuthz, "authz", "--manifest", kAuthzManifest}, 0, {"9 proved, 0 refuted, 0 unknown"}},
      {{"policy", "prove", (kRoot / "artifacts/sync_correction.wasm").string(), "sync"}, 0,
       {"12 proved, 0 refuted, 0 unknown"}},
      {{"policy", "prove", (kRoot / "artifacts/cinema_admission.wasm").string(), "cinema"}, 0,
       {"14 proved, 0 refuted, 0 unknown"}},
      // A record the host refuses, found at the one command that gives it, and replayed.
      {{"policy", "prove", versionZero, "authz"}, 1,
       {"refuted  no record is refused with \"\\[4\\] policy version \\{4\\} is outside 1…10000\": facts "
        "\\{\"role\":-?\\d+,\"command\":77,.*\\} give \\{\"isAllowed\":false,\"reason\":\"invalidResult\","
        "\"policyVersion\":0,\"source\":\"invalidOutput\"\\} \\(refused: \\[4\\] policy version 0 is outside "
        "1…10000\\)",
        "8 proved, 1 refuted, 0 unknown"}},
      // The manifest's properties: one holds, one does not (a viewer may play).
      {{"policy", "prove", kAuthz, "authz", "--manifest", withProperties}, 1,
       {"proved   property \"tokenAgeMilliseconds >= tokenTTLMilliseconds implies not isAllowed\"",
        "refuted  property \"role != 2 and role != 3 implies not isAllowed\": facts \\{\"role\":1,.*\\} give "
        "\\{\"isAllowed\":true,\"reason\":\"allowed\",\"policyVersion\":3,\"source\":\"policy\"\\}",
        "10 proved, 1 refuted, 0 unknown"}},
      // The C allow-list keeps its loop: past the unroll bound nothing is proved, nothing refuted.
      {{"policy", "prove", kExamples + "c/player_authz.c", "authz", "--unroll", "1"}, 4,
       {"unknown  decide never traps: a loop may run more than 1 iteration \\(the unroll bound\\), as for facts "
        "\\{.*\\}",
        "0 proved, 0 refuted, 9 unknown"}},
      {{"policy", "prove", kAuthz}, 2, {}, "missing authz, sync or cinema"},
      {{"policy", "prove", kAuthz, "playback"}, 2, {}, "playback"},
      {{"policy", "prove", kAuthz, "authz", "--timeout-ms", "0"}, 2, {}, "--timeout-ms"},
      {{"policy", "prove", kAuthz, "sync"}, 1, {}, ""},
      {{"policy", "prove", (scratch.path / "none.wasm").string(), "authz"}, 1, {}, "none.wasm"},

      // The text and C versions of the allow-list decide alike.
      {{"policy", "diff", kExamples + "wat/player_authz.wat", kExamples + "c/player_authz.c", "authz"}, 0,
       {"isAllowed: the same for every facts vector", "reason: the same for every facts vector",
        "policyVersion: the same for every facts vector", "equivalent"}},
      // The off-by-one token check differs exactly where age == TTL.
      {{"policy", "diff", kAuthz, offByOne, "authz"}, 1,
       {"difference 1: isAllowed, reason",
        "  facts \\{.*\"tokenAgeMilliseconds\":(-?\\d+),\"tokenTTLMilliseconds\":\\1,.*\\}",
        "  old   \\{\"isAllowed\":false,\"reason\":\"tokenExpired\",\"policyVersion\":3,\"source\":\"policy\"\\}",
        "  new   \\{\"isAllowed\":true,\"reason\":\"allowed\",\"policyVersion\":3,\"source\":\"policy\"\\}",
        "isAllowed: differs for some facts vectors", "policyVersion: the same for every facts vector",
        "different: 2 ways"}},
      // Two versions that differ only in their policy version.
      {{"policy", "diff", kAuthz, ORX_AUTHZ_V4_MODULE, "authz"}, 1,
       {"difference 1: policyVersion", "isAllowed: the same for every facts vector",
        "reason: the same for every facts vector", "policyVersion: differs for every facts vector",
        "different: 1 way"}},
      // --all-fields sees the emitted version too.
      {{"policy", "diff", kAuthz, ORX_AUTHZ_V4_MODULE, "authz", "--all-fields"}, 1,
       {"emitted\\[4\\]: differs for every facts vector", "emitted\\[0\\]: the same for every facts vector"}},
      {{"policy", "diff", kAuthz, kExamples + "c/player_authz.c", "authz", "--unroll", "1"}, 4, {}, ""},
      {{"policy", "diff", kAuthz, "authz"}, 2, {}, "authz"},

      // Coverage names what the selected cases leave unreached, with facts that reach it.
      {{"policy", "test", "--coverage", "--run", "^player_authz/(?!controller may not|admin-only mode refuses)",
        kAuthzManifest},
       0,
       {"coverage player_authz: no case reaches reason needsAdmin, as for facts \\{\"role\":2,.*\\}",
        "30 passed, 0 failed"}},
      {{"policy", "test", "--coverage", "--run", "^player_authz/(?!controller may not|admin-only mode refuses)", ranged},
       0,
       {"coverage player_authz: its cases reach every reason and decision the module can give", "30 passed, 0 failed"}},
      {{"policy", "test", "--coverage", "--run", "drift inside|drift at the|small drift ahead",
        (kRoot / "policies/sync_correction.manifest.json").string()},
       0,
       {"coverage sync_correction: no case reaches action seek, as for facts \\{.*\\}",
        "coverage sync_correction: no case reaches reason 1, as for facts \\{.*\\}",
        "coverage sync_correction: no case reaches reason 5, as for facts \\{.*\\}", "3 passed, 0 failed"}},
  };
  for (const auto& row : rows) {
    const Outcome outcome = run(row.arguments, "");
    std::string command;
    for (const auto& word : row.arguments) command += word + " ";
    EXPECT_EQ(outcome.status, row.status) << command << "\n" << outcome;
    for (const auto& pattern : row.lines) {
      const std::regex line("(?:^|\n)" + pattern + "(?:\n|$)");
      EXPECT_TRUE(std::regex_search(outcome.out, line)) << command << "\nno line " << pattern << " in\n" << outcome.out;
    }
    EXPECT_NE(outcome.err.find(row.err), std::string::npos) << command << "\n" << outcome;
  }
}

TEST(RavoOrxPolicyProof, BuildApprovesOnlyModulesProvedValidUnlessTheManifestSaysWhyNot) {
  const BuildTree tree;
  std::ofstream(tree.root / "policies/player_authz.wat", std::ios::binary) << authzWith(kVersion, kVersionZeroFor77);
  const Outcome refused = tree.build();
  EXPECT_EQ(refused.status, 1) << refused;
  EXPECT_NE(refused.err.find("ravo-orx policy build: player_authz: refuted: no record is refused with \"[4] policy "
                             "version {4} is outside 1…10000\": facts {"),
            std::string::npos)
      << refused;
  EXPECT_FALSE(fs::exists(tree.root / "artifacts")) << "a refused build wrote artifacts";

  // A loop of up to 127 turns before every answer: past the prover's unroll bound, so nothing is proved.
  const std::string spinning = replaced(
      authzWith("  (func $deny (param $command i32)",
                "  (func $spin (param $n i32) (local $i i32)\n"
                "    (block $done (loop $more\n"
                "      (br_if $done (i32.ge_u (local.get $i) (i32.and (local.get $n) (i32.const 127))))\n"
                "      (local.set $i (i32.add (local.get $i) (i32.const 1)))\n"
                "      (br $more))))\n\n"
                "  (func $deny (param $command i32)"),
      "    (drop (call $emit (i32.const 5201)", "    (call $spin (local.get $command))\n    (drop (call $emit (i32.const 5201)");
  std::ofstream(tree.root / "policies/player_authz.wat", std::ios::binary) << spinning;
  const Outcome unproved = tree.build();
  EXPECT_EQ(unproved.status, 1) << unproved;
  EXPECT_NE(unproved.err.find("ravo-orx policy build: player_authz: not proved: decide never traps: a loop may run more "
                              "than 64 iterations (the unroll bound)"),
            std::string::npos)
      << unproved;
  std::ofstream(tree.root / "policies/player_authz.wat", std::ios::binary) << authzWith(kVersion, kVersionZeroFor77);

  const auto manifestPath = tree.root / "policies/player_authz.manifest.json";
  std::string manifest = fileText(manifestPath);
  manifest.insert(manifest.rfind('}'), ",\"proof\": {\"skip\": \"\"}");
  std::ofstream(manifestPath, std::ios::binary) << manifest;
  const Outcome noReason = tree.build();
  EXPECT_EQ(noReason.status, 1) << noReason;
  EXPECT_NE(noReason.err.find("a skipped proof states its reason"), std::string::npos) << noReason;

  manifest.replace(manifest.find("\"skip\": \"\""), 10, "\"skip\": \"command 77 is reserved for a test of the fail-safe\"");
  std::ofstream(manifestPath, std::ios::binary) << manifest;
  const Outcome built = tree.build();
  EXPECT_EQ(built.status, 0) << built;
  EXPECT_TRUE(fs::exists(tree.root / "artifacts/player_authz.wasm"));
}

}  // namespace

}  // namespace ravo::orx
