#include <ravo-orx/adapters/pixmor/PixmorORXHost.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include <ravo-orx/adapters/pixmor/PixmorORXHostError.h>

namespace ravo::orx {

namespace {

using Clock = std::chrono::steady_clock;
using Outcome = PixmorORXTelemetryEvent::Outcome;

// The answer of one transport call, handed from its thread to the proposing thread.
struct PendingAnswer {
  std::mutex mutex;
  std::condition_variable settled;
  bool done = false;
  std::string bytes;
  std::exception_ptr error;
};

// The largest timeouts do not fit in the clock's signed nanoseconds; they wait until the end of time.
Clock::time_point deadlineAfter(Clock::time_point start, std::uint64_t nanoseconds) {
  const auto room = static_cast<std::uint64_t>((Clock::time_point::max() - start).count());
  if (nanoseconds >= room) return Clock::time_point::max();
  return start + std::chrono::nanoseconds(nanoseconds);
}

void report(const PixmorORXHost::Telemetry& telemetry, PixmorORXAbility ability, Outcome outcome,
            Clock::time_point start) {
  if (!telemetry) return;
  const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
  try {
    telemetry(PixmorORXTelemetryEvent(ability, outcome, std::max<std::int64_t>(elapsed, 0)));
  } catch (...) {
    // Telemetry is an observer: a failing sink must not cost the surface its proposal.
  }
}

}  // namespace

PixmorORXHost::PixmorORXHost(std::shared_ptr<PixmorORXTransport> transport, std::uint64_t timeoutMilliseconds,
                             Telemetry telemetry)
    : transport_(std::move(transport)),
      timeoutNanoseconds_(std::clamp<std::uint64_t>(timeoutMilliseconds, 1, maximumTimeoutMilliseconds) * 1'000'000),
      telemetry_(std::move(telemetry)) {
  if (!transport_) throw std::invalid_argument("PixmorORXHost needs a transport");
}

// The transport runs on a thread of its own while this thread waits for its answer or the deadline,
// whichever comes first. On the deadline the call is asked to stop and joined, so no transport call
// outlives the proposal that made it.
std::string PixmorORXHost::execute(const PixmorORXRequest& request) const {
  const auto deadline = deadlineAfter(Clock::now(), timeoutNanoseconds_);
  PendingAnswer pending;
  std::jthread call([&](std::stop_token stop) {
    std::string bytes;
    std::exception_ptr error;
    try {
      bytes = transport_->execute(request, stop);
    } catch (...) {
      error = std::current_exception();
    }
    std::lock_guard lock(pending.mutex);
    pending.bytes = std::move(bytes);
    pending.error = error;
    pending.done = true;
    pending.settled.notify_one();
  });

  std::unique_lock lock(pending.mutex);
  const bool answered = pending.settled.wait_until(lock, deadline, [&] { return pending.done; });
  lock.unlock();
  if (!answered) call.request_stop();
  call.join();
  if (!answered) throw PixmorORXHostError(PixmorORXHostError::Code::timedOut);
  if (pending.error) std::rethrow_exception(pending.error);
  return std::move(pending.bytes);
}

PixmorORXResponse PixmorORXHost::propose(const PixmorORXRequest& request) const {
  const auto start = Clock::now();
  Outcome outcome = Outcome::fallback;
  std::string_view reason = unavailableReason;
  try {
    auto response = PixmorORXResponse::fromJSONText(execute(request));
    if (isValid(response, request)) {
      report(telemetry_, request.ability(), Outcome::orx, start);
      return response;
    }
    throw PixmorORXHostError(PixmorORXHostError::Code::invalidResponse);
  } catch (const PixmorORXHostError& error) {
    if (error.code() == PixmorORXHostError::Code::timedOut) {
      outcome = Outcome::timeout;
      reason = timedOutReason;
    } else if (error.code() == PixmorORXHostError::Code::invalidResponse) {
      outcome = Outcome::invalid;
      reason = rejectedReason;
    }
  } catch (...) {
    // Any other transport failure, and answers that are not a response at all, count as no service.
  }
  report(telemetry_, request.ability(), outcome, start);
  return fallback(request, reason);
}

}  // namespace ravo::orx
