"""Takes the three decisions from the artifacts the library finds and prints them, with a domain
digest, in the same lines as the C and C++ examples. Exits 1 when any decision is not the policy's."""

import sys

import ravo_orx as orx

AUTHORIZATION = orx.AuthorizationFacts(role=1, command=3, grant_flags=7, token_age_milliseconds=100,
                                       token_ttl_milliseconds=60000, rate_used=1, rate_limit=10, control_mode=1)
SYNC = orx.SyncFacts(60, 40, 5, 2000, 100, 0, 500, 40)
CINEMA = orx.CinemaAdmissionFacts(2400, 6000, 500, 50, 0, 0, 20, 30, 40, 10, 10, 50, 8)


def main():
    with orx.Runtime() as runtime:  # no directory: the library searches for the artifacts
        authorization = runtime.authorize(AUTHORIZATION)
        sync = runtime.correct_sync(SYNC)
        cinema = runtime.decide_cinema_admission(CINEMA)
    print(f"authz isAllowed={int(authorization.is_allowed)} reason={authorization.reason} "
          f"policyVersion={authorization.policy_version} source={int(authorization.source)}")
    print(f"sync action={sync.action} rateX1000={sync.rate_x1000} "
          f"correctionMilliseconds={sync.correction_milliseconds} reason={sync.reason} source={int(sync.source)}")
    print(f"cinema route={cinema.route} sparseAnchorIntervalFrames={cinema.sparse_anchor_interval_frames} "
          f"safeBudgetTenthsMilliseconds={cinema.safe_budget_tenths_milliseconds} reason={cinema.reason} "
          f"source={int(cinema.source)}")
    print("digest", orx.domain_digest("ORX_DECISION_EVIDENCE_V1", '{"example":"ravo-orx","version":1}'))
    sources = {authorization.source, sync.source, cinema.source}
    return 0 if sources == {orx.DecisionSource.POLICY} else 1


if __name__ == "__main__":
    sys.exit(main())
