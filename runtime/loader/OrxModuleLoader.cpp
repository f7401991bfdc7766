#include <ravo-orx/loader/OrxModuleLoader.h>

#include <new>
#include <string>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/runtime/RuntimeError.h>

namespace ravo::orx::internal {

std::unique_ptr<LoadedModule> loadModule(std::string_view name, std::span<const std::uint8_t> bytes,
                                         bool allowPrecompiled) {
  OrxInstantiationFailure failure{};
  std::unique_ptr<OrxModuleInstance> instance;
  try {
    instance = instantiateInterpretedModule(bytes.data(), bytes.size(), failure);
  } catch (const std::bad_alloc&) {
    // The engine could not even set up its store: the equivalent of having no script context.
    throw RuntimeError("JavaScriptCore is unavailable");
  }
  if (!instance) LoadedModule::refuse(name, failure);
  std::string digest = ORXSHA256::hex(bytes);
  if (allowPrecompiled) {
    if (auto precompiled = instantiatePrecompiledModule(digest)) {
      return std::make_unique<LoadedModule>(std::move(precompiled), std::move(digest), OrxExecutionTier::precompiled);
    }
  }
  return std::make_unique<LoadedModule>(std::move(instance), std::move(digest), OrxExecutionTier::interpreted);
}

}  // namespace ravo::orx::internal
