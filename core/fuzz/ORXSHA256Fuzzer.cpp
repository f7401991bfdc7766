// Hashes arbitrary bytes with both SHA-256 engines, at once and streamed in pieces whose sizes follow
// from the input's first byte; every way must give the portable engine's one-shot digest.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include <ravo-orx/core/ORXSHA256.h>

namespace ravo::orx {

namespace {

ORXSHA256::Digest streamed(ORXSHA256::Engine engine, std::span<const std::uint8_t> message, std::uint8_t seed) {
  ORXSHA256 hasher(engine);
  std::uint32_t state = seed;
  while (!message.empty()) {
    state = state * 1103515245u + 12345u;
    const std::size_t piece = std::min<std::size_t>(message.size(), (state >> 16) % 150);
    hasher.update(message.first(piece));
    message = message.subspan(piece);
  }
  return hasher.finalize();
}

ORXSHA256::Digest atOnce(ORXSHA256::Engine engine, std::span<const std::uint8_t> message) {
  ORXSHA256 hasher(engine);
  hasher.update(message);
  return hasher.finalize();
}

}  // namespace

}  // namespace ravo::orx

using namespace ravo::orx;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::uint8_t seed = data[0];
  const std::span<const std::uint8_t> message(data + 1, size - 1);
  using Engine = ORXSHA256::Engine;
  const ORXSHA256::Digest reference = atOnce(Engine::portable, message);
  if (atOnce(Engine::cpuInstructions, message) != reference || streamed(Engine::portable, message, seed) != reference ||
      streamed(Engine::cpuInstructions, message, seed) != reference) {
    std::abort();
  }
  return 0;
}
