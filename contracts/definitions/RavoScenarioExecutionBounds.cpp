#include <ravo-orx/contracts/definitions/RavoScenarioExecutionBounds.h>

namespace ravo::orx {

RavoJSON RavoScenarioExecutionBounds::toJSON() const {
  return RavoJSONObjectWriter()
      .add("timeoutSeconds", timeoutSeconds_)
      .add("retryLimit", retryLimit_)
      .add("rateLimitPerHour", rateLimitPerHour_)
      .add("maximumParallelism", maximumParallelism_)
      .take();
}

RavoScenarioExecutionBounds RavoScenarioExecutionBounds::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioExecutionBounds");
  return {reader.required<std::int64_t>("timeoutSeconds"), reader.required<std::int64_t>("retryLimit"),
          reader.required<std::int64_t>("rateLimitPerHour"), reader.required<std::int64_t>("maximumParallelism")};
}

}  // namespace ravo::orx
