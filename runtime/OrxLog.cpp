#include <ravo-orx/runtime/OrxLog.h>

#include <cstdio>
#include <mutex>
#include <string>

namespace ravo::orx {

namespace {

std::mutex& sinkLock() {
  static std::mutex lock;
  return lock;
}

OrxLogSink& installedSink() {
  static OrxLogSink sink;
  return sink;
}

void writeToStandardError(OrxLogLevel level, std::string_view message) {
  std::string line;
  line.append(kOrxLogSubsystem).append(" ").append(kOrxLogCategory);
  line.append(level == OrxLogLevel::error ? " error: " : ": ").append(message).append("\n");
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace

void setOrxLogSink(OrxLogSink sink) {
  std::lock_guard guard(sinkLock());
  installedSink() = std::move(sink);
}

void orxLog(OrxLogLevel level, std::string_view message) {
  OrxLogSink sink;
  {
    std::lock_guard guard(sinkLock());
    sink = installedSink();
  }
  if (sink) {
    sink(level, message);
  } else {
    writeToStandardError(level, message);
  }
}

}  // namespace ravo::orx
