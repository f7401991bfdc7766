#include <ravo-orx/adapters/pixmor/PixmorORXExecutionPolicy.h>

namespace ravo::orx {

RavoJSON PixmorORXExecutionPolicy::toJSON() const {
  return RavoJSONObjectWriter()
      .add("previewMaxPixels", previewMaxPixels_)
      .add("allowModelRequest", allowModelRequest_)
      .add("preferGPUPreview", preferGPUPreview_)
      .add("requiresUserConfirmation", requiresUserConfirmation_)
      .take();
}

PixmorORXExecutionPolicy PixmorORXExecutionPolicy::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "PixmorORXExecutionPolicy");
  return PixmorORXExecutionPolicy{reader.required<std::int64_t>("previewMaxPixels"),
                                  reader.required<bool>("allowModelRequest"),
                                  reader.required<bool>("preferGPUPreview"),
                                  reader.required<bool>("requiresUserConfirmation")};
}

}  // namespace ravo::orx
