#!/usr/bin/env python3
"""Lists the functions that the public headers declare: name, bytes of arguments on 32-bit x86, and arguments.

usage: exports.py [--json] [INCLUDE_DIR]
"""

import json
import pathlib
import re
import sys

DECLARATION = re.compile(r"ZORJ_API\s+(?P<result>[\w\s*]+?)\s*ZORJ_CALL\s+(?P<name>\w+)\s*\((?P<arguments>[^;]*)\)\s*;")
COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)


def argument_bytes(argument):
    """Bytes of an argument on the 32-bit stack."""
    return 8 if argument.startswith("RoiSize") else 4


def exports(include_dir):
    found = []
    for header in sorted(pathlib.Path(include_dir).rglob("*.h")):
        for match in DECLARATION.finditer(COMMENT.sub("", header.read_text())):
            arguments = [" ".join(a.split()) for a in match["arguments"].split(",") if a.strip() != "void"]
            found.append(
                {
                    "name": match["name"],
                    "result": match["result"],
                    "arguments": arguments,
                    "argumentBytes": sum(map(argument_bytes, arguments)),
                }
            )
    return sorted(found, key=lambda export: export["name"])


def main():
    arguments = [a for a in sys.argv[1:] if a != "--json"]
    found = exports(arguments[0] if arguments else pathlib.Path(__file__).parent.parent / "include")
    if "--json" in sys.argv:
        print(json.dumps(found, indent=1))
        return
    for export in found:
        print(export["name"], export["argumentBytes"], ", ".join(export["arguments"]), sep="\t")


if __name__ == "__main__":
    main()
