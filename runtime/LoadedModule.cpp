#include <ravo-orx/runtime/LoadedModule.h>

#include <new>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/runtime/RuntimeError.h>

namespace ravo::orx::internal {

std::unique_ptr<LoadedModule> LoadedModule::instantiate(std::string_view name, std::span<const std::uint8_t> bytes,
                                                        bool allowPrecompiled) {
  OrxInstantiationFailure failure{};
  std::unique_ptr<OrxModuleInstance> instance;
  try {
    instance = instantiateInterpretedModule(bytes.data(), bytes.size(), failure);
  } catch (const std::bad_alloc&) {
    // The engine could not even set up its store: the equivalent of having no script context.
    throw RuntimeError("JavaScriptCore is unavailable");
  }
  if (!instance) {
    if (failure.kind == OrxInstantiationFailure::Kind::noDecideExport) {
      throw RuntimeError("ORX module " + std::string(name) + " has no decide export");
    }
    std::string detail = failure.detail.empty() ? "unknown exception" : failure.detail;
    throw RuntimeError("Could not instantiate ORX module " + std::string(name) + ": " + detail);
  }
  std::string digest = ORXSHA256::hex(bytes);
  if (allowPrecompiled) {
    if (auto precompiled = instantiatePrecompiledModule(digest)) {
      return std::make_unique<LoadedModule>(std::move(precompiled), std::move(digest), OrxExecutionTier::precompiled);
    }
  }
  return std::make_unique<LoadedModule>(std::move(instance), std::move(digest), OrxExecutionTier::interpreted);
}

LoadedModule::LoadedModule(std::unique_ptr<OrxModuleInstance> instance, std::string digest, OrxExecutionTier tier)
    : instance_(std::move(instance)), digest_(std::move(digest)), tier_(tier) {}

OrxInvocation LoadedModule::failedInvocation(const char* error) {
  OrxInvocation failed;
  failed.error = failure_.keep(error);
  return failed;
}

}  // namespace ravo::orx::internal
