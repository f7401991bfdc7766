#include <ravo-orx/runtime/LoadedModule.h>

#include <ravo-orx/runtime/RuntimeError.h>

namespace ravo::orx::internal {

std::unique_ptr<LoadedModule> LoadedModule::approved(std::string_view name, std::span<const std::uint8_t> bytes,
                                                     std::string digest) {
  OrxInstantiationFailure failure{};
  auto instance = instantiateApprovedModule(digest, bytes.data(), bytes.size(), failure);
  if (!instance) refuse(name, failure);
  return std::make_unique<LoadedModule>(std::move(instance), std::move(digest),
                                        approvedModulesRunNatively() ? OrxExecutionTier::precompiled
                                                                     : OrxExecutionTier::interpreted);
}

void LoadedModule::refuse(std::string_view name, const OrxInstantiationFailure& failure) {
  if (failure.kind == OrxInstantiationFailure::Kind::noDecideExport) {
    throw RuntimeError("ORX module " + std::string(name) + " has no decide export");
  }
  std::string detail = failure.detail.empty() ? "unknown exception" : failure.detail;
  throw RuntimeError("Could not instantiate ORX module " + std::string(name) + ": " + detail);
}

LoadedModule::LoadedModule(std::unique_ptr<OrxModuleInstance> instance, std::string digest, OrxExecutionTier tier)
    : instance_(std::move(instance)), digest_(std::move(digest)), tier_(tier) {}

OrxInvocation LoadedModule::failedInvocation(const char* error) {
  OrxInvocation failed;
  failed.error = failure_.keep(error);
  return failed;
}

}  // namespace ravo::orx::internal
