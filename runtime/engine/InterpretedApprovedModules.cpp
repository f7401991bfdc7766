// An interpreter-only build (ORX_PRECOMPILED=OFF) compiles no module to native code: approved modules
// run in the interpreter like any other. Only the artifact build uses such a runtime, since it rebuilds
// the artifacts that native code would be made from.

#include <ravo-orx/engine/OrxModuleInstance.h>

namespace ravo::orx::internal {

std::unique_ptr<OrxModuleInstance> instantiatePrecompiledModule(std::string_view) { return nullptr; }

std::unique_ptr<OrxModuleInstance> instantiateApprovedModule(std::string_view, const std::uint8_t* bytes,
                                                             std::size_t size, OrxInstantiationFailure& failure) {
  return instantiateInterpretedModule(bytes, size, failure);
}

bool approvedModulesRunNatively() { return false; }

}  // namespace ravo::orx::internal
