#include "PrecompiledTrap.h"

#include <setjmp.h>

static _Thread_local jmp_buf* g_trap_target;

void orx_wasm2c_trap(int code) { longjmp(*g_trap_target, code); }

int orx_wasm2c_call_guarded(void (*body)(void*), void* context) {
  jmp_buf target;
  jmp_buf* const previous = g_trap_target;
  g_trap_target = &target;
  const int code = setjmp(target);
  if (code == 0) body(context);
  g_trap_target = previous;
  return code;
}
