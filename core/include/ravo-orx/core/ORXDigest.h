#pragma once
// A SHA-256 digest in its text form, "sha256:" and 64 lowercase hex digits. Equality, hashing and
// ordering are those of the text (lists of digests sort by it).

#include <compare>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/core/ORXDigestDomain.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

class RAVO_ORX_API ORXDigest {
 public:
  // Throws ORXError::invalid "orx.v051.digest_invalid" for any other text.
  explicit ORXDigest(std::string text);

  // The untagged digest of arbitrary bytes.
  static ORXDigest raw(std::span<const std::uint8_t> data);
  static ORXDigest raw(std::string_view data);
  // The untagged digest of bytes hashed elsewhere, e.g. streamed through an ORXSHA256.
  static ORXDigest ofHash(const ORXSHA256::Digest& hash);
  // SHA-256 over the tag's UTF-8 bytes, one zero byte and the value's canonical bytes. The tag is
  // taken as given; records pass their own ORXDigestDomain.
  static ORXDigest domain(std::string_view tag, const ORXCanonicalValue& value);
  static ORXDigest domain(ORXDigestDomain domain, const ORXCanonicalValue& value);
  // The same digest from a value's canonical text, for callers that hold the text already (a log's
  // lines); `canonicalText` must be canonical, or the digest names no value.
  static ORXDigest domainOfCanonicalText(std::string_view tag, std::string_view canonicalText);

  const std::string& value() const { return value_; }
  const std::string& description() const { return value_; }

  friend auto operator<=>(const ORXDigest&, const ORXDigest&) = default;

 private:
  struct Verified {};
  ORXDigest(Verified, std::string text) : value_(std::move(text)) {}

  std::string value_;
};

}  // namespace ravo::orx

template <>
struct std::hash<ravo::orx::ORXDigest> {
  std::size_t operator()(const ravo::orx::ORXDigest& digest) const noexcept {
    return std::hash<std::string>{}(digest.value());
  }
};
