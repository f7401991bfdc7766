#include <ravo-orx/core/ORXSHA256.h>

#include <algorithm>

#include <ravo-orx/core/ORXSHA256Blocks.h>

namespace ravo::orx {

using namespace internal;

namespace {

constexpr std::array<std::uint32_t, 8> kInitialState = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                                        0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

std::span<const std::uint8_t> bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// The CPU check behind orxSHA256InstructionBlocks runs once; this only picks the fallback.
ORXSHA256CompressBlocks fastestCompression() {
  const ORXSHA256CompressBlocks instructions = orxSHA256InstructionBlocks();
  return instructions ? instructions : orxSHA256PortableBlocks;
}

}  // namespace

ORXSHA256::ORXSHA256(Engine engine)
    : compressBlocks_(engine == Engine::portable ? orxSHA256PortableBlocks : fastestCompression()) {
  reset();
}

bool ORXSHA256::cpuInstructionsAvailable() { return orxSHA256InstructionBlocks() != nullptr; }

void ORXSHA256::reset() {
  state_ = kInitialState;
  buffered_ = 0;
  length_ = 0;
}

void ORXSHA256::update(std::span<const std::uint8_t> data) {
  length_ += data.size();
  if (buffered_ > 0) {
    const std::size_t take = std::min(data.size(), buffer_.size() - buffered_);
    std::copy_n(data.begin(), take, buffer_.begin() + buffered_);
    buffered_ += take;
    data = data.subspan(take);
    if (buffered_ < buffer_.size()) return;
    compressBlocks_(state_.data(), buffer_.data(), 1);
    buffered_ = 0;
  }
  // Whole blocks are compressed straight from the caller's bytes, in one call, without copying.
  const std::size_t blocks = data.size() / buffer_.size();
  if (blocks > 0) compressBlocks_(state_.data(), data.data(), blocks);
  data = data.subspan(blocks * buffer_.size());
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

}  // namespace ravo::orx
