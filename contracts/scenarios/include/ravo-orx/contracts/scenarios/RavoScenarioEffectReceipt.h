#pragma once
// What happened when one node of one revision tried to take effect, with a stable machine-readable
// reason code.

#include <optional>
#include <string>

#include <ravo-orx/contracts/definitions/RavoScenarioLabels.h>
#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoScenarioEffectReceipt {
 public:
  using Outcome = RavoScenarioEffectReceiptOutcome;

  struct Fields {
    RavoUUID id{};
    RavoUUID revisionID{};
    RavoUUID nodeID{};
    std::optional<std::string> stableTargetID{};
    Outcome outcome = Outcome::blocked;
    std::string reasonCode{};

    friend bool operator==(const Fields&, const Fields&) = default;
  };

  explicit RavoScenarioEffectReceipt(Fields fields) : fields_(std::move(fields)) {}

  const RavoUUID& id() const { return fields_.id; }
  const RavoUUID& revisionID() const { return fields_.revisionID; }
  const RavoUUID& nodeID() const { return fields_.nodeID; }
  const std::optional<std::string>& stableTargetID() const { return fields_.stableTargetID; }
  Outcome outcome() const { return fields_.outcome; }
  const std::string& reasonCode() const { return fields_.reasonCode; }

  RavoJSON toJSON() const;
  static RavoScenarioEffectReceipt fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioEffectReceipt&, const RavoScenarioEffectReceipt&) = default;

 private:
  Fields fields_;
};

}  // namespace ravo::orx
