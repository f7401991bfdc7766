#pragma once
// JSON forms of the application records.
//
// Records own their form: `RavoJSON toJSON() const` writes the fields as keys in declaration order,
// leaving absent optionals out; `static T fromJSON(const RavoJSON&)` reads them back and throws
// RavoJSONDecodingError on a missing key, a wrong type, an unknown label, a non-finite or
// out-of-range number or a malformed UUID or time. RavoJSONCodec<T> maps the leaf types; labels
// (closed sets with text raw values) declare their texts once in ORXRawValueTable<E>.

#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <ravo-orx/core/ORXRawValue.h>
#include <ravo-orx/contracts/support/RavoTime.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

using RavoJSON = nlohmann::ordered_json;

class RavoJSONDecodingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Specialise with `static constexpr std::array<std::pair<E, std::string_view>, N> entries`.
namespace ravo_json_detail {
[[noreturn]] void fail(std::string_view context, std::string_view problem);
std::string describe(const RavoJSON& value);  // "a string", "an array", ... for error texts
}  // namespace ravo_json_detail

template <class T>
struct RavoJSONCodec {
  static T decode(const RavoJSON& json, std::string_view context)
    requires requires { T::fromJSON(json); }
  {
    if (!json.is_object()) ravo_json_detail::fail(context, "expected an object, found " + ravo_json_detail::describe(json));
    return T::fromJSON(json);
  }
  static RavoJSON encode(const T& value) { return value.toJSON(); }
};

template <>
struct RavoJSONCodec<std::string> {
  static std::string decode(const RavoJSON& json, std::string_view context);
  static RavoJSON encode(const std::string& value) { return value; }
};

template <>
struct RavoJSONCodec<bool> {
  static bool decode(const RavoJSON& json, std::string_view context);
  static RavoJSON encode(bool value) { return value; }
};

template <>
struct RavoJSONCodec<double> {
  static double decode(const RavoJSON& json, std::string_view context);  // finite numbers only
  static RavoJSON encode(double value) { return value; }
};

template <std::integral I>
  requires(!std::same_as<I, bool>)
struct RavoJSONCodec<I> {
  static I decode(const RavoJSON& json, std::string_view context) {
    // Integers only: 2.5 or 1e3 written as a float are refused rather than silently truncated.
    if (json.is_number_unsigned()) {
      auto value = json.get<std::uint64_t>();
      if (value > static_cast<std::uint64_t>(std::numeric_limits<I>::max())) {
        ravo_json_detail::fail(context, "integer out of range");
      }
      return static_cast<I>(value);
    }
    if (json.is_number_integer()) {
      auto value = json.get<std::int64_t>();
      if (value < static_cast<std::int64_t>(std::numeric_limits<I>::min()) ||
          (value > 0 && static_cast<std::uint64_t>(value) > static_cast<std::uint64_t>(std::numeric_limits<I>::max()))) {
        ravo_json_detail::fail(context, "integer out of range");
      }
      return static_cast<I>(value);
    }
    ravo_json_detail::fail(context, "expected an integer, found " + ravo_json_detail::describe(json));
  }
  static RavoJSON encode(I value) { return value; }
};

template <>
struct RavoJSONCodec<RavoUUID> {
  static RavoUUID decode(const RavoJSON& json, std::string_view context);
  static RavoJSON encode(const RavoUUID& value) { return value.uuidString(); }
};

template <>
struct RavoJSONCodec<RavoTimePoint> {
  static RavoTimePoint decode(const RavoJSON& json, std::string_view context);
  static RavoJSON encode(const RavoTimePoint& value) { return formatRavoTime(value); }
};

template <ORXRawValued E>
struct RavoJSONCodec<E> {
  static E decode(const RavoJSON& json, std::string_view context) {
    auto text = RavoJSONCodec<std::string>::decode(json, context);
    auto label = orxFromRawValue<E>(text);
    if (!label) ravo_json_detail::fail(context, "unknown value \"" + text + "\"");
    return *label;
  }
  static RavoJSON encode(E value) { return std::string(orxRawValue(value)); }
};

template <class T>
struct RavoJSONCodec<std::vector<T>> {
  static std::vector<T> decode(const RavoJSON& json, std::string_view context) {
    if (!json.is_array()) ravo_json_detail::fail(context, "expected an array, found " + ravo_json_detail::describe(json));
    std::vector<T> values;
    values.reserve(json.size());
    for (size_t i = 0; i < json.size(); ++i) {
      values.push_back(RavoJSONCodec<T>::decode(json[i], std::string(context) + "[" + std::to_string(i) + "]"));
    }
    return values;
  }
  static RavoJSON encode(const std::vector<T>& values) {
    RavoJSON array = RavoJSON::array();
    for (const auto& value : values) array.push_back(RavoJSONCodec<T>::encode(value));
    return array;
  }
};

// Objects with string keys map to std::map, so a decoded dictionary has one order whatever the input.
template <class T>
struct RavoJSONCodec<std::map<std::string, T>> {
  static std::map<std::string, T> decode(const RavoJSON& json, std::string_view context) {
    if (!json.is_object()) ravo_json_detail::fail(context, "expected an object, found " + ravo_json_detail::describe(json));
    std::map<std::string, T> values;
    for (const auto& [key, value] : json.items()) {
      values.emplace(key, RavoJSONCodec<T>::decode(value, std::string(context) + "." + key));
    }
    return values;
  }
  static RavoJSON encode(const std::map<std::string, T>& values) {
    RavoJSON object = RavoJSON::object();
    for (const auto& [key, value] : values) object[key] = RavoJSONCodec<T>::encode(value);
    return object;
  }
};

// Reads the members of one JSON object; errors name the record type and the key.
class RavoJSONObjectReader {
 public:
  RavoJSONObjectReader(const RavoJSON& json, std::string_view typeName);
  RavoJSONObjectReader(RavoJSON&&, std::string_view) = delete;  // the reader only borrows the object

  template <class T>
  T required(std::string_view key) const {
    const RavoJSON* value = find(key);
    if (!value) ravo_json_detail::fail(context(key), "missing key");
    return RavoJSONCodec<T>::decode(*value, context(key));
  }

  // An absent key and an explicit null both read as nothing.
  template <class T>
  std::optional<T> optional(std::string_view key) const {
    const RavoJSON* value = find(key);
    if (!value || value->is_null()) return std::nullopt;
    return RavoJSONCodec<T>::decode(*value, context(key));
  }

  const RavoJSON& json() const { return json_; }

 private:
  const RavoJSON* find(std::string_view key) const;
  std::string context(std::string_view key) const;

  const RavoJSON& json_;
  std::string_view typeName_;
};

// Writes members in the order of the calls; absent optionals are left out.
class RavoJSONObjectWriter {
 public:
  template <class T>
  RavoJSONObjectWriter& add(std::string_view key, const T& value) {
    json_[std::string(key)] = RavoJSONCodec<T>::encode(value);
    return *this;
  }
  template <class T>
  RavoJSONObjectWriter& add(std::string_view key, const std::optional<T>& value) {
    if (value) add(key, *value);
    return *this;
  }
  RavoJSON take() { return std::move(json_); }

 private:
  RavoJSON json_ = RavoJSON::object();
};

// Arrays and objects in parsed text nest at most this deep; no record comes near it, and the bound
// keeps the recursive operations on a document (copy, comparison, dump) off the end of the stack.
inline constexpr std::size_t ravoJSONMaximumDepth = 512;

// Parses text as JSON in time linear in its length, turning a syntax error or nesting deeper than
// ravoJSONMaximumDepth into RavoJSONDecodingError ("malformed JSON: ...").
RavoJSON parseRavoJSON(std::string_view text);

// One step from a document's root towards a value: an object member's key, or an array element's index.
struct RavoJSONStep {
  std::string_view key;              // the member's key; empty for an element
  std::optional<std::size_t> index;  // the element's index; nothing for a member
};
using RavoJSONPath = std::span<const RavoJSONStep>;

// What a reader of documents of one fixed shape (the tools' facts and manifests) refuses, told as the
// document is read: parseRavoJSON asks it about every key and value before it takes or builds them, so
// an unknown key's value, or a million strings where a number belongs, is refused unbuilt. A refusal
// is whatever the filter throws. It may be asked twice about the start of a text that turns out to be
// malformed further on (the text is then read a second time), so it keeps no state of its own.
class RavoJSONFilter {
 public:
  virtual ~RavoJSONFilter() = default;
  // A key of the object at `object`, before its value is read.
  virtual void key(RavoJSONPath object, std::string_view key) const = 0;
  // The value at `path` before it is stored: a scalar as read, or an empty array or object about to be
  // filled. `numberText` is the text of a number that is no 64-bit integer (a fraction, an exponent or
  // too many digits) as written, and empty for anything else.
  virtual void value(RavoJSONPath path, const RavoJSON& value, std::string_view numberText) const = 0;
};

// parseRavoJSON, asking `filter` about each key and value as it is read.
RavoJSON parseRavoJSON(std::string_view text, const RavoJSONFilter& filter);

}  // namespace ravo::orx
