// JSON of any shape offered as a home snapshot, a home command, a kettle plan, a model provider record,
// a scenario draft and a scenario revision: each either decodes or is refused with
// RavoJSONDecodingError, and what decodes validates, ticks, transitions and diffs without failing and
// survives a round trip through its JSON form.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <ravo-orx/contracts/scenarios/RavoScenarioBuiltInCatalog.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioCatalog.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioRevisionDiffer.h>
#include <ravo-orx/contracts/services/RavoHomeCommandProposalValidator.h>
#include <ravo-orx/contracts/services/RavoHomeInventoryValidator.h>
#include <ravo-orx/contracts/services/RavoKettleLoopbackPlan.h>
#include <ravo-orx/contracts/services/RavoModelProviderRecord.h>

namespace ravo::orx {

namespace {

template <class T>
std::optional<T> decoded(const RavoJSON& json) {
  try {
    auto value = T::fromJSON(json);
    if (T::fromJSON(parseRavoJSON(value.toJSON().dump())) != value) __builtin_trap();
    return value;
  } catch (const RavoJSONDecodingError&) {
    return std::nullopt;
  }
}

}  // namespace

}  // namespace ravo::orx

using namespace ravo::orx;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  RavoJSON json;
  try {
    json = parseRavoJSON(std::string_view(reinterpret_cast<const char*>(data), size));
  } catch (const RavoJSONDecodingError&) {
    return 0;
  }
  if (const auto snapshot = decoded<RavoHomeInventorySnapshot>(json)) {
    static_cast<void>(RavoHomeInventoryValidator::validate(*snapshot));
    for (const auto& device : snapshot->devices()) {
      const RavoHomeCommandProposal command(RavoUUID(), snapshot->providerID(), device.id(), RavoHomeCommandKind::power,
                                            true, std::nullopt, true);
      if (RavoHomeCommandProposalValidator::validate(command, *snapshot).size() > 3) __builtin_trap();
    }
  }
  if (const auto command = decoded<RavoHomeCommandProposal>(json)) {
    const RavoHomeInventorySnapshot empty(command->providerID(), RavoTimePoint(), {});
    static_cast<void>(RavoHomeCommandProposalValidator::validate(*command, empty));
  }
  if (const auto plan = decoded<RavoKettleLoopbackPlan>(json)) {
    for (const auto now : {plan->startedAt(), plan->earlyNoticeAt(), plan->expectedReadyAt(), RavoTimePoint::max()}) {
      static_cast<void>(plan->tick(now, false));
      static_cast<void>(plan->tick(now, true));
    }
  }
  if (const auto record = decoded<RavoModelProviderRecord>(json)) {
    try {
      record->validateEligibility(size % 2 == 0);
      static_cast<void>(record->transition(RavoModelProviderState::eligible, true));
    } catch (const RavoModelProviderLifecycleError&) {
    }
  }
  if (const auto draft = decoded<RavoScenarioDraft>(json)) {
    static_cast<void>(RavoScenarioCatalog::validate(*draft, RavoScenarioBuiltInCatalog::definitions()));
  }
  if (const auto revision = decoded<RavoScenarioRevision>(json)) {
    const RavoScenarioRevisionDiff unchanged({.fromRevisionID = revision->id(), .toRevisionID = revision->id()});
    if (RavoScenarioRevisionDiffer::compare(*revision, *revision) != unchanged) __builtin_trap();
  }
  return 0;
}
