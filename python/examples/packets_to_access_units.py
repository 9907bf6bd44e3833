#!/usr/bin/python3
"""packets_to_access_units.py <PACKETS   takes packets as a network gives them, each with a 32-bit timestamp of a 90 kHz clock,
and prints the access units in them with their times. A packet here is a line of the timestamp, a blank and the bytes in
hexadecimal digits, a part of an Annex B stream.
"""

import sys
from collections.abc import Iterator

import orv_h264


def packets(lines: Iterator[str]) -> Iterator[tuple[bytes, int, None]]:
    for line in lines:
        stamp, _, digits = line.partition(" ")
        yield bytes.fromhex(digits), int(stamp), None  # there is no decoding time


def describe(unit: orv_h264.AccessUnit) -> str:
    text = f"access unit {unit.number}: {len(unit.units)} units, {sum(len(u) for u in unit.units)} bytes"
    if not unit.has_picture:
        text += ", no picture"
    elif unit.presentation_stamp is not None:
        text += f", at {float(unit.presentation_stamp):.3f} s"
    return text + (", IDR" if unit.idr else "")


def main() -> None:
    # Timestamps of RTP begin again at 0 after 13 hours.
    for unit in orv_h264.access_units(packets(sys.stdin), "annex_b", clock=90000, clock_bits=32):
        print(describe(unit))
        for what in unit.findings:
            print("  " + what)


if __name__ == "__main__":
    main()
