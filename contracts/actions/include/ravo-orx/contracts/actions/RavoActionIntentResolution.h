#pragma once
// What an utterance resolves to: one ready proposal, several equally good actions, or nothing.

#include <variant>
#include <vector>

#include <ravo-orx/contracts/actions/RavoActionProposal.h>

namespace ravo::orx {

class RavoActionIntentResolution {
 public:
  static RavoActionIntentResolution exact(RavoActionProposal proposal) { return {Payload(std::move(proposal))}; }
  // `actionIDs` are sorted ascending.
  static RavoActionIntentResolution choices(std::vector<RavoApplicationActionID> actionIDs);
  static RavoActionIntentResolution none() { return {Payload()}; }

  // The proposal of an exact resolution, else null.
  const RavoActionProposal* proposal() const { return std::get_if<RavoActionProposal>(&payload_); }
  // The candidates of a choice, else null.
  const std::vector<RavoApplicationActionID>* choices() const {
    return std::get_if<std::vector<RavoApplicationActionID>>(&payload_);
  }
  bool isNone() const { return std::holds_alternative<std::monostate>(payload_); }

  friend bool operator==(const RavoActionIntentResolution&, const RavoActionIntentResolution&) = default;

 private:
  using Payload = std::variant<std::monostate, RavoActionProposal, std::vector<RavoApplicationActionID>>;
  RavoActionIntentResolution(Payload payload) : payload_(std::move(payload)) {}

  Payload payload_;
};

}  // namespace ravo::orx
