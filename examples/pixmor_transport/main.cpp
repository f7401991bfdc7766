// A Pixmor transport stands between PixmorORXHost and the Orx service. This one stands in for a
// service with a given latency: it answers after that delay, or gives up as soon as the host requests
// a stop (the host stops waiting at its timeout and waits for the transport to return).

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>

#include <ravo-orx/adapters/pixmor/PixmorORXHost.h>
#include <ravo-orx/adapters/pixmor/PixmorORXHostError.h>

using namespace ravo::orx;

namespace {

using namespace std::chrono_literals;

class SimulatedServiceTransport final : public PixmorORXTransport {
 public:
  explicit SimulatedServiceTransport(std::chrono::milliseconds latency) : latency_(latency) {}

  std::string execute(const PixmorORXRequest& request, std::stop_token stop) override {
    // Sleep for the latency, but wake at once when the host requests a stop.
    std::mutex mutex;
    std::condition_variable_any wake;
    std::unique_lock lock(mutex);
    wake.wait_for(lock, stop, latency_, [] { return false; });
    if (stop.stop_requested()) throw PixmorORXHostError(PixmorORXHostError::Code::timedOut);
    // The service's answer: here, the local proposal relabelled as the service's own.
    RavoJSON answer = PixmorORXHost::fallback(request, "unused").toJSON();
    answer["origin"] = "orx";
    answer.erase("fallbackReason");
    return answer.dump();
  }

 private:
  std::chrono::milliseconds latency_;
};

// Asks a host with a 200 ms timeout through a service of the given latency.
PixmorORXResponse propose(std::chrono::milliseconds latency, std::chrono::milliseconds& took) {
  const PixmorORXHost host(std::make_shared<SimulatedServiceTransport>(latency), 200,
                           [](const PixmorORXTelemetryEvent& event) {
                             std::printf("  telemetry: %s\n", event.toJSON().dump().c_str());
                           });
  const PixmorORXRequest request(PixmorORXAbility::pipelineBuilder, "restore detail in the faces",
                                 {"original", "previewOutput"}, std::nullopt,
                                 PixmorORXImageFacts(4032, 3024, true, true, 12),
                                 PixmorORXExecutionFacts(true, true, 0, 0));
  const auto start = std::chrono::steady_clock::now();
  auto response = host.propose(request);
  took = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
  return response;
}

}  // namespace

int main() {
  std::chrono::milliseconds fastTook{}, slowTook{};
  std::printf("a service answering in 10 ms:\n");
  const auto fast = propose(10ms, fastTook);
  std::printf("  origin %s, %zu pipeline nodes, %lld ms\n", fast.origin() == PixmorORXResponseOrigin::orx ? "orx" : "local",
              fast.pipelineNodeKinds().size(), static_cast<long long>(fastTook.count()));

  std::printf("a service answering in 60 s:\n");
  const auto slow = propose(60s, slowTook);
  std::printf("  origin %s (%s), %lld ms\n", slow.origin() == PixmorORXResponseOrigin::orx ? "orx" : "local",
              slow.fallbackReason().value_or("").c_str(), static_cast<long long>(slowTook.count()));

  // The slow call returned at the timeout because the transport stopped when asked to.
  const bool expected = fast.origin() == PixmorORXResponseOrigin::orx &&
                        slow.origin() == PixmorORXResponseOrigin::localFallback &&
                        slow.fallbackReason() == PixmorORXHost::timedOutReason && slowTook < 10s;
  return expected ? 0 : 1;
}
