#pragma once
// One grant of authority: a capability, issued by whom, within which budgets, deadline, generation and
// scope.

#include <string>
#include <vector>

#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/host_contract/ORXBudget.h>
#include <ravo-orx/host_contract/ORXDeadline.h>
#include <ravo-orx/host_contract/ORXGenerationFence.h>
#include <ravo-orx/host_contract/ORXGrantScope.h>

namespace ravo::orx {

class ORXCapabilityGrant {
 public:
  ORXCapabilityGrant(std::vector<ORXBudget> budgets, std::string capability, ORXDigest constraintsDigest,
                     ORXDeadline deadline, ORXGenerationFence generation, ORXDigest grantID, std::string issuerClass,
                     ORXDigest issuerID, ORXGrantScope scope);

  const std::vector<ORXBudget>& budgets() const { return budgets_; }
  const std::string& capability() const { return capability_; }
  const ORXDigest& constraintsDigest() const { return constraintsDigest_; }
  const ORXDeadline& deadline() const { return deadline_; }
  const ORXGenerationFence& generation() const { return generation_; }
  const ORXDigest& grantID() const { return grantID_; }
  const std::string& issuerClass() const { return issuerClass_; }
  const ORXDigest& issuerID() const { return issuerID_; }
  const ORXGrantScope& scope() const { return scope_; }
  ORXCanonicalValue canonicalValue() const;

  friend bool operator==(const ORXCapabilityGrant&, const ORXCapabilityGrant&) = default;

 private:
  std::vector<ORXBudget> budgets_;
  std::string capability_;
  ORXDigest constraintsDigest_;
  ORXDeadline deadline_;
  ORXGenerationFence generation_;
  ORXDigest grantID_;
  std::string issuerClass_;
  ORXDigest issuerID_;
  ORXGrantScope scope_;
};

}  // namespace ravo::orx
