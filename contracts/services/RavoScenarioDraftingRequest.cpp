#include <ravo-orx/contracts/services/RavoScenarioDraftingRequest.h>

#include <algorithm>
#include <tuple>

namespace ravo::orx {

RavoScenarioDraftingRequest::RavoScenarioDraftingRequest(RavoUUID id, std::int64_t generation, std::string userText,
                                                         bool localOnly,
                                                         std::vector<RavoScenarioDraftingNodeHint> allowedNodes)
    : id_(id),
      generation_(generation),
      userText_(std::move(userText)),
      localOnly_(localOnly),
      allowedNodes_(std::move(allowedNodes)) {
  std::stable_sort(allowedNodes_.begin(), allowedNodes_.end(), [](const auto& a, const auto& b) {
    return std::tie(a.id().rawValue(), a.version()) < std::tie(b.id().rawValue(), b.version());
  });
}

}  // namespace ravo::orx
