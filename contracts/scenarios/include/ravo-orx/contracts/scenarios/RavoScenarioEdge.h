#pragma once
// Carries one named value from a producing node's output to a consuming node's input. Its identity is
// computed from the four fields, never stored.

#include <functional>
#include <string>

#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoScenarioEdge {
 public:
  RavoScenarioEdge(RavoUUID fromNodeID, std::string outputKey, RavoUUID toNodeID, std::string inputKey)
      : fromNodeID_(fromNodeID), outputKey_(std::move(outputKey)), toNodeID_(toNodeID), inputKey_(std::move(inputKey)) {}

  const RavoUUID& fromNodeID() const { return fromNodeID_; }
  const std::string& outputKey() const { return outputKey_; }
  const RavoUUID& toNodeID() const { return toNodeID_; }
  const std::string& inputKey() const { return inputKey_; }

  // "<FROM-UUID>:<outputKey>-><TO-UUID>:<inputKey>", the UUIDs in uppercase.
  std::string id() const;

  RavoJSON toJSON() const;
  static RavoScenarioEdge fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioEdge&, const RavoScenarioEdge&) = default;

 private:
  RavoUUID fromNodeID_;
  std::string outputKey_;
  RavoUUID toNodeID_;
  std::string inputKey_;
};

}  // namespace ravo::orx

template <>
struct std::hash<ravo::orx::RavoScenarioEdge> {
  size_t operator()(const ravo::orx::RavoScenarioEdge& edge) const noexcept { return std::hash<std::string>{}(edge.id()); }
};
