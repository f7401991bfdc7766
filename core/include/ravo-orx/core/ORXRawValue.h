#pragma once
// The one mechanism that gives a closed set's members their texts, for every enumeration of the system:
// the sets exchanged as JSON (host-contract enums, application labels), whose text is their raw value,
// and the enumerations exchanged with policy modules, whose text is their case name (their raw values
// are their signed 32-bit values). A set declares its texts once, by specialising ORXRawValueTable<E>
// with
//   static constexpr std::array<std::pair<E, std::string_view>, N> entries;
// and gains orxRawValue(e) and orxFromRawValue<E>(text), which accepts exactly the declared texts.

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace ravo::orx {

template <class E>
struct ORXRawValueTable;

template <class E>
concept ORXRawValued = requires { ORXRawValueTable<E>::entries; };

template <ORXRawValued E>
constexpr std::string_view orxRawValue(E value) {
  for (const auto& [member, text] : ORXRawValueTable<E>::entries) {
    if (member == value) return text;
  }
  return {};
}

template <ORXRawValued E>
constexpr std::optional<E> orxFromRawValue(std::string_view text) {
  for (const auto& [member, memberText] : ORXRawValueTable<E>::entries) {
    if (memberText == text) return member;
  }
  return std::nullopt;
}

}  // namespace ravo::orx
