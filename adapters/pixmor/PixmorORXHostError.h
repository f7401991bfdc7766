#pragma once
// The failures a Pixmor proposal can meet on its way to a usable answer. The host turns every one of
// them into a local fallback; transports throw `unavailable` when there is no service to ask.

#include <exception>

class PixmorORXHostError : public std::exception {
 public:
  enum class Kind {
    unavailable,      // no service, or the transport failed
    timedOut,         // no answer within the host's timeout
    invalidResponse,  // an answer that does not fit the request
  };

  explicit PixmorORXHostError(Kind kind) : kind_(kind) {}

  Kind kind() const { return kind_; }
  const char* what() const noexcept override;

  friend bool operator==(const PixmorORXHostError& a, const PixmorORXHostError& b) { return a.kind_ == b.kind_; }

 private:
  Kind kind_;
};
