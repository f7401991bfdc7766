#pragma once
// Why the drafting service refused a request or a model's answer. Cases are listed in declaration
// order; only providerIneligible and invalidDraft carry a payload.

#include <variant>
#include <vector>

#include <ravo-orx/contracts/scenarios/RavoScenarioValidationIssue.h>
#include <ravo-orx/contracts/services/RavoModelProviderLifecycleError.h>

namespace ravo::orx {

class RavoScenarioDraftingRejection {
 public:
  enum class Kind {
    providerIneligible,                   // the provider may not serve this request
    invalidDraft,                         // the proposed graph failed validation
    emptyRequest,                         // nothing left after trimming
    requestTooLarge,                      // more than 4000 bytes of UTF-8 after trimming
    providerResponseDoesNotMatchRequest,  // the answer names another request
    staleResponse,                        // a newer request started while this one waited
    duplicateResponse,                    // an answer with this id was accepted before
    providerFailed,                       // the proposer threw
  };

  static RavoScenarioDraftingRejection providerIneligible(RavoModelProviderLifecycleError error) {
    return {Kind::providerIneligible, std::move(error)};
  }
  static RavoScenarioDraftingRejection invalidDraft(std::vector<RavoScenarioValidationIssue> issues) {
    return {Kind::invalidDraft, std::move(issues)};
  }
  static RavoScenarioDraftingRejection emptyRequest() { return {Kind::emptyRequest, std::monostate{}}; }
  static RavoScenarioDraftingRejection requestTooLarge() { return {Kind::requestTooLarge, std::monostate{}}; }
  static RavoScenarioDraftingRejection providerResponseDoesNotMatchRequest() { return {Kind::providerResponseDoesNotMatchRequest, std::monostate{}}; }
  static RavoScenarioDraftingRejection staleResponse() { return {Kind::staleResponse, std::monostate{}}; }
  static RavoScenarioDraftingRejection duplicateResponse() { return {Kind::duplicateResponse, std::monostate{}}; }
  static RavoScenarioDraftingRejection providerFailed() { return {Kind::providerFailed, std::monostate{}}; }

  Kind kind() const { return kind_; }
  // The payload of this case, or null.
  const RavoModelProviderLifecycleError* providerError() const {
    return std::get_if<RavoModelProviderLifecycleError>(&payload_);
  }
  const std::vector<RavoScenarioValidationIssue>* issues() const {
    return std::get_if<std::vector<RavoScenarioValidationIssue>>(&payload_);
  }

  friend bool operator==(const RavoScenarioDraftingRejection&, const RavoScenarioDraftingRejection&) = default;

 private:
  using Payload =
      std::variant<std::monostate, RavoModelProviderLifecycleError, std::vector<RavoScenarioValidationIssue>>;
  RavoScenarioDraftingRejection(Kind kind, Payload payload) : kind_(kind), payload_(std::move(payload)) {}

  Kind kind_;
  Payload payload_;
};

}  // namespace ravo::orx
