#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include <ravo-orx/core/ORXClosedEnumContext.h>

namespace ravo::orx {

namespace {

// Many threads reach the host registry first at the same moment: all must see one registry, built
// once (ThreadSanitizer runs this suite).
TEST(ORXClosedEnumContextConcurrency, HostRegistryIsBuiltOnceUnderContention) {
  constexpr int kThreads = 8;
  std::vector<const ORXClosedEnumContext*> seen(kThreads);
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&seen, i] { seen[i] = &ORXClosedEnumContext::host(); });
    }
  }
  for (const auto* registry : seen) EXPECT_EQ(registry, seen.front());
  EXPECT_EQ(seen.front()->schemas().size(), 7u);
  EXPECT_EQ(seen.front()->schema("orx.host::FailureReason")->allowedDiscriminants().size(), 14u);
}

}  // namespace

}  // namespace ravo::orx
