#include <ravo-orx/cli/OrxCliDecisions.h>

#include <limits>

#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

namespace {

constexpr std::int64_t kMinimum = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMaximum = std::numeric_limits<std::int32_t>::max();

std::vector<std::int32_t> factsFromWords(OrxCliArguments& arguments, const OrxDecisionKind& kind) {
  std::vector<std::int32_t> facts;
  while (const auto word = arguments.nextIfAny()) {
    const std::string what = "fact " + std::to_string(facts.size() + 1);
    facts.push_back(static_cast<std::int32_t>(orxCliInteger(*word, what, kMinimum, kMaximum)));
  }
  arguments.finish();
  if (facts.size() != kind.factNames.size()) {
    throw OrxCliUsageError(std::string(kind.name) + " takes " + std::to_string(kind.factNames.size()) +
                           " facts, got " + std::to_string(facts.size()));
  }
  return facts;
}

std::vector<std::int32_t> factsFromJSON(const RavoJSON& document, const OrxDecisionKind& kind) {
  if (!document.is_object()) throw std::runtime_error("facts: expected a JSON object keyed by the fact names");
  for (const auto& [name, value] : document.items()) {
    if (std::find(kind.factNames.begin(), kind.factNames.end(), name) == kind.factNames.end()) {
      throw OrxCliUsageError("unknown fact \"" + name + "\" for " + std::string(kind.name));
    }
  }
  std::vector<std::int32_t> facts;
  for (const auto name : kind.factNames) {
    const auto value = document.find(name);
    if (value == document.end()) throw OrxCliUsageError("missing fact \"" + std::string(name) + "\"");
    // An unsigned number is compared as one: read as signed, 2^64 - 1 would pass as -1.
    const bool inRange = value->is_number_unsigned()
                             ? value->get<std::uint64_t>() <= static_cast<std::uint64_t>(kMaximum)
                             : value->is_number_integer() && value->get<std::int64_t>() >= kMinimum &&
                                   value->get<std::int64_t>() <= kMaximum;
    if (!inRange) {
      throw OrxCliUsageError("fact \"" + std::string(name) + "\" must be an integer from " +
                             std::to_string(kMinimum) + " to " + std::to_string(kMaximum) + ", got " + value->dump());
    }
    facts.push_back(value->get<std::int32_t>());
  }
  return facts;
}

}  // namespace

const OrxDecisionKind& orxCliPolicyKind(OrxCliArguments& arguments) {
  const std::string name = arguments.next("authz, sync or cinema");
  if (const auto* kind = orxDecisionKindNamed(name)) return *kind;
  throw OrxCliUsageError("unknown decision \"" + name + "\"; expected authz, sync or cinema");
}

std::vector<std::int32_t> orxCliFacts(OrxCliArguments& arguments, const OrxDecisionKind& kind,
                                      const std::optional<std::string>& factsFile) {
  if (!factsFile) return factsFromWords(arguments, kind);
  arguments.finish();
  return orxCliFactsFromJSON(orxCliReadInput(factsFile), kind);
}

std::vector<std::int32_t> orxCliFactsFromJSON(std::string_view json, const OrxDecisionKind& kind) {
  return factsFromJSON(parseRavoJSON(json), kind);
}

int orxCliPrintAnswer(const OrxPolicyAnswer& answer) {
  RavoJSON decision = answer.decision;
  decision["source"] = orxCaseName(answer.source);
  orxCliPrintJSON(decision);
  return answer.source == OrxDecisionSource::policy ? 0 : kOrxCliFailSafe;
}

}  // namespace ravo::orx
