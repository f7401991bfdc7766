#include <ravo-orx/engine/OrxExecutionBound.h>

#include <wabt/binary-reader-nop.h>
#include <wabt/binary-reader.h>

#include <algorithm>
#include <utility>
#include <vector>

#include <ravo-orx/engine/WabtReadOptions.h>

namespace ravo::orx::internal {

namespace {

using wabt::Index;
using wabt::Limits;
using wabt::Result;

struct FunctionFacts {
  std::uint64_t cost = 0;  // fuel units of one activation, callees excluded
  std::uint64_t frame = kOrxFrameUnits;
  std::vector<Index> callees;  // one entry per call site, as a function index
};

// Collects what the proof needs in one flat pass over the binary. Budgets end the pass; constructs
// that only rule out a static bound are noted (the first one is the reason to meter).
class CodeCollector : public wabt::BinaryReaderNop {
 public:
  std::optional<std::string> overBudget;
  std::optional<std::string> unbounded;
  std::vector<Index> typeParams;
  std::vector<FunctionFacts> functions;  // imported functions first, as in the index space
  Index importedFunctions = 0;
  std::vector<Limits> memories;
  std::vector<Limits> tables;
  bool growsMemory = false;
  bool growsTable = false;

  // Errors end the pass and are reported by its caller; wabt would otherwise print them on stderr.
  bool OnError(const wabt::Error&) override { return true; }

  Result OnFuncType(Index, Index params, wabt::Type*, Index, wabt::Type*) override {
    typeParams.push_back(params);
    return Result::Ok;
  }
  Result OnImportFunc(Index, std::string_view, std::string_view, Index, Index) override {
    ++importedFunctions;
    functions.emplace_back();
    return Result::Ok;
  }
  Result OnImportTable(Index, std::string_view, std::string_view, Index, wabt::Type, const Limits* limits) override {
    tables.push_back(*limits);
    return Result::Ok;
  }
  Result OnImportMemory(Index, std::string_view, std::string_view, Index, const Limits* limits) override {
    memories.push_back(*limits);
    return Result::Ok;
  }
  Result OnFunction(Index, Index type) override {
    FunctionFacts& facts = functions.emplace_back();
    if (type < typeParams.size()) facts.frame += typeParams[type];
    return Result::Ok;
  }
  Result OnTable(Index, wabt::Type, const Limits* limits) override {
    tables.push_back(*limits);
    return Result::Ok;
  }
  Result OnMemory(Index, const Limits* limits) override {
    memories.push_back(*limits);
    return Result::Ok;
  }

  // Each entry is an expression object to wabt's readers, one byte in the file.
  Result OnElemSegmentElemExprCount(Index, Index count) override {
    elementEntries_ += count;
    return within("element segment entries", elementEntries_, kOrxMaxElementSegmentEntries);
  }

  Result BeginFunctionBody(Index index, wabt::Offset) override {
    if (index < importedFunctions || index >= functions.size()) return Result::Error;  // wabt says why
    current_ = &functions[index];
    nesting_ = 0;
    return Result::Ok;
  }
  Result EndFunctionBody(Index) override {
    current_ = nullptr;
    return Result::Ok;
  }
  Result OnLocalDecl(Index, Index count, wabt::Type) override {
    if (current_) {
      current_->cost += count;
      current_->frame += count;
    }
    return Result::Ok;
  }
  Result OnOpcode(wabt::Opcode) override {
    if (!current_) return Result::Ok;  // init expressions outside bodies run once, at instantiation
    ++current_->cost;
    return within("instructions over all functions", ++instructions_, kOrxMaxInstructions);
  }
  Result OnBlockExpr(wabt::Type) override { return enterBlock(); }
  Result OnIfExpr(wabt::Type) override { return enterBlock(); }
  Result OnTryExpr(wabt::Type) override { return enterBlock(); }
  Result OnLoopExpr(wabt::Type) override {
    note("it contains a loop");
    return enterBlock();
  }
  Result OnEndExpr() override {
    if (nesting_ > 0) --nesting_;
    return Result::Ok;
  }
  Result OnCallExpr(Index function) override {
    if (current_) current_->callees.push_back(function);
    return Result::Ok;
  }
  Result OnCallIndirectExpr(Index, Index) override { return note("it contains an indirect call"); }
  Result OnMemoryGrowExpr(Index) override {
    growsMemory = true;
    return Result::Ok;
  }
  Result OnTableGrowExpr(Index) override {
    growsTable = true;
    return Result::Ok;
  }
  Result OnMemoryFillExpr(Index) override { return note("it moves memory in bulk"); }
  Result OnMemoryCopyExpr(Index, Index) override { return note("it moves memory in bulk"); }
  Result OnMemoryInitExpr(Index, Index) override { return note("it moves memory in bulk"); }
  Result OnTableFillExpr(Index) override { return note("it moves table elements in bulk"); }
  Result OnTableCopyExpr(Index, Index) override { return note("it moves table elements in bulk"); }
  Result OnTableInitExpr(Index, Index) override { return note("it moves table elements in bulk"); }

 private:
  Result enterBlock() { return within("block nesting", ++nesting_, kOrxMaxBlockNesting); }

  Result within(const char* budget, std::uint64_t value, std::uint64_t limit) {
    if (value <= limit) return Result::Ok;
    overBudget = loadBudgetExceeded(budget, value, limit);
    return Result::Error;
  }

  Result note(const char* reason) {
    if (!unbounded) unbounded = reason;
    return Result::Ok;
  }

  FunctionFacts* current_ = nullptr;
  std::uint64_t nesting_ = 0;
  std::uint64_t instructions_ = 0;
  std::uint64_t elementEntries_ = 0;
};

// Why a memory or table could grow past its cap, or nothing.
std::optional<std::string> checkGrowth(const std::vector<Limits>& limits, bool grows, std::uint64_t cap,
                                       const char* what) {
  if (!grows) return std::nullopt;
  for (const auto& limit : limits) {
    if (!limit.has_max || limit.max > cap) return std::string("its ") + what + " may grow past its cap";
  }
  return std::nullopt;
}

// Worst-case cost and stack of every defined function, callees before callers (Kahn's order on the
// call graph); a function left unordered lies on a cycle. Fills `analysis` with the bound or the
// reason there is none.
void boundCallGraph(const CodeCollector& facts, OrxCodeAnalysis& analysis) {
  const size_t count = facts.functions.size();
  std::vector<std::vector<Index>> callers(count);
  std::vector<size_t> pendingCallees(count, 0);
  for (Index f = facts.importedFunctions; f < count; ++f) {
    for (Index callee : facts.functions[f].callees) {
      if (callee < facts.importedFunctions || callee >= count) continue;  // host calls cost one instruction
      callers[callee].push_back(f);
      ++pendingCallees[f];
    }
  }

  const std::uint64_t saturated = kOrxFuelPerCall + 1;
  std::vector<std::uint64_t> cost(count, 0);
  std::vector<std::uint64_t> stack(count, 0);
  std::uint64_t worstCaseCost = 0;
  std::vector<Index> ready;
  for (Index f = facts.importedFunctions; f < count; ++f) {
    if (pendingCallees[f] == 0) ready.push_back(f);
  }
  size_t ordered = facts.importedFunctions;
  while (!ready.empty()) {
    const Index f = ready.back();
    ready.pop_back();
    ++ordered;
    const FunctionFacts& function = facts.functions[f];
    std::uint64_t total = function.cost;
    std::uint64_t deepestCallee = 0;
    for (Index callee : function.callees) {
      if (callee < count) {
        total = std::min(total + cost[callee], saturated);
        deepestCallee = std::max(deepestCallee, stack[callee]);
      }
    }
    cost[f] = total;
    stack[f] = std::min(function.frame + deepestCallee, kOrxMaxStackUnits + 1);
    worstCaseCost = std::max(worstCaseCost, total);
    if (total > kOrxFuelPerCall) {
      analysis.meteringReason = "a call may cost more than " + std::to_string(kOrxFuelPerCall) + " fuel units";
      return;
    }
    if (stack[f] > kOrxMaxStackUnits) {
      analysis.meteringReason = "a call chain may need more than " + std::to_string(kOrxMaxStackUnits) + " stack units";
      return;
    }
    for (Index caller : callers[f]) {
      if (--pendingCallees[caller] == 0) ready.push_back(caller);
    }
  }
  if (ordered != count) {
    analysis.meteringReason = "it contains a recursive call cycle";
    return;
  }
  analysis.bounded = true;
  analysis.worstCaseCost = worstCaseCost;
}

}  // namespace

OrxCodeAnalysis analyzeCode(const std::uint8_t* bytes, std::size_t size) {
  CodeCollector facts;
  OrxCodeAnalysis analysis;
  if (wabt::Failed(wabt::ReadBinary(bytes, size, &facts, wabtReadOptions()))) {
    analysis.overBudget = std::move(facts.overBudget);
    return analysis;
  }
  if (facts.unbounded) {
    analysis.meteringReason = *facts.unbounded;
  } else if (auto growth = checkGrowth(facts.memories, facts.growsMemory, kOrxMaxMemoryPages, "memory")) {
    analysis.meteringReason = *growth;
  } else if (auto growth = checkGrowth(facts.tables, facts.growsTable, kOrxMaxTableElements, "table")) {
    analysis.meteringReason = *growth;
  } else {
    boundCallGraph(facts, analysis);
  }
  return analysis;
}

}  // namespace ravo::orx::internal
