#pragma once
// The generation a decision or effect belongs to: a qualified domain, a nonnegative epoch and a fence
// identity. Work from an older generation can be told apart and refused.

#include <cstdint>
#include <string>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/core/ORXDigest.h>

namespace ravo::orx {

class ORXGenerationFence {
 public:
  ORXGenerationFence(std::string domain, std::int64_t epoch, ORXDigest fenceID);

  const std::string& domain() const { return domain_; }
  std::int64_t epoch() const { return epoch_; }
  const ORXDigest& fenceID() const { return fenceID_; }
  // {"domain", "epoch" (i64), "fence_id"}
  ORXCanonicalValue canonicalValue() const;

  friend bool operator==(const ORXGenerationFence&, const ORXGenerationFence&) = default;

 private:
  std::string domain_;
  std::int64_t epoch_;
  ORXDigest fenceID_;
};

}  // namespace ravo::orx
