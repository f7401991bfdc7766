#include <ravo-orx/engine/OrxQuotedText.h>

#include <ravo-orx/core/ORXMessageText.h>

namespace ravo::orx::internal {

std::string orxQuotedText(std::string_view bytes, std::size_t byteLimit) {
  return ORXMessageText::printable(byteLimit < bytes.size() ? ORXMessageText::excerpt(bytes, byteLimit) : bytes);
}

}  // namespace ravo::orx::internal
