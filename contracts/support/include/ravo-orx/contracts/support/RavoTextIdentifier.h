#pragma once
// A single-text identifier (action ids, application ids, node types, capabilities). Each kind is its
// own type, so an action id cannot be passed where a capability is expected; all compare and hash by
// the raw text and have a bare JSON string as their form.
//
//   class RavoWidgetID : public RavoTextIdentifier<RavoWidgetID> { using RavoTextIdentifier::RavoTextIdentifier; };

#include <compare>
#include <concepts>
#include <functional>
#include <string>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

template <class Derived>
class RavoTextIdentifier {
 public:
  RavoTextIdentifier() = default;
  explicit RavoTextIdentifier(std::string rawValue) : rawValue_(std::move(rawValue)) {}

  const std::string& rawValue() const { return rawValue_; }

  friend bool operator==(const Derived& a, const Derived& b) { return a.rawValue() == b.rawValue(); }
  friend std::strong_ordering operator<=>(const Derived& a, const Derived& b) { return a.rawValue() <=> b.rawValue(); }

 private:
  std::string rawValue_;
};

template <class T>
concept RavoTextIdentifierType = std::derived_from<T, RavoTextIdentifier<T>>;

template <RavoTextIdentifierType T>
struct RavoJSONCodec<T> {
  static T decode(const RavoJSON& json, std::string_view context) {
    return T(RavoJSONCodec<std::string>::decode(json, context));
  }
  static RavoJSON encode(const T& value) { return value.rawValue(); }
};

}  // namespace ravo::orx

template <ravo::orx::RavoTextIdentifierType T>
struct std::hash<T> {
  size_t operator()(const T& value) const noexcept { return std::hash<std::string>{}(value.rawValue()); }
};
