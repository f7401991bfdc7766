#include "runtime/engine/OrxBoundedExecutionVerifier.h"

#include <wabt/binary-reader-nop.h>
#include <wabt/binary-reader.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

using wabt::Index;
using wabt::Limits;
using wabt::Result;

struct FunctionFacts {
  std::uint64_t instructions = 0;
  std::vector<Index> callees;  // one entry per call site, as a function index
};

// Collects what the proof needs in one flat pass over the binary (no recursion, so deeply nested
// blocks cost nothing extra), stopping at the first construct that can never be proven bounded.
class BoundsCollector : public wabt::BinaryReaderNop {
 public:
  std::optional<std::string> refusal;
  Index importedFunctions = 0;
  std::vector<FunctionFacts> functions;  // defined functions, in index order after the imports
  std::vector<Limits> memories;
  std::vector<Limits> tables;
  bool growsMemory = false;
  bool growsTable = false;

  // A refusal stops the reader with an error; claiming it keeps wabt from printing it to standard error
  // (the refusal is the verifier's answer, reported by the host).
  bool OnError(const wabt::Error&) override { return true; }

  Result OnImportFunc(Index, std::string_view, std::string_view, Index, Index) override {
    ++importedFunctions;
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
  Result OnFunctionCount(Index count) override {
    functions.resize(count);
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
  Result OnStartFunction(Index) override { return refuse("it has a start function"); }

  Result BeginFunctionBody(Index index, wabt::Offset) override {
    if (index < importedFunctions || index - importedFunctions >= functions.size()) {
      return refuse("its function bodies do not match its declarations");
    }
    current_ = &functions[index - importedFunctions];
    return Result::Ok;
  }
  Result EndFunctionBody(Index) override {
    current_ = nullptr;
    return Result::Ok;
  }
  // Every declared local is zeroed on each call, so locals cost work (and interpreter stack) like
  // instructions do; a function declaring billions of them would exhaust memory when called.
  Result OnLocalDecl(Index, Index count, wabt::Type) override {
    if (current_) current_->instructions += count;
    return Result::Ok;
  }
  Result OnOpcode(wabt::Opcode) override {
    if (current_) ++current_->instructions;  // init expressions outside bodies run once, at instantiation
    return Result::Ok;
  }
  Result OnLoopExpr(wabt::Type) override { return refuse("it contains a loop"); }
  Result OnCallExpr(Index function) override {
    if (current_) current_->callees.push_back(function);
    return Result::Ok;
  }
  Result OnCallIndirectExpr(Index, Index) override { return refuse("it contains an indirect call"); }
  Result OnReturnCallExpr(Index) override { return refuse("it contains a tail call"); }
  Result OnReturnCallIndirectExpr(Index, Index) override { return refuse("it contains a tail call"); }
  Result OnMemoryGrowExpr(Index) override {
    growsMemory = true;
    return Result::Ok;
  }
  Result OnTableGrowExpr(Index) override {
    growsTable = true;
    return Result::Ok;
  }

 private:
  Result refuse(std::string reason) {
    if (!refusal) refusal = std::move(reason);
    return Result::Error;
  }

  FunctionFacts* current_ = nullptr;
};

// A memory or table is bounded when its declared size fits the cap and, if the code can grow it, its
// declared maximum does too.
std::optional<std::string> checkLimits(const std::vector<Limits>& limits, bool grows, std::uint64_t cap,
                                       const char* what, const char* unit) {
  for (const auto& limit : limits) {
    std::uint64_t reachable = limit.initial;
    if (grows) {
      if (!limit.has_max) return std::string("its ") + what + " may grow without bound";
      reachable = limit.max;
    }
    if (reachable > cap) {
      return std::string("its ") + what + " may reach " + std::to_string(reachable) + " " + unit +
             " (limit " + std::to_string(cap) + ")";
    }
  }
  return std::nullopt;
}

// Worst-case instructions per call of every defined function, callees before callers (Kahn's order on
// the call graph). A function left unordered lies on a cycle.
std::optional<std::string> checkCallGraph(const BoundsCollector& facts) {
  const size_t count = facts.functions.size();
  const Index base = facts.importedFunctions;
  std::vector<std::vector<Index>> callers(count);
  std::vector<size_t> pendingCallees(count, 0);
  for (Index f = 0; f < count; ++f) {
    for (Index callee : facts.functions[f].callees) {
      if (callee < base) continue;  // imported: constant cost
      if (callee - base >= count) return std::string("it calls a function that does not exist");
      callers[callee - base].push_back(f);
      ++pendingCallees[f];
    }
  }

  const std::uint64_t saturated = kOrxMaxInstructionsPerCall + 1;
  std::vector<std::uint64_t> cost(count, 0);
  std::vector<Index> ready;
  for (Index f = 0; f < count; ++f) {
    if (pendingCallees[f] == 0) ready.push_back(f);
  }
  size_t ordered = 0;
  while (!ready.empty()) {
    Index f = ready.back();
    ready.pop_back();
    ++ordered;
    std::uint64_t total = facts.functions[f].instructions;
    for (Index callee : facts.functions[f].callees) {
      total += callee < base ? 1 : cost[callee - base];
      total = std::min(total, saturated);
    }
    cost[f] = total;
    if (total > kOrxMaxInstructionsPerCall) {
      return "a call may run more than " + std::to_string(kOrxMaxInstructionsPerCall) + " instructions";
    }
    for (Index caller : callers[f]) {
      if (--pendingCallees[caller] == 0) ready.push_back(caller);
    }
  }
  if (ordered != count) return std::string("it contains a recursive call cycle");
  return std::nullopt;
}

}  // namespace

std::optional<std::string> verifyBoundedExecution(const std::uint8_t* bytes, std::size_t size) {
  BoundsCollector facts;
  wabt::ReadBinaryOptions options;
  options.features = wabt::Features{};
  options.read_debug_names = false;
  options.stop_on_first_error = true;
  options.fail_on_custom_section_error = false;
  Result read = wabt::ReadBinary(bytes, size, &facts, options);
  if (facts.refusal) return facts.refusal;
  if (wabt::Failed(read)) return std::string("it could not be read");

  if (auto refusal = checkLimits(facts.memories, facts.growsMemory, kOrxMaxMemoryPages, "memory", "pages")) {
    return refusal;
  }
  if (auto refusal = checkLimits(facts.tables, facts.growsTable, kOrxMaxTableElements, "table", "elements")) {
    return refusal;
  }
  return checkCallGraph(facts);
}
