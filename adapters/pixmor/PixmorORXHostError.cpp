#include <ravo-orx/adapters/pixmor/PixmorORXHostError.h>

namespace ravo::orx {

const char* PixmorORXHostError::what() const noexcept {
  switch (code_) {
    case Code::unavailable: return "Pixmor ORX service unavailable";
    case Code::timedOut: return "Pixmor ORX service timed out";
    case Code::invalidResponse: return "Pixmor ORX response invalid for the request";
  }
  return "Pixmor ORX host error";
}

}  // namespace ravo::orx
