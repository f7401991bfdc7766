#pragma once
// Metering: a module that cannot be proven bounded (OrxExecutionBound.h) is rewritten at load through
// wabt's IR (read, instrument, validate, write) so that it enforces the execution budgets itself, and
// every tier runs the same rewritten code:
//   - fuel: an i64 global, set to kOrxFuelPerCall before each call of `decide` (and initially, for the
//     start function). Each function entry is charged its instructions outside loops plus its locals,
//     each loop iteration the instructions of its body outside nested loops, each branch among them
//     also the values it keeps (the interpreter moves them over those it drops), and each bulk memory
//     or table operation its length in bytes or elements. A charge that leaves the fuel negative traps;
//   - stack: an i32 global, reset to 0 before each call. Each call of a module function adds the
//     callee's frame (kOrxFrameUnits plus its parameters and locals; an indirect call the largest
//     frame) and traps past kOrxMaxStackUnits, so deep recursion never reaches the native stack;
//   - growth: memories and tables get a maximum of at most their cap, so `memory.grow` and
//     `table.grow` past it return -1;
//   - references: ref.null and ref.func become reads of immutable globals that hold the same
//     references, which the interpreter does not record (OrxExecutionBound.h). In a module that still
//     pushes references (table.get, an import's reference result), an i64 global, reset to 0 before
//     each call, counts them, and each branch and each return from a called function is charged that
//     count in fuel: the interpreter may walk that many records when it drops values, so the walks of
//     a call cost at most its fuel.
// The traps are `unreachable`; the host tells them from the module's own by the globals' values after
// the trap (fuel below zero, stack above its limit). The globals are exported under the names below,
// and the start function is exported instead of started, so that the host can set the budgets before
// it runs and tell its traps apart too; a metered module may not export these names itself.
//
// The code the rewrite adds is budgeted before the rewrite is built (kOrxMaxMeteringInstructions).

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <ravo-orx/engine/OrxExecutionBound.h>

namespace ravo::orx::internal {

inline constexpr const char* kOrxFuelExport = "orx:fuel";
inline constexpr const char* kOrxStackExport = "orx:stack";
inline constexpr const char* kOrxStartExport = "orx:start";
inline constexpr const char* kOrxReferencesExport = "orx:references";
// Only in a rewrite for the toolchain's measurements: the deepest the stack global went during a call.
// Keeping it is not charged, so a measured call uses exactly the fuel the host's own rewrite charges.
inline constexpr const char* kOrxPeakStackExport = "orx:peak-stack";

// The text of a metered module's trap when the budget globals show it was a budget trap, else nothing.
inline std::optional<std::string> budgetTrapText(std::int64_t fuel, std::uint32_t stack) {
  if (fuel < 0) return "RuntimeError: execution budget exhausted";
  if (stack > kOrxMaxStackUnits) return "RuntimeError: call stack exhausted";
  return std::nullopt;
}

// The instructions the rewrite adds to a module with these sites (OrxCodeAnalysis::sites).
std::uint64_t meteringAddedInstructions(const OrxMeteringSites& sites, bool keepPeakStack);

// Fills `metered` and returns nothing, or returns the refusal ("CompileError: …"), a module whose
// rewrite would exceed kOrxMaxMeteringInstructions among them. `bytes` must have passed the load
// budgets and wabt's validation, and `sites` be their analysis's. `keepPeakStack` adds the
// kOrxPeakStackExport global.
std::optional<std::string> meterModule(const std::uint8_t* bytes, std::size_t size, const OrxMeteringSites& sites,
                                       std::vector<std::uint8_t>& metered, bool keepPeakStack = false);

}  // namespace ravo::orx::internal
