#pragma once
// The decision kinds (OrxDecisionKinds.h) as tools use them: a decision taken through the runtime's own
// decision path for a kind given at run time, rendered as JSON.

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>
#include <ravo-orx/runtime/OrxDecisionRecord.h>
#include <ravo-orx/runtime/OrxPolicyDecider.h>

namespace ravo::orx {

// A decision as JSON: fields in declaration order, enumeration cases by name.
RavoJSON orxDecisionJSON(const OrxAuthorizationDecision& decision);
RavoJSON orxDecisionJSON(const OrxSyncDecision& decision);
RavoJSON orxDecisionJSON(const OrxCinemaAdmissionDecision& decision);

// The decision an emitted record stands for, as orxDecisionJSON renders it; null when a value has no
// case (the runtime refuses such a record).
RavoJSON orxDecisionEmitted(const OrxDecisionKind& kind, std::span<const std::int32_t> emits);

// Modules for a decider holding `module` in this kind's slot and nothing else.
internal::OrxPolicyModules orxModulesWith(const OrxDecisionKind& kind, std::unique_ptr<internal::LoadedModule> module);

struct OrxPolicyAnswer {
  RavoJSON decision;
  OrxDecisionSource source;
  // The decision's fields as the decision log holds them, in declaration order.
  std::array<std::int32_t, internal::kOrxMaxDecisionFields> fields;
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
OrxPolicyAnswer orxDecide(const OrxDecisionKind& kind, Decider& decider, std::span<const std::int32_t> facts) {
  auto answer = [](const auto& sourced) {
    return OrxPolicyAnswer{orxDecisionJSON(sourced.decision), sourced.source,
                           internal::orxDecisionFieldValues(sourced.decision)};
  };
  switch (kind.id) {
    case OrxDecisionKindID::authorization:
      return answer(decider.authorizeWithSource(orxFactsFrom<AuthorizationFacts>(facts)));
    case OrxDecisionKindID::sync:
      return answer(decider.correctSyncWithSource(orxFactsFrom<SyncFacts>(facts)));
    case OrxDecisionKindID::cinemaAdmission:
      break;
  }
  return answer(decider.decideCinemaAdmissionWithSource(orxFactsFrom<CinemaAdmissionFacts>(facts)));
}

}  // namespace ravo::orx
