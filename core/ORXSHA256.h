#pragma once
// SHA-256 (FIPS 180-4), computed in the core over bytes. The one hash of the system: artifact files,
// canonical records and scenario graphs all go through it.
//
// One-shot: ORXSHA256::hash(bytes) or ORXSHA256::hex(bytes). Streaming: construct, update() any
// number of times, then finalize(), which also resets the hasher for a new message.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

class ORXSHA256 {
 public:
  using Digest = std::array<std::uint8_t, 32>;

  ORXSHA256() { reset(); }

  void update(std::span<const std::uint8_t> data);
  void update(std::string_view data);
  Digest finalize();

  static Digest hash(std::span<const std::uint8_t> data);
  static Digest hash(std::string_view data);
  // 64 lowercase hex digits of the hash.
  static std::string hex(std::span<const std::uint8_t> data);
  static std::string hex(std::string_view data);
  // Two lowercase hex digits per byte, no separator.
  static std::string toHex(const Digest& digest);

 private:
  void reset();
  void compress(const std::uint8_t* block);

  std::array<std::uint32_t, 8> state_;
  std::array<std::uint8_t, 64> buffer_;
  std::size_t buffered_;
  std::uint64_t length_;  // bytes hashed so far
};
