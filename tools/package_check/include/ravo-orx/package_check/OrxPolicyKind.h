#pragma once
// The three kinds of policy decision as tools see them: the word that names a kind on the command line,
// the module that takes it, its facts in argument order, the reason codes its answers can carry, and
// the decision taken through the runtime's own decision path, rendered as JSON.

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/runtime/OrxPolicyDecider.h>

namespace ravo::orx {

enum class OrxPolicyDecision { authorization, sync, cinemaAdmission };

struct OrxPolicyKind {
  std::string_view name;    // "authz", "sync", "cinema"
  std::string_view module;  // "player_authz", ...
  OrxPolicyDecision decision;
  std::span<const std::string_view> factNames;
  // The names of the reason codes a module may answer with, indexed by code.
  std::span<const std::string_view> reasonNames;
  std::size_t reasonIndex;  // where the reason code stands in the emitted record
};

// The kind named on the command line, or null.
const OrxPolicyKind* orxPolicyKindNamed(std::string_view name);
// The kind whose module has this name, or null.
const OrxPolicyKind* orxPolicyKindOfModule(std::string_view module);

// A decision as JSON: fields in declaration order, enumeration cases by name.
RavoJSON orxDecisionJSON(const OrxAuthorizationDecision& decision);
RavoJSON orxDecisionJSON(const OrxSyncDecision& decision);
RavoJSON orxDecisionJSON(const OrxCinemaAdmissionDecision& decision);

// The decision an emitted record stands for, as orxDecisionJSON renders it; null when a value has no
// case (the runtime refuses such a record).
RavoJSON orxDecisionEmitted(const OrxPolicyKind& kind, std::span<const std::int32_t> emits);

// Modules for a decider holding `module` in this kind's slot and nothing else.
internal::OrxPolicyModules orxModulesWith(const OrxPolicyKind& kind, std::unique_ptr<internal::LoadedModule> module);

struct OrxPolicyAnswer {
  RavoJSON decision;
  OrxDecisionSource source;
};

// The facts in declaration order, which is also the order of the module's arguments.
template <class Facts>
Facts orxFactsFrom(std::span<const std::int32_t> values) {
  constexpr std::size_t count = std::tuple_size_v<decltype(std::declval<Facts>().arguments())>;
  return [&]<std::size_t... I>(std::index_sequence<I...>) { return Facts{values[I]...}; }(
      std::make_index_sequence<count>());
}

// One decision of this kind through `decider` (an OrxPolicyDecider or an OrxPolicyRuntime); `facts`
// holds exactly kind.factNames.size() values.
template <class Decider>
OrxPolicyAnswer orxDecide(const OrxPolicyKind& kind, Decider& decider, std::span<const std::int32_t> facts) {
  auto answer = [](const auto& sourced) { return OrxPolicyAnswer{orxDecisionJSON(sourced.decision), sourced.source}; };
  switch (kind.decision) {
    case OrxPolicyDecision::authorization:
      return answer(decider.authorizeWithSource(orxFactsFrom<AuthorizationFacts>(facts)));
    case OrxPolicyDecision::sync:
      return answer(decider.correctSyncWithSource(orxFactsFrom<SyncFacts>(facts)));
    case OrxPolicyDecision::cinemaAdmission:
      break;
  }
  return answer(decider.decideCinemaAdmissionWithSource(orxFactsFrom<CinemaAdmissionFacts>(facts)));
}

}  // namespace ravo::orx
