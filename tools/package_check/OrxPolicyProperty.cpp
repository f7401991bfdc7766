#include <ravo-orx/package_check/OrxPolicyProperty.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <limits>
#include <optional>
#include <stdexcept>

#include <ravo-orx/runtime/OrxPolicyDecisions.h>

namespace ravo::orx {

namespace {

struct Token {
  enum class Type { name, integer, symbol, end };
  Type type;
  std::string_view text;
  std::size_t column;  // from 1
};

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string described(const Token& token) {
  return token.type == Token::Type::end ? std::string("the end of the property") : quoted(token.text);
}

[[noreturn]] void refuse(std::size_t column, const std::string& what) {
  throw std::runtime_error("at " + std::to_string(column) + ": " + what);
}

std::vector<Token> tokens(std::string_view text) {
  static constexpr std::string_view kSymbols[] = {"==", "!=", "<=", ">=", "..", "<", ">", "+", "-", "(", ")"};
  std::vector<Token> found;
  std::size_t at = 0;
  while (at < text.size()) {
    const char c = text[at];
    if (c == ' ' || c == '\t') {
      ++at;
      continue;
    }
    const std::size_t start = at;
    if (std::isalpha(static_cast<unsigned char>(c)) || c == '_') {
      while (at < text.size() && (std::isalnum(static_cast<unsigned char>(text[at])) || text[at] == '_')) ++at;
      found.push_back({Token::Type::name, text.substr(start, at - start), start + 1});
      continue;
    }
    if (std::isdigit(static_cast<unsigned char>(c))) {
      while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at]))) ++at;
      found.push_back({Token::Type::integer, text.substr(start, at - start), start + 1});
      continue;
    }
    const auto symbol = std::find_if(std::begin(kSymbols), std::end(kSymbols),
                                     [&](std::string_view s) { return text.substr(at).starts_with(s); });
    if (symbol == std::end(kSymbols)) refuse(start + 1, "unexpected character " + quoted(text.substr(at, 1)));
    at += symbol->size();
    found.push_back({Token::Type::symbol, *symbol, start + 1});
  }
  found.push_back({Token::Type::end, {}, text.size() + 1});
  return found;
}

// The raw value of the case of a field's enumeration with this name.
template <class E>
std::optional<std::int64_t> caseOf(std::string_view name) {
  for (const auto& [value, caseName] : ORXRawValueTable<E>::entries) {
    if (caseName == name) return rawValue(value);
  }
  return std::nullopt;
}

std::optional<std::int64_t> caseOf(OrxDecisionFieldForm form, std::string_view name) {
  switch (form) {
    case OrxDecisionFieldForm::authorizationReason: return caseOf<OrxAuthorizationReason>(name);
    case OrxDecisionFieldForm::syncAction: return caseOf<OrxSyncAction>(name);
    case OrxDecisionFieldForm::cinemaRoute: return caseOf<OrxCinemaAdmissionRoute>(name);
    case OrxDecisionFieldForm::cinemaReason: return caseOf<OrxCinemaAdmissionReason>(name);
    case OrxDecisionFieldForm::boolean:
    case OrxDecisionFieldForm::integer: break;
  }
  return std::nullopt;
}

// Plain integers, wide enough that no sum of 32-bit values wraps.
struct ConcreteDomain {
  std::span<const std::int32_t> facts;
  std::span<const std::int32_t> fields;

  std::int64_t constant(std::int64_t value) const { return value; }
  std::int64_t fact(std::size_t index) const { return facts[index]; }
  std::int64_t field(std::size_t index) const { return fields[index]; }
  bool truth(bool value) const { return value; }
};

constexpr std::string_view kKeywords[] = {"and", "or", "not", "implies", "in", "true", "false"};

}  // namespace

class OrxPolicyPropertyParser {
 public:
  using Op = OrxPolicyProperty::Op;

  OrxPolicyPropertyParser(std::string_view text, const OrxDecisionKind& kind)
      : kind_(kind), tokens_(tokens(text)) {}

  OrxPolicyProperty parse(std::string_view text) {
    if (tokens_.size() == 1) refuse(1, "the property is empty");
    const Parsed root = condition();
    if (peek().type != Token::Type::end) refuse(peek().column, "expected and, or or implies, found " + described(peek()));
    OrxPolicyProperty property;
    property.text_ = std::string(text);
    property.root_ = asCondition(root);
    property.nodes_ = std::move(nodes_);
    return property;
  }

 private:
  // What a rule of the grammar read: a condition, or a term (with, for a field of an enumeration or a
  // name that can only be a case, what resolves a case name).
  struct Parsed {
    std::size_t node;
    bool condition;
    std::size_t after;  // the token after it
    std::optional<OrxDecisionFieldForm> form = std::nullopt;
    std::optional<Token> caseName = std::nullopt;
  };

  const Token& peek() const { return tokens_[next_]; }
  const Token& take() { return tokens_[next_++]; }
  bool isSymbol(std::string_view text) const { return peek().type == Token::Type::symbol && peek().text == text; }
  bool takeIf(std::string_view text) {
    const bool matches = peek().type != Token::Type::end && peek().type != Token::Type::integer && peek().text == text;
    if (matches) ++next_;
    return matches;
  }
  void expect(std::string_view text) {
    if (!takeIf(text)) refuse(peek().column, "expected " + quoted(text) + ", found " + described(peek()));
  }

  Parsed made(OrxPolicyProperty::Node node, bool condition) {
    nodes_.push_back(node);
    return {nodes_.size() - 1, condition, next_};
  }
  Parsed conditionOf(Op op, std::size_t left, std::size_t right = 0) { return made({op, 0, 0, left, right}, true); }

  std::size_t asCondition(const Parsed& parsed) {
    if (!parsed.condition) {
      const Token& after = tokens_[parsed.after];
      refuse(after.column, "expected a comparison (==, !=, <, <=, >, >=) or \"in\", found " + described(after));
    }
    return parsed.node;
  }
  // A term's node; a case name in it must resolve against `other`, a field of an enumeration.
  std::size_t asTerm(Parsed& parsed, std::optional<OrxDecisionFieldForm> other = std::nullopt) {
    if (parsed.condition) refuse(tokens_[parsed.after].column, "a condition cannot be compared or computed with");
    if (parsed.caseName) {
      const Token& name = *parsed.caseName;
      const auto value = other ? caseOf(*other, name.text) : std::nullopt;
      if (!value) {
        refuse(name.column, quoted(name.text) + (other ? " is no case of the field it is compared with"
                                                        : " is no fact or decision field of " + std::string(kind_.name)));
      }
      nodes_[parsed.node].value = *value;
    }
    return parsed.node;
  }

  // Each parenthesis, "implies" and "not" nests a level deeper, and passes here.
  class Nested {
   public:
    explicit Nested(OrxPolicyPropertyParser& parser) : parser_(parser) {
      if (++parser_.depth_ > kOrxMaxPropertyNesting) {
        refuse(parser_.peek().column, "nested deeper than " + std::to_string(kOrxMaxPropertyNesting) + " levels");
      }
    }
    ~Nested() { --parser_.depth_; }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;

   private:
    OrxPolicyPropertyParser& parser_;
  };

  Parsed condition() {
    const Nested nested(*this);
    Parsed left = either();
    if (!takeIf("implies")) return left;
    const std::size_t premise = asCondition(left);
    return conditionOf(Op::implies, premise, asCondition(condition()));
  }

  Parsed either() {
    Parsed left = both();
    while (takeIf("or")) {
      const std::size_t first = asCondition(left);
      left = conditionOf(Op::either, first, asCondition(both()));
    }
    return left;
  }

  Parsed both() {
    Parsed left = negated();
    while (takeIf("and")) {
      const std::size_t first = asCondition(left);
      left = conditionOf(Op::both, first, asCondition(negated()));
    }
    return left;
  }

  Parsed negated() {
    if (takeIf("not")) {
      const Nested nested(*this);
      return conditionOf(Op::negation, asCondition(negated()));
    }
    if (takeIf("true")) return made({Op::truth, 1}, true);
    if (takeIf("false")) return made({Op::truth, 0}, true);
    if (peek().type == Token::Type::name) {
      const auto field = fieldNamed(peek().text);
      if (field && kind_.decisionFields[*field].form == OrxDecisionFieldForm::boolean) {
        ++next_;
        return made({Op::flag, static_cast<std::int64_t>(*field)}, true);
      }
    }
    return comparison();
  }

  // A comparison; a term (or a condition in parentheses) when none follows.
  Parsed comparison() {
    Parsed left = term();
    if (left.condition) return left;
    if (takeIf("in")) {
      const std::size_t value = asTerm(left);
      const std::size_t column = peek().column;
      const std::int64_t low = bound();
      expect("..");
      const std::int64_t high = bound();
      if (low > high) refuse(column, "the range " + std::to_string(low) + ".." + std::to_string(high) + " is empty");
      return made({Op::within, low, high, value, 0}, true);
    }
    static constexpr std::pair<std::string_view, Op> kComparisons[] = {
        {"==", Op::equal}, {"!=", Op::unequal}, {"<=", Op::lessOrEqual},
        {">=", Op::greaterOrEqual}, {"<", Op::less}, {">", Op::greater}};
    const auto comparison = std::find_if(std::begin(kComparisons), std::end(kComparisons),
                                         [&](const auto& c) { return isSymbol(c.first); });
    if (comparison == std::end(kComparisons)) return left;
    ++next_;
    Parsed right = term();
    const auto leftForm = left.form;
    const std::size_t first = asTerm(left, right.form);
    return conditionOf(comparison->second, first, asTerm(right, leftForm));
  }

  std::int64_t bound() {
    const bool negative = takeIf("-");
    if (peek().type != Token::Type::integer) refuse(peek().column, "expected an integer, found " + described(peek()));
    return (negative ? -1 : 1) * integer(take());
  }

  std::int64_t integer(const Token& token) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(token.text.data(), token.text.data() + token.text.size(), value);
    if (error != std::errc() || end != token.text.data() + token.text.size() ||
        value > std::int64_t{std::numeric_limits<std::uint32_t>::max()}) {
      refuse(token.column, quoted(token.text) + " is beyond 32 bits");
    }
    return value;
  }

  Parsed term() {
    const bool negative = takeIf("-");
    Parsed left = operand();
    if (negative) left = made({Op::negate, 0, 0, asTerm(left), 0}, false);
    while (isSymbol("+") || isSymbol("-")) {
      const Op op = take().text == "+" ? Op::add : Op::subtract;
      const std::size_t first = asTerm(left);
      Parsed right = operand();
      left = made({op, 0, 0, first, asTerm(right)}, false);
    }
    return left;
  }

  Parsed operand() {
    const Token& token = take();
    if (token.type == Token::Type::integer) return made({Op::constant, integer(token)}, false);
    if (token.type == Token::Type::symbol && token.text == "(") {
      Parsed inner = condition();
      expect(")");
      inner.after = next_;
      return inner;
    }
    if (token.type != Token::Type::name ||
        std::find(std::begin(kKeywords), std::end(kKeywords), token.text) != std::end(kKeywords)) {
      refuse(token.column, "expected a fact, a decision field, a case or an integer, found " + described(token));
    }
    const auto fact = std::find(kind_.factNames.begin(), kind_.factNames.end(), token.text);
    if (fact != kind_.factNames.end()) return made({Op::fact, fact - kind_.factNames.begin()}, false);
    if (const auto field = fieldNamed(token.text)) {
      const OrxDecisionFieldForm form = kind_.decisionFields[*field].form;
      if (form == OrxDecisionFieldForm::boolean) {
        refuse(token.column, quoted(token.text) + " is a condition: write " + std::string(token.text) + " or not " +
                                 std::string(token.text));
      }
      Parsed parsed = made({Op::field, static_cast<std::int64_t>(*field)}, false);
      parsed.form = form;
      return parsed;
    }
    Parsed parsed = made({Op::constant, 0}, false);
    parsed.caseName = token;
    return parsed;
  }

  std::optional<std::size_t> fieldNamed(std::string_view name) const {
    for (std::size_t f = 0; f < kind_.decisionFields.size(); ++f) {
      if (kind_.decisionFields[f].name == name) return f;
    }
    return std::nullopt;
  }

  const OrxDecisionKind& kind_;
  std::vector<Token> tokens_;
  std::size_t next_ = 0;
  std::size_t depth_ = 0;
  std::vector<OrxPolicyProperty::Node> nodes_;
};

bool OrxPolicyProperty::holdsFor(std::span<const std::int32_t> facts, std::span<const std::int32_t> fields) const {
  return holds(ConcreteDomain{facts, fields});
}

OrxPolicyProperty OrxPolicyProperty::parse(std::string_view text, const OrxDecisionKind& kind) {
  if (text.size() > kOrxMaxPropertyLength) {
    throw std::runtime_error("longer than " + std::to_string(kOrxMaxPropertyLength) + " characters");
  }
  return OrxPolicyPropertyParser(text, kind).parse(text);
}

}  // namespace ravo::orx
