#pragma once
// The one error type of the canonical core and the host contract. Its text (what()) is the code,
// ": " and the message; the duplicate, unsupported and parse cases carry fixed codes.

#include <exception>
#include <string>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

class RAVO_ORX_API ORXError : public std::exception {
 public:
  enum class Kind { invalid, duplicate, unsupported, parse };

  static ORXError invalid(std::string code, std::string message);
  static ORXError duplicate(std::string message);
  static ORXError unsupported(std::string message);
  static ORXError parse(std::string message);

  Kind kind() const { return kind_; }
  const std::string& code() const { return code_; }
  const std::string& message() const { return message_; }
  const std::string& description() const { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

  friend bool operator==(const ORXError& a, const ORXError& b) {
    return a.kind_ == b.kind_ && a.code_ == b.code_ && a.message_ == b.message_;
  }

 private:
  ORXError(Kind kind, std::string code, std::string message);

  Kind kind_;
  std::string code_;
  std::string message_;
  std::string description_;
};

}  // namespace ravo::orx
