/* The C API: the three decisions from the installed artifacts (found by the library itself, with no
 * directory named) and a domain digest. Build against an installed prefix:
 *   cc main.c $(pkg-config --cflags --libs ravo-orx) -o decisions
 * The relocation test builds it that way and compares its output with the C++ and Python examples'. */

#include <stdio.h>
#include <string.h>

#include <ravo-orx/orx.h>

int main(void) {
  orx_runtime* runtime = NULL;
  orx_status opened = orx_runtime_open(NULL, &runtime);
  if (opened != ORX_OK) fprintf(stderr, "opened with status %d: %s\n", (int)opened, orx_last_error());
  if (!runtime) return 1;

  const orx_authorization_facts authorizationFacts = {1, 3, 7, 100, 60000, 1, 10, 1};
  const orx_sync_facts syncFacts = {60, 40, 5, 2000, 100, 0, 500, 40};
  const orx_cinema_admission_facts cinemaFacts = {2400, 6000, 500, 50, 0, 0, 20, 30, 40, 10, 10, 50, 8};
  orx_authorization_decision authorization;
  orx_sync_decision sync;
  orx_cinema_admission_decision cinema;
  orx_authorize(runtime, &authorizationFacts, &authorization);
  orx_correct_sync(runtime, &syncFacts, &sync);
  orx_decide_cinema_admission(runtime, &cinemaFacts, &cinema);
  orx_runtime_close(runtime);

  printf("authz isAllowed=%d reason=%d policyVersion=%d source=%d\n", (int)authorization.isAllowed,
         (int)authorization.reason, (int)authorization.policyVersion, (int)authorization.source);
  printf("sync action=%d rateX1000=%d correctionMilliseconds=%d reason=%d source=%d\n", (int)sync.action,
         (int)sync.rateX1000, (int)sync.correctionMilliseconds, (int)sync.reason, (int)sync.source);
  printf("cinema route=%d sparseAnchorIntervalFrames=%d safeBudgetTenthsMilliseconds=%d reason=%d source=%d\n",
         (int)cinema.route, (int)cinema.sparseAnchorIntervalFrames, (int)cinema.safeBudgetTenthsMilliseconds,
         (int)cinema.reason, (int)cinema.source);

  const char* json = "{\"example\":\"ravo-orx\",\"version\":1}";
  char digest[ORX_DIGEST_TEXT_SIZE];
  if (orx_domain_digest("ORX_DECISION_EVIDENCE_V1", json, strlen(json), digest) != ORX_OK) {
    fprintf(stderr, "digest: %s\n", orx_last_error());
    return 1;
  }
  printf("digest %s\n", digest);
  int fromPolicy = authorization.source == ORX_SOURCE_POLICY && sync.source == ORX_SOURCE_POLICY &&
                   cinema.source == ORX_SOURCE_POLICY;
  return fromPolicy ? 0 : 1;
}
