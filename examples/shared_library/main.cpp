// The C++ API through libravo-orx: the same decisions and digest as the C and Python examples, in the
// same output format, so the relocation test can compare the three.

#include <cstdio>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/runtime/OrxPolicyRuntime.h>

using namespace ravo::orx;

int main() {
  OrxPolicyRuntime runtime;  // no directory: the library finds its own prefix's artifacts
  auto authorization = runtime.authorizeWithSource({1, 3, 7, 100, 60000, 1, 10, 1});
  auto sync = runtime.correctSyncWithSource({60, 40, 5, 2000, 100, 0, 500, 40});
  auto cinema = runtime.decideCinemaAdmissionWithSource({2400, 6000, 500, 50, 0, 0, 20, 30, 40, 10, 10, 50, 8});

  std::printf("authz isAllowed=%d reason=%d policyVersion=%d source=%d\n", authorization.decision.isAllowed ? 1 : 0,
              rawValue(authorization.decision.reason), authorization.decision.policyVersion,
              static_cast<int>(authorization.source));
  std::printf("sync action=%d rateX1000=%d correctionMilliseconds=%d reason=%d source=%d\n",
              rawValue(sync.decision.action), sync.decision.rateX1000, sync.decision.correctionMilliseconds,
              sync.decision.reason, static_cast<int>(sync.source));
  std::printf("cinema route=%d sparseAnchorIntervalFrames=%d safeBudgetTenthsMilliseconds=%d reason=%d source=%d\n",
              rawValue(cinema.decision.route), cinema.decision.sparseAnchorIntervalFrames,
              cinema.decision.safeBudgetTenthsMilliseconds, rawValue(cinema.decision.reason),
              static_cast<int>(cinema.source));
  auto document = ORXCanonicalJSON::parse(R"({"example":"ravo-orx","version":1})");
  std::printf("digest %s\n", ORXDigest::domain(ORXDigestDomain::decisionEvidence, document).value().c_str());
  bool fromPolicy = authorization.source == OrxDecisionSource::policy && sync.source == OrxDecisionSource::policy &&
                    cinema.source == OrxDecisionSource::policy;
  return fromPolicy ? 0 : 1;
}
