#include "runtime/engine/OrxDeclaredCountCheck.h"

namespace {

constexpr std::uint8_t kDataCountSection = 12;
constexpr std::size_t kHeaderSize = 8;  // magic and version

// Reads an unsigned LEB128 of at most 32 bits; nothing when it is truncated or too long.
std::optional<std::uint32_t> readVarU32(const std::uint8_t* bytes, std::size_t size, std::size_t& offset) {
  std::uint64_t value = 0;
  for (int shift = 0; shift < 35 && offset < size; shift += 7) {
    const std::uint8_t byte = bytes[offset++];
    value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
    if ((byte & 0x80) == 0) {
      if (value > UINT32_MAX) return std::nullopt;
      return static_cast<std::uint32_t>(value);
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> findImplausibleDataCount(const std::uint8_t* bytes, std::size_t size) {
  std::size_t offset = kHeaderSize;
  while (offset < size) {
    const std::uint8_t id = bytes[offset++];
    const auto sectionSize = readVarU32(bytes, size, offset);
    if (!sectionSize || *sectionSize > size - offset) return std::nullopt;
    if (id == kDataCountSection) {
      std::size_t countOffset = offset;
      const auto count = readVarU32(bytes, size, countOffset);
      if (count && *count > size) {
        return "data count " + std::to_string(*count) + " exceeds what a module of " + std::to_string(size) +
               " bytes can hold";
      }
    }
    offset += *sectionSize;
  }
  return std::nullopt;
}
