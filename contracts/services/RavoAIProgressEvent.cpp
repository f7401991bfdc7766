#include <ravo-orx/contracts/services/RavoAIProgressEvent.h>

namespace ravo::orx {

RavoJSON RavoAIProgressEvent::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", id_)
      .add("sequence", sequence_)
      .add("phase", phase_)
      .add("operation", operation_)
      .add("source", source_)
      .add("timestamp", timestamp_)
      .take();
}

RavoAIProgressEvent RavoAIProgressEvent::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoAIProgressEvent");
  return {reader.required<RavoUUID>("id"),
          reader.required<std::int64_t>("sequence"),
          reader.required<RavoAIProgressPhase>("phase"),
          reader.required<RavoAIOperation>("operation"),
          reader.required<std::int32_t>("source"),
          reader.required<RavoTimePoint>("timestamp")};
}

}  // namespace ravo::orx
