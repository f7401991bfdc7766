#pragma once
// The one way the engine reads module bytes into wabt's description of a module: first the load
// budgets on the raw bytes (OrxLoadBudgets.h), then wabt's own reading and validation.

#include <wabt/interp/interp.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

// Nothing when `desc` now describes the module; otherwise the refusal, "CompileError: …".
std::optional<std::string> readWabtModule(const std::uint8_t* bytes, std::size_t size, const wabt::Features& features,
                                          wabt::interp::ModuleDesc& desc);
