#pragma once
// One question to the solver, "does this formula have a model?", answered within the query's time
// limit (across every refinement of the division abstraction, OrxDivisionAbstraction.h) and Z3's
// process-wide memory limit. Running out of either is an answer of its own: unknown, with why.

#include <chrono>
#include <optional>
#include <string>

#include <z3++.h>

#include <ravo-orx/prove/OrxDivisionAbstraction.h>

namespace ravo::orx::internal {

enum class OrxSolverAnswer { satisfiable, unsatisfiable, unknown };

struct OrxSolverOutcome {
  OrxSolverAnswer answer;
  std::optional<z3::model> model;  // when satisfiable
  std::string unknownReason;       // when unknown: "time limit (5000 ms)", "memory limit (512 MB)"
};

class OrxProofSolver {
 public:
  OrxProofSolver(z3::context& context, std::chrono::milliseconds timeLimit, unsigned memoryMegabytes);

  OrxSolverOutcome check(const z3::expr& formula);

 private:
  OrxSolverOutcome unknown(const std::string& reason) const;

  z3::context& context_;
  std::chrono::milliseconds timeLimit_;
  unsigned memoryMegabytes_;
  OrxDivisionAbstraction abstraction_;
};

// Z3's limit on the memory it allocates, in megabytes; process-wide, so it is set once per prover run.
void orxLimitSolverMemory(unsigned megabytes);

}  // namespace ravo::orx::internal
