#pragma once
// How one execution of a node is bounded. Construction takes any numbers; the ranges a graph may use
// are checked by scenario validation, which reports them as issues.

#include <cstdint>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class RavoScenarioExecutionBounds {
 public:
  RavoScenarioExecutionBounds(std::int64_t timeoutSeconds, std::int64_t retryLimit, std::int64_t rateLimitPerHour,
                              std::int64_t maximumParallelism)
      : timeoutSeconds_(timeoutSeconds),
        retryLimit_(retryLimit),
        rateLimitPerHour_(rateLimitPerHour),
        maximumParallelism_(maximumParallelism) {}

  // The bounds of a node that a person or an action triggers by hand: 20 s, no retry, 60 per hour, one at a time.
  static RavoScenarioExecutionBounds manualAction() { return {20, 0, 60, 1}; }

  std::int64_t timeoutSeconds() const { return timeoutSeconds_; }
  std::int64_t retryLimit() const { return retryLimit_; }
  std::int64_t rateLimitPerHour() const { return rateLimitPerHour_; }
  std::int64_t maximumParallelism() const { return maximumParallelism_; }

  RavoJSON toJSON() const;
  static RavoScenarioExecutionBounds fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioExecutionBounds&, const RavoScenarioExecutionBounds&) = default;

 private:
  std::int64_t timeoutSeconds_;
  std::int64_t retryLimit_;
  std::int64_t rateLimitPerHour_;
  std::int64_t maximumParallelism_;
};

}  // namespace ravo::orx
