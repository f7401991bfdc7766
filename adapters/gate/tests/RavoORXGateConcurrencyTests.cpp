#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include <ravo-orx/adapters/gate/RavoORXActionGateAdapter.h>
#include <ravo-orx/adapters/gate/RavoORXGate.h>
#include "contracts/actions/tests/RavoActionBrokerTestSupport.h"

namespace ravo::orx {

namespace {

using namespace ravo_test;

// The first candidates of the process are built from several threads at once: the activation
// identifier must come out once, so every thread builds the same candidate, and the shared gate
// must answer each evaluation alike.
TEST(RavoORXGateConcurrency, ThreadsRacingToTheFirstCandidateAgree) {
  const RavoORXActionProposal proposal(RavoORXCapability::mediaTransport, RavoORXEffect::transport,
                                       RavoORXResource::playback, RavoORXProposalSource::appleIntelligence, 10,
                                       "ravo.playback.transport", "t1");
  const auto& descriptor = *RavoApplicationActionCatalog::descriptor(RavoPlayerActionIDs::pause());
  const RavoActionGrant grant(grantFields(1));
  const RavoORXActionGateAdapter gate([](const RavoORXShadowCandidate& candidate, const RavoActionGrant&) {
    return candidate.generation().epoch() == 3;
  });
  constexpr int kThreads = 8;
  std::vector<std::optional<RavoORXShadowCandidate>> candidates(kThreads);
  std::vector<int> verified(kThreads, 0);
  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        candidates[t] = RavoORXGate::shadowCandidate(proposal, 3);
        for (int i = 0; i < 50; ++i) {
          auto result = gate.evaluate(descriptor, pauseProposal(RavoActionProposalOrigin::appleIntelligence), grant);
          verified[t] += result.level() == RavoActionGateLevel::orxVerified;
        }
      });
    }
  }
  for (int t = 0; t < kThreads; ++t) {
    EXPECT_EQ(candidates[t], candidates[0]) << t;
    EXPECT_EQ(verified[t], 50) << t;
  }
}

}  // namespace

}  // namespace ravo::orx
