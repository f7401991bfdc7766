#include <ravo-orx/contracts/support/RavoUUID.h>

#include <uuid/uuid.h>

#include <string_view>

namespace ravo::orx {

RavoUUID RavoUUID::random() {
  Bytes bytes;
  uuid_generate_random(bytes.data());
  return RavoUUID(bytes);
}

std::optional<RavoUUID> RavoUUID::parse(std::string_view text) {
  if (text.size() != 36) return std::nullopt;
  Bytes bytes{};
  size_t byte = 0;
  for (size_t i = 0; i < text.size();) {
    if (i == 8 || i == 13 || i == 18 || i == 23) {
      if (text[i] != '-') return std::nullopt;
      ++i;
      continue;
    }
    auto nibble = [](char c) -> int {
      if (c >= '0' && c <= '9') return c - '0';
      if (c >= 'A' && c <= 'F') return c - 'A' + 10;
      if (c >= 'a' && c <= 'f') return c - 'a' + 10;
      return -1;
    };
    int high = nibble(text[i]);
    int low = nibble(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes[byte++] = static_cast<std::uint8_t>(high << 4 | low);
    i += 2;
  }
  return RavoUUID(bytes);
}

std::string RavoUUID::uuidString() const {
  char text[37];
  uuid_unparse_upper(bytes_.data(), text);
  return std::string(text, 36);
}

}  // namespace ravo::orx

size_t std::hash<ravo::orx::RavoUUID>::operator()(const ravo::orx::RavoUUID& uuid) const noexcept {
  return std::hash<std::string_view>{}(
      std::string_view(reinterpret_cast<const char*>(uuid.bytes().data()), uuid.bytes().size()));
}
