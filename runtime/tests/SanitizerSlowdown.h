#pragma once
// Test support: how much slower a sanitizer build runs, for the time ceilings of the hostile-module and
// limits suites, which are set for plain builds.

namespace ravo::orx {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr double kSanitizerSlowdown = 20;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr double kSanitizerSlowdown = 20;
#else
inline constexpr double kSanitizerSlowdown = 1;
#endif
#else
inline constexpr double kSanitizerSlowdown = 1;
#endif

}  // namespace ravo::orx
