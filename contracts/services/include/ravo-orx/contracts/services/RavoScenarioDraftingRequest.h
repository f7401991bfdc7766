#pragma once
// One request to a drafting model: the person's words, whether nothing may leave the device, and the
// node types the model may use. `generation` ties the request to the drafting service's sequence so
// that only the answer to the newest request is accepted.

#include <cstdint>
#include <string>
#include <vector>

#include <ravo-orx/contracts/services/RavoScenarioDraftingNodeHint.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoScenarioDraftingRequest {
 public:
  // Sorts the hints by node type, then by version (stable).
  RavoScenarioDraftingRequest(RavoUUID id, std::int64_t generation, std::string userText, bool localOnly,
                              std::vector<RavoScenarioDraftingNodeHint> allowedNodes);

  const RavoUUID& id() const { return id_; }
  std::int64_t generation() const { return generation_; }
  const std::string& userText() const { return userText_; }
  bool localOnly() const { return localOnly_; }
  const std::vector<RavoScenarioDraftingNodeHint>& allowedNodes() const { return allowedNodes_; }

  friend bool operator==(const RavoScenarioDraftingRequest&, const RavoScenarioDraftingRequest&) = default;

 private:
  RavoUUID id_;
  std::int64_t generation_;
  std::string userText_;
  bool localOnly_;
  std::vector<RavoScenarioDraftingNodeHint> allowedNodes_;
};

}  // namespace ravo::orx
