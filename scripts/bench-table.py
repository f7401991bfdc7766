#!/usr/bin/env python3
"""Prints the side-by-side benchmark table of scripts/bench from one run.

Whole commands are timed as the operating system accounts a finished child (user + system CPU seconds,
which two busy cores disturb less than wall time), ours and the reference alternating, RUNS times each;
the table shows medians and their ratio. The decisions come from policy_decision_bench, floor and
precompiled tier in the same run. Every pair is checked to give the same output before it is timed.

    scripts/bench-table.py BUILD_DIR RUNS
"""

import json
import os
import random
import statistics
import subprocess
import sys
import tempfile

SHA_BYTES = 256 << 20
CANON_RECORDS = 100_000  # about 16 MiB of JSON
GRAPH_NODES = 256
GRAPH_EDGES = 200_000

PYTHON_CANON = ("import json, sys\n"
                "value = json.load(open(sys.argv[1], encoding='utf-8'))\n"
                "sys.stdout.write(json.dumps(value, sort_keys=True, separators=(',', ':'), ensure_ascii=False) + '\\n')\n")
PYTHON_GRAPH_DIGEST = ("import hashlib, json, sys\n"
                       "graph = json.load(open(sys.argv[1], encoding='utf-8'))\n"
                       "text = json.dumps(graph, sort_keys=True, separators=(',', ':'), ensure_ascii=False)\n"
                       "print(hashlib.sha256(text.encode('utf-8')).hexdigest())\n")


def write_once(path, make):
    """Writes the data file unless an earlier run made it."""
    if os.path.exists(path):
        return
    with open(path + ".part", "wb") as out:
        out.write(make())
    os.replace(path + ".part", path)


def random_bytes():
    rng = random.Random(20)
    return b"".join(rng.randbytes(1 << 20) for _ in range(SHA_BYTES >> 20))


def canon_document():
    rng = random.Random(20)
    records = [{"name": f"item-{i}", "id": i, "enabled": i % 3 == 0, "balance": rng.randint(-2**40, 2**40),
                "tags": [f"t{rng.randint(0, 99)}" for _ in range(3)],
                "owner": {"team": f"team-{i % 17}", "level": i % 5, "note": "caf\u00e9 \"quoted\" tab\t"}}
               for i in range(CANON_RECORDS)]
    return json.dumps({"records": records, "count": CANON_RECORDS}, indent=1, ensure_ascii=False).encode()


def scenario_graph():
    ids = [f"00000000-0000-4000-8000-{n:012X}" for n in range(GRAPH_NODES)]
    nodes = [{"id": i, "nodeType": "ravo.control.sequence", "nodeVersion": "1.0.0", "stableTargetIDs": []}
             for i in ids]
    edges = [{"fromNodeID": ids[e % GRAPH_NODES], "outputKey": f"out{e // GRAPH_NODES}",
              "toNodeID": ids[(7 * e + 1) % GRAPH_NODES], "inputKey": "event"} for e in range(GRAPH_EDGES)]
    # Already in the graph's normal order, so a plain sorted dump in Python hashes the same text.
    edges.sort(key=lambda e: f"{e['fromNodeID']}:{e['outputKey']}->{e['toNodeID']}:{e['inputKey']}")
    graph = {"nodes": nodes, "edges": edges, "requestedCapabilities": []}
    return json.dumps(graph, indent=1).encode()


def run(command):
    """One run: (cpu seconds, peak MiB, standard output).

    The peak is GNU time's, which forks the command from a small process: a command this process starts
    itself would report this process's own peak as well, since the kernel carries it across exec."""
    with tempfile.TemporaryFile() as errors:
        child = subprocess.Popen(["/usr/bin/time", "-f", "%M", *command], stdout=subprocess.PIPE, stderr=errors)
        output = child.stdout.read()
        _, status, usage = os.wait4(child.pid, 0)
        errors.seek(0)
        peak_kib = int(errors.read().split()[-1])
    child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode != 0:
        sys.exit(f"bench: {' '.join(command)} exited with {child.returncode}")
    return usage.ru_utime + usage.ru_stime, peak_kib / 1024, output


def compare(ours, reference, runs, same=lambda a, b: a == b):
    """Medians of alternating runs, after one warm-up pair whose outputs must agree."""
    first, second = run(ours), run(reference)
    if not same(first[2], second[2]):
        sys.exit(f"bench: {ours[0]} and {reference[0]} disagree on the output")
    pairs = [(run(ours), run(reference)) for _ in range(runs)]
    median = lambda side, field: statistics.median(pair[side][field] for pair in pairs)
    return {"ours": median(0, 0), "reference": median(1, 0), "ours_peak": median(0, 1)}


def medians(build, program, pattern):
    bench = os.path.join(build, "bench", program)
    report = subprocess.run([bench, f"--benchmark_filter={pattern}", "--benchmark_repetitions=5",
                             "--benchmark_report_aggregates_only=true", "--benchmark_format=json"],
                            check=True, capture_output=True, text=True).stdout
    return {b["run_name"]: b["cpu_time"] for b in json.loads(report)["benchmarks"]
            if b.get("aggregate_name") == "median"}


def decisions(build):
    found = medians(build, "policy_decision_bench", "^BM_(Authorize|Sync|Cinema)_(Floor|Precompiled)$")
    return {kind: (found[f"BM_{kind}_Precompiled"], found[f"BM_{kind}_Floor"]) for kind in ("Authorize", "Sync", "Cinema")}


def logged_decisions(build):
    found = medians(build, "decision_log_bench", "^BM_Authorize_(NoLog|RingLog|FileLog|CallbackLog)$")
    return {sink: (found[f"BM_Authorize_{sink}Log"], found["BM_Authorize_NoLog"]) for sink in ("Ring", "File", "Callback")}


def main():
    build, runs = sys.argv[1], int(sys.argv[2])
    tool = os.path.join(build, "checks", "ravo-orx")
    data = os.path.join(build, "bench-data")
    os.makedirs(data, exist_ok=True)
    blob = os.path.join(data, "sha-256MiB.bin")
    document = os.path.join(data, "canon-document.json")
    graph = os.path.join(data, "scenario-graph.json")
    for path, make in ((blob, random_bytes), (document, canon_document), (graph, scenario_graph)):
        write_once(path, make)

    hex_of = lambda output: output.split()[-1].decode().removeprefix("sha256:")
    sha = compare([tool, "digest", "--raw", blob], ["openssl", "dgst", "-sha256", "-r", blob], runs,
                  lambda a, b: a.split()[0].removeprefix(b"sha256:") == b.split()[0])
    canon = compare([tool, "canon", document], [sys.executable, "-c", PYTHON_CANON, document], runs)
    scenario = compare([tool, "scenario", "digest", graph], [sys.executable, "-c", PYTHON_GRAPH_DIGEST, graph], runs,
                       lambda a, b: hex_of(a) == hex_of(b))
    decided = decisions(build)
    logged = logged_decisions(build)

    document_mib = os.path.getsize(document) / (1 << 20)
    rows = [
        ("SHA-256 of 256 MiB: digest --raw / openssl dgst", f"{sha['ours']:.3f} s", f"{sha['reference']:.3f} s",
         sha["ours"] / sha["reference"], "<= 1.25"),
        (f"canon of {document_mib:.0f} MiB: ravo-orx / Python json", f"{canon['ours']:.3f} s",
         f"{canon['reference']:.3f} s", canon["ours"] / canon["reference"], "<= 0.20"),
        ("canon peak memory / document size", f"{canon['ours_peak']:.0f} MiB", f"{document_mib:.0f} MiB",
         canon["ours_peak"] / document_mib, "<= 3"),
        (f"scenario digest, {GRAPH_EDGES:,} edges: ravo-orx / Python",
         f"{scenario['ours']:.3f} s = {scenario['ours'] / GRAPH_EDGES * 1e6:.2f} us/edge",
         f"{scenario['reference']:.3f} s", scenario["ours"] / scenario["reference"], "<= 0.50"),
    ]
    for kind, (precompiled, floor) in decided.items():
        rows.append((f"{kind.lower()} decision: precompiled / native floor", f"{precompiled:.1f} ns",
                     f"{floor:.1f} ns", precompiled / floor, "<= 3"))

    for sink, (with_log, without) in logged.items():
        rows.append((f"authz decision with the {sink.lower()} log / without (+{with_log - without:.1f} ns)",
                     f"{with_log:.1f} ns", f"{without:.1f} ns", with_log / without, "+20 ns"))

    print(f"ORX benchmark table · median CPU time of {runs} alternating runs per command; decisions: "
          "policy_decision_bench medians of 5")
    header = ("measure", "ours", "reference", "ratio", "goal")
    widths = [max(len(str(r[i])) if i != 3 else 6 for r in rows + [header]) for i in range(5)]
    print("  ".join([header[0].ljust(widths[0])] + [h.rjust(w) for h, w in zip(header[1:4], widths[1:4])] + [header[4]]))
    for what, ours, reference, ratio, goal in rows:
        print("  ".join([what.ljust(widths[0]), ours.rjust(widths[1]), reference.rjust(widths[2]),
                         f"{ratio:.2f}".rjust(widths[3]), goal]))


if __name__ == "__main__":
    main()
