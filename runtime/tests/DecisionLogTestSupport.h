#pragma once
// Test support: a decider of puppet modules logging to an in-memory ring, and the verifier run over a
// log's lines.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <ravo-orx/runtime/OrxDecisionLogSinks.h>
#include <ravo-orx/runtime/OrxDecisionLogVerifier.h>
#include <ravo-orx/runtime/OrxDecisionLogWriter.h>
#include "runtime/tests/PuppetModules.h"

namespace ravo::orx {

struct LoggedPuppets {
  std::shared_ptr<OrxDecisionLogRingSink> ring = std::make_shared<OrxDecisionLogRingSink>(100'000);
  internal::OrxPolicyDecider decider;
  std::unique_ptr<internal::OrxDecisionLogWriter> writer;

  explicit LoggedPuppets(OrxDecisionLogOptions options = {}, internal::OrxPolicyModules modules = puppetModules())
      : decider(std::move(modules)) {
    if (!options.sink) options.sink = ring;
    writer = std::make_unique<internal::OrxDecisionLogWriter>(std::move(options));
    decider.setRecorder(writer.get());
  }
  ~LoggedPuppets() { decider.setRecorder(nullptr); }
};

// The verifier's verdict on these lines: its problem, or nothing when they verify.
inline std::optional<std::string> verifyLines(const std::vector<std::string>& lines, bool midLine = false,
                                              const std::optional<std::string>& head = std::nullopt) {
  internal::OrxDecisionLogVerifier verifier;
  for (const auto& line : lines) {
    if (!verifier.read(line)) break;
  }
  verifier.finish(midLine, head);
  return verifier.problem();
}

}  // namespace ravo::orx
