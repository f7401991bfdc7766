#include <ravo-orx/engine/OrxExecutionBound.h>

#include <wabt/binary-reader-nop.h>
#include <wabt/binary-reader.h>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include <ravo-orx/engine/WabtReadOptions.h>

namespace ravo::orx::internal {

namespace {

using wabt::Index;
using wabt::Limits;
using wabt::Result;

struct FunctionFacts {
  Index type = 0;
  std::uint64_t cost = 0;  // fuel units of one activation, callees excluded
  std::uint64_t frame = kOrxFrameUnits;
  std::vector<Index> callees;  // one entry per call site, as a function index
};

struct Signature {
  std::uint64_t params = 0;
  std::uint64_t results = 0;
  bool returnsReference = false;
};

// A block, loop or if being read, or the function body itself.
struct Label {
  std::uint64_t branchArity;  // the values a branch to it keeps: a loop's parameters, else its results
  std::uint64_t results;
};

// An unsigned LEB128 of at most 32 bits at `offset`, or nothing when malformed (wabt then says why).
std::optional<std::uint32_t> leb32(const std::uint8_t* data, std::size_t size, std::size_t offset) {
  std::uint64_t value = 0;
  for (int shift = 0; shift < 35 && offset < size; shift += 7) {
    const std::uint8_t next = data[offset++];
    value |= static_cast<std::uint64_t>(next & 0x7F) << shift;
    if ((next & 0x80) == 0) return value > UINT32_MAX ? std::nullopt : std::optional(static_cast<std::uint32_t>(value));
  }
  return std::nullopt;
}

// Collects what the proof needs in one flat pass over the binary. Budgets end the pass; constructs
// that only rule out a static bound are noted (the first one is the reason to meter).
//
// The instruction budget counts what wabt's validation and compilation do per instruction: one, plus
// each entry of a list the instruction carries (a br_table's targets, a typed select's types), plus
// each value type it has checked (the parameters and results of a block's type or a callee's, the
// values a branch keeps, an else's results). A list is counted from the raw bytes before wabt reads it,
// since wabt allocates for it as it reads.
class CodeCollector : public wabt::BinaryReaderNop {
 public:
  std::optional<std::string> overBudget;
  std::optional<std::string> unbounded;
  std::vector<Signature> types;
  std::vector<FunctionFacts> functions;  // imported functions first, as in the index space
  Index importedFunctions = 0;
  std::vector<Limits> memories;
  std::vector<Limits> tables;
  bool growsMemory = false;
  bool growsTable = false;
  OrxMeteringSites sites;

  // Errors end the pass and are reported by its caller; wabt would otherwise print them on stderr.
  bool OnError(const wabt::Error&) override { return true; }

  Result OnFuncType(Index, Index params, wabt::Type*, Index results, wabt::Type* resultTypes) override {
    const bool returnsReference =
        std::any_of(resultTypes, resultTypes + results, [](wabt::Type type) { return type.IsRef(); });
    types.push_back({params, results, returnsReference});
    return Result::Ok;
  }
  Result OnImportFunc(Index, std::string_view, std::string_view, Index, Index type) override {
    ++importedFunctions;
    functions.emplace_back().type = type;
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
    facts.type = type;
    facts.frame += signature(type).params;
    ++sites.functions;
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
    const std::uint64_t results = signature(current_->type).results;
    labels_.assign(1, {results, results});
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
  Result OnOpcode(wabt::Opcode opcode) override {
    if (!current_) return Result::Ok;  // init expressions outside bodies run once, at instantiation
    ++current_->cost;
    std::uint64_t units = 1;
    // The length of the list that follows the opcode; a br_table's default target comes after it.
    if (opcode == wabt::Opcode::BrTable || opcode == wabt::Opcode::SelectT) {
      units += leb32(state->data, state->size, state->offset).value_or(0);
    }
    return count(units);
  }
  Result OnBlockExpr(wabt::Type type) override { return enterBlock(type, /*loop=*/false); }
  Result OnIfExpr(wabt::Type type) override { return enterBlock(type, /*loop=*/false); }
  Result OnTryExpr(wabt::Type type) override { return enterBlock(type, /*loop=*/false); }
  Result OnLoopExpr(wabt::Type type) override {
    note("it contains a loop");
    ++sites.loops;
    return enterBlock(type, /*loop=*/true);
  }
  Result OnElseExpr() override { return count(labels_.empty() ? 0 : labels_.back().results); }
  Result OnEndExpr() override {
    if (!labels_.empty()) labels_.pop_back();
    return Result::Ok;
  }
  Result OnBrExpr(Index depth) override { return branch(depth); }
  Result OnBrIfExpr(Index depth) override { return branch(depth); }
  Result OnBrTableExpr(Index targets, Index* depths, Index defaultDepth) override {
    ++sites.branches;
    std::uint64_t kept = keptBy(defaultDepth);
    for (Index i = 0; i < targets; ++i) kept += keptBy(depths[i]);
    return count(kept);
  }
  Result OnReturnExpr() override { return count(labels_.empty() ? 0 : labels_.front().results); }
  Result OnCallExpr(Index function) override {
    if (!current_) return Result::Ok;
    current_->callees.push_back(function);
    const Signature callee = signature(function < functions.size() ? functions[function].type : 0);
    if (function >= importedFunctions) {
      ++sites.calls;
    } else if (callee.returnsReference) {
      pushesReference();
    }
    return count(callee.params + callee.results);
  }
  Result OnCallIndirectExpr(Index type, Index) override {
    ++sites.calls;
    note("it contains an indirect call");
    return count(signature(type).params + signature(type).results);
  }
  // Metering turns these into reads of globals.
  Result OnRefNullExpr(wabt::Type) override { return noteReference(); }
  Result OnRefFuncExpr(Index) override { return noteReference(); }
  Result OnTableGetExpr(Index) override { return pushesReference(); }
  Result OnMemoryGrowExpr(Index) override {
    growsMemory = true;
    return Result::Ok;
  }
  Result OnTableGrowExpr(Index) override {
    growsTable = true;
    return Result::Ok;
  }
  Result OnMemoryFillExpr(Index) override { return bulk("it moves memory in bulk"); }
  Result OnMemoryCopyExpr(Index, Index) override { return bulk("it moves memory in bulk"); }
  Result OnMemoryInitExpr(Index, Index) override { return bulk("it moves memory in bulk"); }
  Result OnTableFillExpr(Index) override { return bulk("it moves table elements in bulk"); }
  Result OnTableCopyExpr(Index, Index) override { return bulk("it moves table elements in bulk"); }
  Result OnTableInitExpr(Index, Index) override { return bulk("it moves table elements in bulk"); }

 private:
  Signature signature(Index type) const { return type < types.size() ? types[type] : Signature{}; }

  Result enterBlock(wabt::Type type, bool loop) {
    Signature block;
    if (type.IsIndex()) {
      block = signature(type.GetIndex());
    } else if (type != wabt::Type::Void) {
      block.results = 1;
    }
    labels_.push_back({loop ? block.params : block.results, block.results});
    if (wabt::Failed(within("block nesting", labels_.size() - 1, kOrxMaxBlockNesting))) return Result::Error;
    return count(block.params + block.results);
  }

  // What a branch to the label `depth` levels out keeps; wabt checks each of those values.
  std::uint64_t keptBy(Index depth) const {
    return depth < labels_.size() ? labels_[labels_.size() - 1 - depth].branchArity : 0;
  }

  Result branch(Index depth) {
    ++sites.branches;
    return count(keptBy(depth));
  }

  Result noteReference() {
    if (!current_) return Result::Ok;  // an initializer's reference is no instruction's
    return note("it pushes references");
  }

  Result pushesReference() {
    ++sites.referencePushes;
    return note("it pushes references");
  }

  Result bulk(const char* reason) {
    ++sites.bulkOperations;
    return note(reason);
  }

  Result count(std::uint64_t units) {
    instructions_ += units;
    return within("instructions over all functions", instructions_, kOrxMaxInstructions);
  }

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
  std::vector<Label> labels_;  // the open blocks of the current body, the body itself first
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
  analysis.sites = facts.sites;
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
