#include <ravo-orx/cli/OrxCliDecisions.h>

#include <algorithm>
#include <limits>

#include <ravo-orx/core/ORXMessageText.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

using namespace internal;

namespace {

constexpr std::int64_t kMinimum = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMaximum = std::numeric_limits<std::int32_t>::max();
// The most of a key, a string or a number of the document that a refusal quotes.
constexpr std::size_t kQuotedBytes = 64;

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

std::string inQuotes(std::string_view text) {
  return "\"" + ORXMessageText::printable(ORXMessageText::excerpt(text, kQuotedBytes)) + "\"";
}

bool isFact(const RavoJSON& value) {
  // An unsigned number is compared as one: read as signed, 2^64 - 1 would pass as -1.
  if (value.is_number_unsigned()) return value.get<std::uint64_t>() <= static_cast<std::uint64_t>(kMaximum);
  return value.is_number_integer() && value.get<std::int64_t>() >= kMinimum && value.get<std::int64_t>() <= kMaximum;
}

// A value that is no fact, as its refusal shows it: a number as written.
std::string described(const RavoJSON& value, std::string_view numberText) {
  if (!numberText.empty()) return ORXMessageText::printable(ORXMessageText::excerpt(numberText, kQuotedBytes));
  if (value.is_string()) return "the string " + inQuotes(value.get_ref<const std::string&>());
  if (value.is_array()) return "an array";
  if (value.is_object()) return "an object";
  return value.dump();
}

// A facts document is one object of the kind's fact names and 32-bit integers, and is refused as it
// is read: an unknown name or a value that is no fact stops the reader before anything else is built,
// so a document of junk costs nothing but its reading. This is parseRavoJSON's filter rather than a
// reader of its own, so that facts read, and fail, like every other JSON the tools take.
class FactsFilter final : public RavoJSONFilter {
 public:
  explicit FactsFilter(const OrxDecisionKind& kind) : kind_(kind) {}

  void key(RavoJSONPath, std::string_view key) const override {
    if (std::find(kind_.factNames.begin(), kind_.factNames.end(), key) == kind_.factNames.end()) {
      throw OrxCliUsageError("unknown fact " + inQuotes(key) + " for " + std::string(kind_.name));
    }
  }

  // Only the document and its members are asked about: a member that is an array or object is refused
  // as it opens.
  void value(RavoJSONPath path, const RavoJSON& value, std::string_view numberText) const override {
    if (path.empty()) {
      if (!value.is_object()) throw std::runtime_error("facts: expected a JSON object keyed by the fact names");
      return;
    }
    if (!isFact(value)) {
      throw OrxCliUsageError("fact \"" + std::string(path.front().key) + "\" must be an integer from " +
                             std::to_string(kMinimum) + " to " + std::to_string(kMaximum) + ", got " +
                             described(value, numberText));
    }
  }

 private:
  const OrxDecisionKind& kind_;
};

}  // namespace

const OrxDecisionKind& orxCliPolicyKind(OrxCliArguments& arguments) {
  const std::string name = arguments.next("authz, sync or cinema");
  if (const auto* kind = orxDecisionKindNamed(name)) return *kind;
  throw OrxCliUsageError("unknown decision " + inQuotes(name) + "; expected authz, sync or cinema");
}

std::vector<std::int32_t> orxCliFacts(OrxCliArguments& arguments, const OrxDecisionKind& kind,
                                      const std::optional<std::string>& factsFile) {
  if (!factsFile) return factsFromWords(arguments, kind);
  arguments.finish();
  return orxCliFactsFromJSON(orxCliReadInput(factsFile, kOrxCliFactsByteLimit), kind);
}

std::vector<std::int32_t> orxCliFactsFromJSON(std::string_view json, const OrxDecisionKind& kind) {
  const RavoJSON document = parseRavoJSON(json, FactsFilter(kind));
  std::vector<std::int32_t> facts;
  for (const auto name : kind.factNames) {
    const auto value = document.find(name);
    if (value == document.end()) throw OrxCliUsageError("missing fact \"" + std::string(name) + "\"");
    facts.push_back(value->get<std::int32_t>());
  }
  return facts;
}

int orxCliPrintAnswer(const OrxPolicyAnswer& answer) {
  RavoJSON decision = answer.decision;
  decision["source"] = orxCaseName(answer.source);
  orxCliPrintJSON(decision);
  return answer.source == OrxDecisionSource::policy ? 0 : kOrxCliFailSafe;
}

}  // namespace ravo::orx
