#include <ravo-orx/adapters/pixmor/PixmorORXExecutionFacts.h>

namespace ravo::orx {

RavoJSON PixmorORXExecutionFacts::toJSON() const {
  return RavoJSONObjectWriter()
      .add("modelInstalled", modelInstalled_)
      .add("gpuAvailable", gpuAvailable_)
      .add("thermalClass", thermalClass_)
      .add("memoryPressure", memoryPressure_)
      .take();
}

PixmorORXExecutionFacts PixmorORXExecutionFacts::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "PixmorORXExecutionFacts");
  return PixmorORXExecutionFacts{reader.required<bool>("modelInstalled"), reader.required<bool>("gpuAvailable"),
                                 reader.required<std::int64_t>("thermalClass"),
                                 reader.required<std::int64_t>("memoryPressure")};
}

}  // namespace ravo::orx
