#pragma once
// A UUID value. Its text is the 36-character 8-4-4-4-12 form in uppercase; ordering by that text
// equals ordering by the bytes, so either may be used to sort.

#include <array>
#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ravo::orx {

class RavoUUID {
 public:
  using Bytes = std::array<std::uint8_t, 16>;

  constexpr RavoUUID() = default;  // the nil UUID
  explicit constexpr RavoUUID(const Bytes& bytes) : bytes_(bytes) {}

  static RavoUUID random();
  // Accepts upper- or lowercase hex in the 8-4-4-4-12 form; anything else yields nothing.
  static std::optional<RavoUUID> parse(std::string_view text);

  std::string uuidString() const;
  const Bytes& bytes() const { return bytes_; }

  friend auto operator<=>(const RavoUUID&, const RavoUUID&) = default;

 private:
  Bytes bytes_{};
};

}  // namespace ravo::orx

template <>
struct std::hash<ravo::orx::RavoUUID> {
  size_t operator()(const ravo::orx::RavoUUID& uuid) const noexcept;
};
