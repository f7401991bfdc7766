#include <ravo-orx/adapters/pixmor/PixmorORXImageFacts.h>

namespace ravo::orx {

RavoJSON PixmorORXImageFacts::toJSON() const {
  return RavoJSONObjectWriter()
      .add("width", width_)
      .add("height", height_)
      .add("hasRAWSource", hasRAWSource_)
      .add("hasPeople", hasPeople_)
      .add("estimatedNoise", estimatedNoise_)
      .take();
}

PixmorORXImageFacts PixmorORXImageFacts::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "PixmorORXImageFacts");
  return PixmorORXImageFacts{reader.required<std::int64_t>("width"), reader.required<std::int64_t>("height"),
                             reader.required<bool>("hasRAWSource"), reader.required<bool>("hasPeople"),
                             reader.required<std::int64_t>("estimatedNoise")};
}

}  // namespace ravo::orx
