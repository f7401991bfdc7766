#pragma once
// Test support: the metered test modules (runtime/tests/metered/) translated to native code the way the
// build translates a metered module; their WebAssembly sources are in ORX_METERED_TEST_MODULES.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <ravo-orx/engine/OrxModuleInstance.h>

namespace ravo::orx {

struct PrecompiledTestModule {
  std::unique_ptr<internal::OrxModuleInstance> instance;
  std::optional<std::string> startError;
};

// "metered_loop", "metered_recursion", "metered_bulk" or "metered_references"; "unmetered_loop" is metered_loop translated
// as it is, without fuel, for the benchmarks.
PrecompiledTestModule precompiledTestModule(std::string_view name);

}  // namespace ravo::orx
