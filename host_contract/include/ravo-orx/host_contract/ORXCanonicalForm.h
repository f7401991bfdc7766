#pragma once
// The building blocks of host-contract canonical values: 64-bit quantities as `i64` typed values,
// digests as their text, lists as arrays of their members' canonical values, and the option form.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/core/ORXDigest.h>

namespace ravo::orx {

namespace ORXCanonicalForm {

ORXCanonicalValue text(std::string_view value);
// {"decimal": text, "type": "i64"}
ORXCanonicalValue i64(std::int64_t value);
ORXCanonicalValue digest(const ORXDigest& value);
// An array of strings, in their stored order.
ORXCanonicalValue texts(const std::vector<std::string>& values);
// {"tag": "none", "type": typeText} or {"tag": "some", "type": typeText, "value": value}
ORXCanonicalValue option(std::string_view typeText, std::optional<ORXCanonicalValue> value);

// An array of the canonical values of `items`, in their stored order.
template <class Range>
ORXCanonicalValue array(const Range& items) {
  ORXCanonicalValue::Array elements;
  elements.reserve(items.size());
  for (const auto& item : items) elements.push_back(item.canonicalValue());
  return ORXCanonicalValue::array(std::move(elements));
}

}  // namespace ORXCanonicalForm

}  // namespace ravo::orx
