/* orx_policy.h: what a policy module written in C sees of its host. `ravo-orx policy build` and
 * `policy test` compile a policy's C source with this header on the include path:
 *
 *   clang --target=wasm32 -std=c11 -O2 -ffreestanding -nostdlib -g0 (then wasm-ld, symbols stripped)
 *
 * Freestanding: no C library, only the compiler's own headers (stdint.h, stdbool.h, stddef.h). A module
 * imports `output.emit` and exports `decide`, whose parameters are the decision kind's facts in order
 * and whose result is the decision's result. It reports the decision by calling orx_emit: the kind's
 * tag, the result, then the kind's three further values. Only the last call of a decision counts. */
#ifndef ORX_POLICY_H
#define ORX_POLICY_H

#include <stdint.h>

/* Reports the decision; always returns 0. */
__attribute__((import_module("output"), import_name("emit"))) int32_t orx_emit(int32_t tag, int32_t result,
                                                                               int32_t first, int32_t second,
                                                                               int32_t third);

/* The tags of the three decision kinds. */
#define ORX_AUTHZ_TAG 5201
#define ORX_SYNC_TAG 5301
#define ORX_CINEMA_TAG 5401

/* Opens the definition of `decide` for a kind, with its facts as parameters in argument order:
 *   ORX_DECIDE_AUTHZ { ... return allowed; }
 * authz emits [5201, allowed 0/1, command, reason, policyVersion]. */
#define ORX_DECIDE_AUTHZ                                                                               \
  __attribute__((export_name("decide"))) int32_t decide(                                              \
      int32_t role, int32_t command, int32_t grantFlags, int32_t tokenAgeMilliseconds,                 \
      int32_t tokenTTLMilliseconds, int32_t rateUsed, int32_t rateLimit, int32_t controlMode)
/* sync emits [5301, action, rateX1000, correctionMilliseconds, reason]. */
#define ORX_DECIDE_SYNC                                                                                \
  __attribute__((export_name("decide"))) int32_t decide(                                              \
      int32_t driftMilliseconds, int32_t roundTripMilliseconds, int32_t jitterMilliseconds,            \
      int32_t bufferAheadMilliseconds, int32_t rateX100, int32_t stallCount, int32_t syncAgeMilliseconds, \
      int32_t toleranceMilliseconds)
/* cinema emits [5401, route, sparseAnchorIntervalFrames, safeBudgetTenthsMilliseconds, reason]. */
#define ORX_DECIDE_CINEMA                                                                              \
  __attribute__((export_name("decide"))) int32_t decide(                                              \
      int32_t sourceFPSX100, int32_t targetFPSX100, int32_t sourceReservoirMilliseconds, int32_t headroom, \
      int32_t thermalState, int32_t memoryPressure, int32_t bridgeTenthsMilliseconds,                  \
      int32_t temporalTenthsMilliseconds, int32_t interpolationTenthsMilliseconds,                     \
      int32_t metalFXTenthsMilliseconds, int32_t finalDetailTenthsMilliseconds,                        \
      int32_t modelTenthsMilliseconds, int32_t modelSampleCount)

#endif
