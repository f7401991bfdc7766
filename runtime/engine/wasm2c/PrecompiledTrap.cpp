#include <ravo-orx/engine/wasm2c/PrecompiledTrap.h>

void orx_wasm2c_trap(int code) { throw ravo::orx::internal::OrxPrecompiledTrap{code}; }
