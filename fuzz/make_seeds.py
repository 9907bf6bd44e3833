#!/usr/bin/env python3
"""Writes the seeds of the fuzz entry points to seeds/NAME/ beside this script, one file a case.

The layout of an input stands at the head of each NAME_fuzz.cpp. Old seeds of the same name are replaced; inputs that
a fuzzer found are added by hand and stay.
"""

import pathlib

FORBIDDEN, SPS, PPS, IDR, AUD = 0xE7, 0x67, 0x68, 0x65, 0x09
START_CODE = bytes([0, 0, 1])
GET, GET_WIDE, PEEK24, BYTE_ALIGN, UE, SE, MORE_RBSP_DATA, TRAILING_BITS = range(8)


def bits(text):
    """The bytes of a string of 0 and 1, blanks aside, filled up with zeros."""
    text = text.replace(" ", "")
    text += "0" * (-len(text) % 8)
    return bytes(int(text[i : i + 8], 2) for i in range(0, len(text), 8))


def unit(header, *payload):
    return bytes([header, *payload])


def prefixed(size, body, length=None):
    return (len(body) if length is None else length).to_bytes(size, "big") + body


def reader(nalfmt, stream, cut=0, block_sizes=()):
    """A block size is stored less one."""
    return bytes([nalfmt, cut, len(block_sizes), *(size - 1 for size in block_sizes)]) + stream


def reader_seeds():
    escapes = unit(SPS, 0x42, 0, 0, 3, 1, 0, 0, 3, 0, 0, 3)
    plain = unit(IDR, 0x88, 0x84, 0, 0x21, 0xFF, 0, 0, 4)
    annexb = bytes(1) + START_CODE + escapes + bytes(1) + START_CODE + unit(PPS, 0xCE) + START_CODE + plain
    passed_over = START_CODE + unit(FORBIDDEN, 1, 2) + bytes(2) + START_CODE + unit(AUD, 0xF0)
    seeds = {
        "none": reader(0, annexb),
        "annexb_units": reader(5, annexb, cut=12),
        "annexb_blocks_of_one_to_four": reader(5, annexb, block_sizes=(1, 2, 3, 4)),
        "annexb_forbidden_header": reader(5, passed_over, cut=6),
        "annexb_junk": reader(5, bytes([0xEE] * 9 + [0, 0, 2, 0, 7, 0, 0])),
        "annexb_zeros_only": reader(5, bytes(9)),
        "annexb_start_code_at_the_end": reader(5, plain + START_CODE, cut=11),
        "annexb_three_bytes": reader(5, START_CODE),
        "annexb_three_zeros_end_a_unit": reader(5, START_CODE + unit(SPS, 7, 0, 0, 0)),
        "annexb_two_ends_a_unit": reader(5, START_CODE + unit(SPS, 7, 0, 0, 2, 5)),
        "empty": b"",
    }
    for k in range(1, 5):
        stream = prefixed(k, escapes) + prefixed(k, unit(FORBIDDEN, 1)) + prefixed(k, plain) + prefixed(k, unit(AUD))
        seeds[f"length{k}_units"] = reader(k, stream, cut=k + 3)
        seeds[f"length{k}_small_blocks"] = reader(k, stream, cut=k, block_sizes=(3, 5))
        seeds[f"length{k}_zero"] = reader(k, prefixed(k, unit(SPS, 1)) + prefixed(k, b"") + plain)
        seeds[f"length{k}_largest"] = reader(k, prefixed(k, plain, length=256**k - 1), cut=k + 1)
        seeds[f"length{k}_forbidden_largest"] = reader(k, prefixed(k, unit(FORBIDDEN, 1), length=256**k - 1))
    return seeds


def writer(nalfmt, missing, *units):
    """A unit is (nal_ref_idc and valid, nal_unit_type, zero bytes, payload)."""
    return bytes([nalfmt, missing]) + b"".join(bytes([f, t, z, len(p)]) + bytes(p) for f, t, z, p in units)


def writer_seeds():
    start_code = (3, 7, 1, [0x42, 0, 0, 1, 0, 0, 3, 0, 0, 2])
    zeros = (3, 8, 0, [0, 0, 0, 0])
    three_zeros = (0, 9, 2, [0, 0, 0])
    plain = (2, 1, 3, [1, 2, 3, 0, 0, 4, 0])
    every_step = (3, 7, 2, [9, 0, 0, 1, 0, 1, 2, 8, 0, 0])
    invalid = (255, 0, 0, [0, 0, 3])
    seeds = {"empty": b""}
    for nalfmt in range(7):
        seeds[f"framing{nalfmt}_units"] = writer(nalfmt, 0, start_code, zeros, three_zeros, plain)
        seeds[f"framing{nalfmt}_one_byte_missing"] = writer(nalfmt, 1, plain, start_code, zeros, start_code)
        seeds[f"framing{nalfmt}_invalid_header"] = writer(nalfmt, 0, plain, invalid, plain, zeros)
    # The room for three empty units follows that for every_step: 12 bytes in Annex B, 15 with a 4-byte prefix.
    for missing in range(1, 19):
        seeds[f"annexb_{missing:02}_missing"] = writer(5, 12 + missing, every_step)
    for missing in (1, 2, 5, 10, 12, 13, 16, 17):
        seeds[f"length4_{missing:02}_missing"] = writer(4, 15 + missing, every_step)
    seeds["annexb_one_zero_before_the_last_byte"] = writer(5, 0, (3, 7, 0, [9, 0, 7]))
    seeds["length1_body_too_long"] = writer(1, 0, plain, (3, 7, 0, [9] * 255), (3, 7, 0, [0] * 170), plain)
    seeds["annexb_endless_zeros"] = writer(5, 0, plain, (3, 7, 255, [1]), plain)
    seeds["annexb_many_zeros"] = writer(5, 0, (3, 7, 254, [1]), (3, 7, 0, []), plain)
    seeds["fields_out_of_range"] = writer(2, 0, (6, 37, 0, [1]), (7, 255, 0, []))
    return seeds


def bitreader(operations, data):
    return bytes([len(operations)]) + bytes(byte for pair in operations for byte in pair) + data


def bitreader_seeds():
    counted = bytes(range(0x11, 0x100, 0x11))
    codes = bits("1 010 011 00100 00111 0001000 1")
    longest = bits("1" + "0" * 31 + "1" + "1" * 31 + "1")
    return {
        "empty": b"",
        "get_every_width": bitreader([(GET, n) for n in range(25)], counted),
        "get_wide": bitreader([(GET_WIDE, n) for n in (0, 1, 25, 26, 32, 33, 50, 75, 255)], counted),
        "peek_and_align": bitreader([(PEEK24, 0), (GET, 2), (PEEK24, 0), (BYTE_ALIGN, 0), (BYTE_ALIGN, 0)], counted),
        "unsigned_codes": bitreader([(UE, 0)] * 8, codes),
        "signed_codes": bitreader([(SE, 0)] * 8, codes),
        "longest_code": bitreader([(GET, 0), (UE, 0), (GET, 0)], longest),
        "longest_signed_code": bitreader([(GET, 0), (SE, 0), (GET, 0)], longest),
        "too_many_zeros": bitreader([(GET, 4), (UE, 0), (SE, 0), (GET, 0)], bytes(20)),
        "thirty_two_zeros_and_a_one": bitreader([(UE, 0), (GET, 0)], bytes(4) + b"\x80"),
        "code_cut_short": bitreader([(UE, 0), (SE, 0)], b"\x01"),
        "trailer": bitreader([(MORE_RBSP_DATA, 0), (GET, 10), (MORE_RBSP_DATA, 0), (TRAILING_BITS, 0)], b"\xab\xd0"),
        "trailer_far_ahead": bitreader([(MORE_RBSP_DATA, 0), (TRAILING_BITS, 0)], bytes(9) + b"\x01"),
        "trailer_without_stop_bit": bitreader([(GET, 2), (TRAILING_BITS, 0)], b"\xe0"),
        "trailer_with_stray_bit": bitreader([(GET, 2), (TRAILING_BITS, 0), (MORE_RBSP_DATA, 0)], b"\xf1\x00"),
        "behind_the_end": bitreader(
            [(GET_WIDE, 100), (MORE_RBSP_DATA, 0), (BYTE_ALIGN, 0), (TRAILING_BITS, 0), (PEEK24, 0)], b"\xff"
        ),
    }


def aud_seeds():
    seeds = {f"primary_pic_type_{t}": bytes([0, t << 5 | 0x10]) for t in range(8)}
    seeds["missing_stop_bit"] = bytes([0, 0x40])
    seeds["stray_bit"] = bytes([1, 0xFF, 0x51])
    seeds["empty"] = b""
    seeds["from_within_a_byte"] = bytes([3, 0xFF, 0x50])
    seeds["behind_the_end"] = bytes([200, 0x50])
    return seeds


def feeder(nalfmt, stream, piece=3, max_unit=200):
    return bytes([nalfmt - 1, piece - 1, max_unit - 1]) + stream


def feeder_seeds():
    sps, pps, aud = unit(SPS, 0x42, 0, 0, 3, 1), unit(PPS, 0xCE), unit(AUD, 0xF0)
    forbidden, large = unit(FORBIDDEN, 1, 2), unit(IDR, *[0x55] * 60)
    annexb = bytes(2) + START_CODE + sps + bytes(5) + START_CODE + pps + START_CODE + aud
    seeds = {
        "annexb_units": feeder(5, annexb),
        "annexb_whole": feeder(5, annexb, piece=32),
        "annexb_leading_junk": feeder(5, bytes([0, 0xEE, 0, 0]) + START_CODE + sps),
        "annexb_forbidden_header": feeder(5, START_CODE + sps + bytes(1) + START_CODE + forbidden + START_CODE + pps),
        "annexb_early_stop": feeder(5, START_CODE + unit(SPS, 7, 0, 0, 2, 5, 0) + START_CODE + pps),
        "annexb_junk_in_padding": feeder(5, START_CODE + sps + bytes(6) + b"\x07\x00" + START_CODE + pps),
        "annexb_start_code_at_the_end": feeder(5, START_CODE + sps + START_CODE),
        "annexb_large_unit": feeder(5, START_CODE + pps + START_CODE + large + START_CODE + aud, max_unit=20),
        "annexb_large_unit_last": feeder(5, START_CODE + large, max_unit=20),
        "annexb_zeros": feeder(5, bytes(40)),
        "empty": feeder(5, b""),
    }
    for k in range(1, 5):
        stream = prefixed(k, sps) + prefixed(k, pps)
        seeds[f"length{k}_units"] = feeder(k, stream)
        seeds[f"length{k}_zero_lengths"] = feeder(k, stream + bytes(2 * k) + prefixed(k, aud))
        seeds[f"length{k}_forbidden"] = feeder(k, stream + prefixed(k, forbidden) + prefixed(k, aud))
        seeds[f"length{k}_early_stop"] = feeder(k, prefixed(k, unit(SPS, 7, 0, 0, 1, 5)) + prefixed(k, aud))
        seeds[f"length{k}_zeros_inside"] = feeder(k, prefixed(k, unit(SPS, 7, 0, 0, 0, 0)) + prefixed(k, aud))
        seeds[f"length{k}_large"] = feeder(k, stream + prefixed(k, large) + prefixed(k, aud), max_unit=20)
        seeds[f"length{k}_cut_unit"] = feeder(k, stream + prefixed(k, aud, length=90))
        seeds[f"length{k}_cut_prefix"] = feeder(k, stream + bytes([1] * k))
    return seeds


def sei_seeds():
    trailing = b"\x80"
    return {
        "empty": b"",
        "one_byte": b"\x05",
        "one_message": b"\x05\x02\xaa\xbb" + trailing,
        "type_above_255": b"\xff\x0a\x01\x00" + trailing,
        "two_messages": b"\x01\x01\xaa\x06\x00" + trailing,
        "truncated": b"\x05\x0a\x01\x02\x03",
        "type_without_end": b"\x05\x00\xff\xff",
        "size_without_end": b"\x05\xff\xff",
        "other_last_byte": b"\x05\x00\x81",
        "stop_bit_before_zeros": b"\x05\x00\x80\x00\x00",
    }


def main():
    all_seeds = {
        "bitreader": bitreader_seeds(),
        "nal_aud": aud_seeds(),
        "nal_reader": reader_seeds(),
        "nal_writer": writer_seeds(),
        "piece_feeder": feeder_seeds(),
        "sei_reader": sei_seeds(),
    }
    for target, seeds in all_seeds.items():
        folder = pathlib.Path(__file__).resolve().parent / "seeds" / target
        folder.mkdir(parents=True, exist_ok=True)
        for name, content in seeds.items():
            (folder / name).write_bytes(content)


if __name__ == "__main__":
    main()
