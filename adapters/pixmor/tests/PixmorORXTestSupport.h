#pragma once
// Requests, transports and a telemetry recorder shared by the Pixmor tests.

#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <ravo-orx/adapters/pixmor/PixmorORXHost.h>

namespace ravo::orx {

namespace pixmor_test {

inline PixmorORXRequest makeRequest(std::string intent, bool hasPeople = false,
                                    std::optional<std::string> selectedNodeKind = std::nullopt,
                                    PixmorORXExecutionFacts device = {true, true, 0, 0},
                                    PixmorORXAbility ability = PixmorORXAbility::pipelineBuilder) {
  return PixmorORXRequest(ability, std::move(intent), {"original", "previewOutput"}, std::move(selectedNodeKind),
                          PixmorORXImageFacts(4032, 3024, true, hasPeople, 12), device);
}

// An answer the host accepts: the local proposal for the request, as if the service had sent it.
inline RavoJSON validAnswer(const PixmorORXRequest& request) {
  RavoJSON json = PixmorORXHost::fallback(request, "unused").toJSON();
  json["origin"] = "orx";
  json.erase("fallbackReason");
  return json;
}

// Answers every request through a function of the request: returns its text or throws.
class ScriptedTransport final : public PixmorORXTransport {
 public:
  explicit ScriptedTransport(std::function<std::string(const PixmorORXRequest&)> answer)
      : answer_(std::move(answer)) {}
  std::string execute(const PixmorORXRequest& request, std::stop_token) override { return answer_(request); }

 private:
  std::function<std::string(const PixmorORXRequest&)> answer_;
};

// Collects telemetry events from any thread.
class TelemetryLog {
 public:
  PixmorORXHost::Telemetry sink() {
    return [this](const PixmorORXTelemetryEvent& event) {
      std::lock_guard lock(mutex_);
      events_.push_back(event);
    };
  }
  std::vector<PixmorORXTelemetryEvent> events() const {
    std::lock_guard lock(mutex_);
    return events_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<PixmorORXTelemetryEvent> events_;
};

}  // namespace pixmor_test

}  // namespace ravo::orx
