#include <ravo-orx/cli/OrxCliPolicyModule.h>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/runtime/OrxBuildConstants.h>
#include <ravo-orx/engine/OrxLoadBudgets.h>
#include <ravo-orx/engine/OrxModuleInstance.h>
#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/cli/OrxCliDecisions.h>
#include <ravo-orx/cli/OrxCliIO.h>
#include <ravo-orx/package_check/OrxPolicyCompilers.h>

namespace ravo::orx {

using namespace internal;

OrxCliPolicyModule OrxCliPolicyModule::read(const std::string& file) {
  // A source of record is compiled as `policy build` compiles it, so an author runs what they edit.
  if (const auto language = orxPolicyLanguageOf(file)) {
    auto bytes = OrxPolicyCompilers::find().compile({file, *language});
    std::string digest = ORXSHA256::hex(bytes);
    return {orxCliInputName(file), std::move(bytes), std::move(digest)};
  }
  // No more than the module host would take: a larger file is refused before it is read.
  const std::string text = orxCliReadInput(file, kOrxMaxModuleBytes);
  std::vector<std::uint8_t> bytes(text.begin(), text.end());
  std::string digest = ORXSHA256::hex(bytes);
  return {orxCliInputName(file), std::move(bytes), std::move(digest)};
}

std::optional<std::string> OrxCliPolicyModule::approvedAs() const {
  for (const auto& [module, approved] : OrxBuildConstants::expectedDigests()) {
    if (approved == digest) return module;
  }
  return std::nullopt;
}

std::unique_ptr<LoadedModule> OrxCliPolicyModule::load(std::string_view name, bool allowPrecompiled) const {
  return loadModule(name, bytes, allowPrecompiled);
}

std::string OrxCliPolicyModule::executionBound() const {
  const auto bound = describeExecutionBound(bytes.data(), bytes.size());
  if (!bound) return "refused by the host";
  const std::string budget = std::to_string(bound->fuelPerCall) + " fuel units";
  if (bound->bounded) {
    return "statically bounded: at most " + std::to_string(bound->worstCaseFuel) + " of " + budget + " per call";
  }
  return "metered (" + bound->meteringReason + "): a call that exceeds " + budget + " traps";
}

OrxCliPolicyDecision orxCliPolicyDecision(OrxCliArguments& arguments, const std::optional<std::string>& factsFile) {
  const std::string file = arguments.next("MODULE");
  if (file == "-" && factsFile == "-") throw OrxCliUsageError("MODULE and --facts cannot both be standard input");
  const OrxDecisionKind& kind = orxCliPolicyKind(arguments);
  auto facts = orxCliFacts(arguments, kind, factsFile);
  return {OrxCliPolicyModule::read(file), kind, std::move(facts)};
}

}  // namespace ravo::orx
