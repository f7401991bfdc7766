#pragma once
// The closed label sets of the scenario model. Each label's text is its JSON form; the label tables
// list the cases in declaration order, which is also the order in which they are offered.

#include <array>
#include <string_view>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

enum class RavoScenarioNodeKind { trigger, condition, action, control };
enum class RavoScenarioRiskClass { none, low, medium, high };
enum class RavoScenarioIdempotency { idempotent, guarded, nonIdempotent };
enum class RavoScenarioReversibility { reversible, compensatable, irreversible };
enum class RavoScenarioConfirmationPolicy { none, perExecution, perTarget, explicitReview };
enum class RavoScenarioOfflinePolicy { failClosed, deferUntilOnline, localOnly };
enum class RavoScenarioDataEgressPolicy { none, localOnly, approvedProviderOnly };
enum class RavoScenarioActivationRequest { notRequested, oneShot, recurring };
enum class RavoScenarioLifecycle {
  draft,
  validated,
  simulated,
  awaitingApproval,
  active,
  paused,
  superseded,
  revoked,
  quarantined,
};
// The outcome of one node's effect; the effect receipt record itself belongs to the graph model.
enum class RavoScenarioEffectReceiptOutcome { admitted, completed, blocked, failed };

template <>
struct ORXRawValueTable<RavoScenarioNodeKind> {
  using E = RavoScenarioNodeKind;
  static constexpr std::array<std::pair<E, std::string_view>, 4> entries{
      {{E::trigger, "trigger"}, {E::condition, "condition"}, {E::action, "action"}, {E::control, "control"}}};
};

template <>
struct ORXRawValueTable<RavoScenarioRiskClass> {
  using E = RavoScenarioRiskClass;
  static constexpr std::array<std::pair<E, std::string_view>, 4> entries{
      {{E::none, "none"}, {E::low, "low"}, {E::medium, "medium"}, {E::high, "high"}}};
};

template <>
struct ORXRawValueTable<RavoScenarioIdempotency> {
  using E = RavoScenarioIdempotency;
  static constexpr std::array<std::pair<E, std::string_view>, 3> entries{
      {{E::idempotent, "idempotent"}, {E::guarded, "guarded"}, {E::nonIdempotent, "nonIdempotent"}}};
};

template <>
struct ORXRawValueTable<RavoScenarioReversibility> {
  using E = RavoScenarioReversibility;
  static constexpr std::array<std::pair<E, std::string_view>, 3> entries{
      {{E::reversible, "reversible"}, {E::compensatable, "compensatable"}, {E::irreversible, "irreversible"}}};
};

template <>
struct ORXRawValueTable<RavoScenarioConfirmationPolicy> {
  using E = RavoScenarioConfirmationPolicy;
  static constexpr std::array<std::pair<E, std::string_view>, 4> entries{{{E::none, "none"},
                                                                          {E::perExecution, "perExecution"},
                                                                          {E::perTarget, "perTarget"},
                                                                          {E::explicitReview, "explicitReview"}}};
};

template <>
struct ORXRawValueTable<RavoScenarioOfflinePolicy> {
  using E = RavoScenarioOfflinePolicy;
  static constexpr std::array<std::pair<E, std::string_view>, 3> entries{
      {{E::failClosed, "failClosed"}, {E::deferUntilOnline, "deferUntilOnline"}, {E::localOnly, "localOnly"}}};
};

template <>
struct ORXRawValueTable<RavoScenarioDataEgressPolicy> {
  using E = RavoScenarioDataEgressPolicy;
  static constexpr std::array<std::pair<E, std::string_view>, 3> entries{
      {{E::none, "none"}, {E::localOnly, "localOnly"}, {E::approvedProviderOnly, "approvedProviderOnly"}}};
};

template <>
struct ORXRawValueTable<RavoScenarioActivationRequest> {
  using E = RavoScenarioActivationRequest;
  static constexpr std::array<std::pair<E, std::string_view>, 3> entries{
      {{E::notRequested, "notRequested"}, {E::oneShot, "oneShot"}, {E::recurring, "recurring"}}};
};

template <>
struct ORXRawValueTable<RavoScenarioLifecycle> {
  using E = RavoScenarioLifecycle;
  static constexpr std::array<std::pair<E, std::string_view>, 9> entries{{{E::draft, "draft"},
                                                                          {E::validated, "validated"},
                                                                          {E::simulated, "simulated"},
                                                                          {E::awaitingApproval, "awaitingApproval"},
                                                                          {E::active, "active"},
                                                                          {E::paused, "paused"},
                                                                          {E::superseded, "superseded"},
                                                                          {E::revoked, "revoked"},
                                                                          {E::quarantined, "quarantined"}}};
};

template <>
struct ORXRawValueTable<RavoScenarioEffectReceiptOutcome> {
  using E = RavoScenarioEffectReceiptOutcome;
  static constexpr std::array<std::pair<E, std::string_view>, 4> entries{
      {{E::admitted, "admitted"}, {E::completed, "completed"}, {E::blocked, "blocked"}, {E::failed, "failed"}}};
};

}  // namespace ravo::orx
