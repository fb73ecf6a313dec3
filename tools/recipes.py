#!/usr/bin/env python3
"""Takes the programs out of a page of recipes: every fenced block whose first line is a comment with a file name.

usage: recipes.py PAGE DIRECTORY
"""

import pathlib
import re
import sys

LONGEST = 40
BLOCK = re.compile(r"^```(?:c|cpp)\n((?:/\*|//) (\w+\.(?:c|cpp))\b.*?)^```$", re.DOTALL | re.MULTILINE)


def main():
    page, directory = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    found = BLOCK.findall(page.read_text())
    for code, name in found:
        if code.count("\n") > LONGEST:
            sys.exit(f"{page}: {name} is longer than {LONGEST} lines")
        (directory / name).write_text(code)
    if not found:
        sys.exit(f"{page}: no recipes")


if __name__ == "__main__":
    main()
