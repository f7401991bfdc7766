#pragma once
// What one proposal of the Pixmor policy host ended with, and how long it took.

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include <ravo-orx/adapters/pixmor/PixmorORXAbility.h>
#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class PixmorORXTelemetryEvent {
 public:
  enum class Outcome {
    orx,       // the service's answer was valid and returned
    fallback,  // no service, a transport failure or an undecodable answer
    timeout,   // no answer within the timeout
    invalid,   // an answer that failed validation against the request
  };

  PixmorORXTelemetryEvent(PixmorORXAbility ability, Outcome outcome, std::int64_t durationMilliseconds)
      : ability_(ability), outcome_(outcome), durationMilliseconds_(durationMilliseconds) {}

  PixmorORXAbility ability() const { return ability_; }
  Outcome outcome() const { return outcome_; }
  std::int64_t durationMilliseconds() const { return durationMilliseconds_; }

  RavoJSON toJSON() const;
  static PixmorORXTelemetryEvent fromJSON(const RavoJSON& json);

  friend bool operator==(const PixmorORXTelemetryEvent&, const PixmorORXTelemetryEvent&) = default;

 private:
  PixmorORXAbility ability_;
  Outcome outcome_;
  std::int64_t durationMilliseconds_;
};

template <>
struct ORXRawValueTable<PixmorORXTelemetryEvent::Outcome> {
  using Outcome = PixmorORXTelemetryEvent::Outcome;
  static constexpr std::array<std::pair<Outcome, std::string_view>, 4> entries{{
      {Outcome::orx, "orx"},
      {Outcome::fallback, "fallback"},
      {Outcome::timeout, "timeout"},
      {Outcome::invalid, "invalid"},
  }};
};

}  // namespace ravo::orx
