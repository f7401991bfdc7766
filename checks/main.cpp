// RavoORXChecks [artifacts-directory]: proves that the policy runtime loads its digest-bound modules
// and decides as expected, then measures the cost of a decision.

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <ravo-orx/checks/OrxDecisionBenchmark.h>
#include <ravo-orx/checks/OrxRuntimeCheckCatalog.h>

namespace ravo::orx {

namespace {

struct CheckResult {
  std::string name;
  std::optional<std::string> failure;
};

void printLine(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
}

}  // namespace

}  // namespace ravo::orx

using namespace ravo::orx;

int main(int argc, char** argv) {
  const std::filesystem::path artifacts =
      argc >= 2 ? std::filesystem::path(argv[1]) : std::filesystem::current_path() / "artifacts";
  OrxPolicyRuntime runtime(artifacts);
  const auto checks = orxRuntimeCheckCatalog(runtime, artifacts);

  std::vector<CheckResult> results;
  results.reserve(checks.size());
  for (const auto& entry : checks) results.push_back({entry.name, entry.check()});

  size_t failures = 0;
  for (const auto& result : results) {
    if (result.failure) {
      ++failures;
      printLine("FAIL " + result.name + ": " + *result.failure);
    } else {
      printLine("PASS " + result.name);
    }
  }
  printLine(std::to_string(results.size() - failures) + "/" + std::to_string(results.size()) +
            " ORX runtime checks passed");
  if (failures > 0) {
    std::fflush(stdout);
    return 1;
  }
  printLine(runOrxDecisionBenchmark(runtime).line());
  return 0;
}
