#ifndef ORX_PRECOMPILED_TRAP_H
#define ORX_PRECOMPILED_TRAP_H

#include <ravo-orx/engine/wasm2c/Wasm2cSymbols.h>
/* Traps of precompiled modules. The stock wasm2c runtime jumps to one process-wide jmp_buf, which two
 * threads running two runtimes would share, and every guarded call would pay a setjmp. Traps instead
 * go to orx_wasm2c_trap (installed as WASM_RT_TRAP_HANDLER), which throws a C++ exception that unwinds
 * through the translated code (compiled with -fexceptions) to the calling thread's own guard: a call
 * that does not trap costs nothing for its guard. */

#ifdef __cplusplus
extern "C" {
#endif

void orx_wasm2c_trap(int code) __attribute__((noreturn));

#ifdef __cplusplus
}

namespace ravo::orx::internal {

// What orx_wasm2c_trap throws.
struct OrxPrecompiledTrap {
  int code;  // the wasm_rt_trap_t
};

// Runs body(); returns 0 when it completed, or the wasm_rt_trap_t code it trapped with. Always inlined:
// g++ otherwise keeps it as a frame of its own on every decision, about a tenth of a precompiled one.
template <class Body>
[[gnu::always_inline]] inline int orxRunTrapGuarded(Body&& body) {
  try {
    body();
  } catch (const OrxPrecompiledTrap& trap) {
    return trap.code;
  }
  return 0;
}

}  // namespace ravo::orx::internal
#endif

#endif
