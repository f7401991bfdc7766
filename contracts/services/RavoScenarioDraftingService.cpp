#include <ravo-orx/contracts/services/RavoScenarioDraftingService.h>

#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioCatalog.h>
#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

using Rejection = RavoScenarioDraftingRejection;

RavoScenarioDraftingOutcome rejected(Rejection rejection) {
  return RavoScenarioDraftingOutcome::rejected(std::move(rejection));
}

// Every enabled definition in catalog order; application actions carry their parameters.
std::vector<RavoScenarioDraftingNodeHint> hintsFor(const std::vector<RavoScenarioNodeDefinition>& definitions) {
  std::vector<RavoScenarioDraftingNodeHint> hints;
  for (const auto& definition : definitions) {
    if (!definition.isEnabled()) continue;
    const auto* action = RavoApplicationActionCatalog::descriptor(definition.id());
    hints.emplace_back(definition.id(), definition.version(), definition.kind(),
                       action ? action->parameters() : std::vector<RavoActionParameterSchema>{});
  }
  return hints;
}

}  // namespace

RavoScenarioDraftingService::RavoScenarioDraftingService(std::vector<RavoScenarioNodeDefinition> definitions)
    : definitions_(std::move(definitions)), hints_(hintsFor(definitions_)) {}

std::int64_t RavoScenarioDraftingService::latestGeneration() const {
  std::lock_guard lock(mutex_);
  return latestGeneration_;
}

RavoScenarioDraftingOutcome RavoScenarioDraftingService::draft(std::string_view userText, bool localOnly,
                                                               const RavoModelProviderRecord& provider,
                                                               RavoScenarioDraftProposer& proposer) {
  std::string text = ravoTrimmedText(userText);
  if (text.empty()) return rejected(Rejection::emptyRequest());
  if (text.size() > maximumRequestBytes) return rejected(Rejection::requestTooLarge());
  try {
    provider.validateEligibility(localOnly);
  } catch (const RavoModelProviderLifecycleError& error) {
    return rejected(Rejection::providerIneligible(error));
  }

  std::int64_t generation;
  {
    std::lock_guard lock(mutex_);
    generation = ++latestGeneration_;
  }
  RavoScenarioDraftingRequest request(RavoUUID::random(), generation, std::move(text), localOnly, hints_);

  std::optional<RavoScenarioDraftingResponse> response;
  try {
    response.emplace(proposer.proposeDraft(request));
  } catch (...) {  // whatever the adapter or the model did, the caller only learns that it failed
    return rejected(Rejection::providerFailed());
  }

  if (response->requestID() != request.id()) return rejected(Rejection::providerResponseDoesNotMatchRequest());
  {
    std::lock_guard lock(mutex_);
    if (latestGeneration_ != generation) return rejected(Rejection::staleResponse());
    // Recorded before validation, so that an answer sent again is refused as a duplicate even when its
    // draft did not validate.
    if (!acceptedResponseIDs_.insert(response->id()).second) return rejected(Rejection::duplicateResponse());
  }

  const RavoScenarioDraft& proposed = response->draft();
  RavoScenarioDraft normalised(proposed.id(), proposed.title(), proposed.graph(),
                               RavoScenarioActivationRequest::notRequested, RavoScenarioLifecycle::draft);
  auto issues = RavoScenarioCatalog::validate(normalised, definitions_);
  if (!issues.empty()) return rejected(Rejection::invalidDraft(std::move(issues)));
  return RavoScenarioDraftingOutcome::draft(
      {provider.descriptor().id(), std::move(normalised), response->unresolvedQuestions()});
}

}  // namespace ravo::orx
