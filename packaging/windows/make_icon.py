#!/usr/bin/env python3
"""Draws hitwick.ico: the bars of a small chart on a blue tile, in the sizes that Windows shows.

    make_icon.py [ICO [FOLDER]]    with FOLDER: also each size as a PNG, to look at
"""

import pathlib
import struct
import sys
import zlib

# Each size: left edge, width and distance of the bars, bottom and heights, all in whole pixels so
# that every edge is sharp; and the tile's corner radius.
SIZES = {
    16: dict(left=3, width=2, step=4, bottom=3, heights=(4, 10, 7), radius=3),
    32: dict(left=5, width=6, step=8, bottom=6, heights=(8, 20, 14), radius=6),
    48: dict(left=9, width=8, step=11, bottom=9, heights=(12, 30, 21), radius=9),
    256: dict(left=50, width=40, step=58, bottom=48, heights=(66, 160, 112), radius=48),
}
FINE = 8  # samples along each side of a pixel, for smooth corners
TILE_TOP, TILE_BOTTOM = (0x2F, 0x74, 0xC0), (0x17, 0x40, 0x7C)
BARS = ((0xDD, 0xE9, 0xF7), (0xFF, 0xB0, 0x3B), (0xDD, 0xE9, 0xF7))


def in_tile(x, y, size, radius):
    """Is the point inside the square with round corners?"""
    across = max(radius - x, x - (size - radius), 0)
    up = max(radius - y, y - (size - radius), 0)
    return across * across + up * up <= radius * radius


def opacity(x, y, size, radius):
    """How much of the pixel the tile covers, 0 to 255."""
    if radius <= x < size - radius or radius <= y < size - radius:
        return 255
    inside = sum(in_tile(x + (i + 0.5) / FINE, y + (j + 0.5) / FINE, size, radius)
                 for i in range(FINE) for j in range(FINE))
    return round(inside * 255 / FINE ** 2)


def colour(x, y, size, shape):
    """The colour inside the tile at x, y; y counts from the bottom."""
    bar, place = divmod(x - shape["left"], shape["step"])
    if (0 <= bar < len(BARS) and place < shape["width"]
            and 0 <= y - shape["bottom"] < shape["heights"][bar]):
        return BARS[bar]
    return tuple(round(low + (high - low) * y / (size - 1))
                 for low, high in zip(TILE_BOTTOM, TILE_TOP))


def rows(size):
    """The pixels (red, green, blue, opacity), from the bottom row up."""
    shape = SIZES[size]
    return [[(*colour(x, y, size, shape), opacity(x, y, size, shape["radius"]))
             for x in range(size)] for y in range(size)]


def bitmap(size):
    """An icon image as all versions read it: header, pixels from the bottom up, an empty mask."""
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = b"".join(bytes((blue, green, red, alpha))
                      for row in rows(size) for red, green, blue, alpha in row)
    return header + pixels + bytes((size + 31) // 32 * 4 * size)


def png(size):
    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data
                + struct.pack(">I", zlib.crc32(kind + data)))

    lines = b"".join(b"\0" + bytes(value for pixel in row for value in pixel)
                     for row in reversed(rows(size)))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))


def icon():
    # The large one is compressed, as Windows has read it since Vista.
    images = [png(size) if size == 256 else bitmap(size) for size in SIZES]
    offset = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for size, data in zip(SIZES, images):
        # A byte holds the size; 256 does not fit and is written as 0.
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    return directory + b"".join(images)


def side_picture():
    """A bitmap of 164 by 314 pixels for the side of the setup's first and last page."""
    width, height = 164, 314
    shape = dict(left=18, width=36, step=46, bottom=0, heights=(70, 170, 120))
    pixels = b"".join(bytes(reversed(colour(x, y, height, shape)))
                      for y in range(height) for x in range(width))
    return (struct.pack("<2sIII", b"BM", 54 + len(pixels), 0, 54)
            + struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, 0, 0, 0, 0, 0) + pixels)


def main(target="hitwick.ico", folder=None):
    pathlib.Path(target).write_bytes(icon())
    if folder:
        for size in SIZES:
            (pathlib.Path(folder) / f"hitwick-{size}.png").write_bytes(png(size))


if __name__ == "__main__":
    main(*sys.argv[1:])
