#pragma once
// Runs a module's functions over symbolic states: the structured control flow of WebAssembly (blocks,
// if, loops unrolled up to a bound, br, br_if, br_table, return), locals and globals, calls inlined
// (recursion is a gap), the `output.emit` import, memory through SymbolicMemoryModel and the integer
// instructions through SymbolicNumbers. Every trap, and every gap where the model stops following the
// module, is recorded with the condition under which a call reaches it.

#include <wabt/cast.h>
#include <wabt/ir.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <z3++.h>

#include <ravo-orx/prove/OrxDecideModel.h>
#include <ravo-orx/prove/SymbolicMemory.h>
#include <ravo-orx/prove/SymbolicState.h>

namespace ravo::orx::internal {

class SymbolicExecutor {
 public:
  struct Budgets {
    bool metered;  // the host meters the module: a call chain deeper than the stack budget traps
    OrxModelLimits limits;  // the time limit counts from the executor's construction
  };

  SymbolicExecutor(const wabt::Module& module, z3::context& context, const SymbolicMemoryModel& memory,
                   Budgets budgets);

  // Calls function `index` with its arguments on top of `state`'s stack; the state after it returns,
  // with its results in their place, or nothing when no path returns.
  std::optional<SymbolicState> call(wabt::Index index, SymbolicState state);

  // Records a trap under `condition` on the state's path; the state goes on where it does not trap, and
  // is reset when it always does.
  void trap(std::optional<SymbolicState>& state, const z3::expr& condition);
  // Records a gap under `condition`; the state goes on where there is none.
  void gap(std::optional<SymbolicState>& state, const z3::expr& condition, const std::string& reason);
  // Records a gap that a call reaches under `condition`, whatever the path.
  void addGap(const z3::expr& condition, const std::string& reason);

  // From now on, an exit that leaves the instance different from `baseline` (the instance as the call
  // found it) is a gap: the next call would start from another instance than the model's.
  void setBaseline(const SymbolicState& baseline) { baseline_ = baseline; }
  // A way out of the call under `condition` (a return, or a trap, which trap() notes itself).
  void noteExit(const SymbolicState& exit, const z3::expr& condition);

  // When the calls so far trapped, the emission each trap left, and every gap.
  z3::expr trapped() const { return trapped_; }
  const std::vector<std::pair<z3::expr, SymbolicEmission>>& trapEmissions() const { return trapEmissions_; }
  std::vector<OrxModelGap> gaps() const;
  // The fuel a metered module could be charged over every path modelled so far, at most.
  std::uint64_t fuelBound() const { return fuelBound_; }

 private:
  struct Label {
    bool loop;
    std::size_t height;  // the stack below the block's parameters
    std::size_t arity;   // the values a branch to it carries
    std::vector<SymbolicState> arrivals;
  };
  struct Frame {
    std::vector<Label> labels;  // labels[0] is the function's own: `return` branches to it
  };

  void run(const wabt::ExprList& list, Frame& frame, std::optional<SymbolicState>& state);
  void step(const wabt::Expr& expr, Frame& frame, std::optional<SymbolicState>& state);
  void block(const wabt::Block& block, Frame& frame, std::optional<SymbolicState>& state);
  // Pops the innermost label; the state goes on as the join of its arrivals and `state`.
  void finishBlock(Frame& frame, std::optional<SymbolicState>& state);
  void branchIf(const wabt::IfExpr& branch, Frame& frame, std::optional<SymbolicState>& state);
  void loop(const wabt::Block& body, Frame& frame, std::optional<SymbolicState>& state);
  void branch(Frame& frame, wabt::Index depth, const SymbolicState& state, const z3::expr& condition);
  void branchTable(const wabt::BrTableExpr& table, Frame& frame, std::optional<SymbolicState>& state);
  void callExpr(wabt::Index index, std::optional<SymbolicState>& state);
  void emit(const wabt::FuncSignature& signature, std::optional<SymbolicState>& state);
  void memoryAccess(const wabt::Expr& expr, std::optional<SymbolicState>& state);
  void numeric(wabt::Opcode opcode, unsigned operands, std::optional<SymbolicState>& state);
  void unsupported(const std::string& what, std::optional<SymbolicState>& state);

  // Whether the time limit has passed; when it has, the state ends in a gap.
  bool outOfTime(std::optional<SymbolicState>& state);
  // How long to ask whether a loop's next iteration can be reached: never past the time limit.
  unsigned pathCheckMilliseconds() const;

  z3::expr zeroOf(wabt::Type type) const;
  std::uint64_t staticCost(const wabt::ExprList& list);

  const wabt::Module& module_;
  const SymbolicMemoryModel& memory_;
  Budgets budgets_;
  std::chrono::steady_clock::time_point deadline_;
  z3::context& context_;
  z3::expr trapped_;
  std::vector<std::pair<z3::expr, SymbolicEmission>> trapEmissions_;
  std::map<std::string, z3::expr> gaps_;  // by reason
  std::optional<SymbolicState> baseline_;
  std::vector<wabt::Index> calls_;  // the functions being run, outermost first
  std::uint64_t stackUnits_ = 0;    // the frames of calls_ past the first, as the metered host counts them
  std::uint64_t instructions_ = 0;
  std::uint64_t fuelBound_ = 0;
  std::map<const wabt::ExprList*, std::uint64_t> costs_;
};

}  // namespace ravo::orx::internal
