#!/usr/bin/env python3
"""Checks what the built library exports and imports against the headers and src/exports.txt.

usage: check_exports.py SOURCE_DIR LIBRARY [OBJDUMP]     (OBJDUMP: for a Windows DLL)
"""

import pathlib
import re
import subprocess
import sys

source, library = pathlib.Path(sys.argv[1]), sys.argv[2]
sys.path.insert(0, str(source / "tools"))
from exports import read_headers, to_json  # noqa: E402

problems = []


def expect_equal(what, found, expected):
    for name in sorted(set(found) - set(expected)):
        problems.append(f"{what} has {name}, which is not expected")
    for name in sorted(set(expected) - set(found)):
        problems.append(f"{what} lacks {name}")


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


interface = read_headers(source / "include")
declared = interface["functions"]
names = [export["name"] for export in declared]
listed = (source / "src/exports.txt").read_text().split()
expect_equal("src/exports.txt", listed, names)
if listed != sorted(set(listed)):
    problems.append("src/exports.txt is not sorted, or names a function twice")
if (source / "tools/exports.json").read_text() != to_json(interface):
    problems.append("tools/exports.json is not what the headers declare: run ./dev record")

tests = "".join(p.read_text() for p in (source / "tests").rglob("*_test.cpp"))
tested = set(re.findall(r"\bzor[ij]\w+", tests))
expect_equal("the tests", [n for n in names if n in tested], names)

if len(sys.argv) > 3:
    table = output(sys.argv[3], "-p", library).split("[Ordinal/Name Pointer] Table")[1]
    found = re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+\w+\s+)?(\S+)", table, re.MULTILINE)
    decorated = [f"{export['name']}@{export['argumentBytes']}" for export in declared]
    expect_equal("the DLL", found, names + decorated)
else:
    found = [line.split()[-1].split("@")[0] for line in output("nm", "-D", "--defined-only", library).splitlines()]
    expect_equal("the library", [n for n in found if n != "ZORJ_6"], names)
    undefined = [line.split()[-1] for line in output("nm", "-D", "--undefined-only", library).splitlines()]
    for name in undefined:
        if name.startswith("_Z") or "hwy" in name:
            problems.append(f"the library needs {name}, of C++'s or Highway's run-time library")

print("\n".join(problems) or f"{len(names)} exports")
sys.exit(1 if problems else 0)
