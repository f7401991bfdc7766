#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include <ravo-orx/contracts/actions/RavoDefaultActionSafeguard.h>
#include "contracts/actions/tests/RavoActionBrokerTestSupport.h"

namespace ravo::orx {

namespace {

using namespace ravo_test;

// Many threads race for the uses of one grant while the gate and handler are slow and handlers are
// replaced: exactly as many executions as the grant has uses get past the grant check.
TEST(RavoActionBrokerConcurrency, ConcurrentExecutionsNeverSpendMoreUsesThanTheGrantHas) {
  constexpr int kThreads = 8;
  constexpr int kAttemptsPerThread = 200;
  constexpr std::int64_t kUses = 300;

  auto gate = std::make_unique<ScriptedGate>(RavoActionGateResult::allow(RavoActionGateLevel::hostGrant, "host.grant.checked"));
  const ScriptedGate& gateView = *gate;
  RavoActionExecutionBroker broker({RavoApplicationActionCatalog::ravoPlayer()}, std::move(gate),
                                   std::make_unique<RavoDefaultActionSafeguard>(fixedNow), fixedNow);
  std::atomic<int> handled{0};
  auto handler = [&](const RavoActionProposal&) {
    handled.fetch_add(1);
    std::this_thread::yield();
    return RavoActionHandlerResult("paused", "");
  };
  broker.registerHandler(RavoPlayerActionIDs::pause(), handler);
  RavoActionGrant grant(grantFields(kUses));
  broker.install(grant);
  RavoActionGrant other(grantFields(1));

  std::vector<std::vector<RavoActionReceipt>> receipts(kThreads);
  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        for (int i = 0; i < kAttemptsPerThread; ++i) {
          receipts[t].push_back(broker.execute(pauseProposal(), grant.id(), 3, std::nullopt, kNow));
          // Set-up calls interleave with executions without disturbing the count.
          if (i % 50 == 0) broker.registerHandler(RavoPlayerActionIDs::pause(), handler);
          if (i % 70 == 0) {
            broker.install(other);
            broker.revoke(other.id());
          }
        }
      });
    }
  }

  int completed = 0;
  int refused = 0;
  for (const auto& perThread : receipts) {
    for (const auto& receipt : perThread) {
      if (receipt.reasonCode() == "handler.paused") ++completed;
      if (receipt.reasonCode() == "broker.grant_scope_mismatch") ++refused;
    }
  }
  EXPECT_EQ(completed, kUses);
  EXPECT_EQ(refused, kThreads * kAttemptsPerThread - kUses);
  EXPECT_EQ(gateView.calls(), kUses);
  EXPECT_EQ(handled.load(), kUses);
}

}  // namespace

}  // namespace ravo::orx
