// Tampered copies of the bundled artifacts are refused with the runtime's own texts: top-level
// evidence problems disable everything, per-module problems only that module.

#include <sys/stat.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <functional>

#include <nlohmann/json.hpp>

#include <ravo-orx/runtime/OrxEvidence.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>
#include <ravo-orx/runtime/RuntimeError.h>
#include "runtime/tests/ArtifactCopy.h"
#include "runtime/tests/WatAssembler.h"

namespace ravo::orx {

using namespace internal;

namespace {

namespace fs = std::filesystem;
using artifact_test::ArtifactCopy;
using artifact_test::Json;
using artifact_test::moduleRecord;

const std::string kNoModules = "ORX unavailable \u00B7 native safe mode";

TEST(OrxArtifactProvenance, BundledArtifactsVerifyAgainstTheBuildConstants) {
  OrxPolicyRuntime runtime(fs::path("artifacts"));
  EXPECT_FALSE(runtime.loadError());
  EXPECT_EQ(runtime.statusDescription(), "ORX active \u00B7 c3ea776c / 7155bd93 / 92624572");
}

TEST(OrxArtifactProvenance, TamperedCopiesAreRefusedWithTheRuntimesTexts) {
  struct Case {
    const char* name;
    std::function<void(const ArtifactCopy&)> tamper;
    std::string loadError;  // a prefix when it ends in "…"
    std::string status;
  };
  const Case cases[] = {
      {"flipped byte in a module", [](auto& copy) { copy.flipByte("sync_correction.wasm"); },
       "sync_correction: ORX artifact digest mismatch for sync_correction",
       "ORX partial \u00B7 authz c3ea776c / sync unavailable / cinema 92624572"},
      {"flipped byte in a package check", [](auto& copy) { copy.flipByte("cinema_admission.package-check.json"); },
       "cinema_admission: ORX package-check digest mismatch for cinema_admission",
       "ORX partial \u00B7 authz c3ea776c / sync 7155bd93 / cinema unavailable"},
      {"removed module record",
       [](auto& copy) { copy.editEvidence([](Json& e) { e["modules"].erase(0); }); },
       "player_authz: Missing passing package-check evidence for player_authz",
       "ORX partial \u00B7 authz unavailable / sync 7155bd93 / cinema 92624572"},
      {"failing package-check status",
       [](auto& copy) { copy.editEvidence([](Json& e) { moduleRecord(e, "player_authz")["packageCheckStatus"] = "fail"; }); },
       "player_authz: Missing passing package-check evidence for player_authz",
       "ORX partial \u00B7 authz unavailable / sync 7155bd93 / cinema 92624572"},
      {"two modules failing, joined in load order",
       [](auto& copy) {
         copy.editEvidence([](Json& e) {
           moduleRecord(e, "cinema_admission")["hostAbi"] = "0.12";
           moduleRecord(e, "player_authz")["orxAbi"] = "0.9";
         });
       },
       "player_authz: ORX source/package/compiler identity mismatch for player_authz; cinema_admission: ORX "
       "source/package/compiler identity mismatch for cinema_admission",
       "ORX partial \u00B7 authz unavailable / sync 7155bd93 / cinema unavailable"},
      {"module record with another compiler",
       [](auto& copy) { copy.editEvidence([](Json& e) { moduleRecord(e, "sync_correction")["compilerIdentity"] = "x"; }); },
       "sync_correction: ORX source/package/compiler identity mismatch for sync_correction",
       "ORX partial \u00B7 authz c3ea776c / sync unavailable / cinema 92624572"},
      {"module record with another source digest",
       [](auto& copy) {
         copy.editEvidence([](Json& e) { moduleRecord(e, "player_authz")["sourceSha256"] = std::string(64, '0'); });
       },
       "player_authz: ORX source/package/compiler identity mismatch for player_authz",
       "ORX partial \u00B7 authz unavailable / sync 7155bd93 / cinema 92624572"},
      {"module record with another manifest digest",
       [](auto& copy) {
         copy.editEvidence([](Json& e) { moduleRecord(e, "cinema_admission")["packageManifestSha256"] = std::string(64, 'f'); });
       },
       "cinema_admission: ORX source/package/compiler identity mismatch for cinema_admission",
       "ORX partial \u00B7 authz c3ea776c / sync 7155bd93 / cinema unavailable"},
      {"module file that is a device",
       [](auto& copy) {
         fs::remove(copy.path() / "sync_correction.wasm");
         fs::create_symlink("/dev/null", copy.path() / "sync_correction.wasm");
       },
       "sync_correction: could not read …", "ORX partial \u00B7 authz c3ea776c / sync unavailable / cinema 92624572"},
      {"module file that is a named pipe",
       [](auto& copy) {
         fs::remove(copy.path() / "sync_correction.wasm");
         ASSERT_EQ(::mkfifo((copy.path() / "sync_correction.wasm").c_str(), 0600), 0);
       },
       "sync_correction: could not read …", "ORX partial \u00B7 authz c3ea776c / sync unavailable / cinema 92624572"},
      {"recorded wasm digest not approved",
       [](auto& copy) {
         copy.editEvidence([](Json& e) { moduleRecord(e, "sync_correction")["wasmSha256"] = std::string(64, '0'); });
       },
       "sync_correction: ORX evidence is not approved by this Ravo build",
       "ORX partial \u00B7 authz c3ea776c / sync unavailable / cinema 92624572"},
      {"duplicated module record",
       [](auto& copy) { copy.editEvidence([](Json& e) { e["modules"].push_back(e["modules"][0]); }); },
       "ORX evidence contains duplicate module records", kNoModules},
      {"changed top-level compiler identity",
       [](auto& copy) { copy.editEvidence([](Json& e) { e["compilerIdentity"] = "unreviewed compiler"; }); },
       "ORX build provenance is not approved by this Ravo build", kNoModules},
      {"other profile",
       [](auto& copy) { copy.editEvidence([](Json& e) { e["profile"] = "mock-output-v012"; }); },
       "ORX build provenance is not approved by this Ravo build", kNoModules},
      {"other toolchain bundle",
       [](auto& copy) { copy.editEvidence([](Json& e) { e["toolchainBundleSha256"] = std::string(64, '0'); }); },
       "ORX build provenance is not approved by this Ravo build", kNoModules},
      {"other generator",
       [](auto& copy) { copy.editEvidence([](Json& e) { e["generatedBy"] = "make"; }); },
       "ORX build provenance is not approved by this Ravo build", kNoModules},
      {"non-string value",
       [](auto& copy) { copy.editEvidence([](Json& e) { e["profile"] = 11; }); },
       "evidence.profile: expected a string, found an integer", kNoModules},
      {"fractional number where a string belongs",
       [](auto& copy) { copy.editEvidence([](Json& e) { e["profile"] = 1.5; }); },
       "evidence.profile: expected a string, found a number", kNoModules},
      {"module list that is an object",
       [](auto& copy) { copy.editEvidence([](Json& e) { e["modules"] = Json{{"module", "player_authz"}}; }); },
       "evidence.modules: expected an array, found an object", kNoModules},
      {"module record that is a string",
       [](auto& copy) { copy.editEvidence([](Json& e) { e["modules"][1] = "sync_correction"; }); },
       "evidence.modules[1]: expected an object, found a string", kNoModules},
      {"listed key written twice",
       [](auto& copy) {
         std::ifstream in(copy.path() / "evidence.json");
         std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
         text.insert(text.find('{') + 1, "\"profile\": \"mock-output-v011\",");
         std::ofstream(copy.path() / "evidence.json") << text;
       },
       "evidence.profile: duplicate key", kNoModules},
      {"unknown keys of every JSON type are ignored",
       [](auto& copy) {
         copy.editEvidence([](Json& e) {
           e["note"] = nullptr;
           e["weight"] = -1.25e3;
           e["nested"] = Json{{"list", Json::array({1, -2.5, true, nullptr, Json::object()})}};
           e["modules"][0]["reviewedAt"] = 1700000000123;
         });
       },
       "", "ORX active \u00B7 c3ea776c / 7155bd93 / 92624572"},
      {"missing key in a module record",
       [](auto& copy) { copy.editEvidence([](Json& e) { e["modules"][2].erase("wasmSha256"); }); },
       "evidence.modules[2].wasmSha256: missing key", kNoModules},
      {"unreadable evidence", [](auto& copy) { std::ofstream(copy.path() / "evidence.json") << "{\"modules\": ["; },
       "malformed JSON: …", kNoModules},
      {"evidence followed by a NUL byte and more", [](auto& copy) { copy.append("evidence.json", std::string("\0junk", 5)); },
       "malformed JSON: …", kNoModules},
      {"missing evidence", [](auto& copy) { fs::remove(copy.path() / "evidence.json"); },
       "could not read …", kNoModules},
      {"extra records for other modules are ignored",
       [](auto& copy) {
         copy.editEvidence([](Json& e) {
           Json extra = e["modules"][0];
           extra["module"] = "future_module";
           e["modules"].push_back(extra);
         });
       },
       "", "ORX active \u00B7 c3ea776c / 7155bd93 / 92624572"},
  };
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  for (const auto& c : cases) {
    ArtifactCopy copy;
    c.tamper(copy);
    OrxPolicyRuntime runtime(copy.path());
    const std::string error = runtime.loadError().value_or("");
    if (c.loadError.ends_with("…")) {
      const auto prefix = c.loadError.substr(0, c.loadError.size() - std::string("…").size());
      EXPECT_EQ(error.substr(0, prefix.size()), prefix) << c.name;
    } else {
      EXPECT_EQ(error, c.loadError) << c.name;
    }
    EXPECT_EQ(runtime.statusDescription(), c.status) << c.name;
  }
  setOrxLogSink({});
}

// The module checks on their own, for records the runtime's top-level check would already refuse.
TEST(OrxArtifactProvenance, ModuleChecksNeedExactlyOneApprovedRecord) {
  ArtifactCopy copy;
  OrxEvidence evidence = OrxEvidence::decode(readTestFile(copy.path() / "evidence.json"));
  const OrxModuleEvidence authorization = evidence.modules.at(0);
  ASSERT_EQ(authorization.module, "player_authz");
  EXPECT_EQ(verifyModuleArtifacts("player_authz", copy.path(), evidence).digest.substr(0, 8), "c3ea776c");

  evidence.modules.push_back(authorization);
  auto refusal = [&](std::string_view name) {
    try {
      verifyModuleArtifacts(name, copy.path(), evidence);
    } catch (const RuntimeError& error) {
      return error.message;
    }
    return std::string("accepted");
  };
  EXPECT_EQ(refusal("player_authz"), "Missing passing package-check evidence for player_authz");

  // A complete record and files for a module this build approves nothing for.
  evidence.modules.back().module = "future_module";
  for (const char* suffix : {".wasm", ".package-check.json"}) {
    fs::copy_file(copy.path() / ("player_authz" + std::string(suffix)), copy.path() / ("future_module" + std::string(suffix)));
  }
  EXPECT_EQ(refusal("future_module"), "ORX source/package/compiler identity mismatch for future_module");
}

TEST(OrxArtifactProvenance, LogsOneLineForEachOutcome) {
  std::vector<std::string> lines;
  setOrxLogSink([&](OrxLogLevel level, std::string_view message) {
    lines.push_back((level == OrxLogLevel::error ? "error: " : "") + std::string(message));
  });
  {
    ArtifactCopy copy;
    OrxPolicyRuntime loaded(copy.path());
    copy.flipByte("player_authz.wasm");
    OrxPolicyRuntime partial(copy.path());
    copy.editEvidence([](Json& e) { e["profile"] = "other"; });
    OrxPolicyRuntime refused(copy.path());
  }
  setOrxLogSink({});
  EXPECT_EQ(lines, (std::vector<std::string>{
                       "Loaded digest-bound ORX authorization, sync and cinema admission modules",
                       "error: ORX module player_authz unavailable; fail-safe policy is active for it: ORX artifact "
                       "digest mismatch for player_authz",
                       "error: ORX runtime partially unavailable; fail-safe policy is active for: player_authz: ORX "
                       "artifact digest mismatch for player_authz",
                       "error: ORX runtime unavailable; fail-safe policy is active: ORX build provenance is not "
                       "approved by this Ravo build",
                   }));
}

TEST(OrxArtifactProvenance, SearchesTheWorkingDirectoryWhenNoDirectoryIsGiven) {
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  EXPECT_FALSE(OrxPolicyRuntime().loadError());  // tests run in the source tree, beside artifacts/
  const auto original = fs::current_path();
  const auto empty = fs::temp_directory_path() / ("orx-empty-" + std::to_string(::getpid()));
  fs::create_directories(empty);
  fs::current_path(empty);
  OrxPolicyRuntime nowhere;
  fs::current_path(original);
  fs::remove_all(empty);
  setOrxLogSink({});
  EXPECT_EQ(nowhere.loadError(), "Bundled ORX artifacts were not found");
  EXPECT_EQ(nowhere.statusDescription(), kNoModules);
}

}  // namespace

}  // namespace ravo::orx
