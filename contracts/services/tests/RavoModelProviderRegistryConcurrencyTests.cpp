// Many threads moving the same providers at once: each move is applied against the state the previous
// one left, so the invariants of single-threaded use hold at every moment.

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include <ravo-orx/contracts/services/RavoModelProviderRegistry.h>

namespace ravo::orx {

namespace {

using State = RavoModelProviderState;

TEST(RavoModelProviderRegistryConcurrency, ConcurrentMovesKeepEveryRecordConsistent) {
  RavoModelProviderRegistry registry(RavoModelProviderDescriptor::builtIns());
  const auto cloud = RavoModelProviderID::openAICompatibleCloud();
  const auto local = RavoModelProviderID::ollamaLoopback();
  registry.transition(cloud, State::configured);
  registry.transition(local, State::configured);

  constexpr int threads = 4;
  constexpr int rounds = 300;
  std::atomic<int> eligibleMoves = 0;
  std::atomic<int> refusedMoves = 0;
  std::latch start(threads + 1);
  std::vector<std::jthread> workers;
  for (int t = 0; t < threads; ++t) {
    workers.emplace_back([&, t] {
      start.arrive_and_wait();
      for (int i = 0; i < rounds; ++i) {
        const bool confirm = (i + t) % 3 != 0;
        registry.transition(local, i % 2 ? State::healthy : State::configured);
        registry.transition(cloud, State::healthy, confirm);
        try {
          // Eligible only when no other thread withdrew the confirmation in between.
          if (registry.transition(cloud, State::eligible).state() == State::eligible) ++eligibleMoves;
        } catch (const RavoModelProviderLifecycleError& error) {
          EXPECT_EQ(error.code(), RavoModelProviderLifecycleError::Code::missingAuthentication);
          ++refusedMoves;
        }
      }
    });
  }
  std::jthread reader([&] {
    start.arrive_and_wait();
    for (int i = 0; i < rounds; ++i) {
      for (const auto& record : registry.allRecords()) {
        if (record.state() == State::eligible && record.descriptor().requiresAuthentication()) {
          EXPECT_TRUE(record.authenticationConfirmed());
        }
      }
    }
  });
  workers.clear();
  reader.join();
  EXPECT_EQ(eligibleMoves + refusedMoves, threads * rounds);
  const auto last = registry.record(cloud);
  EXPECT_TRUE(last.state() == State::healthy || last.state() == State::eligible);
  EXPECT_TRUE(last.state() != State::eligible || last.authenticationConfirmed());
}

}  // namespace

}  // namespace ravo::orx
