#include <ravo-orx/core/ORXError.h>

#include <utility>

namespace ravo::orx {

ORXError::ORXError(Kind kind, std::string code, std::string message)
    : kind_(kind), code_(std::move(code)), message_(std::move(message)), description_(code_ + ": " + message_) {}

ORXError ORXError::invalid(std::string code, std::string message) {
  return ORXError(Kind::invalid, std::move(code), std::move(message));
}

ORXError ORXError::duplicate(std::string message) {
  return ORXError(Kind::duplicate, "orx.v051.collection_duplicate", std::move(message));
}

ORXError ORXError::unsupported(std::string message) {
  return ORXError(Kind::unsupported, "orx.v051.unsupported", std::move(message));
}

ORXError ORXError::parse(std::string message) {
  return ORXError(Kind::parse, "orx.v051.parse_invalid", std::move(message));
}

}  // namespace ravo::orx
