#pragma once
// The module host: one instantiated policy module, with the digest of the bytes it was made from.

#include <array>
#include <cstdint>
#include <exception>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include <ravo-orx/core/ORXRawValue.h>
#include <ravo-orx/engine/OrxModuleInstance.h>

namespace ravo::orx::internal {

// How a loaded module runs: on wabt's interpreter, or as native code the build translated from exactly
// these bytes.
enum class OrxExecutionTier { interpreted, precompiled };

}  // namespace ravo::orx::internal

template <>
struct ravo::orx::ORXRawValueTable<ravo::orx::internal::OrxExecutionTier> {
  using OrxExecutionTier = internal::OrxExecutionTier;
  static constexpr std::array<std::pair<OrxExecutionTier, std::string_view>, 2> entries{{
      {OrxExecutionTier::interpreted, "interpreted"},
      {OrxExecutionTier::precompiled, "precompiled"},
  }};
};

namespace ravo::orx::internal {

class LoadedModule {
 public:
  // The module of bytes that passed provenance (their digest is a build constant): binds the native
  // code the build translated from exactly those bytes, so the decisions runtime never parses module
  // bytes. Arbitrary bytes are the toolchain's (<ravo-orx/loader/OrxModuleLoader.h>).
  // Throws RuntimeError as refuse() words it.
  static std::unique_ptr<LoadedModule> approved(std::string_view name, std::span<const std::uint8_t> bytes,
                                                std::string digest);

  // The load error of a module the engine would not instantiate: "Could not instantiate ORX module
  // <name>: <engine text>" or "ORX module <name> has no decide export".
  [[noreturn]] static void refuse(std::string_view name, const OrxInstantiationFailure& failure);

  LoadedModule(std::unique_ptr<OrxModuleInstance> instance, std::string digest, OrxExecutionTier tier);

  // 64 lowercase hex digits: SHA-256 of the module's bytes.
  const std::string& digest() const { return digest_; }
  OrxExecutionTier tier() const { return tier_; }

  // One `decide` call; never throws. Callers serialise calls (the runtime holds its lock). Inline: it
  // is on every decision's path.
  OrxInvocation invoke(std::span<const std::int32_t> arguments) noexcept {
    try {
      return instance_->invoke(arguments.data(), arguments.size());
    } catch (const std::exception& error) {
      return failedInvocation(error.what());
    } catch (...) {
      return failedInvocation("unknown exception");
    }
  }

 private:
  OrxInvocation failedInvocation(const char* error);

  std::unique_ptr<OrxModuleInstance> instance_;
  std::string digest_;
  OrxExecutionTier tier_;
  OrxInvocationErrorText failure_;  // for calls the engine failed by throwing
};

}  // namespace ravo::orx::internal
