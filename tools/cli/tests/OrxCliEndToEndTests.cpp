// The built ravo-orx, driven like its users drive it: every subcommand with good and bad input, and
// exactly what it writes to standard output and standard error and the status it exits with.

#include <regex>

#include <ravo-orx/runtime/OrxDecisionKinds.h>

#include "tools/cli/tests/OrxCliToolRunner.h"

namespace ravo::orx {

namespace {

using namespace orx_cli_test;

TEST(RavoOrxTool, HelpVersionAndCommands) {
  const std::string toolHelp = run({"--help"}, "").out;
  ASSERT_TRUE(toolHelp.starts_with("usage: ravo-orx COMMAND [ARGUMENTS]\n")) << toolHelp;
  expectOutcomes({{{}, "", {"", toolHelp, 2}},
                  {{"-h"}, "", {toolHelp, "", 0}},
                  {{"--version"}, "", printed("ravo-orx 1.0.0")},
                  {{"version"}, "", printed("ravo-orx 1.0.0")},
                  {{"version", "x"}, "", misused("version", "unexpected argument \"x\"")},
                  {{"frob"}, "", {"", "ravo-orx: unknown command \"frob\" (see 'ravo-orx --help')\n", 2}},
                  {{"policy"}, "", misused("policy", "missing SUBCOMMAND")},
                  {{"policy", "frob"}, "", misused("policy", "unknown subcommand \"frob\"")}});
  for (const std::string command :
       {"canon", "digest", "evidence", "status", "decide", "log", "policy", "resolve", "shortlist", "scenario"}) {
    for (const std::string help : {"--help", "-h"}) {
      const auto outcome = run({command, help}, "");
      EXPECT_TRUE(outcome.out.starts_with("usage: ravo-orx " + command + " ") && outcome.status == 0) << outcome;
    }
    EXPECT_NE(toolHelp.find("\n  " + command + " "), std::string::npos) << command;
  }
  // Each help states the exit statuses once: a command's own, or the tool's.
  for (const std::string subcommand : {"check", "test", "eval", "bench", "build", "prove", "diff"}) {
    const auto outcome = run({"policy", subcommand, "-h"}, "");
    EXPECT_TRUE(outcome.out.starts_with("usage: ravo-orx policy " + subcommand + " ") && outcome.status == 0)
        << outcome;
    const auto statuses = outcome.out.find("Exit status:");
    EXPECT_TRUE(statuses != std::string::npos && outcome.out.find("Exit status:", statuses + 1) == std::string::npos)
        << outcome;
    EXPECT_FALSE(outcome.out.ends_with("\n\n")) << outcome;
  }
}

// The help of decide lists each kind's facts in argument order, as the decision kinds name them.
TEST(RavoOrxTool, DecideHelpListsEachKindsFactsInOrder) {
  const std::string help = std::regex_replace(run({"decide", "--help"}, "").out, std::regex(R"(\s+)"), " ");
  for (const auto& kind : kOrxDecisionKinds) {
    std::string line = " " + std::string(kind.name);
    for (const auto fact : kind.factNames) line += " " + std::string(fact);
    EXPECT_NE(help.find(line + " -> {"), std::string::npos) << line;
  }
}

TEST(RavoOrxTool, Canon) {
  const std::string evidence = fileText(kData + "evidence-allow.json");
  expectOutcomes({
      {{"canon"}, R"({ "b": [1, true], "a": "\u00e9" })", printed(R"({"a":"é","b":[1,true]})")},
      {{"canon", kData + "evidence-allow.json"}, "", printed(evidence)},
      {{"canon", "-"}, "[2,1]", printed("[2,1]")},
      {{"canon"}, "[1.5]", refused("orx.v051.parse_invalid: floating JSON numbers are not canonical ORX values")},
      {{"canon", "/nonexistent.json"}, "", refused("could not read /nonexistent.json: No such file or directory")},
      {{"canon", "--pretty"}, "", misused("canon", "unknown option --pretty")},
  });
}

TEST(RavoOrxTool, Digest) {
  // Cross-checked with Python's hashlib: SHA-256 of the tag, a zero byte and the canonical bytes.
  const std::string evidence = "sha256:6d85b17a4755c50ff650a7ae2337eb356227a8bf2a20b73c334ae66908ed73df";
  const std::string tag = "ORX_DECISION_EVIDENCE_V1";
  expectOutcomes({
      {{"digest", tag, kData + "evidence-allow.json"}, "", printed(evidence)},
      {{"digest", tag}, " " + fileText(kData + "evidence-allow.json") + "\n", printed(evidence)},
      {{"digest", "--raw"}, "abc", printed("sha256:ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad")},
      {{"digest", "ORX_GRANT_SET_V1"}, "[1,", refused("orx.v051.parse_invalid: unexpected end of JSON")},
      {{"digest"}, "", misused("digest", "missing TAG")},
      {{"digest", "ORX_GRANT_SET_V2"}, "",
       misused("digest", "unknown digest tag \"ORX_GRANT_SET_V2\"; the tags are ORX_CANONICAL_TYPED_INPUT_V1, "
                         "ORX_GRANT_SET_V1, ORX_DECISION_INTENT_V1, ORX_PACKAGE_IDENTITY_V1, ORX_POLICY_ARTIFACT_V1, "
                         "ORX_VERIFIED_ARTIFACT_V1, ORX_DECISION_EVIDENCE_V1, ORX_EFFECT_RECEIPT_V1")},
  });
}

TEST(RavoOrxTool, Evidence) {
  expectOutcomes({
      {{"evidence", kData + "evidence-allow.json"}, "",
       printed(R"({"digest":"sha256:6d85b17a4755c50ff650a7ae2337eb356227a8bf2a20b73c334ae66908ed73df",)"
               R"("decisionOutcome":"allow","trustLevel":"schemaOnly"})")},
      {{"evidence"}, fileText(kData + "evidence-deny.json"),
       printed(R"({"digest":"sha256:6eb5a542434c3d97c98de2103ff3c5751ad00feaf561af8387d1fe61b672112d",)"
               R"("decisionOutcome":"deny","trustLevel":"schemaOnly"})")},
      {{"evidence"}, fileText(kData + "evidence-allow.json") + "\n",
       refused("orx.v051.decision_evidence_noncanonical: DecisionEvidence bytes are not canonical")},
  });
}

TEST(RavoOrxTool, Status) {
  const Outcome bundled = run({"status"}, "");
  ASSERT_TRUE(bundled.out.starts_with("ORX active \u00B7 ")) << bundled;
  const std::string sync = bundled.out.substr(bundled.out.find(" / ") + 3, 8);
  const std::string cinema = bundled.out.substr(bundled.out.rfind(" / ") + 3, 8);

  // Copies of the artifacts with one byte changed: in a module, and in the evidence's toolchain digest.
  const Scratch scratch("ravo-orx-test-");
  const fs::path module = scratch.path / "module", evidence = scratch.path / "evidence";
  auto flip = [](const fs::path& directory, const std::string& file, std::size_t offset) {
    fs::copy(kRoot / "artifacts", directory);
    std::fstream stream(directory / file, std::ios::in | std::ios::out | std::ios::binary);
    const char byte = static_cast<char>(stream.seekg(static_cast<std::streamoff>(offset)).get());
    stream.seekp(static_cast<std::streamoff>(offset)).put(byte == '0' ? '1' : '0');
  };
  flip(module, "player_authz.wasm", 100);
  const std::string key = "\"toolchainBundleSha256\": \"";
  flip(evidence, "evidence.json", fileText(kRoot / "artifacts/evidence.json").find(key) + key.size());

  const std::string unavailable = "ORX unavailable \u00B7 native safe mode\n";
  expectOutcomes({
      {{"status", "artifacts"}, "", bundled},
      {{"status", module.string()}, "",
       {"ORX partial \u00B7 authz unavailable / sync " + sync + " / cinema " + cinema +
            "\nplayer_authz: ORX artifact digest mismatch for player_authz\n", "", 1}},
      {{"status", evidence.string()}, "",
       {unavailable + "ORX build provenance is not approved by this Ravo build\n", "", 1}},
      {{"status", "/nonexistent"}, "",
       {unavailable + "could not read /nonexistent/evidence.json: No such file or directory\n", "", 1}},
      {{"status", "a", "b"}, "", misused("status", "unexpected argument \"b\"")},
  });
  // Without a directory the search starts from the working directory; the build tree holds none.
  expectOutcomes({{{"status"}, "", {unavailable + "Bundled ORX artifacts were not found\n", "", 1}}}, scratch.path);
}

const std::string kPlaysFacts =
    R"({"role": 2, "command": 6, "grantFlags": 63, "tokenAgeMilliseconds": 1000, "tokenTTLMilliseconds": 900000,)"
    R"( "rateUsed": 0, "rateLimit": 600, "controlMode": 1})";

TEST(RavoOrxTool, Decide) {
  const Words plays{"decide", "authz", "2", "6", "63", "1000", "900000", "0", "600", "1"};
  auto with = [](Words words, const Words& extra) {
    words.insert(words.end(), extra.begin(), extra.end());
    return words;
  };
  const std::string factRange = " must be an integer from -2147483648 to 2147483647, got ";
  const auto withRole = [](const std::string& role) {
    return std::string(R"({"role": )") + role + kPlaysFacts.substr(kPlaysFacts.find(','));
  };
  expectOutcomes({
      {plays, "", printed(R"({"isAllowed":true,"reason":"allowed","policyVersion":3,"source":"policy"})")},
      {{"decide", "sync", "501", "20", "5", "10000", "100", "0", "500", "50"}, "",
       printed(R"({"action":"seek","rateX1000":1000,"correctionMilliseconds":-501,"reason":4,"source":"policy"})")},
      {{"decide", "--artifacts=artifacts", "cinema", "2500", "2500", "5000", "0", "0", "0", "20", "0", "0", "50", "20",
        "5000", "3"}, "",
       printed(R"({"route":"sparseAnchorResearch","sparseAnchorIntervalFrames":22,)"
               R"("safeBudgetTenthsMilliseconds":272,"reason":"sparseResearch","source":"policy"})")},
      {with(plays, {"--artifacts", "/nonexistent"}), "",
       {R"({"isAllowed":false,"reason":"runtimeUnavailable","policyVersion":0,"source":"moduleUnavailable"})"
        "\n",
        "ravo-orx decide: warning: the policy artifacts did not load: could not read /nonexistent/evidence.json: No "
        "such file or directory\n",
        3}},
      {{"decide", "--facts", "-", "authz"}, kPlaysFacts,
       printed(R"({"isAllowed":true,"reason":"allowed","policyVersion":3,"source":"policy"})")},
      {{"decide", "authz", "--facts", "-"}, R"({"role": 2})", misused("decide", "missing fact \"command\"")},
      {{"decide", "authz", "--facts", "-"}, R"({"role": 2, "rolee": 1})",
       misused("decide", "unknown fact \"rolee\" for authz")},
      {{"decide", "authz", "--facts", "-"}, R"({"role": 2.5})",
       misused("decide", "fact \"role\"" + factRange + "2.5")},
      // Unsigned numbers past the signed 64-bit range are refused, never wrapped to a negative fact.
      {{"decide", "--facts", "-", "authz"}, withRole("18446744073709551615"),
       misused("decide", "fact \"role\"" + factRange + "18446744073709551615")},
      {{"decide", "--facts", "-", "authz"}, withRole("2147483648"),
       misused("decide", "fact \"role\"" + factRange + "2147483648")},
      {{"decide", "authz", "--facts", "-"}, "[1]", refused("facts: expected a JSON object keyed by the fact names")},
      {{"decide", "authz", "--facts", "-", "1"}, "", misused("decide", "unexpected argument \"1\"")},
      {{"decide", "authz", "1", "2", "3"}, "", misused("decide", "authz takes 8 facts, got 3")},
      {with(plays, {"9"}), "", misused("decide", "authz takes 8 facts, got 9")},
      {{"decide", "sync", "1.5"}, "", misused("decide", "fact 1" + factRange + "\"1.5\"")},
      {{"decide", "sync", "0", "2147483648"}, "", misused("decide", "fact 2" + factRange + "\"2147483648\"")},
      {{"decide", "play"}, "", misused("decide", "unknown decision \"play\"; expected authz, sync or cinema")},
      {with(plays, {"--artifacts"}), "", misused("decide", "--artifacts needs a value")},
  });
}

// A facts document is held to its shape as it is read: a number outside 32 bits is refused as written
// (never wrapped, whatever its size), and a name or a value that cannot be a fact is refused before
// anything after it is read. What a refusal quotes of the document is shown printable and cut.
TEST(RavoOrxTool, FactsAreRefusedAsTheyAreReadAndNeverWrapped) {
  const std::string factRange = "fact \"role\" must be an integer from -2147483648 to 2147483647, got ";
  const auto withRole = [](const std::string& role) {
    return std::string(R"({"role": )") + role + kPlaysFacts.substr(kPlaysFacts.find(','));
  };
  std::string accents;
  for (int i = 0; i < 40; ++i) accents += "\u00E9";  // two bytes each
  const std::string cutAccents = accents.substr(0, 64) + "\u2026";
  expectOutcomes({
      {{"decide", "authz", "--facts", "-"}, withRole("9223372036854775809"),
       misused("decide", factRange + "9223372036854775809")},
      {{"decide", "authz", "--facts", "-"}, withRole("18446744073709551616"),
       misused("decide", factRange + "18446744073709551616")},
      {{"decide", "authz", "--facts", "-"}, withRole("-2147483649"), misused("decide", factRange + "-2147483649")},
      {{"decide", "authz", "--facts", "-"}, withRole("-9223372036854775809"),
       misused("decide", factRange + "-9223372036854775809")},
      {{"decide", "authz", "--facts", "-"}, withRole("1e3"), misused("decide", factRange + "1e3")},
      {{"decide", "authz", "--facts", "-"}, withRole("\"2\""), misused("decide", factRange + "the string \"2\"")},
      {{"decide", "authz", "--facts", "-"}, withRole("[2, 3]"), misused("decide", factRange + "an array")},
      {{"decide", "authz", "--facts", "-"}, withRole("{\"a\": 2}"), misused("decide", factRange + "an object")},
      {{"decide", "authz", "--facts", "-"}, withRole("null"), misused("decide", factRange + "null")},
      {{"decide", "authz", "--facts", "-"}, R"({"junk": ["", "", ""], "role": 2})",
       misused("decide", "unknown fact \"junk\" for authz")},
      {{"decide", "authz", "--facts", "-"}, R"({"\u001b[2J": 1})", misused("decide", "unknown fact \"\\x1B[2J\" for authz")},
      {{"decide", "authz", "--facts", "-"}, "{\"" + accents + "\": 1}",
       misused("decide", "unknown fact \"" + cutAccents + "\" for authz")},
      {{"decide", "authz", "--facts", "-"}, kPlaysFacts + std::string("\0x", 2),
       refused("malformed JSON: unexpected NUL byte at offset " + std::to_string(kPlaysFacts.size()) +
               "; expected end of input")},
      {{"decide", "authz", "--facts", "-"},
       R"({"role": -2147483648, "command": 6, "grantFlags": 63, "tokenAgeMilliseconds": 1000, )"
       R"("tokenTTLMilliseconds": 2147483647, "rateUsed": 0, "rateLimit": 600, "controlMode": 1})",
       printed(R"({"isAllowed":false,"reason":"unpaired","policyVersion":3,"source":"policy"})")},
      {{"decide", "sync", "0", "-2147483649"}, "",
       misused("decide", "fact 2 must be an integer from -2147483648 to 2147483647, got \"-2147483649\"")},
      {{"decide", "sync", "99999999999999999999"}, "",
       misused("decide", "fact 1 must be an integer from -2147483648 to 2147483647, got \"99999999999999999999\"")},
      // A word is echoed as the one-line error shows every text: control bytes escaped.
      {{"decide", "sync", "\x1B[2J"}, "",
       misused("decide", "fact 1 must be an integer from -2147483648 to 2147483647, got \"\\x1B[2J\"")},
      // A facts object is under 1 KiB: past 64 KiB it is refused before it is read.
      {{"decide", "authz", "--facts", "-"}, kPlaysFacts + std::string(65536, ' '),
       refused("could not read standard input: file of " + std::to_string(kPlaysFacts.size() + 65536) +
               " bytes exceeds the limit of 65536")},
  });
}

// A file name is shown printable wherever a message names it: a carriage return, a line feed or an
// escape byte in it cannot rewrite the line or drive the terminal.
TEST(RavoOrxTool, FileNamesInMessagesShowControlBytesEscaped) {
  const Scratch scratch("ravo-orx-names-");
  const std::string odd = "odd\r\x1B[2Jname\n", shown = "odd\\r\\x1B[2Jname\\n";
  fs::create_directories(scratch.path / odd);
  std::ofstream(scratch.path / odd / "facts") << "[1]\n";
  std::ofstream(scratch.path / odd / "player_authz.manifest.json") << "{}";
  const std::string directory = (scratch.path / shown).string();
  // A case named with an escape sequence, failing: its FAIL line shows the name escaped.
  const fs::path cases = scratch.path / "cases";
  fs::create_directories(cases);
  fs::copy(kRoot / "policies/player_authz.wat", cases);
  std::string manifest = fileText(kRoot / "policies/player_authz.manifest.json");
  const std::string allowed = R"("controller main-screen command is allowed", "facts": [2, 6, 63, 1000, 900000, 0, 600, 1], "emits": [5201, 1, 6, 0, 3])";
  manifest.replace(manifest.find(allowed), allowed.size(),
                   R"("\u001b[2J", "facts": [2, 6, 63, 1000, 900000, 0, 600, 1], "emits": [5201, 1, 6, 0, 4])");
  std::ofstream(cases / "player_authz.manifest.json") << manifest;
  expectOutcomes({
      {{"canon", (scratch.path / odd / "gone.json").string()}, "",
       refused("could not read " + directory + "/gone.json: No such file or directory")},
      {{"decide", "authz", "--facts-lines", (scratch.path / odd / "facts").string()}, "",
       refused(directory + "/facts line 1: facts: expected a JSON object keyed by the fact names")},
      {{"policy", "check", (scratch.path / odd / "m.wasm").string()}, "",
       refused("policy check", "could not read " + directory + "/m.wasm: No such file or directory")},
      {{"policy", "test", (scratch.path / odd).string()}, "",
       {"FAIL player_authz: " + directory + "/player_authz.manifest.json: missing key \"module\"\n0 passed, 1 failed\n",
        "", 1}},
      {{"policy", "test", "--run", "\x1B", cases.string()}, "",
       {"FAIL player_authz \"\\x1B[2J\": expected [5201, 1, 6, 0, 4], emitted [5201, 1, 6, 0, 3]\n0 passed, 1 failed\n",
        "", 1}},
  });
}

TEST(RavoOrxTool, Resolve) {
  const std::string pause = R"("actionID":"ravo.player.pause","arguments":{}})";
  const std::string volume =
      R"("actionID":"ravo.player.volume.set","arguments":{"level":{"kind":"number","number":0.4}}})";
  const std::string drafting = R"("voiceRoute":{"kind":"aiDrafting"}})";
  expectOutcomes({
      {{"resolve", "  ПАУЗА "}, "",
       printed(R"({"resolution":{"kind":"exact",)" + pause + R"(,"voiceRoute":{"kind":"action",)" + pause + "}")},
      {{"resolve", "громкость 40%"}, "",
       printed(R"({"resolution":{"kind":"exact",)" + volume + R"(,"voiceRoute":{"kind":"action",)" + volume + "}")},
      {{"resolve", "открой музыку"}, "",
       printed(R"({"resolution":{"kind":"exact","actionID":"ravo.ui.music.open","arguments":{}},)" + drafting)},
      {{"resolve", "pause and open music"}, "",
       printed(R"({"resolution":{"kind":"choices","actionIDs":["ravo.player.pause","ravo.ui.music.open"]},)" +
               drafting)},
      {{"resolve", "--", "--help"}, "", printed(R"({"resolution":{"kind":"none"},)" + drafting)},
      {{"resolve"}, "", misused("resolve", "missing TEXT")},
      {{"resolve", "open", "music"}, "", misused("resolve", "unexpected argument \"music\"")},
  });
}

TEST(RavoOrxTool, Shortlist) {
  expectOutcomes({
      {{"shortlist", "pause", "--limit", "3"}, "",
       printed(R"(["ravo.player.pause","ravo.player.next","ravo.player.previous"])")},
      {{"shortlist", "--limit=1", "громкость 50"}, "", printed(R"(["ravo.player.volume.set"])")},
      {{"shortlist", ""}, "",
       printed(R"(["ravo.player.next","ravo.player.pause","ravo.player.previous","ravo.player.resume",)"
               R"("ravo.player.volume.set","ravo.ui.home.open","ravo.ui.kolto.open","ravo.ui.music.open",)"
               R"("ravo.ui.pixmor.open","ravo.ui.video.open"])")},
      {{"shortlist", "pause", "--limit", "0"}, "",
       misused("shortlist", "--limit must be an integer from 1 to 24, got \"0\"")},
      {{"shortlist", "--limit", "2"}, "", misused("shortlist", "missing TEXT")},
  });
}

TEST(RavoOrxTool, Scenario) {
  const Scratch scratch("ravo-orx-test-");
  const fs::path forged = scratch.path / "forged.json";
  std::string revision = fileText(kData + "revision-1.json");
  std::ofstream(forged) << revision.replace(revision.find("\"0cb4"), 5, "\"1cb4");
  auto diff = [](char to, bool changed, const std::string& addedNodes, bool digestChanged = false) {
    const std::string flag = changed ? "true" : "false";
    const std::string digestFlag = changed || digestChanged ? "true" : "false";
    return printed(std::string(R"({"fromRevisionID":"00000000-0000-0000-0000-0000000000A1",)") +
                   R"("toRevisionID":"00000000-0000-0000-0000-0000000000A)" + to + R"(","titleChanged":)" + flag +
                   R"(,"lifecycleChanged":false,"activationRequestChanged":false,"graphDigestChanged":)" + digestFlag +
                   R"(,"addedNodes":[)" + addedNodes + R"(],"removedNodes":[],"changedNodeVersions":[],)" +
                   R"("addedCapabilities":[],"removedCapabilities":[],"edgeCountDelta":0})");
  };
  const std::string forgedDigest = ": RavoScenarioRevision.graphDigest does not match the draft's graph\n";
  expectOutcomes({
      {{"scenario", "validate", kData + "draft.json"}, "", printed("[]")},
      {{"scenario", "validate", "-"}, fileText(kData + "draft-invalid.json"),
       {"[\"missingCapability(ravo.audio.volume)\",\"missingInputKey\",\"cycleDetected\"]\n", "", 1}},
      {{"scenario", "validate"}, "[]", refused("RavoScenarioDraft: expected an object, found an array")},
      // Cross-checked with Python: SHA-256 of json.dumps(graph, sort_keys=True, separators=(",", ":")).
      {{"scenario", "digest", kData + "graph.json"}, "",
       printed("0cb48448d34498907d9b93a2d43c6da3a73bd1c400b5cd2db402160a26b68ff7")},
      {{"scenario", "digest", kData + "draft.json"}, "", refused("RavoScenarioGraph.nodes: missing key")},
      {{"scenario", "diff", kData + "revision-1.json", kData + "revision-2.json"}, "",
       diff('2', true, R"({"nodeType":"ravo.trigger.manual","nodeVersion":"1.0.0","stableTargetIDs":[]})")},
      {{"scenario", "diff", kData + "revision-1.json", kData + "revision-1.json"}, "", diff('1', false, "")},
      // A stored digest that differs from the computed one is used as it stands, with a warning.
      {{"scenario", "diff", kData + "revision-1.json", forged.string()}, "",
       {diff('1', false, "", true).out, "ravo-orx scenario: warning: " + forged.string() + forgedDigest, 0}},
      {{"scenario", "validate", kData + "revision-1.json"}, "", printed("[]")},
      {{"scenario", "validate"}, fileText(forged), {"[]\n", "ravo-orx scenario: warning: standard input" + forgedDigest, 0}},
      {{"scenario", "validate", "-"}, fileText(forged),
       {"[]\n", "ravo-orx scenario: warning: standard input" + forgedDigest, 0}},
      {{"scenario", "diff", kData + "revision-1.json"}, "", misused("scenario", "missing TO")},
      {{"scenario", "merge"}, "",
       misused("scenario", "unknown scenario command \"merge\"; expected validate, digest or diff")},
  });
}

// A document is read only up to 256 MiB: a stream that never ends and a regular file past the limit
// (refused from its size, before a byte is read) both give one line and status 1. Raw digests stream and
// have no limit.
TEST(RavoOrxTool, DocumentsPastTheInputLimitAreRefused) {
  constexpr std::uintmax_t kLimit = std::uintmax_t{256} << 20;
  const Scratch scratch("ravo-orx-input-limit-");
  const std::string atLimit = (scratch.path / "at-limit.json").string();
  const std::string pastLimit = (scratch.path / "past-limit.json").string();
  std::ofstream(atLimit).close();
  std::ofstream(pastLimit).close();
  fs::resize_file(atLimit, kLimit);  // sparse: zero bytes that cost no disk
  fs::resize_file(pastLimit, kLimit + 1);
  // A named file is sized before it is read; a stream is cut one byte past the limit.
  const auto tooLarge = [](const std::string& name) {
    return refused("could not read " + name + ": file of 268435457 bytes exceeds the limit of 268435456");
  };
  const Outcome endless = refused("could not read standard input: input exceeds the limit of 268435456 bytes");
  expectOutcomes({
      {{"canon", "/dev/zero"}, "", refused("could not read /dev/zero: not a regular file")},
      {{"digest", "--raw", "/dev/zero"}, "", refused("could not read /dev/zero: not a regular file")},
      {{"canon", pastLimit}, "", tooLarge(pastLimit)},
      {{"digest", "ORX_GRANT_SET_V1", pastLimit}, "", tooLarge(pastLimit)},
      {{"scenario", "digest", pastLimit}, "", tooLarge(pastLimit)},
      {{"canon", atLimit}, "", refused("orx.v051.parse_invalid: unsupported JSON value")},
      {{"digest", "--raw", pastLimit}, "",
       printed("sha256:da6ce8755151acd05195db67ebce3ee0fb5f4012e71e821cc5750f3304eaf41e")},
  });
  EXPECT_EQ(runWithInput({"canon"}, "/dev/zero"), endless);
  EXPECT_EQ(runWithInput({"scenario", "validate", "-"}, "/dev/zero"), endless);
}

// A result that cannot be written is a failure of every subcommand, help included.
TEST(RavoOrxTool, AFailedWriteIsReportedAndExitsOne) {
  const Outcome full = refused("ravo-orx: could not write standard output: No space left on device");
  const std::vector<std::pair<Words, std::string>> commands = {
      {{"--help"}, ""},
      {{"canon", "--help"}, ""},
      {{"canon"}, R"({"a":1})"},
      {{"digest", "ORX_DECISION_EVIDENCE_V1", kData + "evidence-allow.json"}, ""},
      {{"evidence", kData + "evidence-allow.json"}, ""},
      {{"status"}, ""},
      {{"decide", "sync", "501", "20", "5", "10000", "100", "0", "500", "50"}, ""},
      {{"resolve", "pause"}, ""},
      {{"shortlist", "pause"}, ""},
      {{"scenario", "validate", kData + "draft.json"}, ""},
      {{"policy", "test"}, ""},
      {{"--version"}, ""},
  };
  for (const auto& [arguments, input] : commands) {
    EXPECT_EQ(run(arguments, input, kRoot, "/dev/full"), full) << arguments.front();
  }
}

}  // namespace

}  // namespace ravo::orx
