#!/usr/bin/env python3
"""Draws hitwick.ico: the bars of a small chart, in the sizes that Windows shows."""

import struct
import sys

SIZES = (16, 32, 48)
PAPER = (0xFF, 0xFF, 0xFF, 0xFF)
FRAME = (0x40, 0x40, 0x40, 0xFF)
BARS = ((0x2E, 0x6D, 0xB4, 0xFF), (0x3F, 0x9B, 0x5B, 0xFF), (0xD8, 0x8A, 0x1D, 0xFF))
HEIGHTS = (0.45, 0.85, 0.65)  # of the space inside the frame


def pixel(x, y, size):
    """The colour (red, green, blue, opacity) at x, y; y counts from the bottom."""
    margin = size // 16
    if min(x, y, size - 1 - x, size - 1 - y) < margin:
        return FRAME
    inner = size - 2 * margin
    slot, place = divmod((x - margin) * 3 * 4 // inner, 4)
    if place in (1, 2) and y - margin < HEIGHTS[slot] * inner:
        return BARS[slot]
    return PAPER


def image(size):
    """One icon image: bitmap header, 32-bit pixels from the bottom up, an empty mask."""
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = bytearray()
    for y in range(size):
        for x in range(size):
            red, green, blue, opacity = pixel(x, y, size)
            pixels += bytes((blue, green, red, opacity))
    mask_row = (size + 31) // 32 * 4
    return header + bytes(pixels) + bytes(mask_row * size)


def icon():
    images = [image(size) for size in SIZES]
    offset = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for size, data in zip(SIZES, images):
        directory += struct.pack("<BBBBHHII", size, size, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    return directory + b"".join(images)


if __name__ == "__main__":
    with open(sys.argv[1] if len(sys.argv) > 1 else "hitwick.ico", "wb") as file:
        file.write(icon())
