#pragma once
// SHA-256 (FIPS 180-4), computed in the core over bytes. The one hash of the system: artifact files,
// canonical records and scenario graphs all go through it.
//
// One-shot: ORXSHA256::hash(bytes) or ORXSHA256::hex(bytes). Streaming: construct, update() any
// number of times, then finalize(), which also resets the hasher for a new message.
//
// Whole 64-byte blocks are compressed by the CPU's SHA instructions when it has them (SHA-NI on
// x86-64, found with cpuid at run time; the ARMv8 SHA2 extension when the build targets it) and by the
// portable code otherwise. The portable code is also the reference the instructions are tested
// against; a hasher constructed with Engine::portable uses it whatever the CPU offers.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

class RAVO_ORX_API ORXSHA256 {
 public:
  using Digest = std::array<std::uint8_t, 32>;
  enum class Engine { portable, cpuInstructions };

  // Engine::cpuInstructions falls back to the portable code on a CPU without them.
  explicit ORXSHA256(Engine engine = Engine::cpuInstructions);

  static bool cpuInstructionsAvailable();

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
  using CompressBlocks = void (*)(std::uint32_t* state, const std::uint8_t* blocks, std::size_t count);

  void reset();

  CompressBlocks compressBlocks_;
  std::array<std::uint32_t, 8> state_;
  std::array<std::uint8_t, 64> buffer_;
  std::size_t buffered_;
  std::uint64_t length_;  // bytes hashed so far
};

}  // namespace ravo::orx
