#pragma once
// Node, draft and revision ids for tests: a UUID that is the number n, so that ids sort like numbers.

#include <cstdint>

#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

inline RavoUUID ravoTestUUID(int n) {
  RavoUUID::Bytes bytes{};
  bytes[15] = static_cast<std::uint8_t>(n);
  bytes[14] = static_cast<std::uint8_t>(n >> 8);
  return RavoUUID(bytes);
}

}  // namespace ravo::orx
