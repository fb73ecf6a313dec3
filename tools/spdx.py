#!/usr/bin/env python3
"""Writes the SPDX list of what the built libraries consist of and are linked with.

usage: spdx.py VERSION HIGHWAY_INCLUDE LIBRARY ...      (the list goes to standard output)

The libraries themselves are asked what they need, and a need without an entry here is an error.
"""

import datetime
import json
import os
import pathlib
import re
import subprocess
import sys

GCC = "GPL-3.0-or-later WITH GCC-exception-3.1"
HIGHWAY = ("Highway", "Apache-2.0 OR BSD-3-Clause")
# By shared library: name, licence.
SHARED = {
    "libc.so.6": ("glibc", "LGPL-2.1-or-later"),
    "libgcc_s.so.1": ("libgcc", GCC),
    "libgomp.so.1": ("libgomp", GCC),
    "libm.so.6": ("glibc", "LGPL-2.1-or-later"),
    "libstdc++.so.6": ("libstdc++", GCC),
    "KERNEL32.dll": ("Windows", "NOASSERTION"),
    "msvcrt.dll": ("Windows", "NOASSERTION"),
}
# What becomes part of a Windows DLL.
STATIC_WINDOWS = [
    ("libgcc", GCC),
    ("libgomp", GCC),
    ("libstdc++", GCC),
    ("mingw-w64 runtime", "ZPL-2.1 AND LicenseRef-Public-Domain"),
    ("winpthreads", "MIT AND BSD-3-Clause"),
]


def needed(library):
    """The shared libraries that a library names."""
    command = ["objdump", "-p", str(library)]
    text = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return re.findall(r"(?:NEEDED|DLL Name:)\s+(\S+)", text)


def identifier(name):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.]", "-", name)


def package(name, licence, version="NOASSERTION"):
    return {
        "SPDXID": identifier(name),
        "name": name,
        "versionInfo": version,
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": licence,
        "licenseDeclared": licence,
        "copyrightText": "NOASSERTION",
    }


def highway_version(include):
    text = (pathlib.Path(include) / "hwy/highway.h").read_text()
    return ".".join(re.search(rf"#define HWY_{part} (\d+)", text)[1] for part in ("MAJOR", "MINOR", "PATCH"))


def main():
    version, highway, *libraries = sys.argv[1:]
    libraries = [pathlib.Path(library) for library in libraries]
    packages = {"Highway": package(*HIGHWAY, highway_version(highway))}
    relations = {("zorj", "CONTAINS", "Highway")}
    for library in libraries:
        own = "zorcore" if "zorcore" in library.name else "zorj"
        packages[own] = package(own, "NOASSERTION", version)
        packages[own]["packageFileName"] = library.name
        parts = STATIC_WINDOWS if library.suffix == ".dll" else []
        for name, licence in parts:
            packages[name] = package(name, licence)
            relations.add((own, "STATIC_LINK", name))
        for file in needed(library):
            if file == "zorcore.dll" or file.startswith("libzorcore."):
                relations.add((own, "DYNAMIC_LINK", "zorcore"))
                continue
            if file not in SHARED:
                sys.exit(f"{library.name} needs {file}, which tools/spdx.py does not know")
            name, licence = SHARED[file]
            packages[name] = package(name, licence)
            relations.add((own, "DYNAMIC_LINK", name))
    created = datetime.datetime.fromtimestamp(int(os.environ.get("SOURCE_DATE_EPOCH", "0")), datetime.timezone.utc)
    described = [("SPDXRef-DOCUMENT", "DESCRIBES", identifier(own)) for own in ("zorj", "zorcore")]
    linked = [(identifier(a), relation, identifier(b)) for a, relation, b in sorted(relations)]
    document = {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"zorj-{version}",
        "documentNamespace": f"https://zorj.invalid/spdx/{version}/{libraries[0].name}",
        "creationInfo": {"created": created.strftime("%Y-%m-%dT%H:%M:%SZ"), "creators": ["Tool: tools/spdx.py"]},
        "packages": [packages[name] for name in sorted(packages)],
        "hasExtractedLicensingInfos": [
            {"licenseId": "LicenseRef-Public-Domain", "extractedText": "This file is placed in the public domain."}
        ],
        "relationships": [
            {"spdxElementId": a, "relationshipType": relation, "relatedSpdxElement": b}
            for a, relation, b in described + linked
        ],
    }
    print(json.dumps(document, indent=1))


if __name__ == "__main__":
    main()
