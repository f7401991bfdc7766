#pragma once
// Turns a Pixmor editing request into a proposal the surface can always use: the Orx service's answer
// when it arrives in time and fits the request, otherwise a deterministic local proposal that says why.

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include <ravo-orx/adapters/pixmor/PixmorORXRequest.h>
#include <ravo-orx/adapters/pixmor/PixmorORXResponse.h>
#include <ravo-orx/adapters/pixmor/PixmorORXTelemetryEvent.h>
#include <ravo-orx/adapters/pixmor/PixmorORXTransport.h>

namespace ravo::orx {

class PixmorORXHost {
 public:
  // Called once per proposal, on the proposing thread; it must be safe to call from any thread.
  using Telemetry = std::function<void(const PixmorORXTelemetryEvent&)>;

  // The largest timeout whose nanosecond count fits in 64 bits (about 584 years). Larger timeouts are
  // clamped to it rather than refused: a wait that long already means "wait for the answer", and a
  // host that cannot fail to construct is one less error path for the surface.
  static constexpr std::uint64_t maximumTimeoutMilliseconds = 18'446'744'073'709;

  static constexpr std::string_view unavailableReason = "ORX unavailable; local proposal used";
  static constexpr std::string_view timedOutReason = "ORX timed out; local proposal used";
  static constexpr std::string_view rejectedReason = "ORX response rejected; local proposal used";

  // A timeout of 0 is taken as 1 millisecond. Throws std::invalid_argument for a null transport.
  PixmorORXHost(std::shared_ptr<PixmorORXTransport> transport, std::uint64_t timeoutMilliseconds,
                Telemetry telemetry = {});

  const std::shared_ptr<PixmorORXTransport>& transport() const { return transport_; }
  std::uint64_t timeoutNanoseconds() const { return timeoutNanoseconds_; }
  const Telemetry& telemetry() const { return telemetry_; }

  // Asks the service and returns its answer if valid for the request, else the local fallback; reports
  // one telemetry event either way. Never throws; returns only after the transport call has ended.
  PixmorORXResponse propose(const PixmorORXRequest& request) const;

  // Whether a response answers the request within the closed vocabulary and limits of the surface.
  static bool isValid(const PixmorORXResponse& response, const PixmorORXRequest& request);

  // The local proposal for a request, built from the request alone.
  static PixmorORXResponse fallback(const PixmorORXRequest& request, std::string_view reason);

 private:
  std::string execute(const PixmorORXRequest& request) const;

  // Fixed at construction: proposals from any number of threads share the host without a lock.
  std::shared_ptr<PixmorORXTransport> transport_;
  std::uint64_t timeoutNanoseconds_;
  Telemetry telemetry_;
};

}  // namespace ravo::orx
