#pragma once
// A typed argument value: exactly one of a string, a boolean, a signed 64-bit integer or a number.
// JSON form: {"kind":"number","number":0.5}; the payload key is named like the kind.

#include <cstdint>
#include <map>
#include <string>
#include <variant>

#include <ravo-orx/contracts/actions/RavoActionLabels.h>
#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class RavoActionValue {
 public:
  static RavoActionValue string(std::string value) { return {std::in_place_type<std::string>, std::move(value)}; }
  static RavoActionValue boolean(bool value) { return {std::in_place_type<bool>, value}; }
  static RavoActionValue integer(std::int64_t value) { return {std::in_place_type<std::int64_t>, value}; }
  // Any double is held; a non-finite one fails parameter validation and cannot be encoded.
  static RavoActionValue number(double value) { return {std::in_place_type<double>, value}; }

  RavoActionValueKind kind() const { return static_cast<RavoActionValueKind>(payload_.index()); }

  // The payload of the matching kind, or nothing for any other kind.
  const std::string* stringValue() const { return std::get_if<std::string>(&payload_); }
  const bool* booleanValue() const { return std::get_if<bool>(&payload_); }
  const std::int64_t* integerValue() const { return std::get_if<std::int64_t>(&payload_); }
  const double* numberValue() const { return std::get_if<double>(&payload_); }

  // Throws std::invalid_argument "non-finite action number" for a NaN or infinite number.
  RavoJSON toJSON() const;
  // Reads "kind" and then only the key of that kind.
  static RavoActionValue fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoActionValue&, const RavoActionValue&) = default;

 private:
  // Alternatives in the order of RavoActionValueKind, so the index is the kind.
  using Payload = std::variant<std::string, bool, std::int64_t, double>;
  template <class T>
  RavoActionValue(std::in_place_type_t<T> alternative, T value) : payload_(alternative, std::move(value)) {}

  Payload payload_;
};

// Throws std::invalid_argument "non-finite action number" for a NaN or infinite number, which JSON
// cannot carry: every number of the action model is checked with it before it is encoded.
double ravoEncodableActionNumber(double value);

// Named arguments of one action invocation; ordered by name so equal argument sets compare equal.
using RavoActionArguments = std::map<std::string, RavoActionValue>;

}  // namespace ravo::orx
