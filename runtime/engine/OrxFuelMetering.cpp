#include <ravo-orx/engine/OrxFuelMetering.h>

#include <wabt/binary-reader-ir.h>
#include <wabt/binary-reader.h>
#include <wabt/binary-writer.h>
#include <wabt/ir.h>
#include <wabt/stream.h>
#include <wabt/validator.h>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include <ravo-orx/engine/OrxExecutionBound.h>
#include <ravo-orx/engine/OrxLoadBudgets.h>
#include <ravo-orx/engine/OrxQuotedText.h>
#include <ravo-orx/engine/WabtModuleReader.h>
#include <ravo-orx/engine/WabtReadOptions.h>

namespace ravo::orx::internal {

namespace {

using namespace wabt;

// Instructions the metering runs, charged like the module's own (a trap's `unreachable` never runs).
constexpr std::uint64_t kChargeInstructions = 8;
constexpr std::uint64_t kFrameAccountingInstructions = 12;
constexpr std::uint64_t kReferenceCountInstructions = 4;

// Instructions each construct adds to the code, the `end` of its `if` included: what the budget on the
// rewrite counts.
constexpr std::uint64_t kChargeCode = 10;           // charge, chargeReferences
constexpr std::uint64_t kLengthChargeCode = 12;     // chargeLength
constexpr std::uint64_t kFrameAccountingCode = 14;  // accountFrame, without keepPeak
constexpr std::uint64_t kPeakKeepingCode = 7;       // keepPeak
constexpr std::uint64_t kReferenceCountCode = 4;    // countReference

template <class T, class... Args>
void append(ExprList& list, Args&&... args) {
  list.push_back(std::make_unique<T>(std::forward<Args>(args)...));
}

// Rewrites one module's code; the globals are created before any function is instrumented.
class Meter {
 public:
  Meter(Module& module, bool keepPeakStack, bool countReferences) : module_(module) {
    fuel_ = addExportedGlobal(Type::I64, Const::I64(kOrxFuelPerCall), kOrxFuelExport);
    stack_ = addExportedGlobal(Type::I32, Const::I32(0), kOrxStackExport);
    if (keepPeakStack) peakStack_ = addExportedGlobal(Type::I32, Const::I32(0), kOrxPeakStackExport);
    if (countReferences) references_ = addExportedGlobal(Type::I64, Const::I64(0), kOrxReferencesExport);
    if (!module.starts.empty()) {
      addExport(kOrxStartExport, ExternalKind::Func, *module.starts.front());
      module.starts.clear();
    }
    for (Index f = module.num_func_imports; f < module.funcs.size(); ++f) {
      largestFrame_ = std::max(largestFrame_, frameOf(*module.funcs[f]));
    }
  }

  void instrument(Func& func) {
    scratch_.reset();
    func_ = &func;
    labels_.assign(1, func.GetNumResults());
    const std::uint64_t cost = 1 + func.GetNumLocals() + instrumentList(func.exprs);
    ExprList entry = charge(cost);
    func.exprs.splice(func.exprs.begin(), std::move(entry));
  }

  static void capGrowth(Limits& limits, std::uint64_t cap) {
    limits.max = limits.has_max ? std::min(limits.max, cap) : cap;
    limits.has_max = true;
  }

 private:
  Var addGlobal(Type type, bool mutable_, std::unique_ptr<Expr> initial) {
    const Index index = module_.globals.size();
    auto global = std::make_unique<GlobalModuleField>();
    global->global.type = type;
    global->global.mutable_ = mutable_;
    global->global.init_expr.push_back(std::move(initial));
    module_.AppendField(std::move(global));
    return Var(index, Location());
  }

  Var addExportedGlobal(Type type, const Const& initial, const char* name) {
    const Var global = addGlobal(type, /*mutable_=*/true, std::make_unique<ConstExpr>(initial));
    addExport(name, ExternalKind::Global, global);
    return global;
  }

  // Immutable globals holding the references that ref.null and ref.func push: reading a global pushes
  // the same reference without an interpreter record. One per reference type or function, once needed.
  Var nullGlobal(Type type) {
    auto [found, added] = referenceGlobals_.try_emplace({type, kInvalidIndex});
    if (added) found->second = addGlobal(type, /*mutable_=*/false, std::make_unique<RefNullExpr>(type));
    return found->second;
  }

  Var functionGlobal(Index function) {
    auto [found, added] = referenceGlobals_.try_emplace({Type::FuncRef, function});
    if (added) {
      auto initial = std::make_unique<RefFuncExpr>(Var(function, Location()));
      found->second = addGlobal(Type::FuncRef, /*mutable_=*/false, std::move(initial));
    }
    return found->second;
  }

  void addExport(const char* name, ExternalKind kind, const Var& var) {
    auto field = std::make_unique<ExportModuleField>();
    field->export_.name = name;
    field->export_.kind = kind;
    field->export_.var = var;
    module_.AppendField(std::move(field));
  }

  std::uint64_t frameOf(const Func& func) const { return kOrxFrameUnits + func.GetNumParamsAndLocals(); }

  static bool returnsReference(const Func& func) {
    const auto& results = func.decl.sig.result_types;
    return std::any_of(results.begin(), results.end(), [](Type type) { return type.IsRef(); });
  }

  // Instruments the list in place; returns the cost of running it once, nested loops excluded (each
  // charges its own iterations).
  std::uint64_t instrumentList(ExprList& list) {
    std::uint64_t cost = 0;
    for (auto it = list.begin(); it != list.end(); ++it) {
      ++cost;
      Expr& expr = *it;
      ExprList before;  // code to run before the instruction, and after it
      ExprList after;
      std::unique_ptr<Expr> replacement;  // an instruction to run instead
      switch (expr.type()) {
        case ExprType::Block: {
          Block& block = cast<BlockExpr>(&expr)->block;
          cost += instrumentLabelled(block.exprs, block.decl.GetNumResults());
          break;
        }
        case ExprType::If: {
          auto* branch = cast<IfExpr>(&expr);
          const Index results = branch->true_.decl.GetNumResults();
          cost += instrumentLabelled(branch->true_.exprs, results) + instrumentLabelled(branch->false_, results);
          break;
        }
        case ExprType::Loop: {
          Block& loop = cast<LoopExpr>(&expr)->block;
          ExprList iteration = charge(1 + instrumentLabelled(loop.exprs, loop.decl.GetNumParams()));
          loop.exprs.splice(loop.exprs.begin(), std::move(iteration));
          break;
        }
        case ExprType::Call: {
          const Index index = cast<CallExpr>(&expr)->var.index();
          const Func& callee = *module_.funcs[index];
          if (index >= module_.num_func_imports) {
            cost += accountFrame(before, after, frameOf(callee));
          } else if (returnsReference(callee)) {
            cost += countReference(after);
          }
          break;
        }
        case ExprType::CallIndirect: cost += accountFrame(before, after, largestFrame_); break;
        // A branch moves the values it keeps over those it drops, and walks the interpreter's records
        // of the references above them.
        case ExprType::Br: cost += keptBy(cast<BrExpr>(&expr)->var) + chargeReferences(before); break;
        case ExprType::BrIf: cost += keptBy(cast<BrIfExpr>(&expr)->var) + chargeReferences(before); break;
        case ExprType::BrTable:
          cost += keptBy(cast<BrTableExpr>(&expr)->default_target) + chargeReferences(before);
          break;
        case ExprType::RefNull:
          replacement = std::make_unique<GlobalGetExpr>(nullGlobal(cast<RefNullExpr>(&expr)->type));
          break;
        case ExprType::RefFunc:
          replacement = std::make_unique<GlobalGetExpr>(functionGlobal(cast<RefFuncExpr>(&expr)->var.index()));
          break;
        case ExprType::TableGet: cost += countReference(after); break;
        case ExprType::MemoryFill:
        case ExprType::MemoryCopy:
        case ExprType::MemoryInit:
        case ExprType::TableFill:
        case ExprType::TableCopy:
        case ExprType::TableInit: before = chargeLength(); break;
        default: break;
      }
      if (replacement) it = list.insert(list.erase(it), std::move(replacement));
      list.splice(it, before);
      const auto next = std::next(it);
      list.splice(next, after);
      it = std::prev(next);  // the walk goes on after what was added
    }
    return cost;
  }

  // instrumentList for the body of a block, loop or if; a branch to it keeps `branchArity` values.
  std::uint64_t instrumentLabelled(ExprList& body, Index branchArity) {
    labels_.push_back(branchArity);
    const std::uint64_t cost = instrumentList(body);
    labels_.pop_back();
    return cost;
  }

  // The values a branch to `label` keeps (every target of a br_table keeps as many).
  std::uint64_t keptBy(const Var& label) const {
    const Index depth = label.index();
    return depth < labels_.size() ? labels_[labels_.size() - 1 - depth] : 0;
  }

  // Subtracts a constant from the fuel, then checks it; the charge pays for its own instructions too.
  ExprList charge(std::uint64_t units) {
    ExprList code;
    append<GlobalGetExpr>(code, fuel_);
    append<ConstExpr>(code, Const::I64(units + kChargeInstructions));
    append<BinaryExpr>(code, Opcode::I64Sub);
    append<GlobalSetExpr>(code, fuel_);
    code.splice(code.end(), trapIf(fuel_, Const::I64(0), Opcode::I64LtS));
    return code;
  }

  // Subtracts the length on top of the stack (kept there) from the fuel, then checks it.
  ExprList chargeLength() {
    if (!scratch_) {
      scratch_ = Var(func_->GetNumParamsAndLocals(), Location());
      func_->local_types.AppendDecl(Type::I32, 1);
    }
    ExprList code;
    append<LocalTeeExpr>(code, *scratch_);
    append<GlobalGetExpr>(code, fuel_);
    append<LocalGetExpr>(code, *scratch_);
    append<ConvertExpr>(code, Opcode::I64ExtendI32U);
    append<BinaryExpr>(code, Opcode::I64Sub);
    append<GlobalSetExpr>(code, fuel_);
    code.splice(code.end(), trapIf(fuel_, Const::I64(0), Opcode::I64LtS));
    return code;
  }

  // Adds the frame to the stack before the call (trapping past the limit) and removes it after; the
  // callee's return drops its frame, walking the references it left. Returns the instructions run.
  std::uint64_t accountFrame(ExprList& before, ExprList& after, std::uint64_t frame) {
    before.splice(before.end(), adjustStack(frame, Opcode::I32Add));
    before.splice(before.end(), trapIf(stack_, Const::I32(kOrxMaxStackUnits), Opcode::I32GtU));
    if (peakStack_) before.splice(before.end(), keepPeak());
    after.splice(after.end(), adjustStack(frame, Opcode::I32Sub));
    return kFrameAccountingInstructions + chargeReferences(after);
  }

  // Charges the references pushed so far in this call: as many interpreter records as a branch may walk.
  // Nothing in a module that pushes none. Returns the instructions run.
  std::uint64_t chargeReferences(ExprList& code) {
    if (!references_) return 0;
    append<GlobalGetExpr>(code, fuel_);
    append<GlobalGetExpr>(code, *references_);
    append<BinaryExpr>(code, Opcode::I64Sub);
    append<GlobalSetExpr>(code, fuel_);
    code.splice(code.end(), trapIf(fuel_, Const::I64(0), Opcode::I64LtS));
    return kChargeInstructions;
  }

  // Counts one reference pushed. Returns the instructions run.
  std::uint64_t countReference(ExprList& code) {
    append<GlobalGetExpr>(code, *references_);
    append<ConstExpr>(code, Const::I64(1));
    append<BinaryExpr>(code, Opcode::I64Add);
    append<GlobalSetExpr>(code, *references_);
    return kReferenceCountInstructions;
  }

  ExprList adjustStack(std::uint64_t frame, Opcode opcode) {
    ExprList code;
    append<GlobalGetExpr>(code, stack_);
    append<ConstExpr>(code, Const::I32(static_cast<std::uint32_t>(frame)));
    append<BinaryExpr>(code, opcode);
    append<GlobalSetExpr>(code, stack_);
    return code;
  }

  // `if (stack > peak) peak = stack`
  ExprList keepPeak() {
    ExprList code;
    append<GlobalGetExpr>(code, stack_);
    append<GlobalGetExpr>(code, *peakStack_);
    append<CompareExpr>(code, Opcode::I32GtU);
    auto raise = std::make_unique<IfExpr>();
    append<GlobalGetExpr>(raise->true_.exprs, stack_);
    append<GlobalSetExpr>(raise->true_.exprs, *peakStack_);
    code.push_back(std::move(raise));
    return code;
  }

  // `if (global <comparison> limit) unreachable`
  ExprList trapIf(const Var& global, const Const& limit, Opcode comparison) {
    ExprList code;
    append<GlobalGetExpr>(code, global);
    append<ConstExpr>(code, limit);
    append<CompareExpr>(code, comparison);
    auto trap = std::make_unique<IfExpr>();
    append<UnreachableExpr>(trap->true_.exprs);
    code.push_back(std::move(trap));
    return code;
  }

  Module& module_;
  Var fuel_;
  Var stack_;
  std::optional<Var> peakStack_;  // only in a rewrite for measurements
  std::optional<Var> references_;  // only in a module whose code pushes references
  std::map<std::pair<Type, Index>, Var> referenceGlobals_;  // by type and function (kInvalidIndex: null)
  std::uint64_t largestFrame_ = kOrxFrameUnits;
  Func* func_ = nullptr;
  std::vector<Index> labels_;  // what a branch to each open label keeps, the function body first
  std::optional<Var> scratch_;  // the current function's i32 local for bulk lengths, once needed
};

}  // namespace

std::uint64_t meteringAddedInstructions(const OrxMeteringSites& sites, bool keepPeakStack) {
  std::uint64_t added = kChargeCode * (sites.functions + sites.loops) + kLengthChargeCode * sites.bulkOperations +
                        (kFrameAccountingCode + (keepPeakStack ? kPeakKeepingCode : 0)) * sites.calls;
  if (sites.referencePushes > 0) {
    added += kReferenceCountCode * sites.referencePushes + kChargeCode * (sites.branches + sites.calls);
  }
  return added;
}

std::optional<std::string> meterModule(const std::uint8_t* bytes, std::size_t size, const OrxMeteringSites& sites,
                                       std::vector<std::uint8_t>& metered, bool keepPeakStack) {
  const std::uint64_t added = meteringAddedInstructions(sites, keepPeakStack);
  if (added > kOrxMaxMeteringInstructions) {
    return "CompileError: " + loadBudgetExceeded("instructions added by metering", added, kOrxMaxMeteringInstructions);
  }
  const Features features;
  Errors errors;
  Module module;
  if (Failed(ReadBinaryIr("module", bytes, size, wabtReadOptions(), &errors, &module))) return wabtCompileError(errors);
  for (const Export* export_ : module.exports) {
    if (export_->name == kOrxFuelExport || export_->name == kOrxStackExport || export_->name == kOrxStartExport ||
        export_->name == kOrxReferencesExport || (keepPeakStack && export_->name == kOrxPeakStackExport)) {
      return "CompileError: the export name " + orxQuotedText(export_->name) + " is reserved by the host";
    }
  }

  Meter meter(module, keepPeakStack, /*countReferences=*/sites.referencePushes > 0);
  for (Index f = module.num_func_imports; f < module.funcs.size(); ++f) meter.instrument(*module.funcs[f]);
  for (Memory* memory : module.memories) Meter::capGrowth(memory->page_limits, kOrxMaxMemoryPages);
  for (Table* table : module.tables) Meter::capGrowth(table->elem_limits, kOrxMaxTableElements);

  if (Failed(ValidateModule(&module, &errors, ValidateOptions(features)))) return wabtCompileError(errors);
  MemoryStream stream;
  const WriteBinaryOptions writeOptions(features, /*canonicalize_lebs=*/true, /*relocatable=*/false,
                                        /*write_debug_names=*/false);
  if (Failed(WriteBinaryModule(&stream, &module, writeOptions))) return "CompileError: the metered module could not be written";
  metered = std::move(stream.output_buffer().data);
  return std::nullopt;
}

}  // namespace ravo::orx::internal
