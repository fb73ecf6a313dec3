#!/usr/bin/env python3
"""Calls the library through ctypes, with nothing but the list of its functions.

usage: convert.py LIBRARY EXPORTS_JSON
"""

import ctypes
import json
import sys

VALUES = {
    "uint8_t": ctypes.c_uint8,
    "uint16_t": ctypes.c_uint16,
    "int16_t": ctypes.c_int16,
    "int32_t": ctypes.c_int32,
    "uint32_t": ctypes.c_uint32,
    "const char*": ctypes.c_char_p,
    "char[4]": ctypes.c_char * 4,
}


def bind(path, interface):
    """The library, and its records, with the argument types of all functions set."""
    library = ctypes.CDLL(path)
    records = {}
    for name, fields in interface["records"].items():
        members = [(field["name"], VALUES[field["type"]]) for field in fields]
        records[name] = type(name, (ctypes.Structure,), {"_fields_": members})
    by_value = {**VALUES, **records}
    for function in interface["functions"]:
        bound = getattr(library, function["name"])
        bound.argtypes = [
            by_value[argument["type"]] if argument["kind"] in ("value", "step", "record") else ctypes.c_void_p
            for argument in function["arguments"]
        ]
        pointed_to = function["result"].removeprefix("const ").removesuffix("*")
        bound.restype = ctypes.POINTER(records[pointed_to]) if pointed_to in records else ctypes.c_int32
    return library, records


def main():
    with open(sys.argv[2]) as file:
        interface = json.load(file)
    library, records = bind(sys.argv[1], interface)
    status = interface["enumerations"]["StatusCode"]
    version = library.zorjGetLibVersion().contents
    assert (version.major, version.minor) == (6, 1) and version.targetCpu == b"q5"

    width, height = 33, 5
    size = records["RoiSize"](width, height)
    pixels = (ctypes.c_uint8 * (3 * width * height))(*(i * 37 % 256 for i in range(3 * width * height)))
    planes = [(ctypes.c_uint8 * (width * height))() for _ in range(3)]
    addresses = (ctypes.c_void_p * 3)(*(ctypes.addressof(plane) for plane in planes))
    back = (ctypes.c_uint8 * len(pixels))()
    assert library.zoriRGBToYCbCr_JPEG_8u_C3P3R(pixels, 3 * width, addresses, width, size) == status["StatusOk"]
    assert library.zoriYCbCrToRGB_JPEG_8u_P3C3R(addresses, width, back, 3 * width, size) == status["StatusOk"]
    worst = max(abs(a - b) for a, b in zip(pixels, back))
    assert worst <= 2, f"a round trip is off by {worst}"
    assert library.zoriRGBToYCbCr_JPEG_8u_C3P3R(None, 1, addresses, 1, size) == status["StatusNullPointer"]
    print(f"{len(interface['functions'])} functions bound, RGB to YCbCr and back within {worst}")


if __name__ == "__main__":
    main()
