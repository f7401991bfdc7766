#pragma once
// A policy's package manifest ("<module>.manifest.json"): the module it describes, its ABI lanes, the
// exact import list and `decide` signature, the tag it emits under, its fact names in argument order,
// the table of cases, each with its facts and the five values the module must emit, and what the
// prover is told: the facts' ranges, the properties the decisions keep, and whether the build proves
// the module's validity. The schema
// (docs/POLICY-MANIFEST.md) is strict: one table of keys per object in OrxPolicyManifest.cpp.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxPolicyProperty.h>

namespace ravo::orx {

// The largest manifest read, checked before a byte of it is read. The bundled manifests are a few KiB;
// 10,000 cases of the cinema decision's 13 facts fit in about 1.5 MiB.
inline constexpr std::size_t kOrxPolicyManifestByteLimit = 4u << 20;
// The most cases one manifest holds. Each runs three times per run (the runtime's own decision, the
// raw call and a measured one), so the count bounds a manifest's cost; a real policy's table is a few
// dozen cases.
inline constexpr std::size_t kOrxPolicyManifestCaseLimit = 10'000;
// The most items of any other list (imports, fact names, a case's facts and emitted values). Each must
// equal a list of the module or its decision: at most 13 facts, 5 values, and the module host's 100
// imports.
inline constexpr std::size_t kOrxPolicyManifestListLimit = 100;

struct OrxPolicyCase {
  std::string name;
  std::vector<std::int32_t> facts;
  std::vector<std::int32_t> emits;
};

// The values a fact takes, as the manifest declares them for the prover: from..to, both included.
struct OrxManifestFactRange {
  std::string fact;
  std::int32_t from = 0;
  std::int32_t to = 0;
};

// How `policy build` treats the module's proof: "skip" states why its validity is not proven.
struct OrxManifestProof {
  std::string skip;
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
  // Optional: the facts' ranges (a fact not listed takes any 32-bit value), the properties every
  // decision keeps (OrxPolicyProperty.h, checked to parse when the manifest is read), and the proof's
  // settings.
  std::vector<OrxManifestFactRange> factRanges;
  std::vector<std::string> properties;
  std::optional<OrxManifestProof> proof;

  // Reads the manifest with the project's bounded JSON reader and holds it to the schema and to its
  // decision kind (module, ABI lanes, emit tag, fact names). Throws std::runtime_error "<name>: <what>"
  // naming the key (and the case) at fault: not JSON, an unknown or missing key, a value of the wrong
  // type or a number outside 32 bits, a lane, tag or fact list that differs from the kind's, no cases
  // or more than kOrxPolicyManifestCaseLimit, a longer list than kOrxPolicyManifestListLimit, a case
  // name given twice, or a case with the wrong count of facts or emitted values; a range of an unknown
  // fact, of a fact given twice or empty; a property that does not parse; a proof skipped without a
  // reason. An unknown key, a value of the wrong type and an item past a limit are refused as they are
  // read, before anything of them is built.
  static OrxPolicyManifest decode(std::span<const std::uint8_t> json, const std::string& name);

  // The properties, parsed (decode checked that they parse).
  std::vector<OrxPolicyProperty> parsedProperties() const;
};

// What keeps the module from keeping the manifest's contract: its imports must be exactly "imports"
// and it must export "decide". Each problem names the key; none when it keeps it. The package check
// and `policy test` both hold a module to its manifest with this.
std::vector<std::string> orxManifestContractProblems(const OrxPolicyManifest& manifest,
                                                     std::span<const std::uint8_t> wasm);

}  // namespace ravo::orx
