#pragma once
// Where a call stands on one path through the module: the condition on the facts under which the path
// is taken, the operand stack and locals of the running function, the globals, the memory and the last
// emission. Paths that meet again (at the end of a block, at a loop's next iteration, at a function's
// return) are joined into one state whose every value is chosen by the path that reached it, so the
// model grows with the code rather than with the number of paths.

#include <cstddef>
#include <vector>

#include <z3++.h>

#include <ravo-orx/prove/SymbolicMemory.h>

namespace ravo::orx::internal {

// The values of the last `output.emit` call; `values` holds the first kSymbolicEmittedValues of them.
struct SymbolicEmission {
  z3::expr called;  // emit was called
  z3::expr count;   // 32 bits: how many values it stored
  std::vector<z3::expr> values;
};

inline constexpr std::size_t kSymbolicEmittedValues = 5;

struct SymbolicState {
  z3::expr reach;
  std::vector<z3::expr> stack;
  std::vector<z3::expr> locals;
  std::vector<z3::expr> globals;
  SymbolicMemory memory;
  SymbolicEmission emission;
};

// The states of paths that exclude each other, joined. `states` is not empty, and every state has the
// same shape (stack height, locals, globals).
SymbolicState joined(const std::vector<SymbolicState>& states);

// One emission out of several exclusive ones, each taken under its condition.
SymbolicEmission joinedEmission(const std::vector<std::pair<z3::expr, SymbolicEmission>>& emissions);

// When the instance differs after the call from `before`: a global, the memory's bytes or its size.
z3::expr stateDiffers(const SymbolicState& after, const SymbolicState& before);

}  // namespace ravo::orx::internal
