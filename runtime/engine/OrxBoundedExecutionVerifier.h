#pragma once
// Proves, before instantiation, that every call into a module terminates quickly with bounded memory,
// the way a kernel verifier refuses programs it cannot prove safe. Refused: any `loop`, any call cycle
// (recursion), indirect and tail calls (their targets cannot be bounded statically), a start function,
// a worst-case instruction count per call above kOrxMaxInstructionsPerCall, and memories or tables that
// could grow beyond their caps.
//
// Without loops every branch goes forward, so each instruction of a function body runs at most once
// per activation; a function's worst case is its own instruction count plus the worst case of every
// call site's callee, summed over the (acyclic) call graph. Each declared local counts as one
// instruction (it is zeroed on every call). Bulk memory operations count as one instruction: their work
// is bounded by the memory cap.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "runtime/engine/OrxLoadBudgets.h"

inline constexpr std::uint64_t kOrxMaxInstructionsPerCall = 1'000'000;

// The reason the module is refused, or nothing when it is provably bounded. `bytes` must already have
// passed the engine's own validation.
std::optional<std::string> verifyBoundedExecution(const std::uint8_t* bytes, std::size_t size);
