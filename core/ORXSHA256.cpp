#include "core/ORXSHA256.h"

#include <algorithm>
#include <bit>

namespace {

constexpr std::array<std::uint32_t, 64> kRoundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

constexpr std::array<std::uint32_t, 8> kInitialState = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                                        0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

std::uint32_t loadBigEndian(const std::uint8_t* p) {
  return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 | p[3];
}

std::span<const std::uint8_t> bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

void ORXSHA256::reset() {
  state_ = kInitialState;
  buffered_ = 0;
  length_ = 0;
}

void ORXSHA256::compress(const std::uint8_t* block) {
  std::array<std::uint32_t, 64> w;
  for (int t = 0; t < 16; ++t) w[t] = loadBigEndian(block + 4 * t);
  for (int t = 16; t < 64; ++t) {
    const std::uint32_t s0 = std::rotr(w[t - 15], 7) ^ std::rotr(w[t - 15], 18) ^ (w[t - 15] >> 3);
    const std::uint32_t s1 = std::rotr(w[t - 2], 17) ^ std::rotr(w[t - 2], 19) ^ (w[t - 2] >> 10);
    w[t] = w[t - 16] + s0 + w[t - 7] + s1;
  }
  auto [a, b, c, d, e, f, g, h] = state_;
  for (int t = 0; t < 64; ++t) {
    const std::uint32_t s1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
    const std::uint32_t choose = (e & f) ^ (~e & g);
    const std::uint32_t t1 = h + s1 + choose + kRoundConstants[t] + w[t];
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
  state_[0] += a;
  state_[1] += b;
  state_[2] += c;
  state_[3] += d;
  state_[4] += e;
  state_[5] += f;
  state_[6] += g;
  state_[7] += h;
}

void ORXSHA256::update(std::span<const std::uint8_t> data) {
  length_ += data.size();
  if (buffered_ > 0) {
    const std::size_t take = std::min(data.size(), buffer_.size() - buffered_);
    std::copy_n(data.begin(), take, buffer_.begin() + buffered_);
    buffered_ += take;
    data = data.subspan(take);
    if (buffered_ < buffer_.size()) return;
    compress(buffer_.data());
    buffered_ = 0;
  }
  // Whole blocks are compressed straight from the caller's bytes, without copying.
  while (data.size() >= buffer_.size()) {
    compress(data.data());
    data = data.subspan(buffer_.size());
  }
  std::copy(data.begin(), data.end(), buffer_.begin());
  buffered_ = data.size();
}

void ORXSHA256::update(std::string_view data) { update(bytesOf(data)); }

ORXSHA256::Digest ORXSHA256::finalize() {
  const std::uint64_t bitLength = length_ * 8;
  // Padding: 0x80, zeros up to 56 mod 64, then the 64-bit big-endian bit length.
  std::array<std::uint8_t, 72> padding{};
  padding[0] = 0x80;
  const std::size_t zeros = (buffered_ < 56 ? 56 : 120) - buffered_;
  for (int i = 0; i < 8; ++i) padding[zeros + i] = static_cast<std::uint8_t>(bitLength >> (56 - 8 * i));
  update(std::span(padding.data(), zeros + 8));

  Digest digest;
  for (std::size_t i = 0; i < state_.size(); ++i) {
    for (int j = 0; j < 4; ++j) digest[4 * i + j] = static_cast<std::uint8_t>(state_[i] >> (24 - 8 * j));
  }
  reset();
  return digest;
}

ORXSHA256::Digest ORXSHA256::hash(std::span<const std::uint8_t> data) {
  ORXSHA256 hasher;
  hasher.update(data);
  return hasher.finalize();
}

ORXSHA256::Digest ORXSHA256::hash(std::string_view data) { return hash(bytesOf(data)); }

std::string ORXSHA256::hex(std::span<const std::uint8_t> data) { return toHex(hash(data)); }

std::string ORXSHA256::hex(std::string_view data) { return toHex(hash(data)); }

std::string ORXSHA256::toHex(const Digest& digest) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(2 * digest.size());
  for (std::uint8_t byte : digest) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 0x0f]);
  }
  return text;
}
