#!/usr/bin/env python3
"""Runs the demo on a small picture: its verdicts, the page it makes, and what it says of wrong results.

usage: gallery_test.py DEMO WRONG_SAMPLES_LIBRARY
"""

import base64
import os
import pathlib
import random
import re
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as xml
import zlib

demo, wrong_samples = sys.argv[1:]
CURVE_POINTS = 9 + 9 + 8 + 4  # two JPEG curves, one of JPEG 2000, four textures


def write_picture(path, channels, width=90, height=61):
    noise = random.Random(1)
    samples = bytes(
        min(255, max(0, (x * (c + 2) + 2 * y) % 256 // 2 + 60 + noise.randint(-9, 9)))
        for y in range(height)
        for x in range(width)
        for c in range(channels)
    )
    path.write_bytes(b"P%d\n%d %d\n255\n" % (6 if channels == 3 else 5, width, height) + samples)


def png_size(data):
    """The width and height of a PNG file that holds all of its pixels."""
    width, height, depth, kind = struct.unpack(">IIBB", data[16:26])
    packed = b""
    at = 8
    while at < len(data):
        length, name = struct.unpack(">I4s", data[at : at + 8])
        packed += data[at + 8 : at + 8 + length] if name == b"IDAT" else b""
        at += length + 12
    assert depth == 8 and len(zlib.decompress(packed)) == height * (1 + width * (3 if kind == 2 else 1))
    return width, height


class Gallery(unittest.TestCase):
    def visit(self, name, channels=3, **environment):
        """Returns the finished process, its exhibits' lines, and the page's root element and text."""
        with tempfile.TemporaryDirectory() as directory:
            picture = pathlib.Path(directory, name)
            write_picture(picture, channels)
            command = [demo, "--quick", picture, pathlib.Path(directory, "out")]
            done = subprocess.run(command, capture_output=True, text=True, env={**os.environ, **environment})
            page = pathlib.Path(directory, "out", "index.html").read_text()
            exhibits = [line for line in done.stdout.splitlines() if re.match(r"(JPEG|TIFF|Texture|Photo).*   \S", line)]
            exhibits = [line for line in exhibits if not line.endswith("points")]
            return done, exhibits, xml.fromstring(page.partition("\n")[2]), page

    def check_page(self, root, page, exhibits):
        pictures = [element.get("src") for element in root.iter("img")]
        self.assertEqual(len(pictures), 3 * len(exhibits) + 2)
        for picture in pictures:
            kind, data = re.fullmatch(r"data:image/(png|jpeg);base64,(.*)", picture).groups()
            data = base64.b64decode(data, validate=True)
            if kind == "png":
                self.assertEqual(png_size(data), (80, 61))
            else:
                self.assertEqual((data[:3], data[-2:]), (b"\xff\xd8\xff", b"\xff\xd9"))
        self.assertIsNone(re.search(r"https?:|url\(|@import|<script|<link|<iframe", page))
        rows = [[cell.text for cell in row.findall("td")] for row in root.iter("tr")]
        rows = [row for row in rows if row]
        self.assertEqual(len(rows), len(exhibits))
        for row, line in zip(rows, exhibits):
            for number in row[:4]:
                self.assertIn(number, line)

    def test_every_result_is_right_and_on_the_page(self):
        name = 'a <b> & "c".ppm'
        done, exhibits, root, page = self.visit(name)
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)
        self.assertEqual(len(exhibits), 17)
        for line in exhibits:
            decoder = "-" if line.startswith("Photo") else r"(libjpeg-turbo|dcmtk|OpenJPEG|Pillow): \d+ \(at most \d+\)"
            self.assertRegex(line, f"   {decoder}$")
        self.check_page(root, page, exhibits)
        self.assertIn(name, root.find("head/title").text)
        self.assertEqual(len(list(root.iter("circle"))), CURVE_POINTS)

    def test_a_grey_picture_without_dcmtk(self):
        done, exhibits, root, page = self.visit("grey.pgm", channels=1, PATH="/nowhere")
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)
        self.assertEqual(len(exhibits), 16)
        self.check_page(root, page, exhibits)

    def test_every_wrong_result_is_found(self):
        done, exhibits, root, _ = self.visit("wrong.ppm", LD_PRELOAD=wrong_samples)
        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertIn("wrong results: 17", done.stderr, done.stdout)
        for line in exhibits:
            self.assertTrue(line.endswith(" WRONG"), line)
        self.assertEqual([span.text for span in root.iter("span") if span.get("class") == "wrong"][1:], ["wrong"] * 34)


unittest.main(argv=sys.argv[:1])
