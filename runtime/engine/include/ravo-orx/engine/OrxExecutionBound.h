#pragma once
// What the host can prove about a module before running it: whether every call finishes within the
// execution budget without being metered. A module is statically bounded when it has no loop, no call
// cycle (recursion), no indirect call (its target could close a cycle), no bulk memory or table
// operation (each moves up to a whole memory), no instruction that pushes a reference, no memory or
// table that could grow past its cap, a worst-case cost per call within kOrxFuelPerCall and a deepest
// call chain within kOrxMaxStackUnits. Such a module runs as it is; any other is metered
// (OrxFuelMetering.h) and runs under the same budgets enforced at run time.
//
// References are metered because wabt's interpreter records the stack position of every reference an
// instruction pushes (ref.null, ref.func, table.get, an import's reference result) and forgets the
// records lazily: a branch that drops values walks every record above them, work the instruction
// count does not see.
//
// Without loops every branch goes forward, so each instruction of a function body runs at most once
// per activation; a function's worst case is its own instruction count plus the worst case of every
// call site's callee, summed over the (acyclic) call graph. Costs are in fuel units: one per
// instruction and one per declared local (locals are zeroed on every call).

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include <ravo-orx/engine/OrxLoadBudgets.h>

namespace ravo::orx::internal {

// Fuel for one call of `decide` (and for the start function): instructions, locals, and bytes or
// elements moved by bulk operations.
inline constexpr std::uint64_t kOrxFuelPerCall = 1'000'000;
// The call stack a call may use, in units of one value (a parameter or local), each frame counting
// kOrxFrameUnits more. It stays within the interpreter's own stacks (4,096 values, about 1,600 frames)
// and keeps native frames of the precompiled tier far below a thread's stack.
inline constexpr std::uint64_t kOrxMaxStackUnits = 4'000;
inline constexpr std::uint64_t kOrxFrameUnits = 4;

// The places metering instruments, counted as the code is read: the rewrite's size follows from them
// (meteringAddedInstructions, OrxFuelMetering.h), so it is budgeted before it is built.
struct OrxMeteringSites {
  std::uint64_t functions = 0;        // defined functions: a charge on entry
  std::uint64_t loops = 0;            // a charge per iteration
  std::uint64_t calls = 0;            // calls of defined functions and indirect calls: the stack count
  std::uint64_t bulkOperations = 0;   // a charge of the length moved
  std::uint64_t referencePushes = 0;  // table.get, calls of imports returning a reference
  std::uint64_t branches = 0;         // br, br_if and br_table
};

struct OrxCodeAnalysis {
  std::optional<std::string> overBudget;  // a load budget exceeded: nesting, instructions, element entries
  bool bounded = false;
  std::uint64_t worstCaseCost = 0;  // fuel units of the costliest call, when bounded
  std::string meteringReason;       // why it is not bounded, e.g. "it contains a loop"
  OrxMeteringSites sites;
};

// One flat pass over the code (no recursion, so nesting costs nothing); allocates per function, per
// call site and per open block only. Bytes the analysis cannot read are refused by wabt's validated
// read, which reads them with the same reader.
OrxCodeAnalysis analyzeCode(const std::uint8_t* bytes, std::size_t size);

}  // namespace ravo::orx::internal
