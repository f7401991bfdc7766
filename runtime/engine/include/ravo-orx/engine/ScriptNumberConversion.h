#pragma once
// The numeric conversion a script engine applies when a module's values cross into script numbers:
// ToInt32 (NaN and infinities give 0; otherwise truncate toward zero and wrap modulo 2^32).

#include <cmath>
#include <cstdint>

namespace ravo::orx::internal {

inline std::int32_t scriptToInt32(double value) {
  if (!std::isfinite(value)) return 0;
  double truncated = std::trunc(value);
  double wrapped = std::fmod(truncated, 4294967296.0);
  if (wrapped < 0) wrapped += 4294967296.0;
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(wrapped));
}

}  // namespace ravo::orx::internal
