#!/usr/bin/env python3
"""Writes the pictures that the test charts are compared to, worked out from what the charts look like.

    python3 expected.py <folder>

A picture is what memory full of 0xFF holds after the chart has been drawn into it. One line of text stands for
so many equal lines of the picture: "<lines> <bytes in hexadecimal>".
"""
import itertools
import pathlib
import sys

STEPS = [255, 234, 212, 190, 167, 143, 120, 94, 67, 37, 0]
PATCHES = """
115 82 68, 194 150 130, 98 122 157, 87 108 67, 133 128 177, 103 189 170,
214 126 44, 80 91 166, 193 90 99, 94 60 108, 157 188 64, 224 163 46,
56 61 150, 70 148 73, 175 54 60, 231 199 31, 187 86 149, 8 133 161,
243 243 242, 200 200 200, 160 160 160, 122 122 121, 85 85 85, 52 52 52
"""
COLOURS = [tuple(int(part) for part in patch.split()) for patch in PATCHES.replace("\n", " ").split(",")]


def grey(bits, width, height):
    """Every line of the picture as a list of samples."""
    step = width // 12
    left, right = width // 24, width - width // 24 - 11 * step
    ground = 131 * 2 ** (bits - 8)
    last = 11 * step - 1
    steps = [value for value in STEPS for _ in range(step)]
    ramp = [(2 ** bits - 1) * i // last for i in range(11 * step)]
    bands = [steps, ramp, ramp[::-1], steps[::-1]]
    picture = [[ground] * width for _ in range(height // 10)]
    for band in bands:
        picture += [[ground] * left + band + [ground] * right] * (height // 5)
    return picture + [[ground] * width for _ in range(height - len(picture))]


def colour_at(x, y, width, height):
    """The patch that covers a pixel; None for black."""
    patch_width, gap_width = width // 7, width // 77
    patch_height, gap_height = height // 5, height // 45
    x, y = x - 3 * gap_width, y - 3 * gap_height
    if x < 0 or y < 0 or patch_width == 0 or patch_height == 0:
        return None
    column, row = x // (patch_width + gap_width), y // (patch_height + gap_height)
    if column > 5 or row > 3:
        return None
    if x % (patch_width + gap_width) >= patch_width or y % (patch_height + gap_height) >= patch_height:
        return None
    return COLOURS[6 * row + column]


def in_patch_row(y, height):
    return any(colour_at(x, y, 77, height) for x in range(77))


def colour(bits, sample_bytes, samples, pixel_bytes, width, height):
    """The memory of the picture, drawn from the top, cut at its end."""
    pitch = (pixel_bytes * width + 3) // 4 * 4
    memory = bytearray(b"\xff" * (pitch * height))

    def put(at, data):
        for i, byte in enumerate(data):
            if at + i < len(memory):
                memory[at + i] = byte

    for y in range(height):
        if not in_patch_row(y, height):
            put(y * pitch, bytes(pitch))
            continue
        for x in range(width):
            at = y * pitch + x * samples * sample_bytes
            patch = colour_at(x, y, width, height)
            if patch is None:
                put(at, bytes(samples * sample_bytes))
            else:
                blue_first = [value << (bits - 8) for value in reversed(patch)]
                put(at, b"".join(value.to_bytes(sample_bytes, "little") for value in blue_first))
    return [bytes(memory[i:i + pitch]) for i in range(0, len(memory), pitch)]


def grey_bytes(bits, width, height):
    size = 1 if bits == 8 else 2
    return [b"".join(sample.to_bytes(size, "little") for sample in line) for line in grey(bits, width, height)]


def charts():
    for bits in (8, 10, 12, 14, 16):
        for width, height in ((48, 20), (31, 13), (11, 9)):
            yield f"Mono{bits}", width, height, grey_bytes(bits, width, height)
    for name, bits, sample_bytes, samples, pixel_bytes in (
            ("BGR8", 8, 1, 3, 3), ("BGRa8", 8, 1, 4, 4),
            ("BGR10", 10, 2, 3, 6), ("BGR12", 12, 2, 3, 6), ("BGR14", 14, 2, 3, 6), ("BGR16", 16, 2, 3, 6),
            ("BGRa10", 10, 2, 4, 8), ("BGRa12", 12, 2, 4, 8), ("BGRa14", 14, 2, 4, 8), ("BGRa16", 16, 2, 4, 8),
            ("RGB8", 8, 2, 3, 3), ("RGBa8", 8, 2, 4, 4)):
        for width, height in ((79, 47), (23, 12), (6, 5)):
            yield name, width, height, colour(bits, sample_bytes, samples, pixel_bytes, width, height)


def main():
    folder = pathlib.Path(sys.argv[1])
    for name, width, height, lines in charts():
        text = "".join(f"{len(list(group))} {line.hex()}\n" for line, group in itertools.groupby(lines))
        (folder / f"{name}_{width}x{height}.txt").write_text(text)


main()
