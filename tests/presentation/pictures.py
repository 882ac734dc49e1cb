# SPDX-License-Identifier: Apache-2.0
"""Makes pictures of every kind that PIL writes in a folder and prints what PIL reads of each: the name of the file, format,
width, height and the two resolutions, 0 where there is none."""
import random
import sys

from PIL import Image

KINDS = [("PNG", "png"), ("JPEG", "jpg"), ("GIF", "gif"), ("BMP", "bmp"), ("ICO", "ico"), ("TIFF", "tif"), ("WEBP", "webp")]


def picture(mode, size, flat):
    image = Image.new(mode, size)
    if not flat:
        count = size[0] * size[1] * len(image.getbands())
        image = Image.frombytes(mode, size, random.Random(count).randbytes(count))
    return image


def variants(kind):
    """Arguments of save() for a kind."""
    if kind == "PNG":
        return [{}, {"dpi": (300, 150)}, {"icc_profile": b"x" * 5000, "dpi": (72, 72)}]
    if kind == "JPEG":
        return [{}, {"dpi": (300, 150)}, {"progressive": True}, {"icc_profile": b"x" * 200000, "dpi": (96, 96)}]
    if kind == "TIFF":
        return [{}, {"dpi": (300, 150)}, {"compression": "tiff_lzw"}, {"compression": "tiff_deflate"}]
    if kind == "WEBP":
        return [{}, {"lossless": True}, {"exif": b"Exif\0\0II*\0\x08\0\0\0\0\0"}]
    return [{"dpi": (300, 150)}] if kind == "BMP" else [{}]


def main(folder):
    number = 0
    for kind, suffix in KINDS:
        for mode in ["RGB"] if kind in ("JPEG", "WEBP") else ["L", "RGB"]:
            for size in [(1, 1), (17, 5), (256, 256), (640, 480)]:
                for flat in (True, False):
                    for arguments in variants(kind):
                        if kind == "ICO":
                            if size[0] > 256:
                                continue
                            arguments = {"sizes": [size]}
                        name = f"{folder}/{number}.{suffix}"
                        number += 1
                        picture(mode, size, flat).save(name, kind, **arguments)
                        with Image.open(name) as read:
                            dpi = read.info.get("dpi", (0, 0)) if kind in ("PNG", "JPEG", "BMP", "TIFF") else (0, 0)
                            print(name, kind, *read.size, float(dpi[0]), float(dpi[1]))


main(sys.argv[1])
