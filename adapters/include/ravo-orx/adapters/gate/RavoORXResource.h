#pragma once
// The kind of thing an action proposal touches, as the gate reports it to policy. The raw values are
// shared with policy modules.

#include <cstdint>
#include <optional>

namespace ravo::orx {

enum class RavoORXResource : std::int32_t {
  userInterface = 0,
  playback = 1,
  localLibrary = 2,
  appleMusic = 3,
  persistentLibrary = 4,
  assistant = 5,
};

// Nothing outside 0-5.
constexpr std::optional<RavoORXResource> ravoORXResource(std::int32_t rawValue) {
  if (rawValue < 0 || rawValue > 5) return std::nullopt;
  return static_cast<RavoORXResource>(rawValue);
}

}  // namespace ravo::orx
