#include "OrxCApiCalls.h"

#include <cstring>
#include <exception>
#include <new>
#include <string>

#include <ravo-orx/core/ORXError.h>

namespace ravo::orx::internal {

namespace {

// One per thread, so that a failure's text never races another thread's call. Assigning may allocate;
// should that fail the previous text stays, which is still a valid string.
thread_local std::string lastError;

}  // namespace

orx_status orxCFailure(orx_status status, std::string_view message) noexcept {
  try {
    lastError.assign(message);
  } catch (...) {
  }
  return status;
}

orx_status orxCCurrentException() noexcept {
  try {
    throw;
  } catch (const ORXError& error) {
    return orxCFailure(ORX_STATUS_INVALID_INPUT, error.description());
  } catch (const std::bad_alloc&) {
    return orxCFailure(ORX_STATUS_OUT_OF_MEMORY, "out of memory");
  } catch (const std::exception& error) {
    return orxCFailure(ORX_STATUS_INTERNAL_ERROR, error.what());
  } catch (...) {
    return orxCFailure(ORX_STATUS_INTERNAL_ERROR, "unknown exception");
  }
}

orx_status orxCCopyText(std::string_view text, char* buffer, std::size_t capacity, std::size_t* length) noexcept {
  if (!length || (!buffer && capacity > 0)) return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "buffer or length is NULL");
  *length = text.size();
  if (capacity > 0) {
    std::size_t copied = text.size() < capacity ? text.size() : capacity - 1;
    if (copied > 0) std::memcpy(buffer, text.data(), copied);  // an empty view's data() may be null
    buffer[copied] = '\0';
  }
  if (capacity <= text.size()) {
    return orxCFailure(ORX_STATUS_BUFFER_TOO_SMALL, "the buffer is too small for the text; *length says its size");
  }
  return ORX_OK;
}

}  // namespace ravo::orx::internal

extern "C" const char* orx_last_error(void) { return ravo::orx::internal::lastError.c_str(); }
