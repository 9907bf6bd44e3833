"""Long streams out of a short real one: its units again and again, slices with data of any length in place of their own,
which nobody reads."""

import random
import re

SLICES = (1, 5)
HEADER_BYTES = 40  # more than the slice headers of the streams used here have


def units_of(path):
    """The units of an Annex B stream, without start codes."""
    with open(path, "rb") as file:
        return [unit.rstrip(b"\0") for unit in re.split(b"\0\0\1", file.read())[1:]]


def long_stream(path, frames, seed=1, most_data=30000):
    """Yields pieces of a stream of so many frames, each of one slice; `path` has a slice a frame too."""
    chosen = random.Random(seed)
    units = units_of(path)
    piece, left = [], frames
    while left > 0:
        for unit in units:
            is_slice = unit[0] & 31 in SLICES
            if is_slice:
                unit = unit[:HEADER_BYTES] + b"\x55" * min(int(chosen.lognormvariate(5, 1)), most_data) + b"\x80"
            piece.append(b"\0\0\1" + unit)
            left -= is_slice
            if left == 0:
                break
        yield b"".join(piece)
        piece = []
