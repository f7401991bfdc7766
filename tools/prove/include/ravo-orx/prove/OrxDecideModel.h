#pragma once
// One call of a policy module's `decide` as formulas over the facts, read from the module's code: what
// it returns, what it last emitted and when it traps, for every facts vector at once. The call starts
// from the instance as instantiation leaves it (globals, data segments, the start function's work),
// exactly as a fresh module host runs it; the model says when the call could leave the instance
// changed, since later calls would then start elsewhere.
//
// Where the model does not follow the module it says so instead of guessing: a loop that may run past
// the unroll bound, recursion, floating point, tables and indirect calls, bulk memory, references,
// SIMD. Each such place is a gap with the condition under which a call reaches it; an answer about
// facts that reach no gap is exact.
//
// Compiled as C++17 with wabt, like the engine: nothing here includes the runtime's C++20 headers.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <z3++.h>

#include <ravo-orx/prove/SymbolicState.h>

namespace ravo::orx::internal {

struct OrxModelGap {
  z3::expr condition;
  std::string reason;  // "a loop may run more than 64 iterations"
};

struct OrxDecideModel {
  // The call fails: a trap, a budget run out, or a value that cannot cross to the host.
  z3::expr trapped;
  // decide's result as the host converts it, when the call returns; none when decide returns nothing.
  std::optional<z3::expr> result;
  // The last emission of the call, whether or not it trapped afterwards.
  SymbolicEmission emission;
  std::vector<OrxModelGap> gaps;
};

struct OrxModelLimits {
  unsigned unrollBound = 64;            // iterations of a loop per entry into it
  std::uint64_t maxInstructions = 2'000'000;  // instructions modelled over all paths, loops unrolled
  // Building the model, the solver's checks of loop paths included; what is left unmodelled past it
  // is a gap, as past the other limits.
  std::chrono::milliseconds timeLimit{60'000};
};

// The model of `decide` called with `facts` (32-bit vectors, in argument order; arguments past them
// are 0). The bytes must have passed loadModule; throws std::runtime_error when they do not read.
OrxDecideModel orxModelDecide(const std::uint8_t* bytes, std::size_t size, const std::vector<z3::expr>& facts,
                              const OrxModelLimits& limits);

}  // namespace ravo::orx::internal
