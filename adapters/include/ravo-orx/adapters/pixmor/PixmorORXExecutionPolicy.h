#pragma once
// How previews of a proposal may be rendered and whether applying it needs the person's confirmation.

#include <cstdint>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class PixmorORXExecutionPolicy {
 public:
  PixmorORXExecutionPolicy(std::int64_t previewMaxPixels, bool allowModelRequest, bool preferGPUPreview,
                           bool requiresUserConfirmation)
      : previewMaxPixels_(previewMaxPixels),
        allowModelRequest_(allowModelRequest),
        preferGPUPreview_(preferGPUPreview),
        requiresUserConfirmation_(requiresUserConfirmation) {}

  std::int64_t previewMaxPixels() const { return previewMaxPixels_; }
  bool allowModelRequest() const { return allowModelRequest_; }  // the on-device model may be used
  bool preferGPUPreview() const { return preferGPUPreview_; }
  bool requiresUserConfirmation() const { return requiresUserConfirmation_; }

  RavoJSON toJSON() const;
  static PixmorORXExecutionPolicy fromJSON(const RavoJSON& json);

  friend bool operator==(const PixmorORXExecutionPolicy&, const PixmorORXExecutionPolicy&) = default;

 private:
  std::int64_t previewMaxPixels_;
  bool allowModelRequest_;
  bool preferGPUPreview_;
  bool requiresUserConfirmation_;
};

}  // namespace ravo::orx
