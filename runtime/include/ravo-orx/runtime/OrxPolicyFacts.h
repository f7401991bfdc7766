#pragma once
// The facts each decision hands to its policy module. Field order is the order of `decide`'s arguments.

#include <array>
#include <cstdint>

namespace ravo::orx {

struct AuthorizationFacts {
  std::int32_t role;
  std::int32_t command;
  std::int32_t grantFlags;
  std::int32_t tokenAgeMilliseconds;
  std::int32_t tokenTTLMilliseconds;
  std::int32_t rateUsed;
  std::int32_t rateLimit;
  std::int32_t controlMode;

  std::array<std::int32_t, 8> arguments() const {
    return {role, command, grantFlags, tokenAgeMilliseconds, tokenTTLMilliseconds, rateUsed, rateLimit, controlMode};
  }
  friend bool operator==(const AuthorizationFacts&, const AuthorizationFacts&) = default;
};

struct SyncFacts {
  std::int32_t driftMilliseconds;
  std::int32_t roundTripMilliseconds;
  std::int32_t jitterMilliseconds;
  std::int32_t bufferAheadMilliseconds;
  std::int32_t rateX100;
  std::int32_t stallCount;
  std::int32_t syncAgeMilliseconds;
  std::int32_t toleranceMilliseconds;

  std::array<std::int32_t, 8> arguments() const {
    return {driftMilliseconds, roundTripMilliseconds, jitterMilliseconds, bufferAheadMilliseconds,
            rateX100,          stallCount,            syncAgeMilliseconds, toleranceMilliseconds};
  }
  friend bool operator==(const SyncFacts&, const SyncFacts&) = default;
};

struct CinemaAdmissionFacts {
  std::int32_t sourceFPSX100;
  std::int32_t targetFPSX100;
  std::int32_t sourceReservoirMilliseconds;
  std::int32_t headroom;
  std::int32_t thermalState;
  std::int32_t memoryPressure;
  std::int32_t bridgeTenthsMilliseconds;
  std::int32_t temporalTenthsMilliseconds;
  std::int32_t interpolationTenthsMilliseconds;
  std::int32_t metalFXTenthsMilliseconds;
  std::int32_t finalDetailTenthsMilliseconds;
  std::int32_t modelTenthsMilliseconds;
  std::int32_t modelSampleCount;

  std::array<std::int32_t, 13> arguments() const {
    return {sourceFPSX100,
            targetFPSX100,
            sourceReservoirMilliseconds,
            headroom,
            thermalState,
            memoryPressure,
            bridgeTenthsMilliseconds,
            temporalTenthsMilliseconds,
            interpolationTenthsMilliseconds,
            metalFXTenthsMilliseconds,
            finalDetailTenthsMilliseconds,
            modelTenthsMilliseconds,
            modelSampleCount};
  }
  friend bool operator==(const CinemaAdmissionFacts&, const CinemaAdmissionFacts&) = default;
};

}  // namespace ravo::orx
