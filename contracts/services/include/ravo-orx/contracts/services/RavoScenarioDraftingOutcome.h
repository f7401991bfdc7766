#pragma once
// The result of one drafting call: an accepted, validated draft with the provider that wrote it and
// the model's cleaned questions, or a rejection.

#include <string>
#include <variant>
#include <vector>

#include <ravo-orx/contracts/scenarios/RavoScenarioDraft.h>
#include <ravo-orx/contracts/services/RavoModelProviderID.h>
#include <ravo-orx/contracts/services/RavoScenarioDraftingRejection.h>

namespace ravo::orx {

class RavoScenarioDraftingOutcome {
 public:
  struct Draft {
    RavoModelProviderID providerID;
    RavoScenarioDraft draft;
    std::vector<std::string> unresolvedQuestions;
    friend bool operator==(const Draft&, const Draft&) = default;
  };

  static RavoScenarioDraftingOutcome draft(Draft accepted) { return RavoScenarioDraftingOutcome(std::move(accepted)); }
  static RavoScenarioDraftingOutcome rejected(RavoScenarioDraftingRejection rejection) {
    return RavoScenarioDraftingOutcome(std::move(rejection));
  }

  // The accepted draft, or null when the call was rejected; and the other way round.
  const Draft* accepted() const { return std::get_if<Draft>(&value_); }
  const RavoScenarioDraftingRejection* rejection() const { return std::get_if<RavoScenarioDraftingRejection>(&value_); }

  friend bool operator==(const RavoScenarioDraftingOutcome&, const RavoScenarioDraftingOutcome&) = default;

 private:
  explicit RavoScenarioDraftingOutcome(std::variant<Draft, RavoScenarioDraftingRejection> value)
      : value_(std::move(value)) {}

  std::variant<Draft, RavoScenarioDraftingRejection> value_;
};

}  // namespace ravo::orx
