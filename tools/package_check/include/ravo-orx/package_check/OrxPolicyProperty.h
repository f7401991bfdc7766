#pragma once
// A property that a policy's manifest states of every decision the host takes with the module (its
// fail-safe decisions included), in a small language over the kind's fact names and decision fields:
//
//   role != 2 and role != 3 implies not isAllowed
//   driftMilliseconds in -40..40 implies action == hold
//   tokenAgeMilliseconds >= tokenTTLMilliseconds implies reason == tokenExpired or reason == unpaired
//
//   property   := condition
//   condition  := either [ "implies" condition ]          (so "a implies b implies c" is a ⇒ (b ⇒ c))
//   either     := both { "or" both }
//   both       := negated { "and" negated }
//   negated    := "not" negated | comparison | "(" condition ")" | "true" | "false" | BOOLEAN-FIELD
//   comparison := term ("==" | "!=" | "<" | "<=" | ">" | ">=") term | term "in" INTEGER ".." INTEGER
//   term       := ["-"] operand { ("+" | "-") operand }
//   operand    := INTEGER | FACT | FIELD | CASE | "(" term ")"
//
// A CASE is the name of a case of the enumeration of the field it is compared with ("reason ==
// tokenExpired", "route != calibration"). Terms are computed exactly, without 32-bit wrapping. A
// property is at most kOrxMaxPropertyLength characters and nests at most kOrxMaxPropertyNesting levels.
//
// The same property is evaluated over concrete values (a counterexample's replay) and over the
// prover's formulas: holds() takes a value domain.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/runtime/OrxDecisionKinds.h>

namespace ravo::orx {

inline constexpr std::size_t kOrxMaxPropertyLength = 1000;
inline constexpr std::size_t kOrxMaxPropertyNesting = 32;

class OrxPolicyProperty {
 public:
  // Throws std::runtime_error "at <column>: <what is wrong>" (columns from 1) when the text is not a
  // property of the kind.
  static OrxPolicyProperty parse(std::string_view text, const OrxDecisionKind& kind);

  const std::string& text() const { return text_; }

  // Whether the property holds in `domain`, which gives integers for constant(std::int64_t),
  // fact(index) and field(index) (a decision field as the decision log holds it), and conditions for
  // truth(bool); its integers add, subtract, negate and compare, its conditions combine with &&, ||
  // and !. For std::int64_t and bool it is the property's value; for the prover's formulas, a formula.
  template <class Domain>
  auto holds(const Domain& domain) const {
    return condition(domain, root_);
  }

  // Whether it holds of a decision: the facts in argument order, the fields as the decision log holds them.
  bool holdsFor(std::span<const std::int32_t> facts, std::span<const std::int32_t> fields) const;

 private:
  enum class Op {
    constant, fact, field, add, subtract, negate,                 // terms
    truth, flag, equal, unequal, less, lessOrEqual, greater, greaterOrEqual, within,  // conditions
    both, either, negation, implies
  };
  struct Node {
    Op op;
    std::int64_t value = 0;  // constant's value, fact or field index, within's low bound
    std::int64_t high = 0;   // within's high bound
    std::size_t left = 0;
    std::size_t right = 0;
  };
  friend class OrxPolicyPropertyParser;

  template <class Domain>
  auto term(const Domain& domain, std::size_t index) const -> decltype(domain.constant(0)) {
    const Node& node = nodes_[index];
    switch (node.op) {
      case Op::fact: return domain.fact(static_cast<std::size_t>(node.value));
      case Op::field: return domain.field(static_cast<std::size_t>(node.value));
      case Op::add: return term(domain, node.left) + term(domain, node.right);
      case Op::subtract: return term(domain, node.left) - term(domain, node.right);
      case Op::negate: return -term(domain, node.left);
      default: return domain.constant(node.value);
    }
  }

  template <class Domain>
  auto condition(const Domain& domain, std::size_t index) const -> decltype(domain.truth(true)) {
    const Node& node = nodes_[index];
    switch (node.op) {
      case Op::flag: return !(domain.field(static_cast<std::size_t>(node.value)) == domain.constant(0));
      case Op::equal: return term(domain, node.left) == term(domain, node.right);
      case Op::unequal: return !(term(domain, node.left) == term(domain, node.right));
      case Op::less: return term(domain, node.left) < term(domain, node.right);
      case Op::lessOrEqual: return term(domain, node.left) <= term(domain, node.right);
      case Op::greater: return term(domain, node.left) > term(domain, node.right);
      case Op::greaterOrEqual: return term(domain, node.left) >= term(domain, node.right);
      case Op::within: {
        const auto value = term(domain, node.left);
        return value >= domain.constant(node.value) && value <= domain.constant(node.high);
      }
      case Op::both: return condition(domain, node.left) && condition(domain, node.right);
      case Op::either: return condition(domain, node.left) || condition(domain, node.right);
      case Op::negation: return !condition(domain, node.left);
      case Op::implies: return !condition(domain, node.left) || condition(domain, node.right);
      default: return domain.truth(node.value != 0);
    }
  }

  std::string text_;
  std::vector<Node> nodes_;
  std::size_t root_ = 0;
};

}  // namespace ravo::orx
