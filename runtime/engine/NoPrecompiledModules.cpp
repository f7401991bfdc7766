// An interpreter-only build (ORX_PRECOMPILED=OFF) compiles no module to native code.

#include <ravo-orx/engine/OrxModuleInstance.h>

namespace ravo::orx::internal {

std::unique_ptr<OrxModuleInstance> instantiatePrecompiledModule(std::string_view) { return nullptr; }

}  // namespace ravo::orx::internal
