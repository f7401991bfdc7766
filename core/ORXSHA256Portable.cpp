// The portable SHA-256 compression: plain 32-bit arithmetic, any CPU. The reference for the others.

#include <bit>

#include <ravo-orx/core/ORXSHA256Blocks.h>

namespace ravo::orx::internal {

namespace {

std::uint32_t loadBigEndian(const std::uint8_t* p) {
  return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 | p[3];
}

void compress(std::uint32_t* state, const std::uint8_t* block) {
  std::array<std::uint32_t, 64> w;
  for (int t = 0; t < 16; ++t) w[t] = loadBigEndian(block + 4 * t);
  for (int t = 16; t < 64; ++t) {
    const std::uint32_t s0 = std::rotr(w[t - 15], 7) ^ std::rotr(w[t - 15], 18) ^ (w[t - 15] >> 3);
    const std::uint32_t s1 = std::rotr(w[t - 2], 17) ^ std::rotr(w[t - 2], 19) ^ (w[t - 2] >> 10);
    w[t] = w[t - 16] + s0 + w[t - 7] + s1;
  }
  std::uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
  std::uint32_t e = state[4], f = state[5], g = state[6], h = state[7];
  for (int t = 0; t < 64; ++t) {
    const std::uint32_t s1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
    const std::uint32_t choose = (e & f) ^ (~e & g);
    const std::uint32_t t1 = h + s1 + choose + kORXSHA256RoundConstants[t] + w[t];
    const std::uint32_t s0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
    const std::uint32_t majority = (a & b) ^ (a & c) ^ (b & c);
    const std::uint32_t t2 = s0 + majority;
    h = g;
    g = f;
    f = e;
    e = d + t1;
    d = c;
    c = b;
    b = a;
    a = t1 + t2;
  }
  state[0] += a;
  state[1] += b;
  state[2] += c;
  state[3] += d;
  state[4] += e;
  state[5] += f;
  state[6] += g;
  state[7] += h;
}

}  // namespace

void orxSHA256PortableBlocks(std::uint32_t* state, const std::uint8_t* blocks, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) compress(state, blocks + 64 * i);
}

}  // namespace ravo::orx::internal
