#!/usr/bin/env python3
"""Draws the icon of Halyrig32: a boat under sail with the orange dot of live data. The build takes the finished file.

    draw_icon.py FOLDER    writes FOLDER/halyrig.ico, and FOLDER/halyrig-SIZE.png to look at with --png
"""
import math
import struct
import sys
import zlib

SIZES = (16, 32, 48, 256)
GRID = 16.0  # shapes are given on the smallest icon's pixels, so that straight edges fall on pixels in all sizes
SAMPLES = 8  # a side, per pixel

NAVY, WHITE, SKY, ORANGE = (11, 46, 79), (255, 255, 255), (126, 196, 240), (255, 138, 30)


def in_rounded_square(x, y, radius=3.0):
    dx = max(radius - x, x - (GRID - radius), 0)
    dy = max(radius - y, y - (GRID - radius), 0)
    return math.hypot(dx, dy) <= radius


def in_mainsail(x, y):
    """From the masthead down to the boom, with a leech that bulges aft."""
    if not (8 <= x and 2 <= y <= 12):
        return False
    down = (y - 2) / 10
    return x <= 8 + 6 * down ** 0.8


def in_jib(x, y):
    if not (x <= 7 and 4 <= y <= 12):
        return False
    return x >= 7 - 5 * (y - 4) / 8


def in_hull(x, y):
    if not 13 <= y <= 15:
        return False
    cut = (y - 13) * 0.9
    return 1.6 + cut <= x <= 14.4 - cut


def in_dot(x, y):
    return math.hypot(x - 12.5, y - 3.5) <= 1.75


LAYERS = ((in_rounded_square, NAVY), (in_mainsail, WHITE), (in_jib, SKY), (in_hull, WHITE), (in_dot, ORANGE))


def colour_at(x, y):
    found = None
    for inside, colour in LAYERS:
        if inside(x, y):
            found = colour
    return found


def draw(size):
    """Rows of (red, green, blue, alpha), top row first."""
    rows = []
    for row in range(size):
        pixels = []
        for column in range(size):
            hits = []
            for i in range(SAMPLES * SAMPLES):
                x = (column + (i % SAMPLES + 0.5) / SAMPLES) * GRID / size
                y = (row + (i // SAMPLES + 0.5) / SAMPLES) * GRID / size
                colour = colour_at(x, y)
                if colour:
                    hits.append(colour)
            if hits:
                mixed = tuple(round(sum(c[k] for c in hits) / len(hits)) for k in range(3))
                pixels.append(mixed + (round(255 * len(hits) / SAMPLES**2),))
            else:
                pixels.append((0, 0, 0, 0))
        rows.append(pixels)
    return rows


def png(rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    size = len(rows)
    raw = b"".join(b"\0" + b"".join(bytes(pixel) for pixel in row) for row in rows)
    header = struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b"")


def bitmap(rows):
    """A device-independent bitmap as icons hold it: bottom row first, then the mask, which alpha makes idle."""
    size = len(rows)
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = b"".join(bytes((b, g, r, a)) for row in reversed(rows) for r, g, b, a in row)
    return header + pixels + bytes((size + 31) // 32 * 4 * size)


def icon(drawings):
    images = [png(rows) if len(rows) >= 256 else bitmap(rows) for rows in drawings]
    entries = b""
    offset = 6 + 16 * len(images)
    for rows, image in zip(drawings, images):
        side = len(rows) % 256
        entries += struct.pack("<BBBBHHII", side, side, 0, 0, 1, 32, len(image), offset)
        offset += len(image)
    return struct.pack("<HHH", 0, 1, len(images)) + entries + b"".join(images)


def main():
    folder = sys.argv[1]
    drawings = [draw(size) for size in SIZES]
    with open(f"{folder}/halyrig.ico", "wb") as file:
        file.write(icon(drawings))
    if "--png" in sys.argv:
        for rows in drawings:
            with open(f"{folder}/halyrig-{len(rows)}.png", "wb") as file:
                file.write(png(rows))


main()
