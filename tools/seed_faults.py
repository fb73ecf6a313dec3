#!/usr/bin/env python3
"""Plants one fault at a time in a copy of the sources, and counts how many the tests notice.

usage: seed_faults.py [--count 120] [--seed 1] [--only PATH_PART] [--work build/faults]

Faults are drawn evenly from five kinds: a changed constant, a dropped check, two checks the wrong way round, a bound off
by one, a load or store that is too wide or one element off. What does not compile, and what faults_without_effect.txt
lists as nothing that a caller could see, is drawn again. The program ends with 1 if less than 90 % are noticed.
"""
import argparse
import pathlib
import random
import re
import shutil
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
WITHOUT_EFFECT = ROOT / "tools" / "faults_without_effect.txt"
FAMILIES = ["hdp", "jpeg", "jpeg2k", "texture", "tiff"]
CHECK = re.compile(r"^\s*if \(.*\) return (?:Status\w+|status);$")
NUMBER = re.compile(r"(?<![\w.'])(?:0x[0-9A-Fa-f]+|[0-9]+)(?=[uU]?\b)(?![\w.'])")
BOUND = re.compile(r" (<=|>=|<|>) (?=[\w(*:-])")
LOAD = re.compile(r"\b(?:LoadU|StoreU|loadUnaligned|storeUnaligned|loadBigEndian\d+|storeBigEndian\d+)\(")


def replaced(line, match, text):
    return line[: match.start()] + text + line[match.end() :]


def constants(lines, i):
    for match in NUMBER.finditer(lines[i].split("//")[0]):
        yield [replaced(lines[i], match, f"{int(match[0], 0) + 1}")]


def dropped_checks(lines, i):
    if CHECK.match(lines[i]):
        yield [""]


def swapped_checks(lines, i):
    if CHECK.match(lines[i]) and i + 1 < len(lines) and CHECK.match(lines[i + 1]):
        yield [lines[i + 1], lines[i]]


def bounds(lines, i):
    other = {"<": "<=", "<=": "<", ">": ">=", ">=": ">"}
    if "template" in lines[i]:
        return
    for match in BOUND.finditer(lines[i].split("//")[0]):
        yield [replaced(lines[i], match, f" {other[match[1]]} ")]


def end_of_last_argument(line, start):
    depth = 1
    for end in range(start, len(line)):
        depth += {"(": 1, ")": -1}.get(line[end], 0)
        if depth == 0:
            return end
    return None


def accesses(lines, i):
    line = lines[i].split("//")[0]
    for match in LOAD.finditer(line):
        end = end_of_last_argument(line, match.end())
        if end is not None:
            inner = line[match.end() : end]
            pointer = "," if match[0].startswith(("LoadU", "StoreU")) else None
            parts = inner.rsplit(",", 1) if pointer else [inner]
            if len(parts) == 2:
                yield [line[: match.end()] + parts[0] + ", 1 + (" + parts[1].strip() + ")" + line[end:]]
            elif "," not in inner:
                yield [line[: match.end()] + "1 + (" + inner + ")" + line[end:]]
    for match in re.finditer(r"\bmem(?:cpy|set|move)\(", line):
        end = end_of_last_argument(line, match.end())
        if end is not None:
            yield [line[:end] + " + 1" + line[end:]]


KINDS = {
    "constant": constants,
    "dropped check": dropped_checks,
    "swapped checks": swapped_checks,
    "bound": bounds,
    "access": accesses,
}


def code_lines(lines):
    """Indices of lines that are code: no comments, directives, assertions at compile time."""
    for i, line in enumerate(lines):
        text = line.strip()
        if text and not text.startswith(("//", "#", "static_assert", "namespace", "using ")):
            yield i


def all_faults(kind, only):
    for path in sorted((ROOT / "src").rglob("*")):
        if path.suffix not in (".cpp", ".h") or only not in str(path):
            continue
        lines = path.read_text().split("\n")
        for i in code_lines(lines):
            for change in KINDS[kind](lines, i):
                yield path.relative_to(ROOT), i, change


def changed(lines, first, change):
    """A fault in one line, as faults_without_effect.txt has it."""
    texts = [" / ".join(line.strip() for line in part) for part in (lines[first : first + len(change)], change)]
    return f"{texts[0]} -> {texts[1]}"


def without_effect():
    """Pairs of a path and what is changed there."""
    entries = WITHOUT_EFFECT.read_text().split("\n\n")[1:]
    pairs = {tuple(entry.strip().split("\n")[:2]) for entry in entries}
    for path, change in pairs:
        if change.split(" -> ")[0].split(" / ")[0] not in (ROOT / path).read_text():
            sys.exit(f"{WITHOUT_EFFECT.name}: {path} has no such line: {change}")
    return pairs


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)


class Copy:
    """A copy of the project with a build of its library and tests."""

    def __init__(self, directory):
        self.source, self.build = directory / "source", directory / "build"
        shutil.rmtree(self.source, ignore_errors=True)
        files = run(["git", "ls-files", "--cached", "--others", "--exclude-standard"], cwd=ROOT, check=True).stdout
        for name in files.splitlines():
            (self.source / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(ROOT / name, self.source / name)
        run(["cmake", "-G", "Ninja", "-S", self.source, "-B", self.build, "-DZORJ_TESTS=ON", "-DCMAKE_BUILD_TYPE=Release",
             "-DCMAKE_CXX_FLAGS_RELEASE=-O1"], check=True)

    def compiled(self, programs):
        return run(["cmake", "--build", self.build, "--target", *programs]).returncode == 0

    def notices(self, program):
        """How the program ended badly, or None."""
        try:
            result = run([self.build / "bin" / program, "--gtest_brief=1", "--gtest_fail_fast"], timeout=300)
        except subprocess.TimeoutExpired:
            return f"{program}: does not end"
        if result.returncode == 0:
            return None
        failed = re.search(r"\[  FAILED  \] (\S+)", result.stdout)
        return f"{program}: {failed[1] if failed else f'ended by {result.returncode}'}"


def programs_for(path):
    """The tests that are quick to notice, then those of the family; of all families for what they share."""
    family = path.parts[1]
    return [f"{name}_tests" for name in ["hostile", *(["core", *FAMILIES] if family == "core" else [family])]]


def seed(copy, path, first, change):
    """None if the fault does not compile, else what noticed it or an empty string."""
    target = copy.source / path
    original = target.read_text()
    lines = original.split("\n")
    lines[first : first + len(change)] = change
    programs = programs_for(path)
    try:
        target.write_text("\n".join(lines))
        if not copy.compiled(programs):
            return None
        return next(filter(None, map(copy.notices, programs)), "")
    finally:
        target.write_text(original)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=120)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", default="")
    parser.add_argument("--work", type=pathlib.Path, default=ROOT / "build" / "faults")
    options = parser.parse_args()

    draw = random.Random(options.seed)
    decks = {}
    for kind in KINDS:
        decks[kind] = list(all_faults(kind, options.only))
        draw.shuffle(decks[kind])
    print(", ".join(f"{kind}: {len(deck)} possible" for kind, deck in decks.items()), flush=True)

    copy = Copy(options.work)
    every_program = sorted({program for path in (ROOT / "src").iterdir() if path.is_dir()
                            for program in programs_for(path.relative_to(ROOT) / "_")})
    if not copy.compiled(every_program):
        sys.exit("the sources do not compile as they are")

    ignored = without_effect()
    noticed, seeded = 0, 0
    kinds = list(KINDS)
    while seeded < options.count and any(decks.values()):
        kind = kinds[seeded % len(kinds)]
        if not decks[kind]:
            kinds.remove(kind)
            continue
        path, first, change = decks[kind].pop()
        if (str(path), changed((ROOT / path).read_text().split("\n"), first, change)) in ignored:
            continue
        started = time.monotonic()
        result = seed(copy, path, first, change)
        if result is None:
            continue
        seeded += 1
        noticed += bool(result)
        print(f"{seeded:4} {'noticed ' if result else 'SURVIVED'} {kind:14} {path}:{first + 1} "
              f"{time.monotonic() - started:.0f} s  {result}", flush=True)
        if not result:
            print("".join(f"       | {line.strip()}\n" for line in change), end="", flush=True)
    print(f"{noticed} of {seeded} faults noticed ({100 * noticed / max(seeded, 1):.0f} %)")
    sys.exit(noticed < 0.9 * seeded)


if __name__ == "__main__":
    main()
