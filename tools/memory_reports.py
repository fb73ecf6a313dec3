#!/usr/bin/env python3
"""Tells what the memory sanitizer found in the library, of logs of fuzzers that went on after each report.

usage: memory_reports.py LOG...

The C++ standard library of Debian is not instrumented: what it writes passes for uninitialised wherever containers and
strings are used, in the tests and example codecs. The library uses none. So a report counts if its innermost frame, but
for intrinsics and Highway, lies in src or zorcore. Ends with 1 if there is one.
"""
import collections
import pathlib
import re
import sys

FRAME = re.compile(r"^ +#\d+ 0x[0-9a-f]+ in (.*)$", re.MULTILINE)
PASSED_OVER = ("/lib/clang/", "/hwy/")


def place(frames):
    """Where in the library the first frame that counts lies, or None."""
    for frame in frames:
        if any(part in frame for part in PASSED_OVER):
            continue
        found = re.search(r"(?<!usr)/((?:src|zorcore)/\S+)$", frame)
        return found and found[1]
    return None


def main():
    reports, found = 0, collections.Counter()
    for log in sys.argv[1:]:
        for report in pathlib.Path(log).read_text(errors="replace").split("WARNING: MemorySanitizer")[1:]:
            reports += 1
            where = place(FRAME.findall(report))
            if where:
                found[f"{pathlib.Path(log).stem}: {where}"] += 1
    for where, count in found.most_common():
        print(f"{count:6} {where}")
    print(f"{sum(found.values())} reports in the library, {reports - sum(found.values())} for the standard library")
    sys.exit(bool(found))


if __name__ == "__main__":
    main()
