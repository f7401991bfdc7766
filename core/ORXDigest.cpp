#include "core/ORXDigest.h"

#include <algorithm>
#include <cstring>

#include "core/ORXCanonicalTextOutput.h"
#include "core/ORXError.h"
#include "core/ORXSHA256.h"

namespace {

constexpr std::string_view kPrefix = "sha256:";

std::string prefixed(const ORXSHA256::Digest& hash) { return std::string(kPrefix) + ORXSHA256::toHex(hash); }

// Feeds canonical text to the hash through a small buffer: a record is hashed without its text ever
// being held whole.
class HashingOutput {
 public:
  void push_back(char c) {
    if (used_ == sizeof buffer_) flush();
    buffer_[used_++] = c;
  }
  void append(const char* data, std::size_t size) {
    if (size > sizeof buffer_ - used_) {
      flush();
      if (size >= sizeof buffer_) return hash_.update(std::string_view(data, size));
    }
    std::memcpy(buffer_ + used_, data, size);
    used_ += size;
  }
  ORXSHA256::Digest finalize() {
    flush();
    return hash_.finalize();
  }

 private:
  void flush() {
    hash_.update(std::string_view(buffer_, used_));
    used_ = 0;
  }

  ORXSHA256 hash_;
  char buffer_[1024];
  std::size_t used_ = 0;
};

}  // namespace

ORXDigest::ORXDigest(std::string text) : value_(std::move(text)) {
  const bool valid = value_.size() == kPrefix.size() + 64 && value_.starts_with(kPrefix) &&
                     std::all_of(value_.begin() + kPrefix.size(), value_.end(),
                                 [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
  if (!valid) {
    throw ORXError::invalid("orx.v051.digest_invalid", "digest must be sha256: followed by 64 lowercase hex digits");
  }
}

ORXDigest ORXDigest::raw(std::span<const std::uint8_t> data) { return ORXDigest(Verified{}, prefixed(ORXSHA256::hash(data))); }

ORXDigest ORXDigest::raw(std::string_view data) { return ORXDigest(Verified{}, prefixed(ORXSHA256::hash(data))); }

ORXDigest ORXDigest::domain(std::string_view tag, const ORXCanonicalValue& value) {
  HashingOutput out;
  out.append(tag.data(), tag.size());
  out.push_back('\0');
  ORXCanonicalTextOutput::appendValue(out, value);
  return ORXDigest(Verified{}, prefixed(out.finalize()));
}

ORXDigest ORXDigest::domain(ORXDigestDomain domain, const ORXCanonicalValue& value) {
  return ORXDigest::domain(orxRawValue(domain), value);
}
