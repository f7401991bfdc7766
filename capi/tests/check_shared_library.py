#!/usr/bin/env python3
"""Checks libravo-orx as an application engineer would: its SONAME, that its dynamic symbols are exactly
the C functions <ravo-orx/orx.h> declares plus C++ names of the public API (never an internal one), and
that it needs nothing beyond the C and C++ runtimes.

Usage: check_shared_library.py LIBRARY HEADER SONAME. Exit 0 when all hold, 1 with the reasons."""
import re
import subprocess
import sys

ALLOWED_NEEDED = {"libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6", "ld-linux-x86-64.so.2"}
CXX_PREFIXES = ("ravo::orx::", "typeinfo for ravo::orx::", "typeinfo name for ravo::orx::", "vtable for ravo::orx::")


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def defined_symbols(library, demangle):
    """(name, version) of every defined dynamic symbol."""
    output = run("nm", "-D", "--defined-only", "--with-symbol-versions", *(["-C"] if demangle else []), library)
    symbols = []
    for line in output.splitlines():
        parts = line.split(" ", 2)
        if len(parts) < 3:
            continue
        name, _, version = parts[2].partition("@")
        symbols.append((name, version.lstrip("@"), parts[1]))
    return symbols


def problems(library, header, soname):
    found = []
    declared = set(re.findall(r"RAVO_ORX_API\s[^;(]*?\b(orx_\w+)\s*\(", open(header).read()))
    if not declared:
        found.append(f"{header} declares no RAVO_ORX_API function")
    dynamic = run("readelf", "-d", library)
    if f"Library soname: [{soname}]" not in dynamic:
        found.append(f"SONAME is not {soname}")
    for needed in re.findall(r"Shared library: \[([^\]]+)\]", dynamic):
        if needed not in ALLOWED_NEEDED:
            found.append(f"needs {needed}")
    exported_c = set()
    for (raw, version, kind), (demangled, _, _) in zip(defined_symbols(library, False), defined_symbols(library, True)):
        if kind == "A":  # the version node itself
            continue
        if version != "RAVO_ORX_1":
            found.append(f"{demangled} is not in version node RAVO_ORX_1")
        if raw.startswith("orx_"):
            exported_c.add(raw)
        elif not raw.startswith("_Z") or not demangled.startswith(CXX_PREFIXES) or "::internal::" in demangled:
            found.append(f"exports {demangled}")
    for name in sorted(declared - exported_c):
        found.append(f"does not export {name}")
    for name in sorted(exported_c - declared):
        found.append(f"exports {name}, which the header does not declare")
    return found


def main():
    if len(sys.argv) != 4:
        print(__doc__, file=sys.stderr)
        return 2
    found = problems(*sys.argv[1:])
    for problem in found:
        print(problem)
    print(f"{len(found)} problem(s)")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
