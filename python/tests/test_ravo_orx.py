"""The Python binding against the library named by $RAVO_ORX_LIBRARY, run from the repository root:
decisions reach the library and come back field for field, refused input raises, and the library is
found the three ways the package looks for it."""

import ctypes
import hashlib
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import ravo_orx as orx

ROOT = pathlib.Path(__file__).resolve().parents[2]
ARTIFACTS = ROOT / "artifacts"
EVIDENCE = ROOT / "host_contract" / "tests" / "golden" / "evidence_allow.json"
LIBRARY = pathlib.Path(os.environ["RAVO_ORX_LIBRARY"]).resolve()
INT32_MIN, INT32_MAX = -2**31, 2**31 - 1

AUTHORIZATION = orx.AuthorizationFacts(1, 3, 7, 100, 60000, 1, 10, 1)
SYNC = orx.SyncFacts(60, 40, 5, 2000, 100, 0, 500, 40)
CINEMA = orx.CinemaAdmissionFacts(2400, 6000, 500, 50, 0, 0, 20, 30, 40, 10, 10, 50, 8)


def c_struct(names):
    return type("Raw", (ctypes.Structure,), {"_fields_": [(name, ctypes.c_int32) for name in names]})


# Each decision as the header spells it: (binding name, C name) pairs in the header's order, so a
# binding whose fields were out of order would send the library different facts than asked.
KINDS = [
    ("authorize", "orx_authorize", AUTHORIZATION,
     [("role", "role"), ("command", "command"), ("grant_flags", "grantFlags"),
      ("token_age_milliseconds", "tokenAgeMilliseconds"), ("token_ttl_milliseconds", "tokenTTLMilliseconds"),
      ("rate_used", "rateUsed"), ("rate_limit", "rateLimit"), ("control_mode", "controlMode")],
     [("is_allowed", "isAllowed"), ("reason", "reason"), ("policy_version", "policyVersion"),
      ("source", "source")]),
    ("correct_sync", "orx_correct_sync", SYNC,
     [("drift_milliseconds", "driftMilliseconds"), ("round_trip_milliseconds", "roundTripMilliseconds"),
      ("jitter_milliseconds", "jitterMilliseconds"), ("buffer_ahead_milliseconds", "bufferAheadMilliseconds"),
      ("rate_x100", "rateX100"), ("stall_count", "stallCount"), ("sync_age_milliseconds", "syncAgeMilliseconds"),
      ("tolerance_milliseconds", "toleranceMilliseconds")],
     [("action", "action"), ("rate_x1000", "rateX1000"), ("correction_milliseconds", "correctionMilliseconds"),
      ("reason", "reason"), ("source", "source")]),
    ("decide_cinema_admission", "orx_decide_cinema_admission", CINEMA,
     [("source_fps_x100", "sourceFPSX100"), ("target_fps_x100", "targetFPSX100"),
      ("source_reservoir_milliseconds", "sourceReservoirMilliseconds"), ("headroom", "headroom"),
      ("thermal_state", "thermalState"), ("memory_pressure", "memoryPressure"),
      ("bridge_tenths_milliseconds", "bridgeTenthsMilliseconds"),
      ("temporal_tenths_milliseconds", "temporalTenthsMilliseconds"),
      ("interpolation_tenths_milliseconds", "interpolationTenthsMilliseconds"),
      ("metal_fx_tenths_milliseconds", "metalFXTenthsMilliseconds"),
      ("final_detail_tenths_milliseconds", "finalDetailTenthsMilliseconds"),
      ("model_tenths_milliseconds", "modelTenthsMilliseconds"), ("model_sample_count", "modelSampleCount")],
     [("route", "route"), ("sparse_anchor_interval_frames", "sparseAnchorIntervalFrames"),
      ("safe_budget_tenths_milliseconds", "safeBudgetTenthsMilliseconds"), ("reason", "reason"),
      ("source", "source")]),
]


def fact_grid(base, names):
    """The base facts, then each fact in turn at the edges of the 32-bit range and near the thresholds."""
    yield base
    for name in names:
        for value in (INT32_MIN, -1, 0, 1, 2, 1000, INT32_MAX):
            yield type(base)(**{**vars(base), name: value})


class RawRuntime:
    """The C API called directly, to compare the binding with."""

    def __init__(self, directory):
        self.lib = ctypes.CDLL(str(LIBRARY))
        self.lib.orx_runtime_open.argtypes = [ctypes.c_char_p, ctypes.POINTER(ctypes.c_void_p)]
        self.lib.orx_runtime_close.argtypes = [ctypes.c_void_p]
        self.handle = ctypes.c_void_p()
        assert self.lib.orx_runtime_open(os.fsencode(directory), ctypes.byref(self.handle)) == 0

    def decide(self, function, facts, fact_names, decision_names):
        raw_facts = c_struct([c for _, c in fact_names])(**{c: getattr(facts, py) for py, c in fact_names})
        raw = c_struct([c for _, c in decision_names])()
        assert getattr(self.lib, function)(self.handle, ctypes.byref(raw_facts), ctypes.byref(raw)) == 0
        return {py: getattr(raw, c) for py, c in decision_names}

    def close(self):
        self.lib.orx_runtime_close(self.handle)


class CapturedLog:
    """The runtime's log, kept for the test instead of going to standard error."""

    def __init__(self):
        self.messages = []

    def __enter__(self):
        orx.set_log_callback(lambda level, message: self.messages.append((level, message)))
        return self

    def __exit__(self, *exc_info):
        orx.set_log_callback(None)


class DecisionTests(unittest.TestCase):
    def test_decisions_are_the_libraries_field_for_field(self):
        raw = RawRuntime(ARTIFACTS)
        self.addCleanup(raw.close)
        with orx.Runtime(ARTIFACTS) as runtime:
            for method, function, base, fact_names, decision_names in KINDS:
                answers = set()
                for facts in fact_grid(base, [py for py, _ in fact_names]):
                    decision = getattr(runtime, method)(facts)
                    want = raw.decide(function, facts, fact_names, decision_names)
                    self.assertEqual(vars(decision), want, f"{method}{facts}")
                    self.assertIs(decision.source, orx.DecisionSource.POLICY)
                    answers.add(decision)
                # Agreement over more than one answer, not over one constant.
                self.assertGreater(len(answers), 1, method)
            self.assertIsInstance(runtime.authorize(AUTHORIZATION).is_allowed, bool)
            self.assertEqual(runtime.failure_count, 0)

    def test_a_missing_directory_gives_the_fail_safe_decisions(self):
        with CapturedLog(), orx.Runtime(ARTIFACTS / "missing") as runtime:
            unavailable = orx.DecisionSource.MODULE_UNAVAILABLE
            cases = [
                (runtime.authorize(AUTHORIZATION), orx.AuthorizationDecision(False, 100, 0, unavailable)),
                (runtime.correct_sync(SYNC), orx.SyncDecision(0, 1000, 0, 1, unavailable)),
                (runtime.decide_cinema_admission(CINEMA), orx.CinemaAdmissionDecision(0, 0, 0, 6, unavailable)),
            ]
            for got, want in cases:
                with self.subTest(type(want).__name__):
                    self.assertEqual(got, want)

    def test_facts_outside_int32_or_not_ints_are_refused(self):
        cases = [
            (INT32_MAX + 1, ValueError),
            (INT32_MIN - 1, ValueError),
            (2**64, ValueError),
            (True, TypeError),
            (1.0, TypeError),
            ("1", TypeError),
            (None, TypeError),
        ]
        for facts_type, base in ((orx.AuthorizationFacts, AUTHORIZATION), (orx.SyncFacts, SYNC),
                                 (orx.CinemaAdmissionFacts, CINEMA)):
            last = list(vars(base))[-1]
            for value, error in cases:
                with self.subTest(facts=facts_type.__name__, value=value):
                    with self.assertRaises(error):
                        facts_type(**{**vars(base), last: value})
        for edge in (INT32_MIN, INT32_MAX):
            self.assertEqual(orx.SyncFacts(*[edge] * 8).rate_x100, edge)

    def test_facts_of_another_decision_are_refused(self):
        with orx.Runtime(ARTIFACTS) as runtime:
            for method, facts in (("authorize", SYNC), ("correct_sync", CINEMA),
                                  ("decide_cinema_admission", AUTHORIZATION), ("authorize", (1, 3, 7))):
                with self.subTest(method=method, facts=type(facts).__name__):
                    with self.assertRaises(TypeError):
                        getattr(runtime, method)(facts)


class RuntimeTests(unittest.TestCase):
    def test_what_a_runtime_reports_of_its_artifacts(self):
        scratch = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, scratch)
        shutil.copytree(ARTIFACTS, scratch / "partial")
        with open(scratch / "partial" / "cinema_admission.wasm", "ab") as module:
            module.write(b"x")
        cases = [  # directory, fully available, available kinds, status prefix
            (ARTIFACTS, True, set(orx.DecisionKind), "ORX active"),
            (str(ARTIFACTS), True, set(orx.DecisionKind), "ORX active"),
            (scratch / "partial", False, {orx.DecisionKind.AUTHORIZATION, orx.DecisionKind.SYNC}, "ORX"),
            (scratch / "missing", False, set(), "ORX unavailable"),
        ]
        for directory, fully, kinds, status in cases:
            with self.subTest(directory=directory), CapturedLog(), orx.Runtime(directory) as runtime:
                self.assertEqual(runtime.fully_available, fully)
                self.assertEqual({kind for kind in orx.DecisionKind if runtime.is_available(kind)}, kinds)
                self.assertTrue(runtime.status.startswith(status), runtime.status)
                if fully:
                    self.assertIsNone(runtime.load_error)
                else:
                    self.assertTrue(runtime.load_error)
                self.assertEqual(
                    runtime.decide_cinema_admission(CINEMA).source == orx.DecisionSource.POLICY,
                    orx.DecisionKind.CINEMA_ADMISSION in kinds)

    def test_an_unknown_decision_kind_is_refused(self):
        with orx.Runtime(ARTIFACTS) as runtime, self.assertRaises(ValueError):
            runtime.is_available(3)

    def test_a_closed_runtime_refuses_every_use(self):
        runtime = orx.Runtime(ARTIFACTS)
        with runtime:
            pass
        runtime.close()  # closing again does nothing
        uses = {
            "authorize": lambda: runtime.authorize(AUTHORIZATION),
            "correct_sync": lambda: runtime.correct_sync(SYNC),
            "decide_cinema_admission": lambda: runtime.decide_cinema_admission(CINEMA),
            "load_error": lambda: runtime.load_error,
            "status": lambda: runtime.status,
            "failure_count": lambda: runtime.failure_count,
            "is_available": lambda: runtime.is_available(orx.DecisionKind.SYNC),
        }
        for name, use in uses.items():
            with self.subTest(name), self.assertRaises(ValueError):
                use()

    def test_the_log_receives_the_load_error_at_error_level(self):
        with CapturedLog() as log, orx.Runtime(ARTIFACTS / "missing") as runtime:
            errors = [message for level, message in log.messages if level == 1]
            self.assertTrue(errors, log.messages)
            self.assertIn(runtime.load_error, errors[-1])
        with self.assertRaises(TypeError):
            orx.set_log_callback("not callable")


class TextTests(unittest.TestCase):
    def test_canonical_json(self):
        long_array = "[" + ",".join(str(i) for i in range(20000)) + "]"
        cases = [
            ('{"b":[1,2],"a":"x"}', '{"a":"x","b":[1,2]}'),
            (' { "a" : [ true , false ] , "A" : { } } ', '{"A":{},"a":[true,false]}'),
            ('{"name":"café","ünï":"ß"}', '{"name":"café","ünï":"ß"}'),  # lengths are in bytes
            (b'{"b":-1,"a":0}', '{"a":0,"b":-1}'),
            (long_array, long_array),  # longer than any first guess at a buffer
        ]
        for text, canonical in cases:
            with self.subTest(text=text[:40]):
                self.assertEqual(orx.canonicalize_json(text), canonical)

    def test_refused_json_raises_with_the_parsers_message(self):
        cases = [
            ("1.5", "orx.v051.parse_invalid"),
            ('{"a":1,"a":2}', "orx.v051.collection_duplicate"),
            ("{} x", "orx.v051.parse_invalid"),
            ("{}\0junk", "orx.v051.parse_invalid"),  # the NUL and what follows reach the parser
            ("[" * 600 + "]" * 600, "orx.v051"),
            ("", "orx.v051"),
        ]
        for text, message in cases:
            with self.subTest(text=text[:20]):
                with self.assertRaises(orx.InvalidInputError) as raised:
                    orx.canonicalize_json(text)
                self.assertTrue(str(raised.exception).startswith(message), raised.exception)
                self.assertEqual(raised.exception.status, 3)
                self.assertIsInstance(raised.exception, ValueError)
                with self.assertRaises(orx.InvalidInputError):
                    orx.domain_digest("ORX_DECISION_EVIDENCE_V1", text)
        with self.assertRaises(TypeError):
            orx.canonicalize_json({"a": 1})

    def test_domain_digest(self):
        self.assertEqual(orx.domain_digest("ORX_POLICY_ARTIFACT_V1", '{ "b" : [1,2], "a":"x" }'),
                         "sha256:9d1d90fe77061abcaa1d7a5e03b6cb06fe13a7162825043b628b5e30ccaa47da")
        # SHA-256 over the tag, a zero byte and the canonical bytes.
        for tag, json in (("ORX_DECISION_EVIDENCE_V1", '{"example":"ravo-orx","version":1}'),
                          ("T", b'[1, "\xc3\xa9"]'), ("ORX_POLICY_ARTIFACT_V1", "{}")):
            with self.subTest(tag=tag, json=json):
                canonical = orx.canonicalize_json(json).encode()
                want = "sha256:" + hashlib.sha256(tag.encode() + b"\0" + canonical).hexdigest()
                self.assertEqual(orx.domain_digest(tag, json), want)
        with self.assertRaises(ValueError):
            orx.domain_digest("ORX\0V1", "{}")

    def test_decision_evidence(self):
        valid = EVIDENCE.read_bytes()
        orx.check_decision_evidence(valid)
        orx.check_decision_evidence(valid.decode())
        refused = {
            "a leading space": b" " + valid,
            "a trailing newline": valid + b"\n",
            "cut short": valid[:-1],
            "a field renamed": valid.replace(b'"policy_identity"', b'"policy_identitx"'),
            "empty": b"",
        }
        for what, data in refused.items():
            with self.subTest(what), self.assertRaises(orx.InvalidInputError) as raised:
                orx.check_decision_evidence(data)
            self.assertTrue(str(raised.exception))

    def test_versions(self):
        self.assertEqual(orx.version(), "1.0.0")
        self.assertEqual(orx.abi_version(), 1)


def run_python(code, env, cwd=None):
    return subprocess.run([sys.executable, "-c", code], env=env, cwd=cwd, capture_output=True, text=True)


class LibraryLookupTests(unittest.TestCase):
    def setUp(self):
        scratch = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, scratch)
        self.package = scratch / "ravo_orx"
        shutil.copytree(pathlib.Path(orx.__file__).parent, self.package,
                        ignore=shutil.ignore_patterns("_location.py", "__pycache__"))
        self.env = {key: value for key, value in os.environ.items()
                    if key not in ("RAVO_ORX_LIBRARY", "LD_LIBRARY_PATH")}
        self.env.update(PYTHONPATH=str(scratch), PYTHONDONTWRITEBYTECODE="1")

    def import_version(self, **env):
        return run_python("import ravo_orx; print(ravo_orx.version())", {**self.env, **env})

    def test_the_library_is_found_relative_to_the_package(self):
        relative = os.path.relpath(LIBRARY, self.package)
        (self.package / "_location.py").write_text(f"LIBRARY_FROM_PACKAGE = {relative!r}\n")
        self.assertEqual(self.import_version().stdout, "1.0.0\n")
        (self.package / "_location.py").write_text("LIBRARY_FROM_PACKAGE = '../nowhere/libravo-orx.so.1'\n")
        self.assertIn("ImportError: ravo_orx: cannot load", self.import_version().stderr)

    def test_without_a_location_the_system_loader_finds_it(self):
        self.assertEqual(self.import_version(LD_LIBRARY_PATH=str(LIBRARY.parent)).stdout, "1.0.0\n")

    def test_a_library_that_is_not_ravo_orx_is_refused(self):
        for library in (str(LIBRARY.parent / "nowhere.so"), "libc.so.6"):
            with self.subTest(library):
                result = self.import_version(RAVO_ORX_LIBRARY=library)
                self.assertIn(f"ImportError: ravo_orx: cannot load the Ravo ORX library from '{library}'",
                              result.stderr)


class ExampleTests(unittest.TestCase):
    def test_the_example_prints_the_shared_lines(self):
        env = {**os.environ, "PYTHONPATH": str(ROOT / "python"), "PYTHONDONTWRITEBYTECODE": "1"}
        result = subprocess.run([sys.executable, str(ROOT / "examples" / "python" / "decisions.py")],
                                env=env, cwd=ROOT, capture_output=True, text=True)
        self.assertEqual(result.returncode, 0, result.stderr)
        with orx.Runtime(ARTIFACTS) as runtime:
            a, s = runtime.authorize(AUTHORIZATION), runtime.correct_sync(SYNC)
            c = runtime.decide_cinema_admission(CINEMA)
        self.assertEqual(result.stdout.splitlines(), [
            f"authz isAllowed={int(a.is_allowed)} reason={a.reason} policyVersion={a.policy_version} source=0",
            f"sync action={s.action} rateX1000={s.rate_x1000} correctionMilliseconds={s.correction_milliseconds} "
            f"reason={s.reason} source=0",
            f"cinema route={c.route} sparseAnchorIntervalFrames={c.sparse_anchor_interval_frames} "
            f"safeBudgetTenthsMilliseconds={c.safe_budget_tenths_milliseconds} reason={c.reason} source=0",
            "digest sha256:ef40a3de4e711f07ecbfa66435ccdb38e071cbba3fff90bc371a46a8988e2724",
        ])


if __name__ == "__main__":
    unittest.main()
