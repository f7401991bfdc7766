// wabt's interpreter behind the engine boundary.
//
// The import object and the call protocol reproduce the reference script host natively:
// `output.emit` stores all its arguments and returns 0, replacing what an earlier call stored; the
// emitted list is reset before every `decide` call; values a script would not see as numbers are
// dropped. Because a module may declare any signature, values cross the boundary as a script host
// would convert them (a BigInt is what a script sees for an i64, and ToInt32 of a BigInt throws):
//
//   | crossing          | i32   | f32, f64       | i64        | externref | funcref   | v128      | several  |
//   |-------------------|-------|----------------|------------|-----------|-----------|-----------|----------|
//   | emit parameter    | as is | ToInt32        | dropped    | dropped   | dropped   | TypeError | -        |
//   | emit result       | 0     | 0              | TypeError  | null      | TypeError | TypeError | TypeError|
//   | decide parameter  | arg   | arg (NaN when  | TypeError  | null      | TypeError | TypeError | -        |
//   |                   | (0)   | missing)       |            |           |           |           |          |
//   | decide result     | as is | ToInt32        | TypeError  | 0         | 0         | TypeError | 0        |
//
// "arg (0)": the argument, 0 when the caller passed fewer; an emit result is the 0 emit returns; a
// decide result of a reference or of several values (an array to a script) converts to 0. A TypeError
// fails the call like a trap; emitted values stored before it stay. No result at all (decide returns
// nothing) is reported as no result.

#include <wabt/interp/interp.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include <ravo-orx/engine/OrxModuleInstance.h>
#include <ravo-orx/engine/OrxExecutionBound.h>
#include <ravo-orx/engine/OrxFuelMetering.h>
#include <ravo-orx/engine/OrxQuotedText.h>
#include <ravo-orx/engine/ScriptNumberConversion.h>
#include <ravo-orx/engine/WabtModuleReader.h>

namespace ravo::orx::internal {

namespace {

using namespace wabt::interp;
using wabt::Type;

constexpr const char* kTypeError = "TypeError: an argument or result has a type that cannot cross the boundary";

class WabtModuleInstance final : public OrxMeasuredModuleInstance {
 public:
  explicit WabtModuleInstance(bool measured) : store_(wabt::Features{}), measured_(measured) {}

  // Returns false and fills `failure` when the module cannot be instantiated.
  bool instantiate(const std::uint8_t* bytes, std::size_t size, OrxInstantiationFailure& failure) {
    ModuleDesc desc;
    if (auto refusal = readExecutedModule(bytes, size, desc)) return fail(failure, std::move(*refusal));

    module_ = Module::New(store_, std::move(desc));
    RefVec imports;
    for (const auto& import : module_->desc().imports) {
      imports.push_back(makeEmit(*wabt::cast<FuncType>(import.type.type.get())).ref());
    }
    Trap::Ptr trap;
    instance_ = Instance::Instantiate(store_, module_.ref(), imports, &trap);
    if (!instance_) return fail(failure, trap ? trapText(trap) : "RuntimeError: instantiation failed");
    thread_ = std::make_unique<Thread>(store_);

    const auto [hasDecide, start] = bindExports();
    // A metered module's start function runs here, under the budgets, as part of instantiation.
    if (start) {
      Values none;
      if (wabt::Failed(start->Call(*thread_, none, none, &trap))) return fail(failure, trapText(trap));
      forgetReferenceRecords();
    }
    if (!hasDecide) {
      failure = {OrxInstantiationFailure::Kind::noDecideExport, {}};
      return false;
    }
    return true;
  }

  OrxInvocation invoke(const std::int32_t* arguments, std::size_t count) override {
    emitted_.clear();
    hasEmitted_ = false;
    emits_ = 0;
    typeErrorRaised_ = false;
    OrxInvocation invocation;
    if (!decide_) {
      invocation.error = error_.keep("TypeError: decide is not a function");
    } else if (decideReturnsV128_ || !packArguments(arguments, count)) {
      invocation.error = error_.keep(kTypeError);
    } else {
      results_.clear();
      resetBudgets();
      Trap::Ptr trap;
      if (wabt::Failed(decide_->Call(*thread_, params_, results_, &trap))) {
        invocation.error = error_.keep(typeErrorRaised_ ? kTypeError : trapText(trap));
        // A trap unwinds nothing: the interpreter thread keeps the failed call's frames and values,
        // and reusing it would shift every later call's locals. Start the next call on a fresh one.
        thread_ = std::make_unique<Thread>(store_);
        // Every trap is an object of the store, freed only by a collection; without one, a module that
        // keeps failing would grow the store by a trap per decision for the runtime's whole life.
        trap.reset();
        store_.Collect();
      } else {
        forgetReferenceRecords();
        if (decideReturnsBigInt_) {
          invocation.error = error_.keep(kTypeError);  // ToInt32 of a BigInt throws once the call has returned
        } else {
          invocation.result = convertResult();
        }
      }
    }
    if (hasEmitted_) invocation.emitted = &emitted_;
    return invocation;
  }

  OrxCallMeasure lastMeasure() const override {
    OrxCallMeasure measure{emits_, 0, 0};
    if (fuel_) measure.fuel = kOrxFuelPerCall - static_cast<std::uint64_t>(fuel_->Get().Get<s64>());
    if (peakStack_) measure.peakStackUnits = peakStack_->Get().Get<u32>();
    return measure;
  }

 private:
  // Reads and links the module the host runs for these bytes: the bytes themselves when statically
  // bounded, else their metered rewrite. Imports are checked on the bytes as given.
  std::optional<std::string> readExecutedModule(const std::uint8_t* bytes, std::size_t size, ModuleDesc& desc) {
    OrxCodeAnalysis analysis;
    if (auto refusal = readWabtModule(bytes, size, desc, analysis)) return refusal;
    for (const auto& import : desc.imports) {
      const auto& type = import.type;
      if (type.module != "output" || type.name != "emit" || type.type->kind != ExternKind::Func) {
        return "LinkError: import " + orxQuotedText(type.module) + "." + orxQuotedText(type.name) +
               " is not provided (only the function output.emit is)";
      }
    }
    if (analysis.bounded && !measured_) return std::nullopt;
    metered_ = true;
    std::vector<std::uint8_t> metered;
    if (auto refusal = meterModule(bytes, size, analysis.sites, metered, /*keepPeakStack=*/measured_)) return refusal;
    desc = ModuleDesc{};
    return readValidatedModule(metered.data(), metered.size(), desc);
  }

  // Finds decide and a metered module's budget globals and start function; says whether an export
  // named decide exists. The budget names are the host's only in a module it metered itself: an
  // unmetered module may export anything under them.
  std::pair<bool, Func::Ptr> bindExports() {
    bool hasDecide = false;
    Func::Ptr start;
    const auto& exports = module_->export_types();
    for (size_t i = 0; i < exports.size(); ++i) {
      const Ref ref = instance_->exports()[i];
      if (metered_) {
        if (exports[i].name == kOrxFuelExport) fuel_ = store_.UnsafeGet<Global>(ref);
        if (exports[i].name == kOrxStackExport) stack_ = store_.UnsafeGet<Global>(ref);
        if (exports[i].name == kOrxReferencesExport) references_ = store_.UnsafeGet<Global>(ref);
        if (measured_ && exports[i].name == kOrxPeakStackExport) peakStack_ = store_.UnsafeGet<Global>(ref);
        if (exports[i].name == kOrxStartExport) start = store_.UnsafeGet<Func>(ref);
      }
      if (exports[i].name != "decide") continue;
      hasDecide = true;
      // An export named decide that is not a function exists but cannot be called, as in a script.
      if (exports[i].type->kind != ExternKind::Func) continue;
      decide_ = store_.UnsafeGet<Func>(ref);
      const auto& results = decide_->type().results;
      decideReturnsV128_ = std::find(results.begin(), results.end(), Type::V128) != results.end();
      decideReturnsBigInt_ = results.size() == 1 && results[0] == Type::I64;
      const auto& params = decide_->type().params;
      decideTakesReferences_ = std::any_of(params.begin(), params.end(), [](Type type) { return type.IsRef(); });
    }
    return {hasDecide, std::move(start)};
  }

  void resetBudgets() {
    if (fuel_) fuel_->UnsafeSet(Value::Make(u64{kOrxFuelPerCall}));
    if (stack_) stack_->UnsafeSet(Value::Make(u32{0}));
    if (peakStack_) peakStack_->UnsafeSet(Value::Make(u32{0}));
    if (references_) references_->UnsafeSet(Value::Make(u64{0}));
  }

  // The interpreter thread records where each reference it pushes sits on its value stack (one record
  // per reference argument too) and forgets a record only when a later pop finds it above the stack,
  // so a thread that has run calls with references keeps their records, unbounded. After a call that
  // may have left any, the next runs on a fresh thread (a few hundred nanoseconds); the rest reuse it.
  void forgetReferenceRecords() {
    if (decideTakesReferences_ || (references_ && references_->Get().Get<u64>() > 0)) {
      thread_ = std::make_unique<Thread>(store_);
    }
  }

  // The trap's text as a script sees it; a metered module's budget traps are told apart from its own
  // `unreachable` by the budget globals (OrxFuelMetering.h).
  std::string trapText(const Trap::Ptr& trap) const {
    if (fuel_ && stack_) {
      if (auto budget = budgetTrapText(fuel_->Get().Get<s64>(), stack_->Get().Get<u32>())) return *budget;
    }
    return "RuntimeError: " + (trap ? trap->message() : std::string("unknown trap"));
  }

  static bool fail(OrxInstantiationFailure& failure, std::string detail) {
    failure = {OrxInstantiationFailure::Kind::invalidModule, std::move(detail)};
    return false;
  }

  HostFunc::Ptr makeEmit(const FuncType& type) {
    return HostFunc::New(store_, type, [this, type](Thread&, const Values& params, Values& results, Trap::Ptr* trap) {
      return emit(type, params, results, trap);
    });
  }

  wabt::Result emit(const FuncType& type, const Values& params, Values& results, Trap::Ptr* trap) {
    for (Type param : type.params) {
      if (param == Type::V128) return typeError(trap);  // refused before the values are stored
    }
    emitted_.clear();
    hasEmitted_ = true;
    ++emits_;
    for (size_t i = 0; i < params.size() && i < type.params.size(); ++i) {
      switch (type.params[i]) {
        case Type::I32: emitted_.push_back(params[i].Get<s32>()); break;
        case Type::F32: emitted_.push_back(scriptToInt32(params[i].Get<f32>())); break;
        case Type::F64: emitted_.push_back(scriptToInt32(params[i].Get<f64>())); break;
        default: break;  // not a script number: dropped
      }
    }
    // The stored values stay even when the returned 0 cannot be converted to the declared result.
    if (type.results.size() > 1) return typeError(trap);
    results.resize(type.results.size());
    if (type.results.empty()) return wabt::Result::Ok;
    switch (type.results[0]) {
      case Type::I32: results[0] = Value::Make(s32{0}); return wabt::Result::Ok;
      case Type::F32: results[0] = Value::Make(f32{0}); return wabt::Result::Ok;
      case Type::F64: results[0] = Value::Make(f64{0}); return wabt::Result::Ok;
      case Type::ExternRef: results[0] = Value::Make(Ref::Null); return wabt::Result::Ok;
      default: return typeError(trap);
    }
  }

  // A conversion the script host would refuse; the call then fails with a TypeError, not a trap.
  wabt::Result typeError(Trap::Ptr* trap) {
    *trap = Trap::New(store_, "type conversion refused");
    typeErrorRaised_ = true;
    return wabt::Result::Error;
  }

  bool packArguments(const std::int32_t* arguments, std::size_t count) {
    const auto& types = decide_->type().params;
    params_.resize(types.size());
    for (size_t i = 0; i < types.size(); ++i) {
      const bool given = i < count;
      const std::int32_t argument = given ? arguments[i] : 0;
      switch (types[i]) {
        case Type::I32: params_[i] = Value::Make(s32{argument}); break;
        case Type::F32: params_[i] = Value::Make(given ? static_cast<f32>(argument) : std::nanf("")); break;
        case Type::F64: params_[i] = Value::Make(given ? static_cast<f64>(argument) : std::nan("")); break;
        case Type::ExternRef: params_[i] = Value::Make(Ref::Null); break;
        default: return false;
      }
    }
    return true;
  }

  std::optional<std::int32_t> convertResult() const {
    const auto& types = decide_->type().results;
    if (types.empty()) return std::nullopt;
    if (types.size() > 1) return 0;  // several results reach a script as an array
    switch (types[0]) {
      case Type::I32: return results_[0].Get<s32>();
      case Type::F32: return scriptToInt32(results_[0].Get<f32>());
      case Type::F64: return scriptToInt32(results_[0].Get<f64>());
      default: return 0;
    }
  }

  Store store_;
  Module::Ptr module_;
  Instance::Ptr instance_;
  Func::Ptr decide_;
  // Fixed by decide's type: a script cannot call a function with v128 in its results, and ToInt32 of
  // the BigInt it sees for a single i64 result throws.
  bool decideReturnsV128_ = false;
  bool decideReturnsBigInt_ = false;
  bool decideTakesReferences_ = false;  // the host then pushes a reference per such parameter
  bool measured_;         // metered whatever the module, keeping the peak stack too
  bool metered_ = false;  // runs the host's metered rewrite, not the bytes as given
  Global::Ptr fuel_;      // the budgets of a metered module; null when it runs unmetered
  Global::Ptr stack_;
  Global::Ptr peakStack_;  // a measured instance's only
  Global::Ptr references_;  // a metered module's that pushes references
  std::unique_ptr<Thread> thread_;
  Values params_;   // reused across calls: no allocation per decision
  Values results_;
  std::vector<std::int32_t> emitted_;
  OrxInvocationErrorText error_;
  bool hasEmitted_ = false;
  std::size_t emits_ = 0;
  bool typeErrorRaised_ = false;
};

std::unique_ptr<WabtModuleInstance> instantiate(const std::uint8_t* bytes, std::size_t size, bool measured,
                                                OrxInstantiationFailure& failure) {
  auto instance = std::make_unique<WabtModuleInstance>(measured);
  if (!instance->instantiate(bytes, size, failure)) return nullptr;
  return instance;
}

}  // namespace

std::unique_ptr<OrxModuleInstance> instantiateInterpretedModule(const std::uint8_t* bytes, std::size_t size,
                                                                OrxInstantiationFailure& failure) {
  return instantiate(bytes, size, /*measured=*/false, failure);
}

std::unique_ptr<OrxMeasuredModuleInstance> instantiateMeasuredModule(const std::uint8_t* bytes, std::size_t size,
                                                                     OrxInstantiationFailure& failure) {
  return instantiate(bytes, size, /*measured=*/true, failure);
}

}  // namespace ravo::orx::internal
