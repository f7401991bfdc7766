// A host that logs every decision to a file: the log continues across runs, and the head printed at
// the end is what the host would publish or store elsewhere, so that `ravo-orx log verify FILE --head
// DIGEST` can later prove the log complete and unaltered, and `ravo-orx log replay FILE` that every
// decision reproduces.
//   orx_example_decision_log [LOG]      (default: decisions.jsonl in the working directory)

#include <cstdio>
#include <exception>
#include <memory>
#include <string>

#include <ravo-orx/runtime/OrxDecisionLogSinks.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>

using namespace ravo::orx;

int main(int argc, char** argv) {
  const std::string file = argc > 1 ? argv[1] : "decisions.jsonl";
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  try {
    OrxDecisionLogOptions log;
    // Synchronised at each seal: a machine that stops loses at most the records after the last seal.
    log.sink = std::make_shared<OrxDecisionLogFileSink>(file, OrxDecisionLogFileSync::afterSeal);
    log.blockRecords = 4;
    OrxPolicyRuntime runtime(std::nullopt, log);
    if (runtime.loadError()) std::printf("artifacts did not load: %s\n", runtime.loadError()->c_str());

    // A controller, a renderer and a controller over its rate limit ask for the same command.
    const AuthorizationFacts requests[] = {
        {2, 6, 63, 1000, 900000, 0, 600, 1}, {1, 6, 63, 1000, 900000, 0, 600, 1}, {2, 6, 63, 1000, 900000, 700, 600, 1}};
    for (const auto& facts : requests) {
      const auto answer = runtime.authorizeWithSource(facts);
      std::printf("role %d: allowed=%d reason=%s\n", facts.role, answer.decision.isAllowed,
                  std::string(orxCaseName(answer.decision.reason)).c_str());
    }
    const auto sync = runtime.correctSyncWithSource({66, 20, 5, 10000, 100, 0, 500, 50});
    std::printf("sync: %s at %d\n", std::string(orxCaseName(sync.decision.action)).c_str(), sync.decision.rateX1000);

    OrxDecisionLog& decisions = *runtime.decisionLog();
    decisions.flush();
    std::printf("%s: %llu records written, head %s\n", file.c_str(),
                static_cast<unsigned long long>(decisions.recordsWritten()), decisions.head()->c_str());
    return decisions.error() ? 1 : 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
