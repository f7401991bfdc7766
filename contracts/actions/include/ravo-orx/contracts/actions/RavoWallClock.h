#pragma once
// The wall clock that grant installation and confirmation expiry consult. Injected so that tests and
// hosts with their own notion of time can supply it.

#include <functional>

#include <ravo-orx/contracts/support/RavoTime.h>

namespace ravo::orx {

using RavoWallClock = std::function<RavoTimePoint()>;

inline RavoTimePoint ravoWallClockNow() {
  return std::chrono::time_point_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now());
}

}  // namespace ravo::orx
