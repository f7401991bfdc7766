#pragma once
// The integer instructions of WebAssembly over symbolic values, with their exact semantics: i32 and
// i64 arithmetic (division and remainder trap on a zero divisor, signed division also on INT_MIN / -1,
// whose remainder is 0), bit operations, shifts and rotations by the count modulo the width, clz, ctz
// and popcnt, comparisons (1 or 0), eqz, wrapping and extension. An i32 is a 32-bit vector and an i64
// a 64-bit one. Floating point is not modelled: those opcodes yield nothing.

#include <wabt/opcode.h>

#include <optional>

#include <z3++.h>

#include <ravo-orx/prove/SymbolicFold.h>

namespace ravo::orx::internal {

// A unary, test or conversion instruction (i32.clz, i64.eqz, i64.extend_i32_s, ...).
std::optional<SymbolicResult> symbolicUnary(wabt::Opcode opcode, const z3::expr& operand);

// A binary or comparison instruction (i32.add, i64.div_s, i32.lt_u, ...).
std::optional<SymbolicResult> symbolicBinary(wabt::Opcode opcode, const z3::expr& left, const z3::expr& right);

// An i32 as a condition: non-zero. Recognises the 1-or-0 of a comparison, so that a branch on a
// comparison tests the comparison itself.
z3::expr symbolicTruth(const z3::expr& value);

}  // namespace ravo::orx::internal
