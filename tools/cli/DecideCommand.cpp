#include <array>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "runtime/OrxPolicyRuntime.h"
#include "tools/cli/OrxCliCommand.h"
#include "tools/cli/OrxCliIO.h"

namespace {

template <class Facts>
constexpr std::size_t kFactCount = std::tuple_size_v<decltype(std::declval<Facts>().arguments())>;

// The facts in declaration order, which is also the order of the module's arguments.
template <class Facts, std::size_t... I>
Facts factsFrom(std::span<const std::int32_t> values, std::index_sequence<I...>) {
  return Facts{values[I]...};
}

template <class Facts>
Facts factsFrom(std::span<const std::int32_t> values) {
  return factsFrom<Facts>(values, std::make_index_sequence<kFactCount<Facts>>());
}

RavoJSON authorize(OrxPolicyRuntime& runtime, std::span<const std::int32_t> facts) {
  const auto decision = runtime.authorize(factsFrom<AuthorizationFacts>(facts));
  return {{"isAllowed", decision.isAllowed},
          {"reason", orxCaseName(decision.reason)},
          {"policyVersion", decision.policyVersion}};
}

RavoJSON correctSync(OrxPolicyRuntime& runtime, std::span<const std::int32_t> facts) {
  const auto decision = runtime.correctSync(factsFrom<SyncFacts>(facts));
  return {{"action", orxCaseName(decision.action)},
          {"rateX1000", decision.rateX1000},
          {"correctionMilliseconds", decision.correctionMilliseconds},
          {"reason", decision.reason}};
}

RavoJSON decideCinemaAdmission(OrxPolicyRuntime& runtime, std::span<const std::int32_t> facts) {
  const auto decision = runtime.decideCinemaAdmission(factsFrom<CinemaAdmissionFacts>(facts));
  return {{"route", orxCaseName(decision.route)},
          {"sparseAnchorIntervalFrames", decision.sparseAnchorIntervalFrames},
          {"safeBudgetTenthsMilliseconds", decision.safeBudgetTenthsMilliseconds},
          {"reason", orxCaseName(decision.reason)}};
}

struct Decision {
  std::string_view name;
  std::size_t factCount;
  RavoJSON (*decide)(OrxPolicyRuntime&, std::span<const std::int32_t>);
};

constexpr std::array kDecisions{
    Decision{"authz", kFactCount<AuthorizationFacts>, authorize},
    Decision{"sync", kFactCount<SyncFacts>, correctSync},
    Decision{"cinema", kFactCount<CinemaAdmissionFacts>, decideCinemaAdmission},
};

const Decision& decisionNamed(std::string_view name) {
  for (const auto& decision : kDecisions) {
    if (decision.name == name) return decision;
  }
  throw OrxCliUsageError("unknown decision \"" + std::string(name) + "\"; expected authz, sync or cinema");
}

// A decision taken on a runtime whose modules did not load is the fail-safe decision an embedding host
// would be given; it is printed like any other, and `status` tells why the modules are missing.
int runDecide(OrxCliArguments& arguments) {
  const std::optional<std::filesystem::path> artifacts = arguments.option("--artifacts");
  const Decision& decision = decisionNamed(arguments.next("authz, sync or cinema"));
  std::vector<std::int32_t> facts;
  while (const auto word = arguments.nextIfAny()) {
    facts.push_back(static_cast<std::int32_t>(orxCliInteger(*word, "fact " + std::to_string(facts.size() + 1),
                                                            std::numeric_limits<std::int32_t>::min(),
                                                            std::numeric_limits<std::int32_t>::max())));
  }
  arguments.finish();
  if (facts.size() != decision.factCount) {
    throw OrxCliUsageError(std::string(decision.name) + " takes " + std::to_string(decision.factCount) +
                           " facts, got " + std::to_string(facts.size()));
  }
  OrxPolicyRuntime runtime(artifacts);
  orxCliPrintJSON(decision.decide(runtime, facts));
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliDecideCommand{
    "decide", "authz|sync|cinema FACT... [--artifacts DIR]", "take one policy decision and print it as JSON",
    "Builds a policy runtime over DIR (default: the bundled artifacts, as for status), takes one\n"
    "decision with the facts given as 32-bit integers in this order, and prints the decision as JSON,\n"
    "enumeration cases by name. A module that did not load gives the fail-safe decision.\n"
    "\n"
    "  authz   role command grantFlags tokenAgeMilliseconds tokenTTLMilliseconds rateUsed rateLimit\n"
    "          controlMode\n"
    "          -> {\"isAllowed\":...,\"reason\":...,\"policyVersion\":...}\n"
    "  sync    driftMilliseconds roundTripMilliseconds jitterMilliseconds bufferAheadMilliseconds\n"
    "          rateX100 stallCount syncAgeMilliseconds toleranceMilliseconds\n"
    "          -> {\"action\":...,\"rateX1000\":...,\"correctionMilliseconds\":...,\"reason\":...}\n"
    "  cinema  sourceFPSX100 targetFPSX100 sourceReservoirMilliseconds headroom thermalState\n"
    "          memoryPressure bridgeTenthsMilliseconds temporalTenthsMilliseconds\n"
    "          interpolationTenthsMilliseconds metalFXTenthsMilliseconds finalDetailTenthsMilliseconds\n"
    "          modelTenthsMilliseconds modelSampleCount\n"
    "          -> {\"route\":...,\"sparseAnchorIntervalFrames\":...,\"safeBudgetTenthsMilliseconds\":...,\n"
    "              \"reason\":...}\n",
    runDecide};
