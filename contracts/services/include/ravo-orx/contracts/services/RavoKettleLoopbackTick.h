#pragma once
// What a kettle plan says when the host wakes: the phase, whether to notify now and when to wake next.

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoTime.h>

namespace ravo::orx {

enum class RavoKettleLoopbackPhase { waiting, earlyNotice, expectedReady };

template <>
struct ORXRawValueTable<RavoKettleLoopbackPhase> {
  using E = RavoKettleLoopbackPhase;
  static constexpr std::array<std::pair<E, std::string_view>, 3> entries{
      {{E::waiting, "waiting"}, {E::earlyNotice, "earlyNotice"}, {E::expectedReady, "expectedReady"}}};
};

class RavoKettleLoopbackTick {
 public:
  RavoKettleLoopbackTick(RavoKettleLoopbackPhase phase, std::optional<RavoTimePoint> nextCheckAt, bool shouldNotify)
      : phase_(phase), nextCheckAt_(nextCheckAt), shouldNotify_(shouldNotify) {}

  RavoKettleLoopbackPhase phase() const { return phase_; }
  const std::optional<RavoTimePoint>& nextCheckAt() const { return nextCheckAt_; }  // absent once finished
  bool shouldNotify() const { return shouldNotify_; }  // deliver this phase's notice now

  RavoJSON toJSON() const;
  static RavoKettleLoopbackTick fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoKettleLoopbackTick&, const RavoKettleLoopbackTick&) = default;

 private:
  RavoKettleLoopbackPhase phase_;
  std::optional<RavoTimePoint> nextCheckAt_;
  bool shouldNotify_;
};

}  // namespace ravo::orx
