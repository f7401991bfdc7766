#include <ravo-orx/prove/OrxDecideModel.h>

#include <wabt/binary-reader-ir.h>
#include <wabt/cast.h>
#include <wabt/ir.h>

#include <algorithm>
#include <stdexcept>

#include <ravo-orx/engine/OrxExecutionBound.h>
#include <ravo-orx/engine/OrxLoadBudgets.h>
#include <ravo-orx/engine/WabtReadOptions.h>
#include <ravo-orx/prove/SymbolicExecutor.h>
#include <ravo-orx/prove/SymbolicFold.h>

namespace ravo::orx::internal {

namespace {

using wabt::Index;
using wabt::Type;

// Data segments are held as one formula each byte; more than this many non-zero bytes are not
// followed (a compiled policy's tables are a few hundred).
constexpr std::size_t kMaxInitialBytes = 65'536;

// An initialiser's value: a constant (or, for a global, an earlier global's value).
std::optional<std::uint64_t> constantOf(const wabt::ExprList& init, const std::vector<z3::expr>& globals) {
  if (init.size() != 1) return std::nullopt;
  const wabt::Expr& expr = init.front();
  if (const auto* value = wabt::dyn_cast<wabt::ConstExpr>(&expr)) {
    if (value->const_.type() == Type::I32) return value->const_.u32();
    if (value->const_.type() == Type::I64) return value->const_.u64();
    return std::nullopt;
  }
  if (const auto* global = wabt::dyn_cast<wabt::GlobalGetExpr>(&expr)) {
    const Index index = global->var.index();
    if (index < globals.size() && globals[index].is_numeral()) return globals[index].get_numeral_uint64();
  }
  return std::nullopt;
}

class ModuleModel {
 public:
  ModuleModel(const wabt::Module& module, z3::context& context, bool metered, const OrxModelLimits& limits)
      : module_(module), context_(context), always_(context.bool_val(true)) {
    std::vector<OrxModelGap> setUp;
    initial_.emplace(SymbolicState{always_, {}, {}, globals(setUp), {always_, always_}, noEmission()});
    memory_.emplace(context, initialPages(), maximumPages(), initialBytes(setUp));
    initial_->memory = memory_->initial();
    executor_.emplace(module, context, *memory_,
                      SymbolicExecutor::Budgets{metered, limits});
    for (const auto& gap : setUp) executor_->addGap(gap.condition, gap.reason);
  }

  OrxDecideModel decide(const std::vector<z3::expr>& facts) {
    runStart();
    executor_->setBaseline(*initial_);
    OrxDecideModel model{always_, std::nullopt, noEmission(), {}};
    std::optional<SymbolicState> state = *initial_;
    const wabt::Func* decide = decideFunction(state);
    if (decide) {
      const auto& signature = decide->decl.sig;
      for (Index i = 0; i < signature.GetNumParams() && state; ++i) {
        const Type type = signature.GetParamType(i);
        if (type == Type::F32 || type == Type::F64 || type == Type::ExternRef) {
          executor_->gap(state, always_, "decide takes a floating-point or reference argument");
        } else if (type != Type::I32) {
          executor_->trap(state, always_);  // the host cannot pass this argument: a TypeError
        } else {
          state->stack.push_back(i < facts.size() ? facts[i] : context_.bv_val(0, 32));
        }
      }
      if (state && std::count(signature.result_types.begin(), signature.result_types.end(), Type::V128) > 0) {
        executor_->trap(state, always_);
      }
      if (state) state = executor_->call(decideIndex_, std::move(*state));
      if (state) returned(*decide, model, state);
    }
    if (state) executor_->noteExit(*state, state->reach);
    finish(model, state);
    return model;
  }

 private:
  SymbolicEmission noEmission() const {
    const z3::expr zero = context_.bv_val(0, 32);
    return {context_.bool_val(false), zero, std::vector<z3::expr>(kSymbolicEmittedValues, zero)};
  }

  std::vector<z3::expr> globals(std::vector<OrxModelGap>& gaps) {
    std::vector<z3::expr> values;
    for (const wabt::Global* global : module_.globals) {
      const auto bits = global->type == Type::I64 ? 64u : 32u;
      const auto constant = constantOf(global->init_expr, values);
      const bool integer = global->type == Type::I32 || global->type == Type::I64;
      if (integer && !constant) gaps.push_back({always_, "a global's initial value is not a constant"});
      values.push_back(context_.bv_val(integer && constant ? *constant : 0, bits));
    }
    return values;
  }

  std::uint32_t initialPages() const {
    return module_.memories.empty() ? 0 : static_cast<std::uint32_t>(module_.memories.front()->page_limits.initial);
  }

  // Growth stops at the declared maximum, and at the host's cap when the module is metered; a module
  // the host runs unmetered has no growth past the cap (the execution bound requires it).
  std::uint32_t maximumPages() const {
    if (module_.memories.empty()) return 0;
    const wabt::Limits& limits = module_.memories.front()->page_limits;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(limits.has_max ? limits.max : 65'536, kOrxMaxMemoryPages));
  }

  std::map<std::uint32_t, std::uint8_t> initialBytes(std::vector<OrxModelGap>& gaps) {
    std::map<std::uint32_t, std::uint8_t> bytes;
    for (const wabt::DataSegment* segment : module_.data_segments) {
      if (segment->kind != wabt::SegmentKind::Active) continue;  // only memory.init, a gap, reads it
      const auto offset = constantOf(segment->offset, initial_->globals);
      if (!offset) {
        gaps.push_back({always_, "a data segment's offset is not a constant"});
        continue;
      }
      for (std::size_t i = 0; i < segment->data.size(); ++i) {
        if (segment->data[i] == 0) {
          bytes.erase(static_cast<std::uint32_t>(*offset + i));  // a later segment overwrites an earlier one
        } else {
          bytes[static_cast<std::uint32_t>(*offset + i)] = segment->data[i];
        }
      }
      if (bytes.size() > kMaxInitialBytes) {
        gaps.push_back({always_, "the data segments hold more than " + std::to_string(kMaxInitialBytes) +
                                     " non-zero bytes"});
        bytes.clear();
        break;
      }
    }
    return bytes;
  }

  // The start function runs once, at instantiation: its work is the instance every call starts from.
  void runStart() {
    if (module_.starts.empty()) return;
    auto started = executor_->call(module_.starts.front()->index(), *initial_);
    if (started) initial_ = std::move(*started);
    // It cannot have trapped (the host refuses such a module); anything it left unfollowed is a gap.
  }

  const wabt::Func* decideFunction(std::optional<SymbolicState>& state) {
    for (const wabt::Export* exported : module_.exports) {
      if (exported->name != "decide") continue;
      if (exported->kind != wabt::ExternalKind::Func) break;
      decideIndex_ = exported->var.index();
      return module_.funcs[decideIndex_];
    }
    executor_->trap(state, always_);  // "decide is not a function"
    return nullptr;
  }

  // decide's result as the host converts it.
  void returned(const wabt::Func& decide, OrxDecideModel& model, std::optional<SymbolicState>& state) {
    const auto& results = decide.decl.sig.result_types;
    if (results.empty()) return;
    if (results.size() > 1) {
      model.result = context_.bv_val(0, 32);  // an array to a script, 0 as a number
    } else if (results[0] == Type::I32) {
      model.result = state->stack.back();
    } else if (results[0] == Type::I64) {
      executor_->trap(state, always_);  // ToInt32 of a BigInt throws
    } else if (results[0] == Type::ExternRef || results[0] == Type::FuncRef) {
      model.result = context_.bv_val(0, 32);
    } else {
      executor_->gap(state, always_, "decide returns a floating-point value");
    }
  }

  void finish(OrxDecideModel& model, const std::optional<SymbolicState>& state) {
    model.trapped = executor_->trapped();
    std::vector<std::pair<z3::expr, SymbolicEmission>> exits = executor_->trapEmissions();
    if (state) exits.emplace_back(state->reach, state->emission);
    if (!exits.empty()) model.emission = joinedEmission(exits);
    model.gaps = executor_->gaps();
  }

  const wabt::Module& module_;
  z3::context& context_;
  z3::expr always_;
  std::optional<SymbolicState> initial_;
  std::optional<SymbolicMemoryModel> memory_;
  std::optional<SymbolicExecutor> executor_;
  Index decideIndex_ = 0;
};

}  // namespace

OrxDecideModel orxModelDecide(const std::uint8_t* bytes, std::size_t size, const std::vector<z3::expr>& facts,
                              const OrxModelLimits& limits) {
  if (facts.empty()) throw std::runtime_error("the model needs the facts' context");
  wabt::Errors errors;
  wabt::Module module;
  if (wabt::Failed(wabt::ReadBinaryIr("module", bytes, size, wabtReadOptions(), &errors, &module))) {
    throw std::runtime_error(wabtCompileError(errors));
  }
  const bool metered = !analyzeCode(bytes, size).bounded;
  return ModuleModel(module, facts.front().ctx(), metered, limits).decide(facts);
}

}  // namespace ravo::orx::internal
