#pragma once
// The engine boundary: everything the module host needs from a WebAssembly engine, and nothing more.
// A module imports `output.emit`, exports `decide`, and reports its answer by calling `emit`; only the
// last `emit` of a call counts. Decision code sees this interface only; the engine behind it lives in
// runtime/engine/ (compiled separately, because the engine's headers are C++17-only).

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ravo::orx::internal {

// The text of a failed call, kept by the instance until its next invoke; reads like an optional text,
// so a call that does not fail builds and copies no string.
class OrxInvocationError {
 public:
  OrxInvocationError() = default;
  explicit OrxInvocationError(const std::string& text) : text_(&text) {}

  explicit operator bool() const { return text_ != nullptr; }
  const std::string& operator*() const { return *text_; }
  const std::string* operator->() const { return text_; }
  operator std::optional<std::string>() const { return text_ ? std::optional(*text_) : std::nullopt; }

 private:
  const std::string* text_ = nullptr;
};

// Where an instance keeps the text of its last failed call, for the OrxInvocationError it returns.
class OrxInvocationErrorText {
 public:
  OrxInvocationError keep(std::string text) {
    text_ = std::move(text);
    return OrxInvocationError(text_);
  }

 private:
  std::string text_;
};

// One call's outcome. Trivially copyable and small, since every decision returns one through a virtual
// call: what it points to is owned by the instance and valid until its next invoke.
struct OrxInvocation {
  // decide's return value converted like a script's ToInt32; absent when decide returns nothing.
  std::optional<std::int32_t> result;
  // The numeric values of the last `emit` of this call (non-numeric ones dropped); null when `emit`
  // was not called.
  const std::vector<std::int32_t>* emitted = nullptr;
  // The trap or conversion error the call raised, in a script's error text form ("RuntimeError: …");
  // empty when the call succeeded.
  OrxInvocationError error;
};

class OrxModuleInstance {
 public:
  virtual ~OrxModuleInstance() = default;
  // Calls `decide` with the arguments in order. Never throws for anything the module does; not safe
  // for concurrent use (the runtime's lock serialises calls).
  virtual OrxInvocation invoke(const std::int32_t* arguments, std::size_t count) = 0;
};

// What the toolchain learns of a call beyond its outcome, to explain it to a policy's author; the
// decisions runtime never asks.
struct OrxCallMeasure {
  std::size_t emits = 0;  // how often the call emitted; only the last emission counts
  // The fuel the host's metering charged; more than kOrxFuelPerCall when the call ran out.
  std::uint64_t fuel = 0;
  std::uint64_t peakStackUnits = 0;  // the deepest the call stack went, counted as the budget counts it
};

// An interpreted instance that runs every module metered (even one proven bounded, which the host runs
// as it is), so that each call's fuel and stack are counted, and keeps the last call's measure.
class OrxMeasuredModuleInstance : public OrxModuleInstance {
 public:
  virtual OrxCallMeasure lastMeasure() const = 0;
};

struct OrxInstantiationFailure {
  enum class Kind {
    invalidModule,   // not WebAssembly, invalid, over a load budget, or linking/instantiation failed
    noDecideExport,  // instantiated, but exports no `decide`
  };
  Kind kind;
  std::string detail;  // the engine's text for invalidModule
};

// Checks the load budgets, parses and validates, meters the module unless it is statically bounded,
// then links `output.emit` and instantiates it in wabt's interpreter. On failure returns null and fills
// `failure`.
std::unique_ptr<OrxModuleInstance> instantiateInterpretedModule(const std::uint8_t* bytes, std::size_t size,
                                                                OrxInstantiationFailure& failure);

// As instantiateInterpretedModule, metered whatever the module, for measurements.
std::unique_ptr<OrxMeasuredModuleInstance> instantiateMeasuredModule(const std::uint8_t* bytes, std::size_t size,
                                                                     OrxInstantiationFailure& failure);

// The approved module with this digest compiled to native code at build time, or null when the build
// compiled no module with that digest. Callers verify the bytes first, like any module's.
std::unique_ptr<OrxModuleInstance> instantiatePrecompiledModule(std::string_view digest);

// The module of bytes whose digest the build approves (the caller has proven it): the build validated
// and translated exactly these bytes, so the decisions runtime binds its native code and never parses
// them. An interpreter-only build (ORX_PRECOMPILED=OFF) instantiates them in the interpreter instead.
// On failure returns null and fills `failure`.
std::unique_ptr<OrxModuleInstance> instantiateApprovedModule(std::string_view digest, const std::uint8_t* bytes,
                                                             std::size_t size, OrxInstantiationFailure& failure);
// Whether instantiateApprovedModule binds native code (false in an interpreter-only build).
bool approvedModulesRunNatively();

// A module's imports and exports as signature texts, e.g. "func output.emit(i32, i32) -> (i32)" or
// "memory memory"; nothing when the bytes are not a valid module. Used to check a package's contract.
struct OrxModuleInterface {
  std::vector<std::string> imports;
  std::vector<std::string> exports;
};
std::optional<OrxModuleInterface> describeModuleInterface(const std::uint8_t* bytes, std::size_t size);

// How the host bounds a module's calls. A statically bounded module (no loop, recursion, indirect call
// or bulk operation, and a proven worst case within the execution budget) runs as it is; any other runs
// metered, with fuel charged for loops, calls and bytes moved, and traps "RuntimeError: execution
// budget exhausted" when a call runs out. Nothing when the host would refuse the bytes.
struct OrxExecutionBound {
  bool bounded = false;
  std::uint64_t worstCaseFuel = 0;  // the proven cost of the costliest call, in fuel units, when bounded
  std::uint64_t fuelPerCall = 0;    // the execution budget of every call
  std::string meteringReason;       // why a module is metered, e.g. "it contains a loop"
};
std::optional<OrxExecutionBound> describeExecutionBound(const std::uint8_t* bytes, std::size_t size);

// The bytes the host runs for a module: the bytes themselves when statically bounded, else their metered
// rewrite; nothing when the host would refuse them. The build translates these for native code.
std::optional<std::vector<std::uint8_t>> executedModuleBytes(const std::uint8_t* bytes, std::size_t size);

}  // namespace ravo::orx::internal
