// Every file the tools read, given as a hostile document, an oversized or endless file, a FIFO or a
// link to /dev/zero, and a policy run past its caps: each is refused with its own text within a
// ceiling of time and memory. Unless a row says otherwise the ceiling is one second and 100 MB, for
// inputs of up to 10 MB (the tool's own footprint included, well under 20 MB).

#include <gtest/gtest.h>
#include <malloc.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxPolicyManifest.h>
#include "limits/HostileInputs.h"
#include "runtime/tests/SanitizerSlowdown.h"
#include "runtime/tests/ArtifactCopy.h"
#include "tools/cli/tests/OrxCliToolRunner.h"

namespace ravo::orx {

namespace {

using namespace orx_cli_test;
using artifact_test::ArtifactCopy;
using hostile_inputs::emptyStrings;

struct Ceiling {
  double seconds = 1.0;
  long megabytes = 100;
};

const std::string kManifest = fileText(kRoot / "policies/player_authz.manifest.json");

// The bundled authorization manifest with its cases replaced by `count` copies of its first, named
// apart: ("case 0", "case 1", …).
std::string manifestWithCases(std::size_t count) {
  const auto cases = kManifest.find("\"cases\": [") + 10;
  std::string text = kManifest.substr(0, cases);
  for (std::size_t i = 0; i < count; ++i) {
    text += std::string(i ? "," : "") + "\n{\"case\": \"case " + std::to_string(i) +
            "\", \"facts\": [2, 6, 63, 1000, 900000, 0, 600, 1], \"emits\": [5201, 1, 6, 0, 3]}";
  }
  return text + "]}\n";
}

void writeFile(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

// The files of the rows, in a copy of the artifacts: the replacements an attacker can make, oversized
// files (sparse, so they cost no disk) and hostile documents.
struct Files {
  Files() {
    copy.makeFifo("fifo");
    copy.makeDeviceLink("zero");
    copy.makeSparse("256MiB.wasm", 256u << 20);
    copy.makeSparse("oversized.manifest.json", kOrxPolicyManifestByteLimit + 1);
    writeFile(at("empty"), "");
    writeFile(at("strings.json"), "{\"role\":" + emptyStrings(3'000'000) + "}");
    writeFile(at("nested.manifest.json"), hostile_inputs::nestedArrays(2'000'000));
    writeFile(at("nul.manifest.json"), kManifest + std::string("\0junk", 5));
    std::filesystem::create_directories(at("many"));
    writeFile(at("many/player_authz.manifest.json"), manifestWithCases(kOrxPolicyManifestCaseLimit + 1));
  }
  std::string at(const std::string& name) const { return (copy.path() / name).string(); }

  ArtifactCopy copy;
};

const std::string kModule = "artifacts/player_authz.wasm";
const Words kPlays{"2", "6", "63", "1000", "900000", "0", "600", "1"};

Words with(Words words, const Words& extra) {
  words.insert(words.end(), extra.begin(), extra.end());
  return words;
}

TEST(ToolInputLimits, EveryFileTheToolsReadIsRefusedWithinItsCeiling) {
  const Files files;
  struct Row {
    const char* name;
    Words arguments;
    std::string input;  // standard input: a file's path
    Outcome expected;
    Ceiling ceiling = {};
  };
  const auto readError = [](const std::string& command, const std::string& file, const std::string& reason) {
    return refused(command, "could not read " + file + ": " + reason);
  };
  const std::string notRegular = "not a regular file";
  const std::string pastFactsFile = "file of " + std::to_string(fs::file_size(files.at("strings.json"))) +
                                    " bytes exceeds the limit of 65536";
  const std::string pastFacts = "input exceeds the limit of 65536 bytes";
  const std::string pastModule = "input exceeds the limit of 4194304 bytes";
  const std::string eval = "policy eval", check = "policy check";
  const std::vector<Row> rows = {
      // Facts: 64 KiB, checked before reading; a stream is cut one byte past it.
      {"3 million strings as a facts file (9 MB)", {"policy", "eval", kModule, "authz", "--facts", files.at("strings.json")},
       files.at("empty"), readError(eval, files.at("strings.json"), pastFactsFile)},
      {"3 million strings as facts on standard input", {"policy", "eval", kModule, "authz", "--facts", "-"},
       files.at("strings.json"), readError(eval, "standard input", pastFactsFile)},
      {"/dev/zero as facts on standard input", {"decide", "authz", "--facts", "-"}, "/dev/zero",
       refused("could not read standard input: " + pastFacts)},
      {"/dev/zero as facts lines on standard input", {"decide", "authz", "--facts-lines", "-"}, "/dev/zero",
       refused("could not read standard input: line 1 is longer than 65536 bytes")},
      {"a FIFO as facts", {"policy", "eval", kModule, "authz", "--facts", files.at("fifo")}, files.at("empty"),
       readError(eval, files.at("fifo"), notRegular)},
      {"a link to /dev/zero as facts", {"policy", "eval", kModule, "authz", "--facts", files.at("zero")},
       files.at("empty"), readError(eval, files.at("zero"), notRegular)},
      // Modules: the module host's 4 MiB, checked before reading.
      {"a module of 256 MiB to check", {"policy", "check", files.at("256MiB.wasm")}, files.at("empty"),
       readError(check, files.at("256MiB.wasm"), "file of 268435456 bytes exceeds the limit of 4194304")},
      {"a module of 256 MiB to evaluate", with({"policy", "eval", files.at("256MiB.wasm"), "authz"}, kPlays),
       files.at("empty"), readError(eval, files.at("256MiB.wasm"), "file of 268435456 bytes exceeds the limit of 4194304")},
      {"a module of 256 MiB to time", with({"policy", "bench", files.at("256MiB.wasm"), "authz"}, kPlays),
       files.at("empty"),
       readError("policy bench", files.at("256MiB.wasm"), "file of 268435456 bytes exceeds the limit of 4194304")},
      {"a module of 256 MiB on standard input", {"policy", "check", "-"}, files.at("256MiB.wasm"),
       readError(check, "standard input", "file of 268435456 bytes exceeds the limit of 4194304")},
      {"/dev/zero as a module on standard input", {"policy", "check", "-"}, "/dev/zero",
       readError(check, "standard input", pastModule)},
      {"a FIFO as a module", {"policy", "check", files.at("fifo")}, files.at("empty"),
       readError(check, files.at("fifo"), notRegular)},
      {"a link to /dev/zero as a module", {"policy", "check", files.at("zero")}, files.at("empty"),
       readError(check, files.at("zero"), notRegular)},
      {"a link to /dev/zero as a module to replay against",
       {"log", "replay", files.at("empty"), "--against", files.at("zero"), "authz"}, files.at("empty"),
       refused("could not read " + files.at("zero") + ": " + notRegular)},
      // Manifests: 4 MiB, checked before reading, nothing after the value, and held to the schema as
      // they are read: nested arrays are refused at the first, where the manifest's object belongs.
      {"2 million nested arrays as a manifest to check", {"policy", "check", kModule, files.at("nested.manifest.json")},
       files.at("empty"), refused(check, files.at("nested.manifest.json") + ": expected an object")},
      {"2 million nested arrays as a manifest to test", {"policy", "test", files.at("nested.manifest.json")},
       files.at("empty"),
       {"FAIL nested: " + files.at("nested.manifest.json") + ": expected an object\n0 passed, 1 failed\n", "", 1}},
      {"NUL and junk after a manifest", {"policy", "check", kModule, "-"}, files.at("nul.manifest.json"),
       refused(check, "standard input: malformed JSON: unexpected NUL byte at offset " +
                          std::to_string(kManifest.size()) + "; expected end of input")},
      {"a manifest past 4 MiB", {"policy", "test", files.at("oversized.manifest.json")}, files.at("empty"),
       {"FAIL oversized: could not read " + files.at("oversized.manifest.json") +
        ": file of 4194305 bytes exceeds the limit of 4194304\n0 passed, 1 failed\n", "", 1}},
      {"/dev/zero as a manifest on standard input", {"policy", "check", kModule, "-"}, "/dev/zero",
       readError(check, "standard input", pastModule)},
      {"a FIFO as a manifest", {"policy", "check", kModule, files.at("fifo")}, files.at("empty"),
       readError(check, files.at("fifo"), notRegular)},
      {"a link to /dev/zero as a manifest", {"policy", "check", kModule, files.at("zero")}, files.at("empty"),
       readError(check, files.at("zero"), notRegular)},
      {"a link to /dev/zero as a manifest to test", {"policy", "test", files.at("zero")}, files.at("empty"),
       {"FAIL zero: could not read " + files.at("zero") + ": " + notRegular + "\n0 passed, 1 failed\n", "", 1}},
      // Runs: a manifest past the case limit is refused as it is read, before any case runs.
      {"a policy test over the case limit", {"policy", "test", files.at("many")}, files.at("empty"),
       {"FAIL player_authz: " + files.at("many/player_authz.manifest.json") +
        ": \"cases\": more than 10000 cases, the most a manifest holds\n0 passed, 1 failed\n", "", 1}},
  };
  for (const auto& row : rows) {
    Cost cost;
    EXPECT_EQ(runWithInput(row.arguments, row.input, kRoot, {}, &cost), row.expected) << row.name;
    // Sanitized builds run several times slower and hold shadow memory beside every allocation.
    EXPECT_LT(cost.seconds, row.ceiling.seconds * kSanitizerSlowdown) << row.name;
    EXPECT_LT(cost.peakMegabytes, row.ceiling.megabytes * (kSanitizerSlowdown == 1 ? 1 : 4)) << row.name;
  }
}

// The kernel's count, in kilobytes, of one line of /proc/self/status ("VmRSS:", "VmHWM:").
long statusKilobytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(field)) return std::stol(line.substr(field.size()));
  }
  return 0;
}

// The time `work` took and the most memory it added to what the process held before: the allocator
// first gives back what it holds free (which `work` could otherwise reuse unseen), and the kernel's
// high-water mark of the process is reset.
Cost costOf(const std::function<void()>& work) {
  ::malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";
  const long before = statusKilobytes("VmRSS:");
  const auto start = std::chrono::steady_clock::now();
  work();
  return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
          (statusKilobytes("VmHWM:") - before) / 1024};
}

// The manifest reader alone, on documents of up to 10 MB (larger than any file it is given, which
// is at most 4 MiB): what the schema refuses is refused as it is read, before anything of it is built.
TEST(ToolInputLimits, TheManifestReaderRefusesWhatItWouldNotKeepBeforeBuildingIt) {
  struct Row {
    const char* name;
    std::string text;
    std::string expected;
    Ceiling ceiling = {};
  };
  const std::string strings = emptyStrings(3'000'000);
  const std::string facts = "\"facts\": [\"role\", ";
  std::string inFacts = kManifest;
  inFacts.replace(inFacts.find(facts), facts.size(), "\"facts\": [" + strings.substr(1, strings.size() - 2) + ", \"role\", ");
  const std::string firstCase = "{\"case\": \"controller main-screen command is allowed\", \"facts\": [";
  std::string inCase = kManifest;
  inCase.replace(inCase.find(firstCase) + firstCase.size() - 1, 1, "[" + strings + ", ");
  const std::vector<Row> rows = {
      {"3 million strings under an unknown key (9 MB)", "{\"junk\": " + strings + "}",
       "m: unknown key \"junk\" (the schema is docs/POLICY-MANIFEST.md)"},
      {"3 million strings where a string belongs", "{\"module\": " + strings + "}", "m: \"module\": expected a string"},
      {"3 million strings among the fact names", inFacts,
       "m: \"facts\": more than 100 items, the most a list of a manifest holds"},
      {"3 million strings as a case's facts", inCase,
       "m: \"cases\"[0]: \"facts\"[0]: expected an integer from -2147483648 to 2147483647"},
      {"2 million nested arrays", hostile_inputs::nestedArrays(2'000'000), "m: expected an object"},
      {"2 million nested arrays where the cases belong", "{\"cases\": " + hostile_inputs::nestedArrays(2'000'000) + "}",
       "m: \"cases\"[0]: expected an object"},
      {"NUL and junk after the value", kManifest + std::string("\0junk", 5),
       "m: malformed JSON: unexpected NUL byte at offset " + std::to_string(kManifest.size()) + "; expected end of input"},
      {"10,001 cases", manifestWithCases(kOrxPolicyManifestCaseLimit + 1),
       "m: \"cases\": more than 10000 cases, the most a manifest holds"},
  };
  for (const auto& row : rows) {
    std::string refusal = "accepted";
    const Cost cost = costOf([&] {
      try {
        OrxPolicyManifest::decode(std::span(reinterpret_cast<const std::uint8_t*>(row.text.data()), row.text.size()),
                                  "m");
      } catch (const std::exception& error) {
        refusal = error.what();
      }
    });
    EXPECT_EQ(refusal, row.expected) << row.name;
    // Sanitized builds run several times slower and hold shadow memory beside every allocation.
    EXPECT_LT(cost.seconds, row.ceiling.seconds * kSanitizerSlowdown) << row.name;
    EXPECT_LT(cost.peakMegabytes, row.ceiling.megabytes * (kSanitizerSlowdown == 1 ? 1 : 4)) << row.name;
  }
}

}  // namespace

}  // namespace ravo::orx
