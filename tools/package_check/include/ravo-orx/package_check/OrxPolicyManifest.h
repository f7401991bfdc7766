#pragma once
// A policy's package manifest ("<module>.manifest.json"): the module it describes, its ABI lanes, the
// exact import list and `decide` signature, the tag it emits under, its fact names in argument order,
// and the table of cases, each with its facts and the five values the module must emit. The schema
// (docs/POLICY-MANIFEST.md) is strict: one table of keys per object in OrxPolicyManifest.cpp.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ravo::orx {

struct OrxPolicyCase {
  std::string name;
  std::vector<std::int32_t> facts;
  std::vector<std::int32_t> emits;
};

struct OrxPolicyManifest {
  std::string module;
  std::string orxAbi;
  std::string hostAbi;
  std::vector<std::string> imports;
  std::string decide;
  std::int32_t emitTag = 0;
  std::vector<std::string> facts;
  std::vector<OrxPolicyCase> cases;

  // Reads the manifest with the project's bounded JSON reader and holds it to the schema and to its
  // decision kind (module, ABI lanes, emit tag, fact names). Throws std::runtime_error "<name>: <what>"
  // naming the key (and the case) at fault: not JSON, an unknown or missing key, a value of the wrong
  // type or a number outside 32 bits, a lane, tag or fact list that differs from the kind's, no cases,
  // a case name given twice, or a case with the wrong count of facts or emitted values.
  static OrxPolicyManifest decode(std::span<const std::uint8_t> json, const std::string& name);
};

// What keeps the module from keeping the manifest's contract: its imports must be exactly "imports"
// and it must export "decide". Each problem names the key; none when it keeps it. The package check
// and `policy test` both hold a module to its manifest with this.
std::vector<std::string> orxManifestContractProblems(const OrxPolicyManifest& manifest,
                                                     std::span<const std::uint8_t> wasm);

}  // namespace ravo::orx
