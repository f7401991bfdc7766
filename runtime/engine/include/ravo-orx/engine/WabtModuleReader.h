#pragma once
// The one way the engine reads module bytes: the load budgets on the raw bytes (OrxLoadBudgets.h), the
// code analysis with its own budgets (OrxExecutionBound.h), then wabt's reading and validation into
// its description of a module.

#include <wabt/error.h>
#include <wabt/interp/interp.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include <ravo-orx/engine/OrxExecutionBound.h>

namespace ravo::orx::internal {

// Nothing when `desc` and `analysis` now describe the module; otherwise the refusal, "CompileError: …".
std::optional<std::string> readWabtModule(const std::uint8_t* bytes, std::size_t size, wabt::interp::ModuleDesc& desc,
                                          OrxCodeAnalysis& analysis);

// wabt's reading and validation alone, for bytes the host produced itself (a metered module).
std::optional<std::string> readValidatedModule(const std::uint8_t* bytes, std::size_t size,
                                               wabt::interp::ModuleDesc& desc);

}  // namespace ravo::orx::internal
