"""Writes the RGBA bytes of an image file, as Pillow decodes it: pillow_rgba.py IN OUT"""

import sys

from PIL import Image

with Image.open(sys.argv[1]) as image, open(sys.argv[2], "wb") as out:
    out.write(image.convert("RGBA").tobytes())
