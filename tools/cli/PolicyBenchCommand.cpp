#include <algorithm>
#include <chrono>

#include <fmt/format.h>

#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliDecisions.h>
#include <ravo-orx/cli/OrxCliIO.h>
#include <ravo-orx/cli/OrxCliPolicyModule.h>

namespace ravo::orx {

using namespace internal;

namespace {

struct Timing {
  std::int64_t runs;
  std::int64_t decisions;
};

// The median over the runs of the microseconds per decision of `decide(facts)`.
template <class Facts, class Decide>
double medianCost(Decide decide, const Facts& facts, Timing timing) {
  std::vector<double> costs;
  for (std::int64_t run = 0; run < timing.runs; ++run) {
    const auto start = std::chrono::steady_clock::now();
    for (std::int64_t i = 0; i < timing.decisions; ++i) decide(facts);
    const std::chrono::duration<double, std::micro> elapsed = std::chrono::steady_clock::now() - start;
    costs.push_back(elapsed.count() / static_cast<double>(timing.decisions));
  }
  std::sort(costs.begin(), costs.end());
  return costs[costs.size() / 2];
}

double medianCost(const OrxDecisionKind& kind, OrxPolicyDecider& decider, std::span<const std::int32_t> facts,
                  Timing timing) {
  switch (kind.id) {
    case OrxDecisionKindID::authorization:
      return medianCost([&](const auto& f) { return decider.authorize(f); },
                        orxFactsFrom<AuthorizationFacts>(facts), timing);
    case OrxDecisionKindID::sync:
      return medianCost([&](const auto& f) { return decider.correctSync(f); }, orxFactsFrom<SyncFacts>(facts), timing);
    case OrxDecisionKindID::cinemaAdmission:
      break;
  }
  return medianCost([&](const auto& f) { return decider.decideCinemaAdmission(f); },
                    orxFactsFrom<CinemaAdmissionFacts>(facts), timing);
}

int runBench(OrxCliArguments& arguments) {
  const std::optional<std::string> factsFile = arguments.option("--facts");
  const Timing timing{orxCliInteger(arguments.option("--runs").value_or("5"), "--runs", 1, 101),
                      orxCliInteger(arguments.option("--decisions").value_or("100000"), "--decisions", 1, 100'000'000)};
  const auto [module, kind, facts] = orxCliPolicyDecision(arguments, factsFile);
  auto loaded = module.load(kind.module, /*allowPrecompiled=*/true);
  const std::string_view tier = orxCaseName(loaded->tier());
  OrxPolicyDecider decider(orxModulesWith(kind, std::move(loaded)));
  const auto first = orxDecide(kind, decider, facts);
  if (first.source != OrxDecisionSource::policy) {
    orxCliWarn("ravo-orx policy bench",
               "these facts give the fail-safe decision (" + std::string(orxCaseName(first.source)) + ")");
  }
  const double cost = medianCost(kind, decider, facts, timing);
  orxCliPrint(fmt::format("{}: {:.3f} \u00B5s/decision on the {} tier (median of {} runs of {} decisions)", module.file,
                          cost, tier, timing.runs, timing.decisions));
  // The figure is printed all the same, but a fail-safe path is not the policy's cost: a script must see it.
  return first.source == OrxDecisionSource::policy ? 0 : kOrxCliFailSafe;
}

}  // namespace

constinit const OrxCliCommand kOrxCliPolicyBenchCommand{
    "bench", "MODULE authz|sync|cinema (FACT... | --facts FILE|-) [--runs N] [--decisions N]",
    "time a module's decisions",
    "MODULE is a module (.wasm) or a policy's source (.wat, .c, .rs), compiled as 'policy build' does.\n"
    "Loads MODULE ('-' for standard input) as the runtime would, on the tier it would run on (native\n"
    "code when this build compiled exactly these bytes, the interpreter otherwise), and times the\n"
    "decision with the facts given as for 'ravo-orx decide': N runs (default 5) of N decisions (default\n"
    "100000) each, printing the median cost per decision. Standard error warns when the facts give a\n"
    "fail-safe decision, which is timed all the same.\n"
    "Exit status: 0 timed the module's own decision, 1 the host refuses the module or a file cannot be\n"
    "read, 2 usage mistake, 3 the facts give a fail-safe decision (the figure is then not the policy's).\n",
    runBench};

}  // namespace ravo::orx
