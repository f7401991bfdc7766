#pragma once
// The peak memory and time of one piece of work, measured in a child process: a copy of the test made
// by fork, whose resident peak starts at its size at the fork, so that nothing the test did before
// counts and the work's own peak (input included) is exactly the rise. Its allocator first gives back
// the free memory it inherited and maps large blocks on their own, as a fresh process's does. Linux and
// glibc only (/proc/self/status, malloc_trim).

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <string>

namespace ravo::orx {

namespace peak_memory {

// Sanitizers keep freed memory in quarantine and add shadow memory, so peaks are not measured there.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kMeasured = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr bool kMeasured = false;
#else
inline constexpr bool kMeasured = true;
#endif
#else
inline constexpr bool kMeasured = true;
#endif

struct Measure {
  std::size_t inputBytes = 0;
  std::size_t peakRise = 0;  // bytes of resident memory above the child's size at the fork
  double seconds = 0;        // of the measured call alone
  std::string outcome;       // what the work described, or the text it threw, or why the child failed
};

// A "VmHWM:" or "VmRSS:" figure of /proc/self/status, in bytes.
inline std::size_t statusBytes(const char* field) {
  std::ifstream status("/proc/self/status");
  const std::size_t length = std::strlen(field);
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, length, field) == 0) return std::stoull(line.substr(length)) * 1024;
  }
  return 0;
}

// In a child: makeInput(), then run(input) timed, then the peak taken, then describe(result), which
// may check the result at any cost. The child writes its figures to a pipe and leaves with _exit,
// running none of the test's teardown.
template <class MakeInput, class Run, class Describe>
Measure inChild(MakeInput makeInput, Run run, Describe describe) {
  int pipeEnds[2];
  if (::pipe(pipeEnds) != 0) return {0, 0, 0, "pipe failed"};
  const pid_t child = ::fork();
  if (child < 0) return {0, 0, 0, "fork failed"};
  if (child == 0) {
    ::close(pipeEnds[0]);
    Measure measure;
    try {
      ::mallopt(M_MMAP_THRESHOLD, 128 * 1024);
      ::mallopt(M_TRIM_THRESHOLD, 128 * 1024);
      ::malloc_trim(0);
      const std::size_t start = statusBytes("VmRSS:");
      const std::string input = makeInput();
      measure.inputBytes = input.size();
      const auto began = std::chrono::steady_clock::now();
      const auto result = run(input);
      measure.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
      measure.peakRise = statusBytes("VmHWM:") - start;
      measure.outcome = describe(result);
    } catch (const std::exception& error) {
      measure.outcome = error.what();
    }
    const std::string report = std::to_string(measure.inputBytes) + " " + std::to_string(measure.peakRise) + " " +
                               std::to_string(measure.seconds) + " " + measure.outcome;
    for (std::size_t written = 0; written < report.size();) {
      const ssize_t n = ::write(pipeEnds[1], report.data() + written, report.size() - written);
      if (n <= 0) break;
      written += static_cast<std::size_t>(n);
    }
    ::_exit(0);
  }
  ::close(pipeEnds[1]);
  std::string report;
  char buffer[4096];
  for (ssize_t n; (n = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0;) report.append(buffer, static_cast<std::size_t>(n));
  ::close(pipeEnds[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (!WIFEXITED(status)) return {0, 0, 0, "the child died with signal " + std::to_string(WTERMSIG(status))};
  Measure measure;
  char* rest = nullptr;
  measure.inputBytes = std::strtoull(report.c_str(), &rest, 10);
  measure.peakRise = std::strtoull(rest, &rest, 10);
  measure.seconds = std::strtod(rest, &rest);
  measure.outcome = *rest == ' ' ? std::string(rest + 1) : std::string(rest);
  return measure;
}

}  // namespace peak_memory

}  // namespace ravo::orx
