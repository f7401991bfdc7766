#pragma once
// A gate decides whether a proposal that passed the broker's own checks may go on, and at which level
// it was admitted. The broker has already checked the grant when it asks.

#include <optional>
#include <string>

#include <ravo-orx/contracts/actions/RavoActionGateLevel.h>
#include <ravo-orx/contracts/actions/RavoActionGrant.h>
#include <ravo-orx/contracts/actions/RavoActionProposal.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionDescriptor.h>

namespace ravo::orx {

class RavoActionGateResult {
 public:
  static RavoActionGateResult allow(RavoActionGateLevel level, std::string evidenceCode) {
    return RavoActionGateResult(level, std::move(evidenceCode));
  }
  static RavoActionGateResult deny(std::string reasonCode) {
    return RavoActionGateResult(std::nullopt, std::move(reasonCode));
  }

  bool isAllowed() const { return level_.has_value(); }
  // The admitted level; nothing for a denial.
  const std::optional<RavoActionGateLevel>& level() const { return level_; }
  // The evidence code of an admission or the reason code of a denial.
  const std::string& code() const { return code_; }

  friend bool operator==(const RavoActionGateResult&, const RavoActionGateResult&) = default;

 private:
  RavoActionGateResult(std::optional<RavoActionGateLevel> level, std::string code)
      : level_(level), code_(std::move(code)) {}

  std::optional<RavoActionGateLevel> level_;
  std::string code_;
};

// Called by the broker without its lock held, possibly from several executions at once, so an
// implementation must be safe to call concurrently. Throwing counts as a refusal ("gate.failed").
class RavoActionGateChecking {
 public:
  virtual ~RavoActionGateChecking() = default;
  virtual RavoActionGateResult evaluate(const RavoApplicationActionDescriptor& descriptor,
                                        const RavoActionProposal& proposal, const RavoActionGrant& grant) const = 0;
};

}  // namespace ravo::orx
