// The precompiled tier: the approved modules, translated to C by wasm2c at build time and bound here
// behind the same engine boundary as the interpreter. Only bytes whose digest is a build constant run
// here (the build checked that the translated files are exactly those bytes), and they have already
// passed the same parsing, validation and bounded-execution verifier as any module.

#include <algorithm>
#include <array>
#include <cstddef>
#include <mutex>

#include "cinema_admission.h"
#include "player_authz.h"
#include "runtime/OrxBuildConstants.h"
#include "runtime/OrxModuleInstance.h"
#include "runtime/engine/wasm2c/PrecompiledTrap.h"
#include "sync_correction.h"

// The import all approved modules share (the build checks its signature): each module instance owns one.
// Every emit writes all five values in place, one 32-bit store each: no allocation, and the decider's
// reads right after are forwarded from those stores instead of waiting on a block copy.
struct Z_output_instance_t {
  std::vector<std::int32_t> emitted = std::vector<std::int32_t>(5);
  bool hasEmitted = false;
};

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

namespace {

// The interpreter's texts for the same traps, so both tiers report a trap alike.
const char* trapText(int code) {
  switch (code) {
    case WASM_RT_TRAP_OOB: return "RuntimeError: out of bounds memory access";
    case WASM_RT_TRAP_INT_OVERFLOW: return "RuntimeError: integer overflow";
    case WASM_RT_TRAP_DIV_BY_ZERO: return "RuntimeError: integer divide by zero";
    case WASM_RT_TRAP_INVALID_CONVERSION: return "RuntimeError: invalid conversion to integer";
    case WASM_RT_TRAP_UNREACHABLE: return "RuntimeError: unreachable executed";
    case WASM_RT_TRAP_EXHAUSTION: return "RuntimeError: call stack exhausted";
    default: return "RuntimeError: unknown trap";
  }
}

template <class Instance, auto Instantiate, auto Free, auto Decide, std::size_t Arity>
class PrecompiledModule final : public OrxModuleInstance {
 public:
  PrecompiledModule() { Instantiate(&instance_, &output_); }
  ~PrecompiledModule() override { Free(&instance_); }

  OrxInvocation invoke(const std::int32_t* arguments, std::size_t count) override {
    output_.hasEmitted = false;
    std::array<u32, Arity> values{};
    for (std::size_t i = 0; i < std::min(Arity, count); ++i) values[i] = static_cast<u32>(arguments[i]);
    u32 result = 0;
    OrxInvocation invocation;
    if (const int trap = orxRunTrapGuarded([&] { result = decide(values, std::make_index_sequence<Arity>{}); })) {
      invocation.error = trapText(trap);
    } else {
      invocation.result = static_cast<std::int32_t>(result);
    }
    if (output_.hasEmitted) invocation.emitted = &output_.emitted;
    return invocation;
  }

 private:
  template <std::size_t... I>
  u32 decide(const std::array<u32, Arity>& values, std::index_sequence<I...>) {
    return Decide(&instance_, values[I]...);
  }

  Instance instance_{};
  Z_output_instance_t output_;
};

using PrecompiledAuthorization = PrecompiledModule<Z_player_authz_instance_t, Z_player_authz_instantiate,
                                                   Z_player_authz_free, Z_player_authzZ_decide, 8>;
using PrecompiledSync = PrecompiledModule<Z_sync_correction_instance_t, Z_sync_correction_instantiate,
                                          Z_sync_correction_free, Z_sync_correctionZ_decide, 8>;
using PrecompiledCinema = PrecompiledModule<Z_cinema_admission_instance_t, Z_cinema_admission_instantiate,
                                            Z_cinema_admission_free, Z_cinema_admissionZ_decide, 13>;

}  // namespace

std::unique_ptr<OrxModuleInstance> instantiatePrecompiledModule(std::string_view digest) {
  static std::once_flag initialized;
  std::call_once(initialized, [] {
    wasm_rt_init();
    Z_player_authz_init_module();
    Z_sync_correction_init_module();
    Z_cinema_admission_init_module();
  });
  const auto& approved = OrxBuildConstants::expectedDigests();
  if (digest == approved.at("player_authz")) return std::make_unique<PrecompiledAuthorization>();
  if (digest == approved.at("sync_correction")) return std::make_unique<PrecompiledSync>();
  if (digest == approved.at("cinema_admission")) return std::make_unique<PrecompiledCinema>();
  return nullptr;
}
