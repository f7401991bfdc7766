// The model of decide against the interpreter: random modules covering every instruction family the
// model follows, each called with random facts on a fresh instance, must give exactly what the model
// gives for those facts (its formulas evaluated with the facts fixed): whether the call traps, decide's
// result, the last emission, and the host's decision and its source.

#include <gtest/gtest.h>

#include <iostream>
#include <random>

#include <ravo-orx/package_check/OrxDecisionByKind.h>
#include <ravo-orx/prove/OrxHostDecisionModel.h>
#include <ravo-orx/prove/OrxProverReplay.h>
#include "runtime/tests/WatAssembler.h"
#include "tools/prove/tests/RandomPolicyModules.h"

namespace ravo::orx {

using namespace internal;

namespace {

constexpr int kModules = 80;
constexpr int kFactsPerModule = 12;
const std::string kChangesInstance = "decide may leave the instance changed";

const OrxDecisionKind& kSync = orxDecisionKind(OrxDecisionKindID::sync);

// The model's formulas with the facts fixed: each one evaluates to a constant.
class FixedFacts {
 public:
  FixedFacts(const std::vector<z3::expr>& facts, std::span<const std::int32_t> values) : model_(facts.front().ctx()) {
    for (std::size_t f = 0; f < facts.size(); ++f) {
      z3::func_decl fact = facts[f].decl();
      z3::expr value = facts.front().ctx().bv_val(values[f], 32);
      model_.add_const_interp(fact, value);
    }
  }
  z3::expr eval(const z3::expr& formula) const {
    const z3::expr value = model_.eval(formula, true);
    if (!value.is_numeral() && !value.is_true() && !value.is_false()) ADD_FAILURE() << "not a constant: " << value;
    return value;
  }

 private:
  z3::model model_;
};

std::int32_t valueIn(const FixedFacts& model, const z3::expr& value) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(model.eval(value).get_numeral_uint64()));
}

std::string listed(const std::vector<std::int32_t>& values) {
  std::string text;
  for (const auto value : values) text += (text.empty() ? "" : ", ") + std::to_string(value);
  return "[" + text + "]";
}

// What one call gave, as the interpreter and as the model tell it.
struct Outcome {
  bool trapped;
  std::optional<std::int32_t> result;  // when it did not trap
  std::optional<std::vector<std::int32_t>> emitted;
  std::array<std::int32_t, kOrxMaxDecisionFields> fields;
  OrxDecisionSource source;

  friend bool operator==(const Outcome&, const Outcome&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Outcome& o) {
    out << (o.trapped ? "trapped" : "returned " + (o.result ? std::to_string(*o.result) : std::string("nothing")));
    out << ", emitted " << (o.emitted ? listed(*o.emitted) : std::string("nothing")) << ", decision "
        << listed({o.fields.begin(), o.fields.end()}) << " from " << orxCaseName(o.source);
    return out;
  }
};

// The runtime's own decision path and the toolchain's explained call, as the prover replays a
// counterexample.
Outcome interpreted(std::span<const std::uint8_t> wasm, std::span<const std::int32_t> facts) {
  const OrxReplay replay = orxReplay(wasm, kSync, facts);
  const bool trapped = replay.call.trap.has_value();
  return {trapped, trapped ? std::nullopt : replay.call.result, replay.call.emitted, replay.answer.fields,
          replay.answer.source};
}

Outcome modelled(const OrxHostDecisionModel& host, const FixedFacts& model) {
  Outcome outcome{model.eval(host.call.trapped).is_true(), std::nullopt, std::nullopt, {}, {}};
  if (!outcome.trapped && host.call.result) outcome.result = valueIn(model, *host.call.result);
  if (model.eval(host.call.emission.called).is_true()) {
    const auto count = static_cast<std::size_t>(valueIn(model, host.call.emission.count));
    std::vector<std::int32_t> values;
    for (std::size_t v = 0; v < count && v < host.call.emission.values.size(); ++v) {
      values.push_back(valueIn(model, host.call.emission.values[v]));
    }
    outcome.emitted = values;
  }
  for (std::size_t f = 0; f < host.fields.size(); ++f) outcome.fields[f] = valueIn(model, host.fields[f]);
  outcome.source = static_cast<OrxDecisionSource>(valueIn(model, host.source));
  return outcome;
}

std::vector<z3::expr> factsIn(z3::context& context) {
  std::vector<z3::expr> facts;
  for (const auto name : kSync.factNames) facts.push_back(context.bv_const(std::string(name).c_str(), 32));
  return facts;
}

OrxHostDecisionModel modelOf(std::span<const std::uint8_t> wasm, const std::vector<z3::expr>& facts) {
  return orxHostDecisionModel(kSync, orxModelDecide(wasm.data(), wasm.size(), facts, {}), facts);
}

// Forms the random modules seldom make visible: a 64-bit value compared before it is wrapped back to
// 32 bits, two comparisons combined bit by bit. Each emits its value as the record's reason.
TEST(OrxModelDifferential, EachInstructionFormDecidesAsTheInterpreterDoes) {
  const std::string forms[] = {
      "(i64.lt_s (i64.extend_i32_u (local.get $f0)) (i64.const 0))",
      "(i64.lt_s (i64.extend_i32_s (local.get $f0)) (i64.const 0))",
      "(i32.xor (i32.lt_s (local.get $f0) (local.get $f1)) (i32.eqz (local.get $f1)))",
      "(i32.and (i32.lt_u (local.get $f0) (local.get $f1)) (i32.ne (local.get $f0) (i32.const -1)))",
      "(i32.or (i32.ge_s (local.get $f0) (local.get $f1)) (i32.eqz (local.get $f0)))",
  };
  const std::int32_t edges[] = {0, 1, -1, 2147483647, -2147483647 - 1};
  for (const auto& form : forms) {
    const std::string wat =
        "(module (import \"output\" \"emit\" (func $emit (param i32 i32 i32 i32 i32) (result i32)))\n"
        "  (func (export \"decide\") (param $f0 i32) (param $f1 i32) (param i32 i32 i32 i32 i32 i32) (result i32)\n"
        "    (drop (call $emit (i32.const 5301) (i32.const 0) (i32.const 1000) (i32.const 0) " + form + "))\n"
        "    (i32.const 0)))";
    const auto wasm = assembleWat(wat);
    z3::context context;
    const std::vector<z3::expr> facts = factsIn(context);
    const OrxHostDecisionModel host = modelOf(wasm, facts);
    for (const auto first : edges) {
      for (const auto second : edges) {
        const std::vector<std::int32_t> values{first, second, 0, 0, 0, 0, 0, 0};
        EXPECT_EQ(modelled(host, FixedFacts(facts, values)), interpreted(wasm, values)) << form << " " << listed(values);
      }
    }
  }
}

TEST(OrxModelDifferential, RandomModulesDecideAsTheInterpreterDoes) {
  int calls = 0, traps = 0, refused = 0, accepted = 0;
  for (int m = 0; m < kModules; ++m) {
    // Each module and its facts come from a seed of their own: a failure names the module's text.
    std::mt19937_64 random(m);
    const std::string wat = prover_test::RandomPolicyModule(random()).wat();
    const auto wasm = assembleWat(wat);
    z3::context context;
    const std::vector<z3::expr> facts = factsIn(context);
    const OrxHostDecisionModel host = modelOf(wasm, facts);
    for (int c = 0; c < kFactsPerModule; ++c) {
      const auto values = prover_test::randomFacts(random);
      const FixedFacts model(facts, values);
      for (const auto& gap : host.call.gaps) {
        // Every module keeps within the model; only its changes to the instance are left unfollowed.
        if (gap.reason.starts_with(kChangesInstance)) continue;
        ASSERT_FALSE(model.eval(gap.condition).is_true()) << gap.reason << " for facts " << listed(values) << "\n" << wat;
      }
      const Outcome expected = interpreted(wasm, values);
      ASSERT_EQ(modelled(host, model), expected) << "facts " << listed(values) << "\n" << wat;
      ++calls;
      traps += expected.trapped ? 1 : 0;
      accepted += expected.source == OrxDecisionSource::policy ? 1 : 0;
      refused += !expected.trapped && expected.source != OrxDecisionSource::policy ? 1 : 0;
    }
  }
  // The modules reach every outcome: traps, refused records and accepted ones.
  EXPECT_GT(traps, calls / 20) << "of " << calls << " calls";
  EXPECT_GT(refused, calls / 20) << "of " << calls << " calls";
  EXPECT_GT(accepted, calls / 100) << "of " << calls << " calls";
  std::cout << calls << " calls: " << traps << " trapped, " << refused << " refused, " << accepted << " accepted\n";
}

}  // namespace

}  // namespace ravo::orx
