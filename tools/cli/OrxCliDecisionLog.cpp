#include <ravo-orx/cli/OrxCliDecisionLog.h>

#include <stdexcept>

#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

using namespace internal;

OrxDecisionLogVerifier orxCliVerifyLog(const std::optional<std::string>& file, const std::optional<std::string>& head,
                                       OrxDecisionLogVerifier::RecordRead onRecord) {
  OrxDecisionLogVerifier verifier(std::move(onRecord));
  const std::string unfinished =
      orxCliReadLines(file, kOrxDecisionLogLineLimit, [&](std::string_view line) { verifier.read(line); });
  verifier.finish(!unfinished.empty(), head);
  return verifier;
}

void orxCliPrintLogSummary(const OrxDecisionLogVerifier& verifier) {
  orxCliPrint("lines " + std::to_string(verifier.lines()) + ", blocks " + std::to_string(verifier.blocks()) +
              ", records " + std::to_string(verifier.sealedRecords()) + " sealed, " +
              std::to_string(verifier.droppedRecords()) + " declared dropped");
  for (const auto& [kindAndSource, count] : verifier.counts()) {
    orxCliPrint("  " + kindAndSource.first + " " + kindAndSource.second + ": " + std::to_string(count));
  }
  for (const auto& gap : verifier.gaps()) {
    orxCliPrint("  gap: sequences " + std::to_string(gap.firstSequence) + " to " +
                std::to_string(gap.firstSequence + gap.count - 1) + " dropped (declared by block " +
                std::to_string(gap.block) + ")");
  }
  if (verifier.unsealedRecords() > 0 && !verifier.problem()) {
    orxCliPrint("unsealed: " + std::to_string(verifier.unsealedRecords()) + " records after line " +
                std::to_string(verifier.lastSealLine()) + " are not sealed yet (a writer still running, or one "
                "that stopped before sealing them)");
  }
  orxCliPrint("head: " + verifier.head().value_or("none (no block sealed)"));
}

void orxCliThrowLogProblem(const std::optional<std::string>& file, const OrxDecisionLogVerifier& verifier) {
  if (verifier.problem()) throw std::runtime_error(orxCliInputName(file) + ": " + *verifier.problem());
}

}  // namespace ravo::orx
