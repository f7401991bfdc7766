#include <ravo-orx/contracts/services/RavoHomeCommandProposal.h>

#include <cmath>
#include <stdexcept>
#include <utility>

#include <ravo-orx/contracts/support/RavoGraphemePrefix.h>

namespace ravo::orx {

RavoHomeCommandProposal::RavoHomeCommandProposal(RavoUUID id, RavoHomeProviderID providerID, std::string deviceID,
                                                 RavoHomeCommandKind kind, std::optional<bool> powerValue,
                                                 std::optional<double> scalarValue, bool requiresExplicitConfirmation)
    : RavoHomeCommandProposal(AsGiven{}, id, std::move(providerID), ravoGraphemePrefix(deviceID, maximumDeviceIDCharacters),
                              kind, powerValue, scalarValue, requiresExplicitConfirmation) {}

RavoHomeCommandProposal::RavoHomeCommandProposal(AsGiven, RavoUUID id, RavoHomeProviderID providerID,
                                                 std::string deviceID, RavoHomeCommandKind kind,
                                                 std::optional<bool> powerValue, std::optional<double> scalarValue,
                                                 bool requiresExplicitConfirmation)
    : id_(id),
      providerID_(std::move(providerID)),
      deviceID_(std::move(deviceID)),
      kind_(kind),
      powerValue_(powerValue),
      scalarValue_(scalarValue),
      requiresExplicitConfirmation_(requiresExplicitConfirmation) {}

RavoJSON RavoHomeCommandProposal::toJSON() const {
  if (scalarValue_ && !std::isfinite(*scalarValue_)) throw std::invalid_argument("non-finite home command value");
  return RavoJSONObjectWriter()
      .add("id", id_)
      .add("providerID", providerID_)
      .add("deviceID", deviceID_)
      .add("kind", kind_)
      .add("powerValue", powerValue_)
      .add("scalarValue", scalarValue_)
      .add("requiresExplicitConfirmation", requiresExplicitConfirmation_)
      .take();
}

RavoHomeCommandProposal RavoHomeCommandProposal::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoHomeCommandProposal");
  return RavoHomeCommandProposal{AsGiven{},
                                 reader.required<RavoUUID>("id"),
                                 reader.required<RavoHomeProviderID>("providerID"),
                                 reader.required<std::string>("deviceID"),
                                 reader.required<RavoHomeCommandKind>("kind"),
                                 reader.optional<bool>("powerValue"),
                                 reader.optional<double>("scalarValue"),
                                 reader.required<bool>("requiresExplicitConfirmation")};
}

}  // namespace ravo::orx
