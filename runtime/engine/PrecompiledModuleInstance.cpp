// The precompiled tier: the approved modules, translated to C by wasm2c at build time and bound here
// behind the same engine boundary as the interpreter. Only bytes whose digest is a build constant run
// here (the build checked that the translated files are exactly those bytes), and they have already
// passed the same parsing, validation and bounded-execution verifier as any module.

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
struct Z_output_instance_t {
  std::vector<std::int32_t> emitted;
  bool hasEmitted = false;
};

extern "C" u32 Z_outputZ_emit(Z_output_instance_t* output, u32 tag, u32 result, u32 first, u32 second, u32 third) {
  output->emitted.assign({static_cast<std::int32_t>(tag), static_cast<std::int32_t>(result),
                          static_cast<std::int32_t>(first), static_cast<std::int32_t>(second),
                          static_cast<std::int32_t>(third)});
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
  PrecompiledModule() {
    output_.emitted.reserve(5);  // the emitted record never allocates on the decision path
    Instantiate(&instance_, &output_);
  }
  ~PrecompiledModule() override { Free(&instance_); }

  OrxInvocation invoke(const std::int32_t* arguments, std::size_t count) override {
    output_.emitted.clear();
    output_.hasEmitted = false;
    Call call{this, {}, 0};
    for (std::size_t i = 0; i < Arity && i < count; ++i) call.arguments[i] = static_cast<u32>(arguments[i]);
    OrxInvocation invocation;
    if (const int trap = orx_wasm2c_call_guarded(&run, &call)) {
      invocation.error = trapText(trap);
    } else {
      invocation.result = static_cast<std::int32_t>(call.result);
    }
    if (output_.hasEmitted) invocation.emitted = &output_.emitted;
    return invocation;
  }

 private:
  // Everything the guarded call touches is trivially destructible: a trap unwinds it with longjmp.
  struct Call {
    PrecompiledModule* self;
    std::array<u32, Arity> arguments;
    u32 result;
  };

  static void run(void* context) {
    auto* call = static_cast<Call*>(context);
    call->result = [&]<std::size_t... I>(std::index_sequence<I...>) {
      return Decide(&call->self->instance_, call->arguments[I]...);
    }(std::make_index_sequence<Arity>{});
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
