#include "runtime/engine/wasm2c/PrecompiledTrap.h"

void orx_wasm2c_trap(int code) { throw OrxPrecompiledTrap{code}; }
