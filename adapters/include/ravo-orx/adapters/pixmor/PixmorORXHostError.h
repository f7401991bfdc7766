#pragma once
// The failures a Pixmor proposal can meet on its way to a usable answer. The host turns every one of
// them into a local fallback; transports throw `unavailable` when there is no service to ask.

#include <exception>

namespace ravo::orx {

class PixmorORXHostError : public std::exception {
 public:
  enum class Code {
    unavailable,      // no service, or the transport failed
    timedOut,         // no answer within the host's timeout
    invalidResponse,  // an answer that does not fit the request
  };

  explicit PixmorORXHostError(Code code) : code_(code) {}

  Code code() const { return code_; }
  const char* what() const noexcept override;

  friend bool operator==(const PixmorORXHostError& a, const PixmorORXHostError& b) { return a.code_ == b.code_; }

 private:
  Code code_;
};

}  // namespace ravo::orx
