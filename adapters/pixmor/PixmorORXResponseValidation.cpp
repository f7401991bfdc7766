// PixmorORXHost::isValid: what a service answer must satisfy before the surface shows it.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <ravo-orx/adapters/pixmor/PixmorORXHost.h>
#include <ravo-orx/adapters/pixmor/PixmorORXVocabulary.h>
#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

// Limits of the editing surface; texts are measured in user-perceived characters.
constexpr std::size_t maximumStages = 12;
constexpr std::size_t maximumNodeDefaults = 12;
constexpr std::size_t maximumValuesPerStage = 8;
constexpr std::size_t maximumVariantPlans = 4;
constexpr std::size_t maximumVariantNameCharacters = 48;
constexpr std::size_t maximumEmphasisCharacters = 120;
constexpr std::size_t maximumGuidedSteps = 8;
constexpr std::size_t maximumGuidedStepCharacters = 220;
constexpr std::int64_t minimumPreviewPixels = 512 * 512;
constexpr std::int64_t maximumPreviewPixels = 4096 * 4096;

bool fitsCharacters(const std::string& text, std::size_t maximum) {
  // Each character takes at least one byte, so short texts need no counting.
  return text.size() <= maximum || ravoGraphemeCount(text) <= maximum;
}

bool stagesFit(const std::vector<std::string>& kinds) {
  return kinds.size() <= maximumStages && std::ranges::all_of(kinds, PixmorORXVocabulary::isStageKind);
}

bool defaultsFit(const PixmorORXNodeDefaults& defaults) {
  return PixmorORXVocabulary::isStageKind(defaults.nodeKind()) && defaults.values().size() <= maximumValuesPerStage &&
         std::ranges::all_of(defaults.values(), [](const auto& entry) {
           // Written so that a NaN, which fails every comparison, is out of range.
           return PixmorORXVocabulary::isDefaultValueKey(entry.first) && entry.second >= 0.0 && entry.second <= 1.0;
         });
}

bool variantFits(const PixmorORXVariantPlan& plan) {
  return !plan.name().empty() && fitsCharacters(plan.name(), maximumVariantNameCharacters) &&
         fitsCharacters(plan.emphasis(), maximumEmphasisCharacters);
}

bool stepFits(const std::string& step) { return fitsCharacters(step, maximumGuidedStepCharacters); }

bool policyFits(const PixmorORXExecutionPolicy& policy) {
  return policy.previewMaxPixels() >= minimumPreviewPixels && policy.previewMaxPixels() <= maximumPreviewPixels &&
         policy.requiresUserConfirmation();
}

}  // namespace

bool PixmorORXHost::isValid(const PixmorORXResponse& response, const PixmorORXRequest& request) {
  return response.schema() == PixmorORXRequest::schemaName && response.requestID() == request.requestID() &&
         response.ability() == request.ability() && stagesFit(response.pipelineNodeKinds()) &&
         response.nodeDefaults().size() <= maximumNodeDefaults &&
         std::ranges::all_of(response.nodeDefaults(), defaultsFit) &&
         response.variantPlans().size() <= maximumVariantPlans &&
         std::ranges::all_of(response.variantPlans(), variantFits) &&
         response.guidedSteps().size() <= maximumGuidedSteps && std::ranges::all_of(response.guidedSteps(), stepFits) &&
         policyFits(response.executionPolicy());
}

}  // namespace ravo::orx
