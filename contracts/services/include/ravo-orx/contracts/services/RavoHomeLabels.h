#pragma once
// The closed label sets of home control with their JSON texts, cases in declaration order.

#include <array>
#include <string_view>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

enum class RavoHomeInventoryDeviceKind { light, outlet, thermostat, unknown };

enum class RavoHomeInventoryCapability { power, brightness, color, colorTemperature, targetTemperature };

enum class RavoHomeCommandKind { power, brightness, colorTemperature, targetTemperature };

template <>
struct ORXRawValueTable<RavoHomeInventoryDeviceKind> {
  using E = RavoHomeInventoryDeviceKind;
  static constexpr std::array<std::pair<E, std::string_view>, 4> entries{
      {{E::light, "light"}, {E::outlet, "outlet"}, {E::thermostat, "thermostat"}, {E::unknown, "unknown"}}};
};

template <>
struct ORXRawValueTable<RavoHomeInventoryCapability> {
  using E = RavoHomeInventoryCapability;
  static constexpr std::array<std::pair<E, std::string_view>, 5> entries{{{E::power, "power"},
                                                                          {E::brightness, "brightness"},
                                                                          {E::color, "color"},
                                                                          {E::colorTemperature, "colorTemperature"},
                                                                          {E::targetTemperature, "targetTemperature"}}};
};

template <>
struct ORXRawValueTable<RavoHomeCommandKind> {
  using E = RavoHomeCommandKind;
  static constexpr std::array<std::pair<E, std::string_view>, 4> entries{{{E::power, "power"},
                                                                          {E::brightness, "brightness"},
                                                                          {E::colorTemperature, "colorTemperature"},
                                                                          {E::targetTemperature, "targetTemperature"}}};
};

}  // namespace ravo::orx
