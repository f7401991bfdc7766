// An interpreter-only build (ORX_PRECOMPILED=OFF) compiles no module to native code.

#include "runtime/OrxModuleInstance.h"

std::unique_ptr<OrxModuleInstance> instantiatePrecompiledModule(std::string_view) { return nullptr; }
