#pragma once
// Owns one record per language-model provider and applies lifecycle moves to them. Safe to use from
// any number of threads: moves of the same provider are applied one after the other, each against
// the state the previous one left.

#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include <ravo-orx/contracts/services/RavoModelProviderRecord.h>
#include <ravo-orx/contracts/services/RavoModelProviderRegistryError.h>

namespace ravo::orx {

class RavoModelProviderRegistry {
 public:
  // One record per descriptor, discovered and unconfirmed. Throws RavoModelProviderRegistryError
  // (duplicateDescriptor) for the first id given twice.
  explicit RavoModelProviderRegistry(const std::vector<RavoModelProviderDescriptor>& descriptors);

  // Every record, sorted by provider id.
  std::vector<RavoModelProviderRecord> allRecords() const;

  // Throws RavoModelProviderRegistryError (unknownProvider).
  RavoModelProviderRecord record(const RavoModelProviderID& id) const;

  // Moves the provider as RavoModelProviderRecord::transition does and returns the stored result. Throws
  // RavoModelProviderRegistryError (unknownProvider) or RavoModelProviderLifecycleError, leaving the
  // record unchanged.
  RavoModelProviderRecord transition(const RavoModelProviderID& providerID, RavoModelProviderState to,
                                     std::optional<bool> authenticationConfirmed = std::nullopt);

 private:
  mutable std::mutex mutex_;
  std::map<RavoModelProviderID, RavoModelProviderRecord> recordsByID_;  // ordered by raw id
};

}  // namespace ravo::orx
