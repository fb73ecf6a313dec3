#!/usr/bin/env python3
"""Measures how far the library's transforms are from the exact ones, and writes docs/accuracy.md.

usage: accuracy.py LIBRARY [--check]      (--check: fails where the page is not what is measured)
"""

import ctypes
import math
import pathlib
import random
import sys

PAGE = pathlib.Path(__file__).parent.parent / "docs/accuracy.md"
BLOCKS = 600
PIXELS = 20000
TILE = 96


class RoiSize(ctypes.Structure):
    _fields_ = [("width", ctypes.c_int32), ("height", ctypes.c_int32)]


class TileRect(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int32) for name in ("x", "y", "width", "height")]


def array(kind, values):
    return (kind * len(values))(*values)


def int16s(values):
    return array(ctypes.c_int16, values)


def addresses(arrays):
    return array(ctypes.c_void_p, [ctypes.addressof(a) for a in arrays])


class Library:
    """Calls functions by name, and fails on any status but StatusOk."""

    def __init__(self, path):
        self.functions = ctypes.CDLL(path)

    def __call__(self, name, *arguments):
        status = getattr(self.functions, name)(*arguments)
        if status != 0:
            sys.exit(f"{name}: status {status}")


COSINES = [
    [(math.sqrt(0.125) if u == 0 else 0.5) * math.cos((2 * x + 1) * u * math.pi / 16) for x in range(8)] for u in range(8)
]


def transform_rows_and_transpose(block, matrix):
    return [[sum(a * b for a, b in zip(row, line)) for row in block] for line in matrix]


def exact_dct(values, matrix):
    rows = [values[8 * y : 8 * y + 8] for y in range(8)]
    rows = transform_rows_and_transpose(transform_rows_and_transpose(rows, matrix), matrix)
    return [value for row in rows for value in row]


def exact_forward(values):
    return exact_dct(values, COSINES)


def exact_inverse(values):
    return exact_dct(values, [list(column) for column in zip(*COSINES)])


def error_text(errors):
    errors = list(errors)
    largest = max(abs(error) for error in errors)
    if largest == 0:
        return "exact |"
    return f"{largest:.3g} | {math.sqrt(sum(e * e for e in errors) / len(errors)):.2g}"


def clamp(value, top=255):
    return min(max(value, 0), top)


def colour(zorj, dice):
    # A width of 8 n takes the fine precision, one of 7 the coarse one.
    for text, width in (("fine", 8), ("coarse", 7)):
        size = RoiSize(width, PIXELS // width)
        count = size.width * size.height
        pixels = array(ctypes.c_uint8, [dice.randrange(256) for _ in range(3 * count)])
        planes = [(ctypes.c_uint8 * count)() for _ in range(3)]
        back = (ctypes.c_uint8 * (3 * count))()
        zorj("zoriRGBToYCbCr_JPEG_8u_C3P3R", pixels, 3 * width, addresses(planes), width, size)
        zorj("zoriYCbCrToRGB_JPEG_8u_P3C3R", addresses(planes), width, back, 3 * width, size)
        forward, inverse = [], []
        for i in range(count):
            r, g, b = pixels[3 * i : 3 * i + 3]
            y, cb, cr = (plane[i] for plane in planes)
            luminance = 0.299 * r + 0.587 * g + 0.114 * b
            exact = luminance, (b - luminance) / 1.772 + 128, (r - luminance) / 1.402 + 128
            forward += [found - clamp(value) for found, value in zip((y, cb, cr), exact)]
            cb, cr = cb - 128, cr - 128
            exact = y + 1.402 * cr, y - 0.344136286 * cb - 0.714136286 * cr, y + 1.772 * cb
            inverse += [found - clamp(value) for found, value in zip(back[3 * i : 3 * i + 3], exact)]
        yield f"RGB to YCbCr, whole images, {text} precision", "8 bits", error_text(forward)
    yield "YCbCr to RGB, whole images", "8 bits", error_text(inverse)
    yield "RGB to YCbCr and back", "8 bits", error_text(a - b for a, b in zip(pixels, back))


def random_blocks(dice, top):
    """Noise, and smooth blocks, of signed values."""
    for i in range(BLOCKS):
        low, high = sorted(dice.randint(-top, top - 1) for _ in range(2)) if i % 2 else (-top, top - 1)
        yield [dice.randint(low, high) for _ in range(64)]


def dct(zorj, dice):
    unit = array(ctypes.c_uint16, [32768] * 64)
    ones, floats = array(ctypes.c_uint16, [1] * 64), array(ctypes.c_float, [1.0] * 64)
    forward, inverse, deep_forward, deep_inverse = [], [], [], []
    for values in random_blocks(dice, 128):
        result = (ctypes.c_int16 * 64)()
        zorj("zoriDCTQuantFwd8x8_JPEG_16s_C1", int16s(values), result, unit)
        forward += [a - b for a, b in zip(result, exact_forward(values))]
        coefficients = [round(value) for value in exact_forward(values)]
        zorj("zoriDCTQuantInv8x8_JPEG_16s_C1", int16s(coefficients), result, ones)
        inverse += [a - b for a, b in zip(result, exact_inverse(coefficients))]
    for values in random_blocks(dice, 2048):
        result, samples = (ctypes.c_int16 * 64)(), array(ctypes.c_uint16, [value + 2048 for value in values])
        zorj("zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R", samples, 16, result, floats)
        exact = exact_forward(values)
        deep_forward += [a - b for a, b in zip(result, exact)]
        coefficients = [round(value) for value in exact]
        zorj("zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R", int16s(coefficients), samples, 16, floats)
        deep_inverse += [a - clamp(b + 2048, 4095) for a, b in zip(samples, exact_inverse(coefficients))]
    yield "forward DCT", "8 bits, steps of 1", error_text(forward)
    yield "inverse DCT", "8 bits, steps of 1", error_text(inverse)
    yield "forward DCT, single precision", "12 bits, steps of 1", error_text(deep_forward)
    yield "inverse DCT, single precision (truncates)", "12 bits, steps of 1", error_text(deep_inverse)


def wavelets(zorj, dice):
    for name, text in (("B53", "5/3 wavelet"), ("D97", "9/7 wavelet")):
        for kind, suffix, bits in ((ctypes.c_int16, "16s", 12), (ctypes.c_int32, "32s", 12), (ctypes.c_int32, "32s", 16)):
            top = 1 << (bits - 1)
            samples = array(kind, [dice.randint(-top, top - 1) for _ in range(TILE * TILE)])
            result, tile, size = array(kind, samples), TileRect(1, 0, TILE, TILE), ctypes.c_int32()
            step = TILE * ctypes.sizeof(kind)
            ending = f"{name}_JPEG2K_{suffix}_C1IR"
            zorj(f"zoriWTGetBufSize_{ending}", ctypes.byref(tile), ctypes.byref(size))
            buffer = ctypes.create_string_buffer(size.value)
            for direction in ("Fwd", "Inv"):
                zorj(f"zoriWT{direction}_{ending}", result, step, ctypes.byref(tile), buffer)
            errors = error_text(a - b for a, b in zip(result, samples))
            yield f"a level of the {text} and back", f"{bits} bits as {suffix}", errors


def components(zorj, dice):
    size = RoiSize(100, 50)
    for name, text in (("RCT", "reversible"), ("ICT", "irreversible")):
        for kind, suffix in ((ctypes.c_int16, "16s"), (ctypes.c_int32, "32s")):
            planes = [array(kind, [dice.randint(-2048, 2047) for _ in range(5000)]) for _ in range(3)]
            before = [value for plane in planes for value in plane]
            for direction in ("Fwd", "Inv"):
                step = 100 * ctypes.sizeof(kind)
                zorj(f"zori{name}{direction}_JPEG2K_{suffix}_P3IR", addresses(planes), step, size)
            after = (value for plane in planes for value in plane)
            errors = error_text(a - b for a, b in zip(after, before))
            yield f"{text} component transform and back", f"12 bits as {suffix}", errors


def photo_core(zorj, dice):
    samples = [dice.randint(-(1 << 31), (1 << 31) - 1) for _ in range(256)]
    result = array(ctypes.c_int32, samples)
    for direction in ("Fwd", "Inv"):
        zorj(f"zoriPCT{direction}16x16_HDP_32s_C1IR", result, 64)
    yield "photo core transform and back", "32 bits", error_text(a - b for a, b in zip(result, samples))


HEAD = """# Accuracy

Results are the same bits on every processor, instruction set, platform and number of threads. How far they are from the
exact ones is measured by `tools/accuracy.py` on random data, always the same; a test checks that this page says so.

"Forward" and "inverse" rows are compared with the exact transform in real numbers, before any rounding: 0.5 is what
rounding to integers alone can cost. Rows that go there and back compare with the samples they started from.

| transform | samples | largest error | root mean square |
|---|---|---|---|
"""
TAIL = """
The inverse DCT also meets the limits of IEEE 1180-1990, which the tests check. Ranges beyond those of JPEG's samples, where
fixed-point sums saturate, are told in the headers: `jpeg_dct.h` for the DCT, `jpeg2k_transform.h` for the wavelets. BC7
decoding is exact, DXT decoding as [its page](texture.md) says; Huffman, code-block and PackBits coding lose nothing.
"""


def main():
    zorj, dice = Library(sys.argv[1]), random.Random(1)
    rows = [row for part in (colour, dct, components, wavelets, photo_core) for row in part(zorj, dice)]
    page = HEAD + "".join(f"| {what} | {samples} | {errors} |\n" for what, samples, errors in rows) + TAIL
    if "--check" in sys.argv:
        sys.exit(0 if page == PAGE.read_text() else "docs/accuracy.md is not what is measured: run ./dev record")
    PAGE.write_text(page)


if __name__ == "__main__":
    main()
