#include <ravo-orx/loader/OrxModuleLoader.h>

#include <new>
#include <string>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/runtime/RuntimeError.h>

namespace ravo::orx::internal {

namespace {

// An interpreted instance of the bytes; throws the host's refusal.
template <class Instantiate>
auto instantiateOrRefuse(std::string_view name, std::span<const std::uint8_t> bytes, Instantiate instantiate) {
  OrxInstantiationFailure failure{};
  decltype(instantiate(bytes.data(), bytes.size(), failure)) instance;
  try {
    instance = instantiate(bytes.data(), bytes.size(), failure);
  } catch (const std::bad_alloc&) {
    // The engine could not even set up its store: the equivalent of having no script context.
    throw RuntimeError("JavaScriptCore is unavailable");
  }
  if (!instance) LoadedModule::refuse(name, failure);
  return instance;
}

}  // namespace

std::unique_ptr<LoadedModule> loadModule(std::string_view name, std::span<const std::uint8_t> bytes,
                                         bool allowPrecompiled) {
  auto instance = instantiateOrRefuse(name, bytes, instantiateInterpretedModule);
  std::string digest = ORXSHA256::hex(bytes);
  if (allowPrecompiled) {
    if (auto precompiled = instantiatePrecompiledModule(digest)) {
      return std::make_unique<LoadedModule>(std::move(precompiled), std::move(digest), OrxExecutionTier::precompiled);
    }
  }
  return std::make_unique<LoadedModule>(std::move(instance), std::move(digest), OrxExecutionTier::interpreted);
}

std::unique_ptr<OrxMeasuredModuleInstance> loadMeasuredModule(std::string_view name,
                                                              std::span<const std::uint8_t> bytes) {
  return instantiateOrRefuse(name, bytes, instantiateMeasuredModule);
}

}  // namespace ravo::orx::internal
