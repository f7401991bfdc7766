// The canonical core and the host contract behind the C API: canonical JSON, domain digests, the strict
// decision-evidence reader, the version and the log.

#include <cstring>
#include <string_view>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/host_contract/ORXDecisionEvidenceRecord.h>
#include <ravo-orx/orx.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxVersion.h>

#include "OrxCApiCalls.h"

using namespace ravo::orx;
using namespace ravo::orx::internal;

static_assert(ORX_ABI_VERSION == ORX_BUILD_ABI_VERSION, "orx.h and the library's SONAME disagree");
static_assert(ORX_LOG_STANDARD == static_cast<int>(OrxLogLevel::standard));
static_assert(ORX_LOG_ERROR == static_cast<int>(OrxLogLevel::error));

namespace {

// A NULL pointer with a length of zero is the empty text; with any other length it is an error.
bool isMissing(const char* text, size_t length) { return !text && length > 0; }

std::string_view textOf(const char* text, size_t length) { return text ? std::string_view(text, length) : ""; }

}  // namespace

extern "C" {

orx_status orx_canonicalize_json(const char* json, size_t json_length, char* buffer, size_t capacity,
                                 size_t* length) {
  if (isMissing(json, json_length)) return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "json is NULL");
  return orxCCall([&] {
    return orxCCopyText(ORXCanonicalJSON::canonicalize(textOf(json, json_length)), buffer, capacity, length);
  });
}

orx_status orx_domain_digest(const char* tag, const char* json, size_t json_length, char digest[ORX_DIGEST_TEXT_SIZE]) {
  if (!tag || !digest || isMissing(json, json_length)) {
    return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "tag, json or digest is NULL");
  }
  return orxCCall([&] {
    const std::string text = ORXDigest::domain(tag, ORXCanonicalJSON::parse(textOf(json, json_length))).value();
    static_assert(ORX_DIGEST_TEXT_SIZE == sizeof("sha256:") - 1 + 64 + 1);
    std::memcpy(digest, text.c_str(), ORX_DIGEST_TEXT_SIZE);
    return ORX_OK;
  });
}

orx_status orx_check_decision_evidence(const char* bytes, size_t length) {
  if (isMissing(bytes, length)) return orxCFailure(ORX_STATUS_NULL_ARGUMENT, "bytes is NULL");
  return orxCCall([&] {
    ORXDecisionEvidenceRecord::parseCanonicalBytes(textOf(bytes, length));
    return ORX_OK;
  });
}

const char* orx_version(void) { return kRavoORXVersion.data(); }

int32_t orx_abi_version(void) { return ORX_ABI_VERSION; }

void orx_set_log_callback(orx_log_callback callback, void* context) {
  if (!callback) {
    setOrxLogSink(nullptr);
    return;
  }
  try {
    setOrxLogSink([callback, context](OrxLogLevel level, std::string_view message) {
      // The message is a view; the callback is promised a NUL-terminated one.
      std::string terminated(message);
      callback(context, static_cast<orx_log_level>(level), terminated.c_str(), terminated.size());
    });
  } catch (...) {
    // The sink could not be stored (out of memory): the previous one stays.
  }
}

}  // extern "C"
