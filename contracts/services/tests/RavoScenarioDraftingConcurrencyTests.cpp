// Drafting calls that overlap while a model is answering: the proposer runs without the service's
// lock, so a newer request can start meanwhile and only its answer is accepted.

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>

#include "contracts/services/tests/RavoScenarioDraftingTestSupport.h"

namespace ravo::orx {

namespace {

using namespace drafting_test;
using Kind = RavoScenarioDraftingRejection::Kind;

TEST(RavoScenarioDraftingConcurrency, TheNewestOfTwoOverlappingRequestsWins) {
  auto service = builtInService();
  const auto provider = eligible(RavoModelProviderDescriptor::appleFoundationModels());
  std::latch firstIsWaiting(1);
  std::latch releaseFirst(1);
  FunctionProposer slow([&](const auto& request) {
    firstIsWaiting.count_down();
    releaseFirst.wait();  // held until the second request has been answered
    return answer(request);
  });
  FunctionProposer fast([](const auto& request) { return answer(request); });

  std::optional<RavoScenarioDraftingOutcome> first;
  std::optional<RavoScenarioDraftingOutcome> second;
  std::jthread firstCaller([&] { first = service.draft("dim the lights", false, provider, slow); });
  firstIsWaiting.wait();
  std::jthread secondCaller([&] { second = service.draft("dim the lights a bit more", false, provider, fast); });
  secondCaller.join();
  releaseFirst.count_down();
  firstCaller.join();

  ASSERT_TRUE(first && second);
  ASSERT_NE(first->rejection(), nullptr);
  EXPECT_EQ(first->rejection()->kind(), Kind::staleResponse);
  EXPECT_NE(second->accepted(), nullptr);
  EXPECT_EQ(service.latestGeneration(), 2);
}

TEST(RavoScenarioDraftingConcurrency, ManyCallersResendingOneAnswerGetItAcceptedExactlyOnce) {
  auto service = builtInService();
  const auto provider = eligible(RavoModelProviderDescriptor::ollamaLoopback());
  const RavoUUID responseID = RavoUUID::random();
  FunctionProposer resends([&](const auto& request) {
    return RavoScenarioDraftingResponse(responseID, request.id(), proposedDraft(), {});
  });

  constexpr int kThreads = 4;
  constexpr int kRounds = 200;
  std::atomic<int> accepted = 0;
  std::atomic<int> unexpected = 0;
  std::latch start(kThreads);
  {
    std::vector<std::jthread> callers;
    for (int t = 0; t < kThreads; ++t) {
      callers.emplace_back([&] {
        start.arrive_and_wait();
        for (int i = 0; i < kRounds; ++i) {
          auto outcome = service.draft("lights", false, provider, resends);
          if (outcome.accepted()) {
            ++accepted;
          } else if (auto kind = outcome.rejection()->kind(); kind != Kind::staleResponse &&
                                                               kind != Kind::duplicateResponse) {
            ++unexpected;
          }
        }
      });
    }
  }
  EXPECT_EQ(accepted.load(), 1);  // the newest request is never stale, so someone accepts it
  EXPECT_EQ(unexpected.load(), 0);
  EXPECT_EQ(service.latestGeneration(), kThreads * kRounds);
}

}  // namespace

}  // namespace ravo::orx
