#pragma once
// How every C entry point runs its C++ body: exceptions become a status and the calling thread's
// last-error text, and text results are copied out the snprintf way.

#include <cstddef>
#include <string_view>

#include <ravo-orx/orx.h>

namespace ravo::orx::internal {

// Remembers `message` as the calling thread's last error and returns `status`.
orx_status orxCFailure(orx_status status, std::string_view message) noexcept;

// Copies `text` into a caller's buffer as the header describes.
orx_status orxCCopyText(std::string_view text, char* buffer, std::size_t capacity, std::size_t* length) noexcept;

// The status and last-error text of the exception being handled: ORX_STATUS_INVALID_INPUT for the
// core's refusals, ORX_STATUS_OUT_OF_MEMORY, or ORX_STATUS_INTERNAL_ERROR.
orx_status orxCCurrentException() noexcept;

// Runs `body` (which returns an orx_status); an exception becomes orxCCurrentException()'s status.
template <class Body>
orx_status orxCCall(Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return orxCCurrentException();
  }
}

}  // namespace ravo::orx::internal
