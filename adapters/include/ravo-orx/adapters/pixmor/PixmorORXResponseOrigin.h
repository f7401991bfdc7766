#pragma once
// Who produced a Pixmor editing proposal.

#include <array>
#include <string_view>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

enum class PixmorORXResponseOrigin {
  orx,            // answered by the Orx service
  localFallback,  // built on the device from the request alone
};

template <>
struct ORXRawValueTable<PixmorORXResponseOrigin> {
  static constexpr std::array<std::pair<PixmorORXResponseOrigin, std::string_view>, 2> entries{{
      {PixmorORXResponseOrigin::orx, "orx"},
      {PixmorORXResponseOrigin::localFallback, "localFallback"},
  }};
};

}  // namespace ravo::orx
