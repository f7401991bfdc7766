#include <ravo-orx/contracts/services/RavoModelProviderRegistry.h>

namespace ravo::orx {

RavoModelProviderRegistry::RavoModelProviderRegistry(const std::vector<RavoModelProviderDescriptor>& descriptors) {
  for (const auto& descriptor : descriptors) {
    const bool added =
        recordsByID_.try_emplace(descriptor.id(), descriptor, RavoModelProviderState::discovered, false).second;
    if (!added) throw RavoModelProviderRegistryError::duplicateDescriptor(descriptor.id());
  }
}

std::vector<RavoModelProviderRecord> RavoModelProviderRegistry::allRecords() const {
  std::lock_guard lock(mutex_);
  std::vector<RavoModelProviderRecord> records;
  records.reserve(recordsByID_.size());
  for (const auto& [id, record] : recordsByID_) records.push_back(record);
  return records;
}

RavoModelProviderRecord RavoModelProviderRegistry::record(const RavoModelProviderID& id) const {
  std::lock_guard lock(mutex_);
  const auto found = recordsByID_.find(id);
  if (found == recordsByID_.end()) throw RavoModelProviderRegistryError::unknownProvider(id);
  return found->second;
}

RavoModelProviderRecord RavoModelProviderRegistry::transition(const RavoModelProviderID& providerID,
                                                              RavoModelProviderState to,
                                                              std::optional<bool> authenticationConfirmed) {
  std::lock_guard lock(mutex_);
  const auto found = recordsByID_.find(providerID);
  if (found == recordsByID_.end()) throw RavoModelProviderRegistryError::unknownProvider(providerID);
  found->second = found->second.transition(to, authenticationConfirmed);
  return found->second;
}

}  // namespace ravo::orx
