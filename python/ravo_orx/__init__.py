"""Ravo ORX's policy decisions, canonical JSON, domain digests and evidence reader, through its C API.

The library is found at $RAVO_ORX_LIBRARY when set, else where the install step recorded it relative
to this package, else by the system loader as libravo-orx.so.1.
"""

import ctypes
import dataclasses
import enum
import operator
import os
from ctypes import POINTER, byref, c_char_p, c_int32, c_size_t, c_uint64, c_void_p

_ABI_VERSION = 1
_OK, _BUFFER_TOO_SMALL, _INVALID_INPUT, _UNAVAILABLE, _PARTIALLY_AVAILABLE = 0, 2, 3, 4, 5
_DIGEST_TEXT_SIZE = 72
_INT32 = range(-2**31, 2**31)


def _load():
    path = os.environ.get("RAVO_ORX_LIBRARY")
    if not path:
        try:
            from ._location import LIBRARY_FROM_PACKAGE
        except ModuleNotFoundError:  # not installed: the library is wherever the system loader looks
            path = "libravo-orx.so.1"
        else:
            path = os.path.join(os.path.dirname(os.path.abspath(__file__)), LIBRARY_FROM_PACKAGE)
    try:
        library = ctypes.CDLL(path)
        library.orx_abi_version.argtypes, library.orx_abi_version.restype = [], c_int32
    except (OSError, AttributeError) as error:
        raise ImportError(f"ravo_orx: cannot load the Ravo ORX library from {path!r}: {error}") from error
    if library.orx_abi_version() != _ABI_VERSION:
        raise ImportError(f"ravo_orx: {path!r} has ABI version {library.orx_abi_version()}, "
                          f"this package needs {_ABI_VERSION}")
    return library


_lib = _load()


class OrxError(Exception):
    """A call the library refused; `status` is its orx_status."""

    def __init__(self, status, message):
        super().__init__(message or f"status {status}")
        self.status = status


class InvalidInputError(OrxError, ValueError):
    """Input the library refused, e.g. JSON outside the canonical grammar."""


def _check(status):
    if status != _OK:
        message = _lib.orx_last_error().decode("utf-8", "replace")  # read before any other call
        raise (InvalidInputError if status == _INVALID_INPUT else OrxError)(status, message)


def _text(function, *arguments):
    """The text a function returns the snprintf way: ask its length, then fetch it (again if it grew)."""
    length = c_size_t()
    buffer, capacity = None, 0
    while (status := function(*arguments, buffer, capacity, byref(length))) == _BUFFER_TOO_SMALL:
        capacity = length.value + 1
        buffer = ctypes.create_string_buffer(capacity)
    _check(status)
    return "" if buffer is None else buffer.raw[:length.value].decode("utf-8")


def _utf8(text):
    if isinstance(text, str):
        return text.encode("utf-8")
    if isinstance(text, (bytes, bytearray, memoryview)):
        return bytes(text)
    raise TypeError(f"expected str or bytes, not {type(text).__name__}")


def _bind_c_struct(cls):
    """Gives a facts or decision class its C struct (its fields in order, each an int32_t), a getter of
    all its fields at once and their types. Worked out once: a decision pays only for the getters."""
    fields = dataclasses.fields(cls)
    cls._names = tuple(f.name for f in fields)
    cls._C = type(f"c_{cls.__name__}", (ctypes.Structure,), {"_fields_": [(name, c_int32) for name in cls._names]})
    cls._values = operator.attrgetter(*cls._names)
    cls._types = tuple(f.type for f in fields)


class DecisionSource(enum.IntEnum):
    POLICY = 0
    MODULE_UNAVAILABLE = 1
    TRAP = 2
    INVALID_OUTPUT = 3


class DecisionKind(enum.IntEnum):
    AUTHORIZATION = 0
    SYNC = 1
    CINEMA_ADMISSION = 2


class _Facts:
    # Checked here so a fact can never wrap silently on its way into an int32_t.
    def __post_init__(self):
        for name, value in zip(self._names, self._values(self)):
            if isinstance(value, bool) or not isinstance(value, int):
                raise TypeError(f"{type(self).__name__}.{name} must be an int, not {type(value).__name__}")
            if value not in _INT32:
                raise ValueError(f"{type(self).__name__}.{name}={value} is outside the 32-bit signed range")

    def _to_c(self):
        return self._C(*self._values(self))


@dataclasses.dataclass(frozen=True)
class AuthorizationFacts(_Facts):
    role: int
    command: int
    grant_flags: int
    token_age_milliseconds: int
    token_ttl_milliseconds: int
    rate_used: int
    rate_limit: int
    control_mode: int


@dataclasses.dataclass(frozen=True)
class SyncFacts(_Facts):
    drift_milliseconds: int
    round_trip_milliseconds: int
    jitter_milliseconds: int
    buffer_ahead_milliseconds: int
    rate_x100: int
    stall_count: int
    sync_age_milliseconds: int
    tolerance_milliseconds: int


@dataclasses.dataclass(frozen=True)
class CinemaAdmissionFacts(_Facts):
    source_fps_x100: int
    target_fps_x100: int
    source_reservoir_milliseconds: int
    headroom: int
    thermal_state: int
    memory_pressure: int
    bridge_tenths_milliseconds: int
    temporal_tenths_milliseconds: int
    interpolation_tenths_milliseconds: int
    metal_fx_tenths_milliseconds: int
    final_detail_tenths_milliseconds: int
    model_tenths_milliseconds: int
    model_sample_count: int


class _Decision:
    @classmethod
    def _from_c(cls, raw):
        # Each field's annotated type (bool, int, DecisionSource) converts its raw int32_t.
        return cls(*map(lambda convert, value: convert(value), cls._types, cls._values(raw)))


@dataclasses.dataclass(frozen=True)
class AuthorizationDecision(_Decision):
    is_allowed: bool
    reason: int
    policy_version: int
    source: DecisionSource


@dataclasses.dataclass(frozen=True)
class SyncDecision(_Decision):
    action: int
    rate_x1000: int
    correction_milliseconds: int
    reason: int
    source: DecisionSource


@dataclasses.dataclass(frozen=True)
class CinemaAdmissionDecision(_Decision):
    route: int
    sparse_anchor_interval_frames: int
    safe_budget_tenths_milliseconds: int
    reason: int
    source: DecisionSource


for _cls in (AuthorizationFacts, SyncFacts, CinemaAdmissionFacts,
             AuthorizationDecision, SyncDecision, CinemaAdmissionDecision):
    _bind_c_struct(_cls)


def _declare(name, restype, *argtypes):
    function = getattr(_lib, name)
    function.restype, function.argtypes = restype, list(argtypes)
    return function


_declare("orx_runtime_open", c_int32, c_char_p, POINTER(c_void_p))
_declare("orx_runtime_close", None, c_void_p)
_declare("orx_runtime_load_error", c_int32, c_void_p, c_char_p, c_size_t, POINTER(c_size_t))
_declare("orx_runtime_status", c_int32, c_void_p, c_char_p, c_size_t, POINTER(c_size_t))
_declare("orx_runtime_is_available", c_int32, c_void_p, c_int32)
_declare("orx_runtime_failure_count", c_int32, c_void_p, POINTER(c_uint64))
_declare("orx_authorize", c_int32, c_void_p, POINTER(AuthorizationFacts._C), POINTER(AuthorizationDecision._C))
_declare("orx_correct_sync", c_int32, c_void_p, POINTER(SyncFacts._C), POINTER(SyncDecision._C))
_declare("orx_decide_cinema_admission", c_int32, c_void_p, POINTER(CinemaAdmissionFacts._C),
         POINTER(CinemaAdmissionDecision._C))
_declare("orx_canonicalize_json", c_int32, c_char_p, c_size_t, c_char_p, c_size_t, POINTER(c_size_t))
_declare("orx_domain_digest", c_int32, c_char_p, c_char_p, c_size_t, c_char_p)
_declare("orx_check_decision_evidence", c_int32, c_char_p, c_size_t)
_declare("orx_last_error", c_char_p)
_declare("orx_version", c_char_p)
_LogCallback = ctypes.CFUNCTYPE(None, c_void_p, c_int32, c_void_p, c_size_t)
_declare("orx_set_log_callback", None, _LogCallback, c_void_p)


class Runtime:
    """The three policy modules, loaded from `artifacts_directory` or, when None, from the first place
    the library searches. Artifacts that do not load still give a runtime: its decisions are then
    fail-safe (see `fully_available` and `load_error`). Decisions may be taken from many threads at
    once; close() must not race them."""

    def __init__(self, artifacts_directory=None):
        self._handle = None
        directory = None if artifacts_directory is None else os.fsencode(artifacts_directory)
        if directory is not None and b"\0" in directory:
            raise ValueError("artifacts_directory contains a NUL byte")
        handle = c_void_p()
        status = _lib.orx_runtime_open(directory, byref(handle))
        if status not in (_OK, _UNAVAILABLE, _PARTIALLY_AVAILABLE):
            _check(status)
        self._handle = handle.value
        self.fully_available = status == _OK

    def close(self):
        handle, self._handle = self._handle, None
        _lib.orx_runtime_close(handle)

    __del__ = close

    def __enter__(self):
        return self

    def __exit__(self, *exc_info):
        self.close()

    def _open_handle(self):
        if self._handle is None:
            raise ValueError("the runtime is closed")
        return self._handle

    def _decide(self, function, facts, facts_type, decision_type):
        if not isinstance(facts, facts_type):
            raise TypeError(f"expected {facts_type.__name__}, not {type(facts).__name__}")
        raw = decision_type._C()
        _check(function(self._open_handle(), byref(facts._to_c()), byref(raw)))
        return decision_type._from_c(raw)

    def authorize(self, facts):
        return self._decide(_lib.orx_authorize, facts, AuthorizationFacts, AuthorizationDecision)

    def correct_sync(self, facts):
        return self._decide(_lib.orx_correct_sync, facts, SyncFacts, SyncDecision)

    def decide_cinema_admission(self, facts):
        return self._decide(_lib.orx_decide_cinema_admission, facts, CinemaAdmissionFacts, CinemaAdmissionDecision)

    @property
    def load_error(self):
        """Why modules did not load, or None when all did."""
        return _text(_lib.orx_runtime_load_error, self._open_handle()) or None

    @property
    def status(self):
        return _text(_lib.orx_runtime_status, self._open_handle())

    @property
    def failure_count(self):
        """Decisions that fell back to fail-safe because a loaded module trapped or answered invalidly."""
        count = c_uint64()
        _check(_lib.orx_runtime_failure_count(self._open_handle(), byref(count)))
        return count.value

    def is_available(self, kind):
        return _lib.orx_runtime_is_available(self._open_handle(), DecisionKind(kind)) == 1


def canonicalize_json(text):
    data = _utf8(text)
    return _text(_lib.orx_canonicalize_json, data, len(data))


def domain_digest(tag, json):
    tag_bytes, data = _utf8(tag), _utf8(json)
    if b"\0" in tag_bytes:
        raise ValueError("the tag contains a NUL byte")
    digest = ctypes.create_string_buffer(_DIGEST_TEXT_SIZE)
    _check(_lib.orx_domain_digest(tag_bytes, data, len(data), digest))
    return digest.value.decode("ascii")


def check_decision_evidence(data):
    """Returns when `data` is exactly the canonical bytes of a valid decision-evidence record."""
    data = _utf8(data)
    _check(_lib.orx_check_decision_evidence(data, len(data)))


def version():
    return _lib.orx_version().decode("ascii")


def abi_version():
    return _lib.orx_abi_version()


_log_handler = None


# One callback for the life of the process: the runtime may still be calling a callback it was
# replaced by, so the one the library holds must never be freed; it forwards to the current handler.
@_LogCallback
def _forward_log(_context, level, message, length):
    handler = _log_handler
    if handler is not None:
        handler(level, ctypes.string_at(message, length).decode("utf-8", "replace"))


def set_log_callback(callback):
    """Sends the runtime's log, process-wide, to callback(level, message), level 0 standard or 1 error;
    None restores the library's own log to standard error. The runtime may call it from any thread
    while holding its lock: it must not use a Runtime, and its exceptions are printed and dropped."""
    global _log_handler
    if callback is not None and not callable(callback):
        raise TypeError("the log callback must be callable or None")
    _log_handler = callback
    _lib.orx_set_log_callback(_LogCallback() if callback is None else _forward_log, None)
