#!/usr/bin/env python3
"""Checks how libraries were linked, and that they do not hold the path of the sources.

usage: check_hardening.py SOURCE_DIR OBJDUMP LIBRARY ...
"""

import pathlib
import re
import subprocess
import sys

source, objdump, *libraries = sys.argv[1:]
problems = []
for library in libraries:
    text = subprocess.run([objdump, "-p", library], check=True, capture_output=True, text=True).stdout
    is_windows = library.endswith(".dll")
    wanted = ["DYNAMIC_BASE", "NX_COMPAT"] if is_windows else ["RELRO off", "STACK off"]
    problems += [f"{library}: no {mark}" for mark in wanted if mark not in text]
    if not is_windows:
        flags = re.search(r"^\s*FLAGS_1\s+(0x\w+)", text, re.MULTILINE)
        if not flags or not int(flags[1], 16) & 1:
            problems.append(f"{library}: symbols are not bound at the start")
        stack = text.partition("STACK off")[2].splitlines()
        if len(stack) > 1 and not stack[1].rstrip().endswith("flags rw-"):
            problems.append(f"{library}: the stack is executable")
    if source.encode() in pathlib.Path(library).read_bytes():
        problems.append(f"{library}: holds the path of the sources")
print("\n".join(problems) or "hardened")
sys.exit(1 if problems else 0)
