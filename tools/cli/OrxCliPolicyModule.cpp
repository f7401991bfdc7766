#include "tools/cli/OrxCliPolicyModule.h"

#include "core/ORXSHA256.h"
#include "runtime/OrxBuildConstants.h"
#include "runtime/engine/OrxBoundedExecutionVerifier.h"
#include "tools/cli/OrxCliIO.h"

OrxCliPolicyModule OrxCliPolicyModule::read(const std::string& file) {
  const std::string text = orxCliReadInput(file);
  std::vector<std::uint8_t> bytes(text.begin(), text.end());
  std::string digest = ORXSHA256::hex(bytes);
  return {file == "-" ? "standard input" : file, std::move(bytes), std::move(digest)};
}

std::optional<std::string> OrxCliPolicyModule::approvedAs() const {
  for (const auto& [module, approved] : OrxBuildConstants::expectedDigests()) {
    if (approved == digest) return module;
  }
  return std::nullopt;
}

std::unique_ptr<LoadedModule> OrxCliPolicyModule::load(std::string_view name, bool allowPrecompiled) const {
  return LoadedModule::instantiate(name, bytes, allowPrecompiled);
}

// A module the host admitted has passed the bounded-execution verifier, which proves every call within
// its instruction cap; the verifier does not report the module's own bound.
std::string OrxCliPolicyModule::executionBound() const {
  return "statically bounded: every call within " + std::to_string(kOrxMaxInstructionsPerCall) +
         " instructions, memory within " + std::to_string(kOrxMaxMemoryPages) + " pages";
}
