#ifndef ORX_PRECOMPILED_TRAP_H
#define ORX_PRECOMPILED_TRAP_H
/* Traps of precompiled modules. The stock wasm2c runtime jumps to one process-wide jmp_buf, which two
 * threads running two runtimes would share; traps instead go to orx_wasm2c_trap (installed as
 * WASM_RT_TRAP_HANDLER), which jumps to the calling thread's own target. Plain setjmp: no signal mask
 * is saved, so a call costs no system call. */

#ifdef __cplusplus
extern "C" {
#endif

void orx_wasm2c_trap(int code) __attribute__((noreturn));

/* Runs body(context); returns 0 when it completed, or the wasm_rt_trap_t code it trapped with. */
int orx_wasm2c_call_guarded(void (*body)(void*), void* context);

#ifdef __cplusplus
}
#endif

#endif
