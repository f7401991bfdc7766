#ifndef RAVO_ORX_ORX_H
#define RAVO_ORX_ORX_H
/*
 * Ravo ORX's C API: the digest-bound policy decisions, canonical JSON, domain digests and the strict
 * decision-evidence reader, for applications that bind C (Swift, Kotlin through JNI, Python through
 * ctypes). Link libravo-orx (pkg-config ravo-orx, or CMake's RavoORX::ravo-orx).
 *
 * Conventions of every function:
 * - The result is an orx_status; ORX_OK is 0. No C++ exception ever crosses this API.
 * - After a status other than ORX_OK, orx_last_error() describes it. That text belongs to the library
 *   and stays valid on the calling thread until that thread's next call into this API.
 * - Text is returned the snprintf way: the caller passes `buffer` and its `capacity`; `*length`
 *   receives the text's full length in bytes without the terminating NUL. When the text does not fit
 *   (capacity <= length) as much as fits is written, NUL-terminated when capacity > 0, and the result
 *   is ORX_STATUS_BUFFER_TOO_SMALL; call again with length + 1 bytes. (NULL, 0) asks for the length.
 * - Input text is UTF-8 with an explicit length and need not be NUL-terminated.
 * - A NULL pointer where one is required gives ORX_STATUS_NULL_ARGUMENT.
 *
 * Threads: a runtime handle may be used for decisions and queries by any number of threads at once
 * (the runtime serialises its modules' calls); orx_runtime_close must not race any other use of the
 * same handle. Every other function is safe to call from any thread at any time.
 */

#include <stddef.h>
#include <stdint.h>

#include <ravo-orx/core/ORXExport.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The ABI this header describes: the SONAME's major version (libravo-orx.so.1). A binary built
 * against this header runs with any library whose orx_abi_version() is the same. */
#define ORX_ABI_VERSION 1

typedef int32_t orx_status;
enum {
  ORX_OK = 0,
  ORX_STATUS_NULL_ARGUMENT = 1,        /* a required pointer was NULL */
  ORX_STATUS_BUFFER_TOO_SMALL = 2,     /* the text was cut; *length says how long it is */
  ORX_STATUS_INVALID_INPUT = 3,        /* the input was refused; orx_last_error() says why */
  ORX_STATUS_UNAVAILABLE = 4,          /* no policy module loaded: every decision is fail-safe */
  ORX_STATUS_PARTIALLY_AVAILABLE = 5,  /* some policy modules loaded; the others' decisions are fail-safe */
  ORX_STATUS_OUT_OF_MEMORY = 6,
  ORX_STATUS_INTERNAL_ERROR = 7,       /* a failure this API does not otherwise name; never expected */
  ORX_STATUS_LOG_FAILED = 8            /* the decision log's sink failed (a full disk); the log stopped */
};

/* The decision kinds, for orx_runtime_is_available. */
typedef int32_t orx_decision_kind;
enum { ORX_DECISION_AUTHORIZATION = 0, ORX_DECISION_SYNC = 1, ORX_DECISION_CINEMA_ADMISSION = 2 };

/* Where a decision came from: the module's validated answer, or the fail-safe decision taken because
 * the module was not loaded, trapped, or gave an answer that failed validation. */
typedef int32_t orx_decision_source;
enum {
  ORX_SOURCE_POLICY = 0,
  ORX_SOURCE_MODULE_UNAVAILABLE = 1,
  ORX_SOURCE_TRAP = 2,
  ORX_SOURCE_INVALID_OUTPUT = 3
};

/* Facts and decisions: the fields and raw values of the C++ API's AuthorizationFacts,
 * OrxAuthorizationDecision and their kin, in the same order. */
typedef struct orx_authorization_facts {
  int32_t role;
  int32_t command;
  int32_t grantFlags;
  int32_t tokenAgeMilliseconds;
  int32_t tokenTTLMilliseconds;
  int32_t rateUsed;
  int32_t rateLimit;
  int32_t controlMode;
} orx_authorization_facts;

typedef struct orx_authorization_decision {
  int32_t isAllowed; /* 1 or 0 */
  int32_t reason;    /* OrxAuthorizationReason: 0 allowed ... 7 needsAdmin, 100 runtimeUnavailable, 101 invalidResult */
  int32_t policyVersion;
  orx_decision_source source;
} orx_authorization_decision;

typedef struct orx_sync_facts {
  int32_t driftMilliseconds;
  int32_t roundTripMilliseconds;
  int32_t jitterMilliseconds;
  int32_t bufferAheadMilliseconds;
  int32_t rateX100;
  int32_t stallCount;
  int32_t syncAgeMilliseconds;
  int32_t toleranceMilliseconds;
} orx_sync_facts;

typedef struct orx_sync_decision {
  int32_t action; /* OrxSyncAction: 0 hold, 1 nudge, 2 seek */
  int32_t rateX1000;
  int32_t correctionMilliseconds;
  int32_t reason;
  orx_decision_source source;
} orx_sync_decision;

typedef struct orx_cinema_admission_facts {
  int32_t sourceFPSX100;
  int32_t targetFPSX100;
  int32_t sourceReservoirMilliseconds;
  int32_t headroom;
  int32_t thermalState;
  int32_t memoryPressure;
  int32_t bridgeTenthsMilliseconds;
  int32_t temporalTenthsMilliseconds;
  int32_t interpolationTenthsMilliseconds;
  int32_t metalFXTenthsMilliseconds;
  int32_t finalDetailTenthsMilliseconds;
  int32_t modelTenthsMilliseconds;
  int32_t modelSampleCount;
} orx_cinema_admission_facts;

typedef struct orx_cinema_admission_decision {
  int32_t route; /* OrxCinemaAdmissionRoute: 0 metalFXOnly ... 4 measurementRequired */
  int32_t sparseAnchorIntervalFrames;
  int32_t safeBudgetTenthsMilliseconds;
  int32_t reason; /* OrxCinemaAdmissionReason: 0 liveSafe ... 6 invalidFacts */
  orx_decision_source source;
} orx_cinema_admission_decision;

/* The decisions runtime: the three policy modules whose artifacts prove their provenance. */
typedef struct orx_runtime orx_runtime;

/* Opens a runtime on the artifacts in `artifacts_directory`, or, when it is NULL, in the first of:
 * "artifacts" in the working directory, "Resources/ORX" two levels above the executable, the
 * installed artifacts of the prefix holding the executable, those of the prefix holding this library,
 * those of the prefix the library was built for. A runtime is set in `*runtime` whenever the result
 * is ORX_OK, ORX_STATUS_PARTIALLY_AVAILABLE or ORX_STATUS_UNAVAILABLE: in the last two cases some or
 * all of its decisions are fail-safe for its whole life, and orx_last_error() (like
 * orx_runtime_load_error) says why. On ORX_STATUS_OUT_OF_MEMORY `*runtime` is NULL. The caller owns the
 * runtime and closes it with orx_runtime_close. */
RAVO_ORX_API orx_status orx_runtime_open(const char* artifacts_directory, orx_runtime** runtime);

/* Closes a runtime; NULL is allowed and does nothing. */
RAVO_ORX_API void orx_runtime_close(orx_runtime* runtime);

/* Why modules did not load ("" when all did), and the status text ("ORX active · <digest prefixes>",
 * "ORX unavailable · native safe mode" or the partial form). Text out as described at the top. */
RAVO_ORX_API orx_status orx_runtime_load_error(const orx_runtime* runtime, char* buffer, size_t capacity,
                                               size_t* length);
RAVO_ORX_API orx_status orx_runtime_status(const orx_runtime* runtime, char* buffer, size_t capacity,
                                           size_t* length);

/* 1 when the module of `kind` is loaded, else 0 (also for a NULL runtime or an unknown kind). */
RAVO_ORX_API int32_t orx_runtime_is_available(const orx_runtime* runtime, orx_decision_kind kind);

/* How many decisions fell back to a fail-safe answer because a loaded module trapped or answered
 * invalidly. */
RAVO_ORX_API orx_status orx_runtime_failure_count(const orx_runtime* runtime, uint64_t* count);

/* The three decisions. Each fills `*decision` (its `source` included) and returns ORX_OK; a decision
 * never fails once its arguments are there. With a NULL runtime or facts the result is
 * ORX_STATUS_NULL_ARGUMENT and `*decision` (when not NULL) is the fail-safe decision with source
 * ORX_SOURCE_MODULE_UNAVAILABLE. */
RAVO_ORX_API orx_status orx_authorize(orx_runtime* runtime, const orx_authorization_facts* facts,
                                      orx_authorization_decision* decision);
RAVO_ORX_API orx_status orx_correct_sync(orx_runtime* runtime, const orx_sync_facts* facts,
                                         orx_sync_decision* decision);
RAVO_ORX_API orx_status orx_decide_cinema_admission(orx_runtime* runtime, const orx_cinema_admission_facts* facts,
                                                    orx_cinema_admission_decision* decision);

/* "sha256:" and 64 lowercase hex digits, with the terminating NUL. */
#define ORX_DIGEST_TEXT_SIZE 72

/* The decision log (docs/DECISION-LOG.md): with one, every decision of the runtime appends a record,
 * sealed in blocks whose seals chain by digest, to a file or to a callback. The decision only copies a
 * fixed-size record into a buffer; the log's own thread writes it, never holding the runtime's lock. */
typedef int32_t orx_log_when_full;
enum {
  ORX_LOG_WHEN_FULL_DROP = 0,  /* the record is dropped, counted and declared in the next seal */
  ORX_LOG_WHEN_FULL_BLOCK = 1  /* the decision waits for room (the runtime's lock released meanwhile) */
};
/* When the file sink asks the system to put its lines on the disk: never itself, at each seal, or after
 * every batch it writes. A crashed process loses nothing already written; a machine that stops loses
 * what was not synchronised. */
typedef int32_t orx_log_file_sync;
enum { ORX_LOG_SYNC_NONE = 0, ORX_LOG_SYNC_AFTER_SEAL = 1, ORX_LOG_SYNC_AFTER_BATCH = 2 };
/* One line of the log (canonical JSON, no newline, valid only during the call), `is_seal` 1 for a seal
 * and 0 for a record. Called on the log's own thread, one line at a time, in order. */
typedef void (*orx_decision_log_callback)(void* context, const char* line, size_t length, int32_t is_seal);

typedef struct orx_decision_log_options {
  const char* file;                   /* the file sink when not NULL: created, or continued when it holds a log */
  orx_log_file_sync file_sync;
  orx_decision_log_callback callback; /* the callback sink when `file` is NULL */
  void* context;                      /* passed back to `callback` untouched */
  uint32_t buffer_records;            /* records buffered for the log's thread; 0: 8192 */
  uint32_t block_records;             /* records per block, at most 4096; 0: 256 */
  orx_log_when_full when_full;
} orx_decision_log_options;

/* orx_runtime_open with a decision log. ORX_STATUS_INVALID_INPUT (and no runtime) when the log cannot
 * be made: options with neither file nor callback, a file that cannot be opened or does not end as a
 * decision log, more than 4096 records per block. */
RAVO_ORX_API orx_status orx_runtime_open_with_log(const char* artifacts_directory, const orx_decision_log_options* log,
                                                  orx_runtime** runtime);
/* Returns once every decision taken before the call is written and sealed. The calls below answer
 * ORX_STATUS_UNAVAILABLE for a runtime opened without a log. */
RAVO_ORX_API orx_status orx_runtime_log_flush(orx_runtime* runtime);
/* The digest of the last seal ("sha256:<hex>", ORX_DIGEST_TEXT_SIZE bytes): publish or store it, and
 * `ravo-orx log verify --head` proves the log was not cut short. "" before the first seal. */
RAVO_ORX_API orx_status orx_runtime_log_head(const orx_runtime* runtime, char digest[ORX_DIGEST_TEXT_SIZE]);
/* Records written, dropped for want of room, and lost after the sink failed. When it failed, the result
 * is ORX_STATUS_LOG_FAILED (the counts are still set) and orx_last_error() says why. */
RAVO_ORX_API orx_status orx_runtime_log_counts(const orx_runtime* runtime, uint64_t* written, uint64_t* dropped,
                                               uint64_t* lost);

/* The canonical text of a JSON document (the canonical core's strict grammar: objects, arrays,
 * strings, integers, true, false; nesting at most 512 levels). Refused input gives
 * ORX_STATUS_INVALID_INPUT and the parser's message. Text out as described at the top. */
RAVO_ORX_API orx_status orx_canonicalize_json(const char* json, size_t json_length, char* buffer, size_t capacity,
                                              size_t* length);

/* The domain digest of a JSON document: SHA-256 over the tag's bytes, one zero byte and the document's
 * canonical bytes, written into `digest` (ORX_DIGEST_TEXT_SIZE bytes) as "sha256:<hex>". `tag` is a
 * NUL-terminated domain tag such as "ORX_DECISION_EVIDENCE_V1". Refused JSON gives
 * ORX_STATUS_INVALID_INPUT. */
RAVO_ORX_API orx_status orx_domain_digest(const char* tag, const char* json, size_t json_length,
                                          char digest[ORX_DIGEST_TEXT_SIZE]);

/* The strict decision-evidence reader's verdict: ORX_OK when the bytes are exactly the canonical bytes
 * of a valid decision-evidence record, else ORX_STATUS_INVALID_INPUT with the reader's message. */
RAVO_ORX_API orx_status orx_check_decision_evidence(const char* bytes, size_t length);

/* The description of the calling thread's last failure ("" before any). See the top for its lifetime. */
RAVO_ORX_API const char* orx_last_error(void);

/* The library's release ("1.0.0"; static text) and its ABI version (ORX_ABI_VERSION of the header it
 * was built from). */
RAVO_ORX_API const char* orx_version(void);
RAVO_ORX_API int32_t orx_abi_version(void);

/* The runtime's log, for the whole process. `level` is ORX_LOG_STANDARD or ORX_LOG_ERROR; `message`
 * (NUL-terminated, `length` bytes) is valid only during the call. The runtime logs from inside a
 * decision while holding its lock: the callback must return without calling into this API's runtime
 * functions and should hand slow work to another thread. A NULL callback restores the default, one
 * line per message on standard error. `context` is passed back untouched. */
typedef int32_t orx_log_level;
enum { ORX_LOG_STANDARD = 0, ORX_LOG_ERROR = 1 };
typedef void (*orx_log_callback)(void* context, orx_log_level level, const char* message, size_t length);
RAVO_ORX_API void orx_set_log_callback(orx_log_callback callback, void* context);

#ifdef __cplusplus
}
#endif

#endif
