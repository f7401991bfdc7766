#pragma once
// The ABI lanes a policy package may be built for. Comparison is exact: "0.10.0" and "0.9" are not
// admitted.

#include <string_view>

namespace ravo::orx {

inline bool orxIsAdmittedABILane(std::string_view lane) { return lane == "0.10" || lane == "0.11" || lane == "0.12"; }

}  // namespace ravo::orx
