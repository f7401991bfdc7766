#pragma once
// Facts about the device that will render previews, sent with every Pixmor request.

#include <cstdint>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class PixmorORXExecutionFacts {
 public:
  PixmorORXExecutionFacts(bool modelInstalled, bool gpuAvailable, std::int64_t thermalClass,
                          std::int64_t memoryPressure)
      : modelInstalled_(modelInstalled),
        gpuAvailable_(gpuAvailable),
        thermalClass_(thermalClass),
        memoryPressure_(memoryPressure) {}

  bool modelInstalled() const { return modelInstalled_; }  // an on-device restoration model
  bool gpuAvailable() const { return gpuAvailable_; }
  std::int64_t thermalClass() const { return thermalClass_; }  // 0 is nominal; higher is hotter
  std::int64_t memoryPressure() const { return memoryPressure_; }

  RavoJSON toJSON() const;
  static PixmorORXExecutionFacts fromJSON(const RavoJSON& json);

  friend bool operator==(const PixmorORXExecutionFacts&, const PixmorORXExecutionFacts&) = default;

 private:
  bool modelInstalled_;
  bool gpuAvailable_;
  std::int64_t thermalClass_;
  std::int64_t memoryPressure_;
};

}  // namespace ravo::orx
