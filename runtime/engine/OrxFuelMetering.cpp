#include <ravo-orx/engine/OrxFuelMetering.h>

#include <wabt/binary-reader-ir.h>
#include <wabt/binary-reader.h>
#include <wabt/binary-writer.h>
#include <wabt/ir.h>
#include <wabt/stream.h>
#include <wabt/validator.h>

#include <algorithm>
#include <memory>

#include <ravo-orx/engine/OrxExecutionBound.h>
#include <ravo-orx/engine/OrxQuotedText.h>
#include <ravo-orx/engine/WabtModuleReader.h>
#include <ravo-orx/engine/WabtReadOptions.h>

namespace ravo::orx::internal {

namespace {

using namespace wabt;

// Instructions the metering adds, charged like the module's own.
constexpr std::uint64_t kChargeInstructions = 8;
constexpr std::uint64_t kFrameAccountingInstructions = 12;

template <class T, class... Args>
void append(ExprList& list, Args&&... args) {
  list.push_back(std::make_unique<T>(std::forward<Args>(args)...));
}

// Rewrites one module's code; the globals are created before any function is instrumented.
class Meter {
 public:
  Meter(Module& module, bool keepPeakStack) : module_(module) {
    fuel_ = addExportedGlobal(Type::I64, Const::I64(kOrxFuelPerCall), kOrxFuelExport);
    stack_ = addExportedGlobal(Type::I32, Const::I32(0), kOrxStackExport);
    if (keepPeakStack) peakStack_ = addExportedGlobal(Type::I32, Const::I32(0), kOrxPeakStackExport);
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
    const std::uint64_t cost = 1 + func.GetNumLocals() + instrumentList(func.exprs);
    ExprList entry = charge(cost);
    func.exprs.splice(func.exprs.begin(), std::move(entry));
  }

  static void capGrowth(Limits& limits, std::uint64_t cap) {
    limits.max = limits.has_max ? std::min(limits.max, cap) : cap;
    limits.has_max = true;
  }

 private:
  Var addExportedGlobal(Type type, const Const& initial, const char* name) {
    const Index index = module_.globals.size();
    auto global = std::make_unique<GlobalModuleField>();
    global->global.type = type;
    global->global.mutable_ = true;
    append<ConstExpr>(global->global.init_expr, initial);
    module_.AppendField(std::move(global));
    addExport(name, ExternalKind::Global, Var(index, Location()));
    return Var(index, Location());
  }

  void addExport(const char* name, ExternalKind kind, const Var& var) {
    auto field = std::make_unique<ExportModuleField>();
    field->export_.name = name;
    field->export_.kind = kind;
    field->export_.var = var;
    module_.AppendField(std::move(field));
  }

  std::uint64_t frameOf(const Func& func) const { return kOrxFrameUnits + func.GetNumParamsAndLocals(); }

  // Instruments the list in place; returns the cost of running it once, nested loops excluded (each
  // charges its own iterations).
  std::uint64_t instrumentList(ExprList& list) {
    std::uint64_t cost = 0;
    for (auto it = list.begin(); it != list.end(); ++it) {
      ++cost;
      Expr& expr = *it;
      switch (expr.type()) {
        case ExprType::Block: cost += instrumentList(cast<BlockExpr>(&expr)->block.exprs); break;
        case ExprType::If: {
          auto* branch = cast<IfExpr>(&expr);
          cost += instrumentList(branch->true_.exprs) + instrumentList(branch->false_);
          break;
        }
        case ExprType::Loop: {
          ExprList& body = cast<LoopExpr>(&expr)->block.exprs;
          ExprList iteration = charge(1 + instrumentList(body));
          body.splice(body.begin(), std::move(iteration));
          break;
        }
        case ExprType::Call: {
          const Index callee = cast<CallExpr>(&expr)->var.index();
          if (callee >= module_.num_func_imports) {
            it = accountFrame(list, it, frameOf(*module_.funcs[callee]));
            cost += kFrameAccountingInstructions;
          }
          break;
        }
        case ExprType::CallIndirect:
          it = accountFrame(list, it, largestFrame_);
          cost += kFrameAccountingInstructions;
          break;
        case ExprType::MemoryFill:
        case ExprType::MemoryCopy:
        case ExprType::MemoryInit:
        case ExprType::TableFill:
        case ExprType::TableCopy:
        case ExprType::TableInit: list.splice(it, chargeLength()); break;
        default: break;
      }
    }
    return cost;
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

  // Adds the frame to the stack before the call at `call` (trapping past the limit) and removes it
  // after; returns the last instruction added, so the caller's walk goes on after it.
  ExprList::iterator accountFrame(ExprList& list, ExprList::iterator call, std::uint64_t frame) {
    ExprList before = adjustStack(frame, Opcode::I32Add);
    before.splice(before.end(), trapIf(stack_, Const::I32(kOrxMaxStackUnits), Opcode::I32GtU));
    if (peakStack_) before.splice(before.end(), keepPeak());
    list.splice(call, std::move(before));
    const auto next = std::next(call);
    list.splice(next, adjustStack(frame, Opcode::I32Sub));
    return std::prev(next);
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
  std::uint64_t largestFrame_ = kOrxFrameUnits;
  Func* func_ = nullptr;
  std::optional<Var> scratch_;  // the current function's i32 local for bulk lengths, once needed
};

}  // namespace

std::optional<std::string> meterModule(const std::uint8_t* bytes, std::size_t size, std::vector<std::uint8_t>& metered,
                                       bool keepPeakStack) {
  const Features features;
  Errors errors;
  Module module;
  if (Failed(ReadBinaryIr("module", bytes, size, wabtReadOptions(), &errors, &module))) return wabtCompileError(errors);
  for (const Export* export_ : module.exports) {
    if (export_->name == kOrxFuelExport || export_->name == kOrxStackExport || export_->name == kOrxStartExport ||
        (keepPeakStack && export_->name == kOrxPeakStackExport)) {
      return "CompileError: the export name " + orxQuotedText(export_->name) + " is reserved by the host";
    }
  }

  Meter meter(module, keepPeakStack);
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
