#include <ravo-orx/host_contract/ORXDecisionIntent.h>

#include <ravo-orx/core/ORXValidation.h>
#include <ravo-orx/host_contract/ORXCanonicalForm.h>
#include <ravo-orx/host_contract/ORXSortedUnique.h>

namespace ravo::orx {

ORXDecisionIntent::ORXDecisionIntent(std::vector<ORXBudget> budgets, ORXDeadline deadline, std::string effectType,
                                     ORXGenerationFence generation, ORXDigest provenance,
                                     std::vector<std::string> requiredCapabilities,
                                     std::vector<ORXArgument> typedArguments, ORXGrantScope requestedScope)
    : budgets_(uniqueBudgets(std::move(budgets))),
      deadline_(std::move(deadline)),
      effectType_(ORXValidation::asciiIdentifier(effectType, true, "effect type")),
      generation_(std::move(generation)),
      provenance_(std::move(provenance)),
      requiredCapabilities_(
          ORXValidation::sortedUniqueASCII(std::move(requiredCapabilities), "required capabilities", true)),
      typedArguments_(orxSortedUnique(
          std::move(typedArguments), [](const ORXArgument& a) -> const std::string& { return a.name(); },
          "typed arguments have duplicate names")),
      requestedScope_(std::move(requestedScope)) {}

std::vector<ORXBudget> ORXDecisionIntent::uniqueBudgets(std::vector<ORXBudget> budgets) {
  return orxSortedUnique(
      std::move(budgets), [](const ORXBudget& b) { return b.resourceClass().discriminant(); },
      "budgets have duplicate resource classes");
}

ORXCanonicalValue ORXDecisionIntent::intentRecordValue() const {
  return ORXCanonicalValue::object({
      {"budgets", ORXCanonicalForm::array(budgets_)},
      {"deadline", deadline_.canonicalValue()},
      {"effect_type", ORXCanonicalForm::text(effectType_)},
      {"generation", generation_.canonicalValue()},
      {"provenance", ORXCanonicalForm::digest(provenance_)},
      {"required_capabilities", ORXCanonicalForm::texts(requiredCapabilities_)},
      {"typed_arguments", ORXCanonicalForm::array(typedArguments_)},
  });
}

ORXCanonicalValue ORXDecisionIntent::canonicalValue() const {
  return ORXCanonicalValue::object({{"intent", intentRecordValue()}, {"requested_scope", requestedScope_.canonicalValue()}});
}

}  // namespace ravo::orx
