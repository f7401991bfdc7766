#include <ravo-orx/core/ORXDigest.h>

#include <algorithm>

#include <ravo-orx/core/ORXCanonicalTextOutput.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXSHA256.h>

namespace ravo::orx {

using namespace internal;

namespace {

constexpr std::string_view kPrefix = "sha256:";

}  // namespace

ORXDigest::ORXDigest(std::string text) : value_(std::move(text)) {
  const bool valid = value_.size() == kPrefix.size() + 64 && value_.starts_with(kPrefix) &&
                     std::all_of(value_.begin() + kPrefix.size(), value_.end(),
                                 [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
  if (!valid) {
    throw ORXError::invalid("orx.v051.digest_invalid", "digest must be sha256: followed by 64 lowercase hex digits");
  }
}

ORXDigest ORXDigest::raw(std::span<const std::uint8_t> data) { return ofHash(ORXSHA256::hash(data)); }

ORXDigest ORXDigest::raw(std::string_view data) { return ofHash(ORXSHA256::hash(data)); }

ORXDigest ORXDigest::ofHash(const ORXSHA256::Digest& hash) {
  return ORXDigest(Verified{}, std::string(kPrefix) + ORXSHA256::toHex(hash));
}

ORXDigest ORXDigest::domain(std::string_view tag, const ORXCanonicalValue& value) {
  // The canonical text reaches the hash in chunks: a record is hashed without its text ever held whole.
  ORXSHA256 hash;
  ORXCanonicalTextOutput::Buffered out([&hash](const char* data, std::size_t size) { hash.update(std::string_view(data, size)); });
  out.append(tag.data(), tag.size());
  out.push_back('\0');
  ORXCanonicalTextOutput::appendValue(out, value);
  out.finish();
  return ofHash(hash.finalize());
}

ORXDigest ORXDigest::domainOfCanonicalText(std::string_view tag, std::string_view canonicalText) {
  ORXSHA256 hash;
  hash.update(tag);
  hash.update(std::string_view("\0", 1));
  hash.update(canonicalText);
  return ofHash(hash.finalize());
}

ORXDigest ORXDigest::domain(ORXDigestDomain domain, const ORXCanonicalValue& value) {
  return ORXDigest::domain(orxRawValue(domain), value);
}

}  // namespace ravo::orx
