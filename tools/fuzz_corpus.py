#!/usr/bin/env python3
"""Inputs of a fuzzer as a text of one line each, in base64, and back.

usage: fuzz_corpus.py unpack TEXT DIRECTORY
       fuzz_corpus.py pack DIRECTORY TEXT
"""
import base64
import pathlib
import sys


def unpack(text, directory):
    directory.mkdir(parents=True, exist_ok=True)
    for number, line in enumerate(text.read_text().split()):
        (directory / f"kept{number}").write_bytes(base64.b64decode(line))


def pack(directory, text):
    inputs = sorted((path.read_bytes() for path in directory.iterdir()), key=lambda data: (len(data), data))
    text.write_text("".join(base64.b64encode(data).decode() + "\n" for data in inputs if data))


if __name__ == "__main__":
    actions = {"unpack": unpack, "pack": pack}
    if len(sys.argv) != 4 or sys.argv[1] not in actions:
        sys.exit(__doc__)
    actions[sys.argv[1]](pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3]))
