#pragma once
// The binding of one module translated by wasm2c behind the engine boundary, shared by the approved
// modules and by the build's own metered test modules. A module translated from metered bytes
// (OrxFuelMetering.h) passes its budget exports, and the binding then sets the budgets before each
// call, runs the exported start function at construction and reports budget traps with the
// interpreter's texts. Include after the wasm2c headers of the modules it binds.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <ravo-orx/engine/OrxModuleInstance.h>
#include <ravo-orx/engine/OrxFuelMetering.h>
#include <ravo-orx/engine/wasm2c/PrecompiledTrap.h>

// The import every translated module shares (the build checks its signature): each instance owns one.
// Every emit writes all five values in place, one 32-bit store each: no allocation, and the decider's
// reads right after are forwarded from those stores instead of waiting on a block copy. The translated
// C code names this type, so it sits outside the namespace.
struct Z_output_instance_t {
  std::vector<std::int32_t> emitted = std::vector<std::int32_t>(5);
  bool hasEmitted = false;
};

namespace ravo::orx::internal {

// The interpreter's texts for the same traps, so both tiers report a trap alike.
inline std::string precompiledTrapText(int code) {
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

// A statically bounded module has no budgets to set; a metered one exports its fuel and stack globals,
// possibly its start function and its count of references pushed (OrxFuelMetering.h), given here as
// wasm2c's accessors.
struct Unmetered {};
template <auto Fuel, auto Stack, auto Start = nullptr, auto References = nullptr>
struct Metered {
  static constexpr auto fuel = Fuel;
  static constexpr auto stack = Stack;
  static constexpr auto start = Start;
  static constexpr auto references = References;
};

// The number of 32-bit arguments of a translated `decide`, from its own signature (the instance comes first).
template <class F>
struct TranslatedArity;
template <class R, class Instance, class... Arguments>
struct TranslatedArity<R (*)(Instance*, Arguments...)> {
  static constexpr std::size_t value = sizeof...(Arguments);
};

template <class Instance, auto Instantiate, auto Free, auto Decide, class Budgets = Unmetered>
class PrecompiledModule final : public OrxModuleInstance {
  static constexpr bool kMetered = !std::is_same_v<Budgets, Unmetered>;
  static constexpr std::size_t Arity = TranslatedArity<decltype(Decide)>::value;

 public:
  PrecompiledModule() {
    Instantiate(&instance_, &output_);
    if constexpr (kMetered) {
      if constexpr (Budgets::start != nullptr) {
        if (const int trap = orxRunTrapGuarded([this] { Budgets::start(&instance_); })) startError_ = trapText(trap);
      }
    }
  }
  ~PrecompiledModule() override { Free(&instance_); }

  // The trap of the start function, which makes the module fail to instantiate.
  const std::optional<std::string>& startError() const { return startError_; }

  OrxInvocation invoke(const std::int32_t* arguments, std::size_t count) override {
    output_.hasEmitted = false;
    u32 result = 0;
    OrxInvocation invocation;
    if constexpr (kMetered) {
      *Budgets::fuel(&instance_) = kOrxFuelPerCall;
      *Budgets::stack(&instance_) = 0;
      if constexpr (Budgets::references != nullptr) *Budgets::references(&instance_) = 0;
    }
    const auto call = [&] { result = decide(arguments, count, std::make_index_sequence<Arity>{}); };
    if (const int trap = orxRunTrapGuarded(call)) {
      invocation.error = error_.keep(trapText(trap));
    } else {
      invocation.result = static_cast<std::int32_t>(result);
    }
    if (output_.hasEmitted) invocation.emitted = &output_.emitted;
    return invocation;
  }

 private:
  // A missing argument is 0, as on the interpreter; the arguments go straight into the call, uncopied.
  template <std::size_t... I>
  u32 decide(const std::int32_t* arguments, std::size_t count, std::index_sequence<I...>) {
    return Decide(&instance_, (I < count ? static_cast<u32>(arguments[I]) : 0u)...);
  }

  std::string trapText(int code) {
    if constexpr (kMetered) {
      if (auto budget = budgetTrapText(static_cast<std::int64_t>(*Budgets::fuel(&instance_)),
                                       *Budgets::stack(&instance_))) {
        return *budget;
      }
    }
    return precompiledTrapText(code);
  }

  Instance instance_{};
  Z_output_instance_t output_;
  std::optional<std::string> startError_;
  OrxInvocationErrorText error_;
};

}  // namespace ravo::orx::internal
