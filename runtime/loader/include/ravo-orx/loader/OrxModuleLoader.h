#pragma once
// Modules from arbitrary bytes, for the policy toolchain and the tests: the interpreter with its load
// budgets and metering, and the native code of an approved digest where the build has it. The
// decisions runtime never links this: it runs only approved modules (LoadedModule::approved).

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include <ravo-orx/engine/OrxModuleInstance.h>
#include <ravo-orx/runtime/LoadedModule.h>

namespace ravo::orx::internal {

// Checks the load budgets, parses and validates the bytes (metering them unless they are statically
// bounded), then binds precompiled code when the build compiled a module with their digest (unless
// `allowPrecompiled` is false) and the interpreter otherwise. The digest is of the bytes as given.
// Throws RuntimeError as LoadedModule::refuse() words it, or "JavaScriptCore is unavailable" when the
// engine cannot set up its store.
std::unique_ptr<LoadedModule> loadModule(std::string_view name, std::span<const std::uint8_t> bytes,
                                         bool allowPrecompiled = true);

// The same bytes in an interpreted instance that counts each call's emissions, fuel and stack, for the
// toolchain's explanations (OrxMeasuredModuleInstance). Throws as loadModule does.
std::unique_ptr<OrxMeasuredModuleInstance> loadMeasuredModule(std::string_view name,
                                                              std::span<const std::uint8_t> bytes);

}  // namespace ravo::orx::internal
