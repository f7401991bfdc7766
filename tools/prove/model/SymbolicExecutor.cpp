#include <ravo-orx/prove/SymbolicExecutor.h>

#include <algorithm>

#include <ravo-orx/engine/OrxExecutionBound.h>
#include <ravo-orx/prove/SymbolicFold.h>
#include <ravo-orx/prove/SymbolicNumbers.h>

namespace ravo::orx::internal {

namespace {

using wabt::cast;
using wabt::ExprType;
using wabt::Index;
using wabt::Opcode;
using wabt::Type;

// What the metering charges besides the module's own instructions, rounded up: a charge at each
// function entry and loop iteration, the frame accounting around each call.
constexpr std::uint64_t kChargeOverhead = 16;
constexpr std::uint64_t kCallOverhead = 16;

// How long the model asks the solver whether a loop's next iteration can be reached at all.
constexpr unsigned kPathCheckMilliseconds = 200;

// How many modelled instructions pass between two looks at the clock.
constexpr std::uint64_t kInstructionsPerClockCheck = 4096;

const char* const kChangesInstance = "decide may leave the instance changed for the next call (a global, the memory or its size)";

// Whether some facts may take the path: false only when the solver shows none can, within a short
// time. Asked in a context of its own, as the prover asks every question (OrxProofSolver).
bool mayBeTaken(const z3::expr& path, unsigned milliseconds) {
  if (path.is_true()) return true;
  if (path.is_false()) return false;
  z3::context question;
  z3::solver solver(question);
  solver.push();  // in a scope, as OrxProofSolver asks: Z3's incremental solver
  solver.add(translated(path, question));
  z3::params parameters(question);
  parameters.set("timeout", milliseconds);
  solver.set(parameters);
  return solver.check() != z3::unsat;
}

z3::expr pop(SymbolicState& state) {
  z3::expr value = state.stack.back();
  state.stack.pop_back();
  return value;
}

// The last `count` values of the stack, in order, taken off it.
std::vector<z3::expr> popValues(SymbolicState& state, std::size_t count) {
  std::vector<z3::expr> values(state.stack.end() - static_cast<std::ptrdiff_t>(count), state.stack.end());
  state.stack.erase(state.stack.end() - static_cast<std::ptrdiff_t>(count), state.stack.end());
  return values;
}

void keepIfReached(std::optional<SymbolicState>& state) {
  if (state && state->reach.is_false()) state.reset();
}

bool signExtends(Opcode opcode) {
  switch (opcode) {
    case Opcode::I32Load8S:
    case Opcode::I32Load16S:
    case Opcode::I64Load8S:
    case Opcode::I64Load16S:
    case Opcode::I64Load32S: return true;
    default: return false;
  }
}

std::optional<unsigned> integerBits(Type type) {
  if (type == Type::I32) return 32;
  if (type == Type::I64) return 64;
  return std::nullopt;
}

}  // namespace

SymbolicExecutor::SymbolicExecutor(const wabt::Module& module, z3::context& context,
                                   const SymbolicMemoryModel& memory, Budgets budgets)
    : module_(module),
      memory_(memory),
      budgets_(budgets),
      deadline_(std::chrono::steady_clock::now() + budgets.limits.timeLimit),
      context_(context),
      trapped_(context.bool_val(false)) {}

bool SymbolicExecutor::outOfTime(std::optional<SymbolicState>& state) {
  if (std::chrono::steady_clock::now() < deadline_) return false;
  gap(state, context_.bool_val(true),
      "the model took longer to build than the time limit (" + std::to_string(budgets_.limits.timeLimit.count()) + " ms)");
  return true;
}

unsigned SymbolicExecutor::pathCheckMilliseconds() const {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline_ - std::chrono::steady_clock::now());
  return static_cast<unsigned>(std::clamp<std::int64_t>(left.count(), 1, kPathCheckMilliseconds));
}

z3::expr SymbolicExecutor::zeroOf(Type type) const {
  // Values of types the model does not follow (floats, references, vectors) stand as an opaque 32-bit
  // 0: every instruction that could look at one is a gap.
  return context_.bv_val(0, type == Type::I64 ? 64 : 32);
}

std::uint64_t SymbolicExecutor::staticCost(const wabt::ExprList& list) {
  const auto known = costs_.find(&list);
  if (known != costs_.end()) return known->second;
  std::uint64_t cost = 0;
  for (const auto& expr : list) {
    ++cost;
    switch (expr.type()) {
      case ExprType::Block: cost += staticCost(cast<wabt::BlockExpr>(&expr)->block.exprs); break;
      case ExprType::Loop: cost += staticCost(cast<wabt::LoopExpr>(&expr)->block.exprs); break;
      case ExprType::If: {
        const auto* branch = cast<wabt::IfExpr>(&expr);
        cost += staticCost(branch->true_.exprs) + staticCost(branch->false_);
        break;
      }
      case ExprType::Call: cost += kCallOverhead; break;
      default: break;
    }
  }
  costs_.emplace(&list, cost);
  return cost;
}

void SymbolicExecutor::noteExit(const SymbolicState& exit, const z3::expr& condition) {
  if (!baseline_) return;
  const z3::expr differs = stateDiffers(exit, *baseline_);
  if (!differs.is_false()) addGap(allOf(condition, differs), kChangesInstance);
}

void SymbolicExecutor::addGap(const z3::expr& condition, const std::string& reason) {
  if (condition.is_false()) return;
  const auto [known, added] = gaps_.emplace(reason, condition);
  if (!added) known->second = anyOf(known->second, condition);
}

std::vector<OrxModelGap> SymbolicExecutor::gaps() const {
  std::vector<OrxModelGap> gaps;
  for (const auto& [reason, condition] : gaps_) gaps.push_back({condition, reason});
  return gaps;
}

void SymbolicExecutor::trap(std::optional<SymbolicState>& state, const z3::expr& condition) {
  if (!state) return;
  const z3::expr exit = allOf(state->reach, condition);
  if (exit.is_false()) return;
  trapped_ = anyOf(trapped_, exit);
  trapEmissions_.emplace_back(exit, state->emission);
  noteExit(*state, exit);
  state->reach = allOf(state->reach, negation(condition));
  keepIfReached(state);
}

void SymbolicExecutor::gap(std::optional<SymbolicState>& state, const z3::expr& condition, const std::string& reason) {
  if (!state) return;
  addGap(allOf(state->reach, condition), reason);
  state->reach = allOf(state->reach, negation(condition));
  keepIfReached(state);
}

void SymbolicExecutor::unsupported(const std::string& what, std::optional<SymbolicState>& state) {
  gap(state, context_.bool_val(true),
      what + " is not modelled (floating point, tables, bulk memory, references and SIMD are not)");
}

std::optional<SymbolicState> SymbolicExecutor::call(Index index, SymbolicState state) {
  std::optional<SymbolicState> running = std::move(state);
  if (index < module_.num_func_imports) {
    emit(module_.funcs[index]->decl.sig, running);
    return running;
  }
  const wabt::Func& function = *module_.funcs[index];
  std::vector<z3::expr> locals = popValues(*running, function.GetNumParams());
  for (const Type type : function.local_types) locals.push_back(zeroOf(type));
  std::vector<z3::expr> callerStack = std::move(running->stack);
  std::vector<z3::expr> callerLocals = std::move(running->locals);
  running->stack.clear();
  running->locals = std::move(locals);
  fuelBound_ += 1 + function.GetNumLocals() + staticCost(function.exprs) + kChargeOverhead;

  calls_.push_back(index);
  Frame frame;
  frame.labels.push_back({false, 0, function.GetNumResults(), {}});
  run(function.exprs, frame, running);
  calls_.pop_back();
  if (running) branch(frame, 0, *running, context_.bool_val(true));
  if (frame.labels[0].arrivals.empty()) return std::nullopt;

  SymbolicState after = joined(frame.labels[0].arrivals);
  callerStack.insert(callerStack.end(), after.stack.begin(), after.stack.end());
  after.stack = std::move(callerStack);
  after.locals = std::move(callerLocals);
  return after;
}

void SymbolicExecutor::callExpr(Index index, std::optional<SymbolicState>& state) {
  if (std::find(calls_.begin(), calls_.end(), index) != calls_.end()) {
    gap(state, context_.bool_val(true), "a function may call itself (recursion)");
    return;
  }
  std::uint64_t frame = 0;
  if (budgets_.metered && index >= module_.num_func_imports) {
    frame = kOrxFrameUnits + module_.funcs[index]->GetNumParamsAndLocals();
    // The metered host adds the callee's frame before the call and traps past the budget.
    if (stackUnits_ + frame > kOrxMaxStackUnits) {
      trap(state, context_.bool_val(true));
      return;
    }
  }
  stackUnits_ += frame;
  state = call(index, std::move(*state));
  stackUnits_ -= frame;
}

void SymbolicExecutor::emit(const wabt::FuncSignature& signature, std::optional<SymbolicState>& state) {
  const z3::expr always = context_.bool_val(true);
  // A vector cannot cross to the host: refused before anything is stored.
  if (std::count(signature.param_types.begin(), signature.param_types.end(), Type::V128) > 0) {
    popValues(*state, signature.GetNumParams());
    trap(state, always);
    return;
  }
  const std::vector<z3::expr> arguments = popValues(*state, signature.GetNumParams());
  std::vector<z3::expr> stored;
  for (Index i = 0; i < signature.GetNumParams(); ++i) {
    const Type type = signature.GetParamType(i);
    if (type == Type::I32) stored.push_back(arguments[i]);
    if (type == Type::F32 || type == Type::F64) return unsupported("output.emit with a floating-point argument", state);
    // i64 and references are not script numbers: the host drops them.
  }
  SymbolicEmission& emission = state->emission;
  emission.called = context_.bool_val(true);
  emission.count = context_.bv_val(static_cast<std::uint64_t>(stored.size()), 32);
  for (std::size_t v = 0; v < kSymbolicEmittedValues; ++v) {
    emission.values[v] = v < stored.size() ? stored[v] : context_.bv_val(0, 32);
  }
  // emit returns 0, which must convert to the declared result; the values stay stored when it cannot.
  if (signature.GetNumResults() == 0) return;
  const Type result = signature.GetResultType(0);
  if (signature.GetNumResults() > 1 || result == Type::I64 || result == Type::FuncRef || result == Type::V128) {
    trap(state, always);
    return;
  }
  if (result != Type::I32) return unsupported("output.emit with a floating-point or reference result", state);
  state->stack.push_back(context_.bv_val(0, 32));
}

void SymbolicExecutor::run(const wabt::ExprList& list, Frame& frame, std::optional<SymbolicState>& state) {
  for (const auto& expr : list) {
    if (!state) return;
    if (++instructions_ > budgets_.limits.maxInstructions) {
      gap(state, context_.bool_val(true),
          "the unrolled code has more than " + std::to_string(budgets_.limits.maxInstructions) + " instructions");
      return;
    }
    // Reading the clock costs more than modelling an instruction: a small module never looks.
    if (instructions_ % kInstructionsPerClockCheck == 0 && outOfTime(state)) return;
    step(expr, frame, state);
  }
}

void SymbolicExecutor::branch(Frame& frame, Index depth, const SymbolicState& state, const z3::expr& condition) {
  const z3::expr reach = allOf(state.reach, condition);
  if (reach.is_false()) return;
  Label& label = frame.labels[frame.labels.size() - 1 - depth];
  SymbolicState arrival = state;
  arrival.reach = reach;
  arrival.stack.erase(arrival.stack.begin() + static_cast<std::ptrdiff_t>(label.height),
                      arrival.stack.end() - static_cast<std::ptrdiff_t>(label.arity));
  // After the function returns its locals are gone: joining them would only build formulas.
  if (&label == &frame.labels.front()) arrival.locals.clear();
  label.arrivals.push_back(std::move(arrival));
}

void SymbolicExecutor::block(const wabt::Block& block, Frame& frame, std::optional<SymbolicState>& state) {
  frame.labels.push_back({false, state->stack.size() - block.decl.GetNumParams(), block.decl.GetNumResults(), {}});
  run(block.exprs, frame, state);
  finishBlock(frame, state);
}

void SymbolicExecutor::finishBlock(Frame& frame, std::optional<SymbolicState>& state) {
  std::vector<SymbolicState> arrivals = std::move(frame.labels.back().arrivals);
  frame.labels.pop_back();
  if (state) arrivals.push_back(std::move(*state));
  state.reset();
  if (!arrivals.empty()) state = joined(arrivals);
}

void SymbolicExecutor::branchIf(const wabt::IfExpr& branch, Frame& frame, std::optional<SymbolicState>& state) {
  const z3::expr condition = symbolicTruth(pop(*state));
  std::optional<SymbolicState> otherwise = *state;
  otherwise->reach = allOf(state->reach, negation(condition));
  keepIfReached(otherwise);
  state->reach = allOf(state->reach, condition);
  keepIfReached(state);
  const wabt::Block& then = branch.true_;
  const std::size_t height = (state ? *state : *otherwise).stack.size() - then.decl.GetNumParams();
  frame.labels.push_back({false, height, then.decl.GetNumResults(), {}});
  run(then.exprs, frame, state);
  if (state) frame.labels.back().arrivals.push_back(std::move(*state));
  state = std::move(otherwise);
  run(branch.false_, frame, state);
  finishBlock(frame, state);
}

void SymbolicExecutor::loop(const wabt::Block& body, Frame& frame, std::optional<SymbolicState>& state) {
  const std::size_t height = state->stack.size() - body.decl.GetNumParams();
  std::vector<SymbolicState> exits;
  std::optional<SymbolicState> entry = std::move(state);
  for (unsigned iteration = 0; entry; ++iteration) {
    if (outOfTime(entry)) break;
    if (iteration == budgets_.limits.unrollBound) {
      gap(entry, context_.bool_val(true),
          "a loop may run more than " + std::to_string(budgets_.limits.unrollBound) +
              (budgets_.limits.unrollBound == 1 ? " iteration" : " iterations") + " (the unroll bound)");
      break;
    }
    fuelBound_ += 1 + staticCost(body.exprs) + kChargeOverhead;
    frame.labels.push_back({true, height, body.decl.GetNumParams(), {}});
    run(body.exprs, frame, entry);
    if (entry) exits.push_back(std::move(*entry));
    std::vector<SymbolicState> again = std::move(frame.labels.back().arrivals);
    frame.labels.pop_back();
    entry.reset();
    // A loop whose exit depends on the facts would otherwise be unrolled to the bound even when no
    // facts take it that far: a path the solver shows impossible ends here.
    if (!again.empty()) entry = joined(again);
    if (entry && !mayBeTaken(entry->reach, pathCheckMilliseconds())) entry.reset();
  }
  state.reset();
  if (!exits.empty()) state = joined(exits);
}

void SymbolicExecutor::branchTable(const wabt::BrTableExpr& table, Frame& frame, std::optional<SymbolicState>& state) {
  const z3::expr index = pop(*state);
  // Each target's condition: the runs of consecutive indices that lead to it, then the default.
  std::map<Index, z3::expr> conditions;
  auto lead = [&](Index depth, const z3::expr& condition) {
    const auto [known, added] = conditions.emplace(depth, condition);
    if (!added) known->second = anyOf(known->second, condition);
  };
  const std::size_t count = table.targets.size();
  for (std::size_t first = 0; first < count;) {
    std::size_t last = first;
    while (last + 1 < count && table.targets[last + 1].index() == table.targets[first].index()) ++last;
    const z3::expr from = context_.bv_val(static_cast<std::uint64_t>(first), 32);
    const z3::expr to = context_.bv_val(static_cast<std::uint64_t>(last), 32);
    lead(table.targets[first].index(), first == last ? folded(index == from)
                                                     : allOf(folded(z3::uge(index, from)), folded(z3::ule(index, to))));
    first = last + 1;
  }
  lead(table.default_target.index(), folded(z3::uge(index, context_.bv_val(static_cast<std::uint64_t>(count), 32))));
  for (const auto& [depth, condition] : conditions) branch(frame, depth, *state, condition);
  state.reset();
}

void SymbolicExecutor::memoryAccess(const wabt::Expr& expr, std::optional<SymbolicState>& state) {
  SymbolicState& now = *state;
  switch (expr.type()) {
    case ExprType::Load: {
      const auto& load = *cast<wabt::LoadExpr>(&expr);
      const auto bits = integerBits(load.opcode.GetResultType());
      if (!bits) return unsupported(load.opcode.GetName(), state);
      const z3::expr address = pop(now);
      const SymbolicResult loaded = memory_.load(now.memory, address, load.offset,
                                                 static_cast<unsigned>(load.opcode.GetMemorySize()), *bits,
                                                 signExtends(load.opcode));
      trap(state, loaded.traps);
      if (state) state->stack.push_back(loaded.value);
      return;
    }
    case ExprType::Store: {
      const auto& store = *cast<wabt::StoreExpr>(&expr);
      if (!integerBits(store.opcode.GetParamType2())) return unsupported(store.opcode.GetName(), state);
      const z3::expr value = pop(now);
      const z3::expr address = pop(now);
      auto [memory, traps] = memory_.store(now.memory, address, store.offset,
                                           static_cast<unsigned>(store.opcode.GetMemorySize()), value);
      trap(state, traps);
      if (state) state->memory = std::move(memory);
      return;
    }
    case ExprType::MemorySize: now.stack.push_back(now.memory.pages); return;
    default: {  // memory.grow
      const z3::expr delta = pop(now);
      auto [old, memory] = memory_.grow(now.memory, delta);
      now.memory = std::move(memory);
      now.stack.push_back(old);
      return;
    }
  }
}

void SymbolicExecutor::numeric(Opcode opcode, unsigned operands, std::optional<SymbolicState>& state) {
  std::optional<SymbolicResult> result;
  if (operands == 1) {
    const z3::expr operand = pop(*state);
    result = symbolicUnary(opcode, operand);
  } else {
    const z3::expr right = pop(*state);
    const z3::expr left = pop(*state);
    result = symbolicBinary(opcode, left, right);
  }
  if (!result) return unsupported(opcode.GetName(), state);
  trap(state, result->traps);
  if (state) state->stack.push_back(result->value);
}

void SymbolicExecutor::step(const wabt::Expr& expr, Frame& frame, std::optional<SymbolicState>& state) {
  SymbolicState& now = *state;
  switch (expr.type()) {
    case ExprType::Nop: return;
    case ExprType::Unreachable: return trap(state, context_.bool_val(true));
    case ExprType::Drop: now.stack.pop_back(); return;
    case ExprType::Select: {
      const z3::expr condition = symbolicTruth(pop(now));
      const z3::expr otherwise = pop(now);
      const z3::expr chosen = pop(now);
      now.stack.push_back(choose(condition, chosen, otherwise));
      return;
    }
    case ExprType::Const: {
      const wabt::Const& value = cast<wabt::ConstExpr>(&expr)->const_;
      if (value.type() == Type::I32) return now.stack.push_back(context_.bv_val(value.u32(), 32));
      if (value.type() == Type::I64) return now.stack.push_back(context_.bv_val(value.u64(), 64));
      return unsupported("a floating-point or vector constant", state);
    }
    case ExprType::LocalGet: return now.stack.push_back(now.locals[cast<wabt::LocalGetExpr>(&expr)->var.index()]);
    case ExprType::LocalSet: now.locals[cast<wabt::LocalSetExpr>(&expr)->var.index()] = pop(now); return;
    case ExprType::LocalTee: now.locals[cast<wabt::LocalTeeExpr>(&expr)->var.index()] = now.stack.back(); return;
    case ExprType::GlobalGet: return now.stack.push_back(now.globals[cast<wabt::GlobalGetExpr>(&expr)->var.index()]);
    case ExprType::GlobalSet: now.globals[cast<wabt::GlobalSetExpr>(&expr)->var.index()] = pop(now); return;
    case ExprType::Block: return block(cast<wabt::BlockExpr>(&expr)->block, frame, state);
    case ExprType::Loop: return loop(cast<wabt::LoopExpr>(&expr)->block, frame, state);
    case ExprType::If: return branchIf(*cast<wabt::IfExpr>(&expr), frame, state);
    case ExprType::Br:
      branch(frame, cast<wabt::BrExpr>(&expr)->var.index(), now, context_.bool_val(true));
      state.reset();
      return;
    case ExprType::BrIf: {
      const z3::expr condition = symbolicTruth(pop(now));
      branch(frame, cast<wabt::BrIfExpr>(&expr)->var.index(), now, condition);
      now.reach = allOf(now.reach, negation(condition));
      return keepIfReached(state);
    }
    case ExprType::BrTable: return branchTable(*cast<wabt::BrTableExpr>(&expr), frame, state);
    case ExprType::Return:
      branch(frame, static_cast<Index>(frame.labels.size() - 1), now, context_.bool_val(true));
      state.reset();
      return;
    case ExprType::Call: return callExpr(cast<wabt::CallExpr>(&expr)->var.index(), state);
    case ExprType::Load:
    case ExprType::Store:
    case ExprType::MemorySize:
    case ExprType::MemoryGrow: return memoryAccess(expr, state);
    case ExprType::Unary: return numeric(cast<wabt::UnaryExpr>(&expr)->opcode, 1, state);
    case ExprType::Convert: return numeric(cast<wabt::ConvertExpr>(&expr)->opcode, 1, state);
    case ExprType::Binary: return numeric(cast<wabt::BinaryExpr>(&expr)->opcode, 2, state);
    case ExprType::Compare: return numeric(cast<wabt::CompareExpr>(&expr)->opcode, 2, state);
    default: return unsupported(wabt::GetExprTypeName(expr), state);
  }
}

}  // namespace ravo::orx::internal
