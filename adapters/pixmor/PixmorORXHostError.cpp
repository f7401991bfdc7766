#include "adapters/pixmor/PixmorORXHostError.h"

const char* PixmorORXHostError::what() const noexcept {
  switch (kind_) {
    case Kind::unavailable: return "Pixmor ORX service unavailable";
    case Kind::timedOut: return "Pixmor ORX service timed out";
    case Kind::invalidResponse: return "Pixmor ORX response invalid for the request";
  }
  return "Pixmor ORX host error";
}
