#pragma once
// A policy module named on the command line ("-" for standard input), as `policy check`, `eval` and
// `bench` load it: through the runtime's own module host, outside any provenance check.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/LoadedModule.h"

struct OrxCliPolicyModule {
  std::string file;
  std::vector<std::uint8_t> bytes;
  std::string digest;  // 64 lowercase hex

  // Throws std::runtime_error "could not read <file>: <reason>".
  static OrxCliPolicyModule read(const std::string& file);

  // The module this build approves under these bytes' digest, or nothing.
  std::optional<std::string> approvedAs() const;
  // Instantiated in the module host; throws RuntimeError with the host's own text when it refuses.
  std::unique_ptr<LoadedModule> load(std::string_view name, bool allowPrecompiled) const;
  // How the host keeps every call finite: "statically bounded: at most N of M fuel units per call", or
  // "metered (<why>): a call that exceeds M fuel units traps".
  std::string executionBound() const;
};
