#pragma once
// Host enumerations with 32-bit raw values that name discriminants of a host closed enum
// ("orx.host::DecisionOutcome"). Each declares, by specialising ORXHostEnumTraits<E>:
//   static constexpr std::string_view typeID;          its closed enum identity
//   static constexpr bool isErrorEnum;                 whether the registry lists it as an error enum
//   static constexpr std::int32_t caseCount;           raw values are 0 ..< caseCount

#include <cstdint>
#include <optional>
#include <string>

#include <ravo-orx/core/ORXEnumValue.h>

namespace ravo::orx {

template <class E>
struct ORXHostEnumTraits;

// The checked enum value of a case, built against the host registry.
template <class E>
ORXEnumValue orxHostEnumValue(E value) {
  using Traits = ORXHostEnumTraits<E>;
  return ORXEnumValue(static_cast<std::int32_t>(value), std::string(Traits::typeID), ORXClosedEnumContext::host(),
                      Traits::typeID, Traits::isErrorEnum);
}

template <class E>
std::optional<E> orxHostEnumFromDiscriminant(std::int32_t discriminant) {
  if (discriminant < 0 || discriminant >= ORXHostEnumTraits<E>::caseCount) return std::nullopt;
  return static_cast<E>(discriminant);
}

}  // namespace ravo::orx
