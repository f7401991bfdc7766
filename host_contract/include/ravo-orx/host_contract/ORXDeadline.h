#pragma once
// A deadline on a named clock: the time not to act after and the time it was read, both nonnegative
// nanoseconds. No order between them is required (a deadline may already have passed). ORXDeadline is
// the optional form a record carries.

#include <cstdint>
#include <string>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/host_contract/ORXHostOption.h>

namespace ravo::orx {

class ORXDeadlineValue {
 public:
  ORXDeadlineValue(std::string clockDomain, std::int64_t notAfterNanoseconds, std::int64_t nowNanoseconds);

  const std::string& clockDomain() const { return clockDomain_; }
  std::int64_t notAfterNanoseconds() const { return notAfterNanoseconds_; }
  std::int64_t nowNanoseconds() const { return nowNanoseconds_; }
  // {"clock_domain", "not_after_ns" (i64), "now_ns" (i64)}
  ORXCanonicalValue canonicalValue() const;

  friend bool operator==(const ORXDeadlineValue&, const ORXDeadlineValue&) = default;

 private:
  std::string clockDomain_;
  std::int64_t notAfterNanoseconds_;
  std::int64_t nowNanoseconds_;
};

template <>
struct ORXHostOptionTraits<ORXDeadlineValue> {
  static constexpr std::string_view typeText = "option<orx.host::Deadline>";
  static ORXCanonicalValue encode(const ORXDeadlineValue& value) { return value.canonicalValue(); }
};

using ORXDeadline = ORXHostOption<ORXDeadlineValue>;

}  // namespace ravo::orx
