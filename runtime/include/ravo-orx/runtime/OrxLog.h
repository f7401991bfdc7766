#pragma once
// The policy runtime's log (category "orx-policy"). The runtime is the only part of the system that
// logs. The default back end writes one line per message to standard error; a host may install its
// own sink (tests capture messages this way).

#include <functional>
#include <string_view>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

enum class OrxLogLevel { standard, error };

inline constexpr std::string_view kOrxLogSubsystem = "app.ravo.orx";
inline constexpr std::string_view kOrxLogCategory = "orx-policy";

using OrxLogSink = std::function<void(OrxLogLevel level, std::string_view message)>;

// Replaces the sink for the whole process; an empty function restores the default back end.
// The runtime logs from inside a decision, while it holds its lock: a sink must return without
// calling back into any OrxPolicyRuntime or OrxPolicyDecider (the lock is not recursive, so such a
// call deadlocks), and should hand slow work to another thread.
RAVO_ORX_API void setOrxLogSink(OrxLogSink sink);
RAVO_ORX_API void orxLog(OrxLogLevel level, std::string_view message);

}  // namespace ravo::orx
