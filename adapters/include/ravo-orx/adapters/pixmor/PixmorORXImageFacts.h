#pragma once
// Facts about the photo being edited, sent with every Pixmor request.

#include <cstdint>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class PixmorORXImageFacts {
 public:
  PixmorORXImageFacts(std::int64_t width, std::int64_t height, bool hasRAWSource, bool hasPeople,
                      std::int64_t estimatedNoise)
      : width_(width),
        height_(height),
        hasRAWSource_(hasRAWSource),
        hasPeople_(hasPeople),
        estimatedNoise_(estimatedNoise) {}

  std::int64_t width() const { return width_; }    // pixels
  std::int64_t height() const { return height_; }  // pixels
  bool hasRAWSource() const { return hasRAWSource_; }
  bool hasPeople() const { return hasPeople_; }
  std::int64_t estimatedNoise() const { return estimatedNoise_; }

  RavoJSON toJSON() const;
  static PixmorORXImageFacts fromJSON(const RavoJSON& json);

  friend bool operator==(const PixmorORXImageFacts&, const PixmorORXImageFacts&) = default;

 private:
  std::int64_t width_;
  std::int64_t height_;
  bool hasRAWSource_;
  bool hasPeople_;
  std::int64_t estimatedNoise_;
};

}  // namespace ravo::orx
