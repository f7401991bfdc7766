#pragma once
// What the host asks to do: an effect under a generation and deadline, with typed arguments, needing
// capabilities and budgets, and asking for a grant scope. Hashed under "ORX_DECISION_INTENT_V1" over
// {"intent": record value, "requested_scope": scope}.

#include <string>
#include <vector>

#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/host_contract/ORXArgument.h>
#include <ravo-orx/host_contract/ORXBudget.h>
#include <ravo-orx/host_contract/ORXDeadline.h>
#include <ravo-orx/host_contract/ORXGenerationFence.h>
#include <ravo-orx/host_contract/ORXGrantScope.h>

namespace ravo::orx {

class ORXDecisionIntent {
 public:
  ORXDecisionIntent(std::vector<ORXBudget> budgets, ORXDeadline deadline, std::string effectType,
                    ORXGenerationFence generation, ORXDigest provenance, std::vector<std::string> requiredCapabilities,
                    std::vector<ORXArgument> typedArguments, ORXGrantScope requestedScope);

  // Budgets sorted by resource class; throws ORXError::duplicate when a class repeats.
  static std::vector<ORXBudget> uniqueBudgets(std::vector<ORXBudget> budgets);

  const std::vector<ORXBudget>& budgets() const { return budgets_; }
  const ORXDeadline& deadline() const { return deadline_; }
  const std::string& effectType() const { return effectType_; }
  const ORXGenerationFence& generation() const { return generation_; }
  const ORXDigest& provenance() const { return provenance_; }
  const std::vector<std::string>& requiredCapabilities() const { return requiredCapabilities_; }
  const std::vector<ORXArgument>& typedArguments() const { return typedArguments_; }
  const ORXGrantScope& requestedScope() const { return requestedScope_; }

  // The intent without its requested scope.
  ORXCanonicalValue intentRecordValue() const;
  ORXCanonicalValue canonicalValue() const;
  ORXDigest digest() const { return ORXDigest::domain(ORXDigestDomain::intent, canonicalValue()); }

  friend bool operator==(const ORXDecisionIntent&, const ORXDecisionIntent&) = default;

 private:
  std::vector<ORXBudget> budgets_;
  ORXDeadline deadline_;
  std::string effectType_;
  ORXGenerationFence generation_;
  ORXDigest provenance_;
  std::vector<std::string> requiredCapabilities_;
  std::vector<ORXArgument> typedArguments_;
  ORXGrantScope requestedScope_;
};

}  // namespace ravo::orx
