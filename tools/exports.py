#!/usr/bin/env python3
"""Lists what the public headers declare, for tests and for bindings to other languages.

usage: exports.py [--json | --calls] [INCLUDE_DIR]

Plain output has a line for each function: name, bytes of arguments on 32-bit x86, arguments. The JSON, which
tools/exports.json keeps, is described in docs/bindings.md. --calls writes the table of C++ that tests/hostile/exports.h
reads: how to call each function, and the statuses that its comments name.
"""

import json
import pathlib
import re
import sys

DECLARATION = re.compile(r"ZORJ_API\s+(?P<result>[\w\s*]+?)\s*ZORJ_CALL\s+(?P<name>\w+)\s*\((?P<arguments>[^;]*)\)\s*;")
LAST_COMMENT = re.compile(r"/\*\*((?:(?!\*/).)*)\*/\s*$", re.DOTALL)
COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)
ENUMERATION = re.compile(r"typedef enum (\w+) \{(.*?)\}", re.DOTALL)
RECORD = re.compile(r"typedef struct (\w+) \{(.*?)\}", re.DOTALL)
OPAQUE = re.compile(r"typedef struct (\w+) \1;")
STATUS = re.compile(r"\bStatus[A-Z]\w+")
GROUP = re.compile(r"/\*\*((?:(?!\*/).)*?@name(?:(?!\*/).)*)\*/", re.DOTALL)
ARGUMENT = re.compile(r"(?P<const>const )?(?P<type>\w+)(?P<stars>\**) (?:const )?(?P<name>\w+)(?:\[(?P<count>\d*)\])?$")


def enumerations(code):
    found = {}
    for match in ENUMERATION.finditer(code):
        items = (item.split("=") for item in match[2].split(",") if item.strip())
        found[match[1]] = {name.strip(): int(value, 0) for name, value in items}
    return found


def records(code):
    found = {}
    for match in RECORD.finditer(code):
        fields = [re.match(r"(.*[ *])(\w+)(\[\d+\])?$", field.strip()) for field in match[2].split(";") if field.strip()]
        found[match[1]] = [{"name": field[2], "type": field[1].strip() + (field[3] or "")} for field in fields]
    return found


def argument_kind(parsed, interface):
    """What an argument is: see docs/bindings.md."""
    depth, is_array = len(parsed["stars"]), parsed["count"] is not None
    if is_array:
        return "pointers" if depth else "values"
    if depth == 0:
        if parsed["type"] in interface["records"]:
            return "record"
        return "step" if re.search(r"[sS]tep$", parsed["name"]) else "value"
    if depth == 2:
        return "created"
    return "object" if parsed["type"] in interface["opaque"] else "pointer"


def describe_argument(declaration, interface):
    parsed = ARGUMENT.match(declaration.replace("* const* const ", "** ").replace("* const ", "* "))
    if not parsed:
        raise ValueError(f"cannot read the argument '{declaration}'")
    kind = argument_kind(parsed, interface)
    argument = {"name": parsed["name"], "kind": kind, "type": parsed["type"], "declaration": declaration}
    if kind not in ("record", "step", "value"):
        argument["access"] = "read" if parsed["const"] else "write"
    if parsed["count"]:
        argument["count"] = int(parsed["count"])
    return argument


def argument_bytes(argument, interface):
    """Bytes of an argument on the 32-bit stack."""
    return 4 * len(interface["records"][argument["type"]]) if argument["kind"] == "record" else 4


def add_functions(interface, header, text):
    for match in DECLARATION.finditer(text):
        declarations = [" ".join(argument.split()) for argument in match["arguments"].split(",")]
        arguments = [describe_argument(d, interface) for d in declarations if d != "void"]
        documentation = LAST_COMMENT.search(text, 0, match.start())
        for argument in arguments:
            said = re.search(rf"@param {argument['name']}\b([^@]*)", documentation[1])
            if said and "may be null" in said[1].lower():
                argument["nullable"] = True
        interface["functions"].append(
            {
                "name": match["name"],
                "header": header,
                "result": match["result"],
                "argumentBytes": sum(argument_bytes(argument, interface) for argument in arguments),
                "arguments": arguments,
            }
        )


def read_headers(include_dir):
    include_dir = pathlib.Path(include_dir)
    texts = {path.relative_to(include_dir).as_posix(): path.read_text() for path in sorted(include_dir.rglob("*.h"))}
    code = COMMENT.sub("", "\n".join(texts.values()))
    interface = {
        "enumerations": enumerations(code),
        "records": records(code),
        "opaque": sorted(OPAQUE.findall(code)),
        "functions": [],
    }
    for header, text in texts.items():
        add_functions(interface, header, text)
    interface["functions"].sort(key=lambda function: function["name"])
    return interface


def to_json(interface):
    """JSON with a line for each function, enumeration and record."""

    def lines(entries):
        return ",\n  ".join(entries)

    def members(mapping):
        return lines(f"{json.dumps(key)}: {json.dumps(value)}" for key, value in mapping.items())

    return (
        f'{{\n "enumerations": {{\n  {members(interface["enumerations"])}\n }},\n'
        f' "records": {{\n  {members(interface["records"])}\n }},\n'
        f' "opaque": {json.dumps(interface["opaque"])},\n'
        f' "functions": [\n  {lines(map(json.dumps, interface["functions"]))}\n ]\n}}\n'
    )


def documented_statuses(name, text):
    """The statuses that the comments of a function, of its group and of its file name, and those of functions that
    its comment refers to."""
    declaration = next(match for match in DECLARATION.finditer(text) if match["name"] == name)
    comment = LAST_COMMENT.search(text, 0, declaration.start())[1]
    groups = [group[1] for group in GROUP.finditer(text, 0, declaration.start())]
    said = " ".join([comment, text[: text.index("*/")], *groups[-1:]])
    statuses = set(STATUS.findall(said)) - {"StatusCode", "StatusOk"}
    for other in re.findall(r"As (zori\w+)", comment):
        statuses |= documented_statuses(other, text)
    return statuses


ELEMENT_BYTES = {"void": 1, "float": 4, "double": 8, "TileRect": 16}


def call_parameters(argument, interface):
    """C++ initialisers of what tests/hostile/exports.h calls parameters: a record by value is one for each field."""
    if argument["kind"] == "record":
        fields = interface["records"][argument["type"]]
        return [f'{{"{argument["name"]}.{field["name"]}", Kind::kValue}}' for field in fields]
    kind, type_name = f'Kind::k{argument["kind"].capitalize()}', argument["type"]
    if argument["kind"] in ("value", "step"):
        return [f'{{"{argument["name"]}", {kind}}}']
    width = re.match(r"u?int(\d+)_t", type_name)
    size = int(width[1]) // 8 if width else ELEMENT_BYTES.get(type_name, 0)
    traits = [argument["access"] == "read", argument.get("nullable", False)]
    traits = ", ".join(str(trait).lower() for trait in traits)
    return [f'{{"{argument["name"]}", {kind}, "{type_name}", {size}, {traits}, {argument.get("count", 0)}}}']


def to_calls(interface, include_dir):
    rows = []
    for function in interface["functions"]:
        name, header = function["name"], function["header"]
        text = (pathlib.Path(include_dir) / header).read_text()
        statuses = ", ".join(sorted(documented_statuses(name, text)))
        parameters = ", ".join(sum((call_parameters(a, interface) for a in function["arguments"]), []))
        rows.append(f'{{"{name}", "{header}", invoke<&{name}>, {{{statuses}}}, {{{parameters}}}}},\n')
    return "".join(rows)


def exports(include_dir):
    return read_headers(include_dir)["functions"]


def main():
    directories = [a for a in sys.argv[1:] if not a.startswith("--")]
    include_dir = directories[0] if directories else pathlib.Path(__file__).parent.parent / "include"
    interface = read_headers(include_dir)
    if "--calls" in sys.argv:
        sys.stdout.write(to_calls(interface, include_dir))
        return
    if "--json" in sys.argv:
        sys.stdout.write(to_json(interface))
        return
    for function in interface["functions"]:
        declarations = ", ".join(argument["declaration"] for argument in function["arguments"])
        print(function["name"], function["argumentBytes"], declarations, sep="\t")


if __name__ == "__main__":
    main()
