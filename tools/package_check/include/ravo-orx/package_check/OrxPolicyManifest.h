#pragma once
// A policy's package manifest ("<module>.manifest.json"): the module it describes, its ABI lanes, the
// exact import list and `decide` signature, the tag it emits under, its fact names in argument order,
// and the table of cases, each with its facts and the five values the module must emit.

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

  // Throws std::runtime_error naming the manifest and what is wrong with it: not JSON, a missing key
  // or a value of the wrong type, or a case whose facts or emitted values have the wrong count.
  static OrxPolicyManifest decode(std::span<const std::uint8_t> json, const std::string& name);
};

}  // namespace ravo::orx
