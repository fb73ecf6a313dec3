#!/usr/bin/env python3
"""Tells what the memory sanitizer found in the library and the example codecs, of logs of programs that went on after
each report.

usage: memory_reports.py LOG...

The logs have addresses instead of names, as there are many. The C++ standard library of Debian is not instrumented: what
it writes passes for uninitialised wherever strings, paths and maps are used. So a report counts if its innermost frame,
but for intrinsics and Highway, lies in src, zorcore or a codec; examples/common, full of paths, does not count. Ends with
1 if there is a report that counts.
"""
import collections
import functools
import pathlib
import re
import subprocess
import sys

FRAME = re.compile(r" +#\d+ 0x[0-9a-f]+ +\((\S+)\+(0x[0-9a-f]+)\)")
COUNTED = re.compile(r"/((?:src|zorcore|examples/(?:dds|jpeg|jpeg2k|tiff))/\S+)$")
PASSED_OVER = ("/lib/clang/", "/hwy/")


@functools.cache
def symbolizer(program):
    command = ["llvm-symbolizer", "-e", program, "--inlines", "--functions=none"]
    return subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)


@functools.cache
def lines_at(program, offset):
    """The lines of the source that an address stands for, the innermost of inlined functions first."""
    process = symbolizer(program)
    print(offset, file=process.stdin, flush=True)
    return tuple(iter(lambda: process.stdout.readline().strip(), ""))


@functools.cache
def place(frames):
    """Where the first line that is not passed over lies, or None if it does not count."""
    for program, offset in frames:
        for line in lines_at(program, offset):
            if not any(part in line for part in PASSED_OVER):
                found = None if "/usr/" in line else COUNTED.search(line)
                return found and found[1]
    return None


def reports(log):
    """The frames of each report."""
    frames = None
    for line in log:
        if "WARNING: MemorySanitizer" in line:
            if frames is not None:
                yield tuple(frames)
            frames = []
        elif frames is not None and (match := FRAME.match(line)):
            frames.append((match[1], match[2]))
    if frames is not None:
        yield tuple(frames)


def main():
    elsewhere, found = 0, collections.Counter()
    for name in sys.argv[1:]:
        with open(name, errors="replace") as log:
            for frames in reports(log):
                if where := place(frames):
                    found[f"{pathlib.Path(name).name}: {where}"] += 1
                else:
                    elsewhere += 1
    for where, count in found.most_common():
        print(f"{count:6} {where}")
    print(f"{sum(found.values())} reports in the library and the codecs, {elsewhere} for the standard library")
    sys.exit(bool(found))


if __name__ == "__main__":
    main()
