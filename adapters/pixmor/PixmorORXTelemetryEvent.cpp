#include <ravo-orx/adapters/pixmor/PixmorORXTelemetryEvent.h>

namespace ravo::orx {

RavoJSON PixmorORXTelemetryEvent::toJSON() const {
  return RavoJSONObjectWriter()
      .add("ability", ability_)
      .add("outcome", outcome_)
      .add("durationMilliseconds", durationMilliseconds_)
      .take();
}

PixmorORXTelemetryEvent PixmorORXTelemetryEvent::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "PixmorORXTelemetryEvent");
  return PixmorORXTelemetryEvent{reader.required<PixmorORXAbility>("ability"), reader.required<Outcome>("outcome"),
                                 reader.required<std::int64_t>("durationMilliseconds")};
}

}  // namespace ravo::orx
