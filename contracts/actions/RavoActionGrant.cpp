#include <ravo-orx/contracts/actions/RavoActionGrant.h>

#include <algorithm>

namespace ravo::orx {

namespace {

template <class T>
void sortUnique(std::vector<T>& values) {
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
}

template <class T>
bool sortedContains(const std::vector<T>& values, const T& value) {
  return std::binary_search(values.begin(), values.end(), value);
}

}  // namespace

RavoActionGrant::RavoActionGrant(Fields fields) : fields_(std::move(fields)) {
  sortUnique(fields_.allowedActionIDs);
  sortUnique(fields_.allowedCapabilities);
  sortUnique(fields_.allowedStableTargetIDs);
}

bool RavoActionGrant::allowsAction(const RavoApplicationActionID& actionID) const {
  return sortedContains(fields_.allowedActionIDs, actionID);
}

bool RavoActionGrant::allowsCapability(const RavoScenarioCapability& capability) const {
  return sortedContains(fields_.allowedCapabilities, capability);
}

bool RavoActionGrant::allowsStableTarget(const std::string& stableTargetID) const {
  return sortedContains(fields_.allowedStableTargetIDs, stableTargetID);
}

}  // namespace ravo::orx
