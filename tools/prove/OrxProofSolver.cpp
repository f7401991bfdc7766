#include <ravo-orx/prove/OrxProofSolver.h>

#include <ravo-orx/prove/SymbolicFold.h>

namespace ravo::orx::internal {

namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

void orxLimitSolverMemory(unsigned megabytes) { z3::set_param("memory_max_size", static_cast<int>(megabytes)); }

OrxProofSolver::OrxProofSolver(z3::context& context, std::chrono::milliseconds timeLimit, unsigned memoryMegabytes)
    : context_(context), timeLimit_(timeLimit), memoryMegabytes_(memoryMegabytes), abstraction_(context) {}

OrxSolverOutcome OrxProofSolver::unknown(const std::string& reason) const {
  if (reason.find("memory") != std::string::npos) {
    return {OrxSolverAnswer::unknown, std::nullopt, "memory limit (" + std::to_string(memoryMegabytes_) + " MB)"};
  }
  if (reason == "timeout" || reason == "canceled" || reason.empty()) {
    return {OrxSolverAnswer::unknown, std::nullopt, "time limit (" + std::to_string(timeLimit_.count()) + " ms)"};
  }
  return {OrxSolverAnswer::unknown, std::nullopt, "the solver gave up: " + reason};
}

// Each question is asked in a context of its own, holding only its formula: in the context that built
// the models, whose many other terms steer the solver's choices, the same formula took over 5 s where
// a fresh context took 0.2 s. In a scope, the solver is Z3's incremental one, whose word-level
// reasoning sees through the policies' arithmetic where bit-blasting the whole formula took minutes.
OrxSolverOutcome OrxProofSolver::check(const z3::expr& formula) {
  const auto deadline = Clock::now() + timeLimit_;
  try {
    z3::context question;
    z3::solver solver(question);
    solver.push();
    solver.add(translated(abstraction_.abstracted(formula), question));
    while (true) {
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
      if (left.count() <= 0) return unknown("timeout");
      z3::params parameters(question);
      parameters.set("timeout", static_cast<unsigned>(left.count()));
      solver.set(parameters);
      switch (solver.check()) {
        case z3::unsat: return {OrxSolverAnswer::unsatisfiable, std::nullopt, {}};
        case z3::unknown: return unknown(solver.reason_unknown());
        case z3::sat: break;
      }
      z3::model found = solver.get_model();
      z3::model model(found, context_, z3::model::translate());
      const auto refinement = abstraction_.refinement(model);
      if (!refinement) return {OrxSolverAnswer::satisfiable, model, {}};
      solver.add(translated(*refinement, question));
    }
  } catch (const z3::exception& error) {
    return unknown(error.msg());
  }
}

}  // namespace ravo::orx::internal
