#pragma once
// A host-contract value that may be absent, written in the option form under a fixed type text
// ("option<orx.host::Deadline>"). Each wrapped type declares its text and encoding by specialising
// ORXHostOptionTraits<T> with `static constexpr std::string_view typeText` and
// `static ORXCanonicalValue encode(const T&)`.

#include <optional>
#include <string_view>

#include <ravo-orx/host_contract/ORXCanonicalForm.h>

namespace ravo::orx {

template <class T>
struct ORXHostOptionTraits;

template <class T>
class ORXHostOption {
 public:
  static ORXHostOption some(T value) { return ORXHostOption(std::move(value)); }
  static ORXHostOption none() { return ORXHostOption(std::nullopt); }

  // The value, or null when absent.
  const T* value() const { return value_ ? &*value_ : nullptr; }
  bool hasValue() const { return value_.has_value(); }

  ORXCanonicalValue canonicalValue() const {
    std::optional<ORXCanonicalValue> encoded;
    if (value_) encoded = ORXHostOptionTraits<T>::encode(*value_);
    return ORXCanonicalForm::option(ORXHostOptionTraits<T>::typeText, std::move(encoded));
  }

  friend bool operator==(const ORXHostOption&, const ORXHostOption&) = default;

 private:
  explicit ORXHostOption(std::optional<T> value) : value_(std::move(value)) {}

  std::optional<T> value_;
};

}  // namespace ravo::orx
