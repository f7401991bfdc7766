#include <ravo-orx/prove/SymbolicState.h>

#include <ravo-orx/prove/SymbolicFold.h>

namespace ravo::orx::internal {

namespace {

// One value out of exclusive paths: the last path's unless an earlier path's condition holds.
template <class Pick>
z3::expr chosen(const std::vector<z3::expr>& conditions, Pick pick) {
  z3::expr value = pick(conditions.size() - 1);
  for (std::size_t i = conditions.size() - 1; i-- > 0;) value = choose(conditions[i], pick(i), value);
  return value;
}

void joinEach(std::vector<z3::expr>& into, const std::vector<z3::expr>& conditions,
              const std::vector<SymbolicState>& states, std::vector<z3::expr> SymbolicState::*part) {
  for (std::size_t v = 0; v < into.size(); ++v) {
    into[v] = chosen(conditions, [&](std::size_t i) { return (states[i].*part)[v]; });
  }
}

}  // namespace

SymbolicState joined(const std::vector<SymbolicState>& states) {
  if (states.size() == 1) return states.front();
  std::vector<z3::expr> conditions;
  for (const auto& state : states) conditions.push_back(state.reach);
  SymbolicState result = states.back();
  result.reach = conditions.front();
  for (std::size_t i = 1; i < conditions.size(); ++i) result.reach = anyOf(result.reach, conditions[i]);
  joinEach(result.stack, conditions, states, &SymbolicState::stack);
  joinEach(result.locals, conditions, states, &SymbolicState::locals);
  joinEach(result.globals, conditions, states, &SymbolicState::globals);
  result.memory.bytes = chosen(conditions, [&](std::size_t i) { return states[i].memory.bytes; });
  result.memory.pages = chosen(conditions, [&](std::size_t i) { return states[i].memory.pages; });
  std::vector<std::pair<z3::expr, SymbolicEmission>> emissions;
  for (const auto& state : states) emissions.emplace_back(state.reach, state.emission);
  result.emission = joinedEmission(emissions);
  return result;
}

SymbolicEmission joinedEmission(const std::vector<std::pair<z3::expr, SymbolicEmission>>& emissions) {
  std::vector<z3::expr> conditions;
  for (const auto& emission : emissions) conditions.push_back(emission.first);
  SymbolicEmission result = emissions.back().second;
  result.called = chosen(conditions, [&](std::size_t i) { return emissions[i].second.called; });
  result.count = chosen(conditions, [&](std::size_t i) { return emissions[i].second.count; });
  for (std::size_t v = 0; v < result.values.size(); ++v) {
    result.values[v] = chosen(conditions, [&](std::size_t i) { return emissions[i].second.values[v]; });
  }
  return result;
}

z3::expr stateDiffers(const SymbolicState& after, const SymbolicState& before) {
  z3::expr differs = after.reach.ctx().bool_val(false);
  auto differ = [&](const z3::expr& now, const z3::expr& was) {
    if (!z3::eq(now, was)) differs = anyOf(differs, folded(now != was));
  };
  for (std::size_t g = 0; g < after.globals.size(); ++g) differ(after.globals[g], before.globals[g]);
  differ(after.memory.pages, before.memory.pages);
  differ(after.memory.bytes, before.memory.bytes);
  return differs;
}

}  // namespace ravo::orx::internal
