// Timeouts, cooperative cancellation and proposals in flight on several threads. Timing is driven by
// latches and stop requests only, so the outcomes do not depend on how fast the machine is.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <latch>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "adapters/pixmor/tests/PixmorORXTestSupport.h"

namespace ravo::orx {

namespace {

using Outcome = PixmorORXTelemetryEvent::Outcome;
using pixmor_test::makeRequest;
using pixmor_test::TelemetryLog;
using pixmor_test::validAnswer;

// Answers (too late to count) only once asked to stop, and then only after `holds` releases.
class BlockingTransport final : public PixmorORXTransport {
 public:
  explicit BlockingTransport(std::ptrdiff_t calls, std::ptrdiff_t holds = 0) : stopped(calls), release(holds) {}
  std::string execute(const PixmorORXRequest& request, std::stop_token stop) override {
    ++active;
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    never.wait(lock, stop, [] { return false; });
    stopped.count_down();
    release.wait();
    --active;
    return validAnswer(request).dump();
  }
  std::atomic<int> active = 0;
  std::latch stopped;
  std::latch release;
};

// Answers only once `calls` calls are in flight together.
class RendezvousTransport final : public PixmorORXTransport {
 public:
  explicit RendezvousTransport(std::ptrdiff_t calls) : allInFlight_(calls) {}
  std::string execute(const PixmorORXRequest& request, std::stop_token) override {
    allInFlight_.arrive_and_wait();
    return validAnswer(request).dump();
  }

 private:
  std::latch allInFlight_;
};

TEST(PixmorORXHostConcurrency, TimeoutsStopEachCallAndFallBack) {
  for (std::uint64_t milliseconds : {0, 1, 20}) {
    constexpr int threads = 4;
    auto transport = std::make_shared<BlockingTransport>(threads);
    TelemetryLog log;
    const PixmorORXHost host(transport, milliseconds, log.sink());
    std::vector<std::jthread> proposers;
    for (int i = 0; i < threads; ++i) {
      proposers.emplace_back([&] {
        const auto request = makeRequest("warm", false, std::nullopt, {true, true, 0, 0}, PixmorORXAbility::variantPlanner);
        EXPECT_EQ(host.propose(request), PixmorORXHost::fallback(request, "ORX timed out; local proposal used"));
      });
    }
    proposers.clear();
    EXPECT_EQ(transport->active, 0);
    const auto events = log.events();
    ASSERT_EQ(events.size(), static_cast<size_t>(threads));
    for (const auto& event : events) {
      EXPECT_EQ(event.outcome(), Outcome::timeout);
      EXPECT_EQ(event.ability(), PixmorORXAbility::variantPlanner);
      EXPECT_GE(event.durationMilliseconds(), static_cast<std::int64_t>(std::max<std::uint64_t>(milliseconds, 1)));
    }
  }
}

TEST(PixmorORXHostConcurrency, ProposeReturnsOnlyAfterAStubbornTransportEnds) {
  auto transport = std::make_shared<BlockingTransport>(1, 1);
  TelemetryLog log;
  const PixmorORXHost host(transport, 1, log.sink());
  const auto request = makeRequest("sky");
  auto proposal = std::async(std::launch::async, [&] { return host.propose(request); });
  transport->stopped.wait();
  EXPECT_EQ(proposal.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  EXPECT_EQ(transport->active, 1);
  transport->release.count_down();
  EXPECT_EQ(proposal.get(), PixmorORXHost::fallback(request, PixmorORXHost::timedOutReason));
  EXPECT_EQ(transport->active, 0);
  ASSERT_EQ(log.events().size(), 1u);
  EXPECT_EQ(log.events()[0].outcome(), Outcome::timeout);
}

TEST(PixmorORXHostConcurrency, ProposalsFromManyThreadsAreInFlightTogether) {
  constexpr int threads = 8;
  TelemetryLog log;
  // A host that handled one proposal at a time would never complete the rendezvous; the generous
  // timeout would then turn the answers into timeouts rather than hang the test.
  const PixmorORXHost host(std::make_shared<RendezvousTransport>(threads), 30'000, log.sink());
  std::vector<PixmorORXRequest> requests;
  for (int i = 0; i < threads; ++i) requests.push_back(makeRequest(i % 2 ? "grain" : "sky", i % 3 == 0));
  std::vector<std::future<PixmorORXResponse>> proposals;
  for (const auto& request : requests) {
    proposals.push_back(std::async(std::launch::async, [&] { return host.propose(request); }));
  }
  for (int i = 0; i < threads; ++i) {
    EXPECT_EQ(proposals[i].get(), PixmorORXResponse::fromJSON(validAnswer(requests[i])));
  }
  ASSERT_EQ(log.events().size(), static_cast<size_t>(threads));
  for (const auto& event : log.events()) EXPECT_EQ(event.outcome(), Outcome::orx);
}

}  // namespace

}  // namespace ravo::orx
