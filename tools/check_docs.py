#!/usr/bin/env python3
"""Checks the pages of the manual against the tree: links, names of functions, statuses, families."""

import pathlib
import re
import subprocess
import sys

from exports import read_headers

ROOT = pathlib.Path(__file__).parent.parent
LINK = re.compile(r"\]\((?!https?:)([^)#\s]*)(?:#([^)\s]+))?\)")
FENCED = re.compile(r"^```.*?^```$", re.DOTALL | re.MULTILINE)
HEADING = re.compile(r"^#+ (.*)$", re.MULTILINE)
problems = []


def anchors(page):
    headings = HEADING.findall(FENCED.sub("", page.read_text()))
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def check_links(page, text):
    for path, anchor in LINK.findall(FENCED.sub("", text)):
        target = (page.parent / path).resolve() if path else page
        if not target.exists():
            problems.append(f"{page}: no file {path}")
        elif anchor and anchor not in anchors(target):
            problems.append(f"{page}: no heading #{anchor} in {target.name}")


def check_names(page, text, names):
    for name in set(re.findall(r"\bzor[ij][A-Z]\w+", text)):
        is_prefix = name.endswith("_") and any(known.startswith(name) for known in names)
        if name not in names and not is_prefix:
            problems.append(f"{page}: no function {name}")


def main():
    interface = read_headers(ROOT / "include")
    names = {function["name"] for function in interface["functions"]} | {"zorjMalloc", "zorjFree"}
    listed = subprocess.run(
        ["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.md"],
        cwd=ROOT, check=True, capture_output=True, text=True,
    ).stdout.split()
    pages = {ROOT / path: (ROOT / path).read_text() for path in listed}
    for page, text in pages.items():
        check_links(page, text)
        check_names(page, text, names)

    table = re.findall(r"^\| `(\w+)` \| (-?\d+) \|", pages[ROOT / "docs/errors.md"], re.MULTILINE)
    if {name: int(value) for name, value in table} != interface["enumerations"]["StatusCode"]:
        problems.append("docs/errors.md: the statuses are not those of zorj/types.h")
    families = "".join(text for page, text in pages.items() if page.parent == ROOT / "docs")
    for header in sorted({function["header"] for function in interface["functions"]}):
        if f"(../include/{header})" not in families and header != "zorj/types.h":
            problems.append(f"docs: no page for {header}")

    print("\n".join(problems) or f"{len(pages)} pages")
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
