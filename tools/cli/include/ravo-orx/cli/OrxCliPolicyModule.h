#pragma once
// A policy module named on the command line ("-" for standard input), as `policy check`, `eval` and
// `bench` load it: through the runtime's own module host, outside any provenance check.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/runtime/LoadedModule.h>
#include <ravo-orx/cli/OrxCliArguments.h>
#include <ravo-orx/package_check/OrxDecisionByKind.h>

namespace ravo::orx {

struct OrxCliPolicyModule {
  std::string file;
  std::vector<std::uint8_t> bytes;
  std::string digest;  // 64 lowercase hex

  // Throws std::runtime_error "could not read <file>: <reason>".
  static OrxCliPolicyModule read(const std::string& file);

  // The module this build approves under these bytes' digest, or nothing.
  std::optional<std::string> approvedAs() const;
  // Instantiated in the module host; throws RuntimeError with the host's own text when it refuses.
  std::unique_ptr<internal::LoadedModule> load(std::string_view name, bool allowPrecompiled) const;
  // How the host keeps every call finite: "statically bounded: at most N of M fuel units per call", or
  // "metered (<why>): a call that exceeds M fuel units traps".
  std::string executionBound() const;
};

// What `policy eval` and `policy bench` decide with: the module, the kind and its facts.
struct OrxCliPolicyDecision {
  OrxCliPolicyModule module;
  const OrxDecisionKind& kind;
  std::vector<std::int32_t> facts;
};

// Takes MODULE, the kind and its facts (from the words left or from `factsFile`, read before any
// option that follows it) and reads the module; finishes the arguments. Throws OrxCliUsageError as
// orxCliFacts does, and when MODULE and `factsFile` are both standard input.
OrxCliPolicyDecision orxCliPolicyDecision(OrxCliArguments& arguments, const std::optional<std::string>& factsFile);

}  // namespace ravo::orx
