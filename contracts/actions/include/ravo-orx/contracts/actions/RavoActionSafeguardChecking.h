#pragma once
// A safeguard weighs an admitted proposal by its risk and confirmation: it lets it run, asks for a
// confirmation first, or refuses it.

#include <optional>
#include <string>

#include <ravo-orx/contracts/actions/RavoActionConfirmation.h>
#include <ravo-orx/contracts/actions/RavoActionProposal.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionDescriptor.h>

namespace ravo::orx {

class RavoActionSafeguardResult {
 public:
  enum class Verdict { allow, requireConfirmation, deny };

  static RavoActionSafeguardResult allow(std::string reasonCode) { return {Verdict::allow, std::move(reasonCode)}; }
  static RavoActionSafeguardResult requireConfirmation(std::string reasonCode) {
    return {Verdict::requireConfirmation, std::move(reasonCode)};
  }
  static RavoActionSafeguardResult deny(std::string reasonCode) { return {Verdict::deny, std::move(reasonCode)}; }

  Verdict verdict() const { return verdict_; }
  const std::string& reasonCode() const { return reasonCode_; }

  friend bool operator==(const RavoActionSafeguardResult&, const RavoActionSafeguardResult&) = default;

 private:
  RavoActionSafeguardResult(Verdict verdict, std::string reasonCode)
      : verdict_(verdict), reasonCode_(std::move(reasonCode)) {}

  Verdict verdict_;
  std::string reasonCode_;
};

// Called by the broker without its lock held, possibly from several executions at once, so an
// implementation must be safe to call concurrently. Throwing counts as a refusal ("safeguard.failed").
class RavoActionSafeguardChecking {
 public:
  virtual ~RavoActionSafeguardChecking() = default;
  virtual RavoActionSafeguardResult evaluate(const RavoApplicationActionDescriptor& descriptor,
                                             const RavoActionProposal& proposal,
                                             const std::optional<RavoActionConfirmation>& confirmation) const = 0;
};

}  // namespace ravo::orx
