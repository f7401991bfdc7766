// The precompiled tier: the approved modules, translated to C by wasm2c at build time and bound here
// behind the same engine boundary as the interpreter. Only bytes whose digest is a build constant run
// here (the build checked that the translated files are exactly those bytes and that they are statically
// bounded), and they have already passed the same budgets, parsing and validation as any module.

#include <mutex>

#include <ravo-orx/engine/wasm2c/Wasm2cSymbols.h>

#include "cinema_admission.h"
#include "player_authz.h"
#include "sync_correction.h"

#include <ravo-orx/engine/PrecompiledModule.h>
#include <ravo-orx/runtime/OrxBuildConstants.h>

#include "cinema_admission_budgets.h"
#include "player_authz_budgets.h"
#include "sync_correction_budgets.h"

extern "C" u32 Z_outputZ_emit(Z_output_instance_t* output, u32 tag, u32 result, u32 first, u32 second, u32 third) {
  std::int32_t* values = output->emitted.data();
  values[0] = static_cast<std::int32_t>(tag);
  values[1] = static_cast<std::int32_t>(result);
  values[2] = static_cast<std::int32_t>(first);
  values[3] = static_cast<std::int32_t>(second);
  values[4] = static_cast<std::int32_t>(third);
  output->hasEmitted = true;
  return 0;
}

namespace ravo::orx::internal {
namespace {

using PrecompiledAuthorization = PrecompiledModule<Z_player_authz_instance_t, Z_player_authz_instantiate,
                                                   Z_player_authz_free, Z_player_authzZ_decide, player_authz_budgets>;
using PrecompiledSync = PrecompiledModule<Z_sync_correction_instance_t, Z_sync_correction_instantiate,
                                          Z_sync_correction_free, Z_sync_correctionZ_decide, sync_correction_budgets>;
using PrecompiledCinema =
    PrecompiledModule<Z_cinema_admission_instance_t, Z_cinema_admission_instantiate, Z_cinema_admission_free,
                      Z_cinema_admissionZ_decide, cinema_admission_budgets>;

// A metered module's start function runs at instantiation; when it traps the module does not
// instantiate, as on the interpreter.
template <class Module>
std::unique_ptr<OrxModuleInstance> instantiate(OrxInstantiationFailure& failure) {
  auto module = std::make_unique<Module>();
  if (!module->startError()) return module;
  failure = {OrxInstantiationFailure::Kind::invalidModule, *module->startError()};
  return nullptr;
}

std::unique_ptr<OrxModuleInstance> instantiateNative(std::string_view digest, OrxInstantiationFailure& failure) {
  static std::once_flag initialized;
  std::call_once(initialized, [] {
    wasm_rt_init();
    Z_player_authz_init_module();
    Z_sync_correction_init_module();
    Z_cinema_admission_init_module();
  });
  const auto& approved = OrxBuildConstants::expectedDigests();
  if (digest == approved.at("player_authz")) return instantiate<PrecompiledAuthorization>(failure);
  if (digest == approved.at("sync_correction")) return instantiate<PrecompiledSync>(failure);
  if (digest == approved.at("cinema_admission")) return instantiate<PrecompiledCinema>(failure);
  // Unreachable while the build translates every approved module; said plainly should that change.
  failure = {OrxInstantiationFailure::Kind::invalidModule, "this build has no native code for it"};
  return nullptr;
}

}  // namespace

std::unique_ptr<OrxModuleInstance> instantiatePrecompiledModule(std::string_view digest) {
  OrxInstantiationFailure ignored;
  return instantiateNative(digest, ignored);
}

std::unique_ptr<OrxModuleInstance> instantiateApprovedModule(std::string_view digest, const std::uint8_t*,
                                                             std::size_t, OrxInstantiationFailure& failure) {
  return instantiateNative(digest, failure);
}

bool approvedModulesRunNatively() { return true; }

}  // namespace ravo::orx::internal
