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


def ue(value):
    """The bits of ue(v)."""
    code = bin(value + 1)[2:]
    return "0" * (len(code) - 1) + code


def se(value):
    """The bits of se(v)."""
    return ue(2 * value - 1 if value > 0 else -2 * value)


def u(width, *values):
    return "".join(format(value, f"0{width}b") for value in values)


def rbsp(text):
    """The bytes of a structure and its trailing bits."""
    return bits(text + "1")


def scaling_list(*deltas):
    return "".join(se(delta) for delta in deltas)


def scaling_list_seeds():
    def seed(size, text, first_bit=0):
        return bytes([size, first_bit]) + bits("1" * first_bit + text)

    return {
        "empty": b"",
        "size_0": seed(0, scaling_list(-8)),
        "flat": seed(16, scaling_list(*[0] * 16)),
        "default": seed(64, scaling_list(-8)),
        "rising": seed(64, scaling_list(*[1] * 64), first_bit=3),
        "ends_early": seed(16, scaling_list(1, 1, 1, 1, 1, -13)),
        "wraps": seed(16, scaling_list(242, 10, 2**31 - 1, 1 - 2**31, 256, -256, *[1] * 10)),
        "size_128": seed(128, scaling_list(*[3, -3] * 64)),
        "size_129": seed(129, scaling_list(*[3, -3] * 64)),
        "malformed": seed(16, scaling_list(5, 6) + "0" * 32 + "1"),
    }


def hrd(count, cpb_cnt_minus1=None):
    text = ue(count - 1 if cpb_cnt_minus1 is None else cpb_cnt_minus1) + u(4, 3, 5)
    for i in range(count):
        text += ue(100 + i) + ue(7 * i) + u(1, i % 2)
    return text + u(5, 23, 22, 21, 24)


def vui(text, nal=None, vcl=None, restriction=None):
    """VUI parameters from the bits before the HRD parameters."""
    for one in (nal, vcl):
        text += "0" if one is None else "1" + one
    if nal or vcl:
        text += "1"
    return text + "1" + ("0" if restriction is None else "11" + "".join(ue(value) for value in restriction))


NO_GROUPS = "00000"
EVERY_GROUP = (
    "1" + u(8, 255) + u(16, 40000, 33) + "11" + "1" + u(3, 2) + "1" + "1" + u(8, 9, 16, 200)
    + "1" + ue(3) + ue(4) + "1" + u(32, 2147483649, 0xFFFFFFFF) + "1"
)
FULL_VUI = vui(EVERY_GROUP, hrd(3), hrd(2), (5, 6, 10, 11, 12, 13))


def in_a_row(*structures, options=0):
    return b"".join(bytes([options, len(data)]) + data for data in structures)


def hrd_seeds():
    return {
        "empty": b"",
        "one": in_a_row(bits(hrd(1))),
        "thirty_two": in_a_row(bits(hrd(32))),
        "more_then_fewer": in_a_row(bits(hrd(9)), bits(hrd(2)), options=1),
        "count_128": in_a_row(bits(ue(127) + u(4, 1, 2) + (ue(0) + ue(1) + "1") * 128 + u(5, 1, 2, 3, 4))),
        "too_few_for_their_count": in_a_row(bits(hrd(2, 127))),
        "count_129": in_a_row(bits(hrd(2)), bits(hrd(2, 128))),
        "largest_count": in_a_row(bits(hrd(2)), bits(hrd(1, 2**32 - 2)), options=1),
        "malformed": in_a_row(bits(ue(0) + u(8, 0) + "0" * 32 + "1")),
    }


def vui_seeds():
    aspect_ratio = {idc: bits(vui("1" + u(8, idc) + "0000")) for idc in (0, 1, 13, 16, 17, 254)}
    seeds = {f"aspect_ratio_idc_{idc}": in_a_row(data) for idc, data in aspect_ratio.items()}
    seeds |= {
        "empty": b"",
        "no_groups": in_a_row(bits(vui(NO_GROUPS))),
        "every_group": in_a_row(bits(FULL_VUI)),
        "every_group_then_none": in_a_row(bits(FULL_VUI), bits(vui(NO_GROUPS)), options=1),
        "extended_then_table": in_a_row(bits(FULL_VUI), aspect_ratio[13]),
        "nal_hrd": in_a_row(bits(vui(NO_GROUPS, nal=hrd(1)))),
        "vcl_hrd": in_a_row(bits(vui(NO_GROUPS, vcl=hrd(1)))),
        "nal_hrd_fails": in_a_row(bits(FULL_VUI), bits(vui(NO_GROUPS, nal=hrd(1, 128)))),
        "vcl_hrd_fails": in_a_row(bits(vui(NO_GROUPS, nal=hrd(1), vcl=hrd(1, 128)))),
        "largest_values": in_a_row(bits(vui(NO_GROUPS, restriction=[2**32 - 2] * 6))),
        "from_within_a_byte": in_a_row(bits("1" * 5 + FULL_VUI), options=10),
    }
    return seeds


def sps_head(profile_idc=66, sps_id=0, high=""):
    return u(8, profile_idc, 0, 30) + ue(sps_id) + high


def sps_tail(order, mbs_only="1", cropping="0", vui_text="0"):
    """From log2_max_frame_num_minus4 on; `order` begins with pic_order_cnt_type."""
    return ue(0) + order + ue(1) + "0" + ue(10) + ue(8) + mbs_only + "1" + cropping + vui_text


def sps_seeds():
    lists_4x4, lists_8x8 = "1" + scaling_list(*[1] * 16), "1" + scaling_list(*[1] * 64)
    poc_1 = ue(1) + "1" + se(-3) + se(5)
    baseline = rbsp(sps_head() + sps_tail(ue(0) + ue(2)))
    chroma = {idc: ue(idc) + ("1" if idc == 3 else "") + ue(0) + ue(0) + "0" for idc in (0, 1, 2, 3, 4)}
    seeds = {}
    for idc, text in chroma.items():
        seeds[f"chroma_{idc}"] = in_a_row(rbsp(sps_head(100, 0, text + "0") + sps_tail(ue(2))))
    lists = {
        "eight": chroma[1] + "1" + "0" * 8,
        "twelve": chroma[3] + "1" + "0" * 12,
        "default": chroma[1] + "1" + ("1" + scaling_list(-8)) * 8,
        "full": chroma[1] + "1" + lists_4x4 * 6 + lists_8x8 * 2,
        "full_444": chroma[3] + "1" + lists_4x4 * 6 + lists_8x8 * 6,
    }
    seeds |= {f"lists_{k}": in_a_row(rbsp(sps_head(244, 1, text) + sps_tail(ue(2)))) for k, text in lists.items()}
    full_tail = sps_tail(poc_1 + ue(2) + se(4) + se(-5), "01", "1" + ue(1) * 4, "1" + FULL_VUI)
    full = rbsp(sps_head(244, 1, lists["default"]) + full_tail)
    seeds |= {
        "empty": b"",
        "baseline": in_a_row(baseline),
        "every_element_then_few": in_a_row(full, baseline, options=1),
        "poc_type_5": in_a_row(rbsp(sps_head() + sps_tail(ue(5)))),
        "cycle_of_128": in_a_row(rbsp(sps_head() + sps_tail(poc_1 + ue(128) + se(0) * 128))),
        "cycle_of_129": in_a_row(baseline, rbsp(sps_head() + sps_tail(poc_1 + ue(129) + se(0) * 129))),
        "largest_cycle": in_a_row(rbsp(sps_head() + sps_tail(poc_1 + ue(2**32 - 2)))),
        "fields": in_a_row(rbsp(sps_head(77) + sps_tail(ue(2), mbs_only="01"))),
        "crop_larger_than_picture": in_a_row(rbsp(sps_head() + sps_tail(ue(2), cropping="1" + ue(2**32 - 2) * 4))),
        "vui_fails": in_a_row(rbsp(sps_head() + sps_tail(ue(2), vui_text="1" + vui(NO_GROUPS, nal=hrd(1, 128))))),
        "no_trailing_bits": in_a_row(bits(sps_head() + sps_tail(ue(2)))),
        "malformed": in_a_row(bits(u(8, 66, 0, 30) + "0" * 32 + "1")),
    }
    for profile_idc in (100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 139, 134, 135):
        head = sps_head(profile_idc, 0, chroma[2] + "0")
        seeds[f"profile_{profile_idc}"] = in_a_row(rbsp(head + sps_tail(ue(0) + ue(0))))
    return seeds


def pps(groups=ue(0), tail="", sps_id=0):
    return ue(1) + ue(sps_id) + "10" + groups + ue(2) + ue(3) + "1" + u(2, 2) + se(-1) + se(4) + se(-2) + "101" + tail


def pps_seeds():
    def seed(*structures, sps=((0, 1, True), (1, 3, True), (2, 1, False))):
        stored = bytes(byte for sps_id, chroma, valid in sps for byte in (sps_id, chroma | valid << 7))
        return bytes([len(sps)]) + stored + in_a_row(*structures)

    plain = rbsp(pps())
    groups = {
        0: "".join(ue(20 + i) for i in range(3)),
        1: "",
        2: "".join(ue(i) for i in (0, 100, 3, 103)),
        3: "1" + ue(17),
        4: "0" + ue(17),
        5: "1" + ue(0),
        6: ue(6) + u(2, 0, 2, 1, 1, 2, 0, 2),
        7: "",
    }
    seeds = {f"map_type_{t}": seed(rbsp(pps(ue(2) + ue(t) + text)), plain) for t, text in groups.items()}
    for count, width in ((2, 2), (3, 2), (4, 3), (8, 4), (16, 5), (17, 5), (2**25, 26), (2**32 - 1, 32)):
        seeds[f"ids_of_{count}_groups"] = seed(rbsp(pps(ue(count - 1) + ue(6) + ue(2) + u(width, 1, 0, 1))))
    seeds |= {
        "empty": b"",
        "plain": seed(plain),
        "absent_sps": seed(plain, rbsp(pps(sps_id=9))),
        "invalid_sps": seed(plain, rbsp(pps(sps_id=2))),
        "tail": seed(rbsp(pps(tail="00" + se(3)))),
        "six_lists": seed(rbsp(pps(tail="01" + "0" * 6 + se(3)))),
        "eight_lists": seed(rbsp(pps(tail="11" + ("1" + scaling_list(-8)) * 8 + se(3))), plain),
        "twelve_lists": seed(rbsp(pps(tail="11" + "0" * 11 + "1" + scaling_list(*[1] * 64) + se(3), sps_id=1)), plain),
        "run_lengths_128": seed(rbsp(pps(ue(127) + ue(0) + ue(0) * 128))),
        "run_lengths_129": seed(plain, rbsp(pps(ue(128) + ue(0) + ue(0) * 129))),
        "rectangles_128": seed(rbsp(pps(ue(128) + ue(2) + ue(0) * 256))),
        "rectangles_129": seed(plain, rbsp(pps(ue(129) + ue(2) + ue(0) * 258))),
        "map_units_128": seed(rbsp(pps(ue(1) + ue(6) + ue(127) + u(2, 1) * 128))),
        "map_units_129": seed(plain, rbsp(pps(ue(1) + ue(6) + ue(128) + u(2, 1) * 129))),
        "largest_counts": seed(rbsp(pps(ue(2**32 - 2) + ue(0))), rbsp(pps(ue(1) + ue(6) + ue(2**32 - 2)))),
        "no_trailing_bits": seed(bits(pps())),
        "malformed": seed(bits(ue(1) + "0" * 32 + "1")),
    }
    return seeds


def sei_sps(nal=None, vcl=None, pic_struct=True):
    """An HRD is (CPBs less one, length of the initial delay less one, length of the time offset)."""
    present = (nal is not None) | (vcl is not None) << 1 | pic_struct << 2
    return bytes([present, *(nal or (0, 23, 24)), *(vcl or (0, 23, 24))])


def timestamp(time_of_day, offset, ct_type=1, full=0):
    return "1" + u(2, ct_type) + "1" + u(5, 4) + u(1, full) + "10" + u(8, 200) + time_of_day + offset


def pic_timing_seeds():
    def seed(sps, *texts, source=0, options=0):
        return bytes([source]) + sps + in_a_row(*(bits(text) for text in texts), options=options)

    both = sei_sps((0, 23, 24), (0, 15, 5))
    delays, offset = u(24, 0xABCDEF, 0x123456), u(24, 2**24 - 1000)
    clock = u(6, 59, 58) + u(5, 23)
    full = timestamp(clock, offset, full=1)
    part = timestamp("1" + u(6, 40) + "0", offset)
    hours = timestamp("1" + u(6, 40) + "1" + u(6, 50) + "1" + u(5, 20), offset)
    seeds = {f"pic_struct_{k}": seed(sei_sps(), u(4, k) + part * 3) for k in range(16)}
    seeds |= {
        "empty": b"",
        "full": seed(both, delays + u(4, 5) + full * 3),
        "three_then_two": seed(both, delays + u(4, 6) + full * 3, delays + u(4, 3), options=1),
        "three_then_none": seed(both, delays + u(4, 8) + hours + "0" + full, options=1),
        "delays_alone": seed(sei_sps((0, 7, 24), pic_struct=False), u(24, 1, 2)),
        "nothing": seed(sei_sps(pic_struct=False), delays),
        "current": seed(both, delays + u(4, 0) + hours, source=1),
        "absent": seed(both, delays, source=2),
        "none_current": seed(both, delays, source=3),
        "from_within_a_byte": seed(sei_sps(), "111" + u(4, 4) + "0" + full, options=6),
        "behind_the_end": seed(both, u(24, 1), options=120),
    }
    for length in (0, 1, 31, 32, 33, 255):
        sps = sei_sps((0, 23, length), (0, 23, 0))
        for first in "01":
            text = delays + u(4, 0) + timestamp("0", first + "10" * 127)
            seeds[f"time_offset_{length}_{first}"] = seed(sps, text)
    for length in (0, 24, 25, 31, 32, 254, 255):
        seeds[f"delay_length_minus1_{length}"] = seed(sei_sps(vcl=(0, length, 0), nal=(0, 0, 0)), "1001" * 100)
    return seeds


def buffering_period_seeds():
    def seed(spss, *texts, options=0):
        stored = b"".join(bytes([sps_id]) + sps for sps_id, sps in spss)
        return bytes([len(spss)]) + stored + in_a_row(*(bits(text) for text in texts), options=options)

    three, two = (2, 23, 24), (1, 9, 24)
    pairs = u(24, *range(1000, 1006))
    both = ue(0) + pairs + u(10, 1, 2, 3, 4)
    seeds = {
        "empty": b"",
        "neither": seed([(0, sei_sps())], ue(0)),
        "nal": seed([(0, sei_sps(three))], ue(0) + pairs),
        "vcl": seed([(0, sei_sps(None, two))], ue(0) + u(10, 5, 6, 7, 8)),
        "both": seed([(0, sei_sps(three, two))], both),
        "more_then_fewer": seed([(0, sei_sps(three, two)), (1, sei_sps((0, 3, 0)))], both, ue(1) + u(4, 9, 3), options=1),
        "absent": seed([(0, sei_sps(three, two))], both, ue(7)),
        "none_stored": seed([], ue(0)),
        "largest_id": seed([(3, sei_sps())], ue(2**32 - 2)),
        "truncated": seed([(0, sei_sps(three, two))], ue(0) + u(24, 5)),
        "malformed": seed([(0, sei_sps(three, two))], both, "0" * 32 + "1"),
        "nal_128": seed([(0, sei_sps((127, 3, 0)))], ue(0) + "1001" * 256),
        "vcl_128": seed([(0, sei_sps(None, (127, 3, 0)))], ue(0) + "1001" * 256),
        "from_within_a_byte": seed([(0, sei_sps(three, two))], "11111" + both, options=10),
    }
    for count in (128, 255):
        seeds[f"nal_count_minus1_{count}"] = seed([(0, sei_sps((count, 3, 0), two))], ue(0) + "1001" * 20)
        seeds[f"vcl_count_minus1_{count}"] = seed([(0, sei_sps(three, (count, 3, 0)))], both)
    for length in (0, 24, 25, 31, 32, 255):
        seeds[f"delay_length_minus1_{length}"] = seed([(0, sei_sps((1, length, 0)))], ue(0) + "1001" * 200)
    return seeds


def pan_scan_rect_seeds():
    def text(count, cnt_minus1=None, cancel="0"):
        offsets = "".join(se(k) + se(-k) + se(3) + se(-4) for k in range(count))
        return ue(9) + cancel + ue(count - 1 if cnt_minus1 is None else cnt_minus1) + offsets + ue(20000)

    return {
        "empty": b"",
        "one": in_a_row(bits(text(1))),
        "three_then_one": in_a_row(bits(text(3)), bits(text(1)), options=1),
        "three_then_cancelled": in_a_row(bits(text(3)), bits(text(1, cancel="1"))),
        "count_128": in_a_row(bits(ue(0) + "0" + ue(127) + se(1) * 512 + ue(1))),
        "count_129": in_a_row(bits(text(2)), bits(text(2, 128))),
        "largest_count": in_a_row(bits(text(2)), bits(text(1, 2**32 - 2)), options=1),
        "largest_values": in_a_row(bits(ue(2**32 - 2) + "0" + ue(0) + se(2**31 - 1) + se(1 - 2**31) * 3 + ue(2**32 - 2))),
        "truncated": in_a_row(bits(text(3))[:7]),
        "malformed": in_a_row(bits(text(2)), bits(ue(9) + "0" + ue(1) + se(4) + "0" * 32 + "1")),
    }


def recovery_point_seeds():
    seeds = {f"flags_{k}": in_a_row(bits(ue(k) + u(4, k)), options=k % 2) for k in range(16)}
    return seeds | {
        "empty": b"",
        "broken_link": in_a_row(b"\xb0"),
        "largest_count": in_a_row(bits(ue(2**32 - 2) + "1111")),
        "truncated": in_a_row(bits(ue(5))),
        "malformed": in_a_row(b"\xb0", bits("0" * 32 + "1")),
        "behind_the_end": in_a_row(b"\xff", options=122),
    }


def user_data_unreg_seeds():
    known = bytes.fromhex("dc45e9bde6d948b7962cd820d923eeef")
    payloads = {"known": known + b"core 1", "known_alone": known, "short": known[:15], "other": known[:15] + b"\xee\x01"}
    payloads["other_first"] = b"\xdd" + known[1:]
    seeds = {f"{k}_then_{j}": bytes([len(a)]) + a + b for k, a in payloads.items() for j, b in payloads.items()}
    return seeds | {"empty": b""}


def modification(*steps, end=ue(3)):
    """ref_pic_list_modification() of one list; a step is (idc, value) or (idc,)."""
    return "1" + "".join(ue(value) for step in steps for value in step) + end


def slice_header(slice_type, pps_id=0, middle="", references=""):
    """`middle` is what stands between frame_num, of 4 bits, and the references."""
    return ue(0) + ue(slice_type) + ue(pps_id) + u(4, 9) + middle + references


def slice_header_seeds():
    mbs_only, planes, always_zero, bottom, redundant = 4, 2, 8, 2, 4

    def pair(sps=mbs_only, pps=0, poc_type=2, log2=(0, 0), sps_id=3, pps_id=0, named=None):
        widths = bytes(value % 256 for value in log2)
        return bytes([sps_id, sps | poc_type << 4, *widths, pps_id, sps_id if named is None else named, pps])

    def seed(*structures, nal_unit_type=1, pairs=(pair(),), options=0):
        data = (bits(text) for text in structures)
        return bytes([nal_unit_type, len(pairs)]) + b"".join(pairs) + in_a_row(*data, options=options)

    lists = modification((0, 3), (2, 1)), modification((1, 9), (4,), (5,), (0, 0))
    p_slice = slice_header(5, references="1" + ue(3) + lists[0])
    b_slice = slice_header(6, references="11" + ue(3) + ue(1) + lists[0] + lists[1])
    i_slice = slice_header(7)
    frame = pair(sps=0, pps=bottom | redundant, poc_type=0)
    deltas = pair(pps=bottom, poc_type=1)
    seeds = {
        "empty": b"",
        "p_b_i": seed(p_slice, b_slice, i_slice),
        "sp_si": seed(slice_header(8, references="0" + lists[1]), slice_header(9)),
        "largest_types": seed(*(slice_header(2**32 - 2 - k) + "0" * 4 for k in range(5))),
        "no_lists": seed(slice_header(6, references="0" * 4)),
        "idr": seed(slice_header(7, middle=ue(5)), nal_unit_type=5),
        "mvc": seed(p_slice, nal_unit_type=20),
        "absent_pps": seed(p_slice, slice_header(7, pps_id=1)),
        "absent_sps": seed(p_slice, pairs=(pair(sps_id=4, named=3),)),
        "colour_planes": seed(
            *(ue(0) + ue(7) + ue(k) + plane + u(4, 9) for k, plane in enumerate(("11", ""))),
            pairs=(pair(sps=mbs_only | planes), pair(sps_id=4, pps_id=1)),
        ),
        "frame": seed(slice_header(7, middle="0" + u(4, 3) + se(-3) + ue(2)), pairs=(frame,)),
        "fields": seed(*(slice_header(7, middle="1" + p + u(4, 3) + ue(2)) for p in "01"), pairs=(frame,)),
        "kept_field_flag": seed(
            slice_header(7, middle="11" + u(4, 3) + ue(2)),
            slice_header(7, pps_id=1, middle=u(4, 3) + ue(2)),
            slice_header(7, middle="0" + u(4, 3) + se(-3) + ue(2)),
            pairs=(frame, pair(pps=bottom | redundant, poc_type=0, sps_id=4, pps_id=1)),
        ),
        "idr_frame_and_field": seed(
            slice_header(7, middle="0" + ue(5) + u(4, 3) + se(-3) + ue(2)),
            slice_header(7, middle="10" + ue(6) + u(4, 3) + ue(2)),
            nal_unit_type=5,
            pairs=(frame,),
        ),
        "widths_that_differ": seed(
            ue(0) + ue(7) + ue(0) + u(9, 0x1A5) + u(6, 45), pairs=(pair(poc_type=0, log2=(5, 2)),)
        ),
        "redundant_count_of_200": seed(slice_header(7, middle=ue(200)), pairs=(pair(pps=redundant),)),
        "modified_then_not": seed(b_slice, slice_header(6, references="0" * 4), i_slice),
        "first_list_without_end_after_a_good_slice": seed(
            p_slice, slice_header(5, references="0" + modification((0, 3), end=""))
        ),
        "deltas": seed(slice_header(7, middle=se(-8) + se(17)), pairs=(deltas,)),
        "two_deltas_then_one": seed(
            slice_header(7, middle=se(-8) + se(17)),
            slice_header(7, pps_id=1, middle=se(-9)),
            pairs=(deltas, pair(poc_type=1, sps_id=4, pps_id=1)),
        ),
        "one_delta": seed(slice_header(7, middle=se(-8)), pairs=(pair(poc_type=1),)),
        "no_deltas": seed(i_slice, pairs=(pair(sps=mbs_only | always_zero, poc_type=1),)),
        "poc_type_5": seed(i_slice, pairs=(pair(poc_type=5),)),
        "idc_of_23_zeros": seed(slice_header(5, references="0" + modification((2**23 - 1,), (2, 4)))),
        "idc_of_24_zeros": seed(slice_header(5, references="0" + modification((2**24 - 1,)))),
        "list_without_end": seed(slice_header(5, references="0" + modification((0, 3), (4,), end=""))),
        "second_list_without_end": seed(slice_header(6, references="00" + lists[0] + modification(end=""))),
        "long_list": seed(slice_header(5, references="0" + modification(*[(k % 3, k) for k in range(140)]))),
        "accumulating": seed(b_slice, b_slice, p_slice, options=1),
        "malformed": seed(ue(0) + "0" * 32 + "1"),
        "malformed_value": seed(p_slice, slice_header(5, references="01" + ue(2) + "0" * 32 + "1"), options=1),
        "cut": seed(b_slice[:20], b_slice[:30], b_slice[:40]),
    }
    for width in (1, 16, 25, 26, 32, 33, 51, 255, 0):
        text = ue(0) + ue(7) + ue(0) + u(8, 0x9E) * 64
        seeds[f"width_{width}"] = seed(text, pairs=(pair(poc_type=0, log2=(width - 4, width - 4)),))
    return seeds


def walker_seeds():
    def seed(*units):
        return b"".join(bytes([header, len(data) >> 8, len(data) & 0xFF]) + data for header, data in units)

    def sei(*messages):
        return 6, b"".join(bytes([kind, len(payload)]) + payload for kind, payload in messages) + b"\x80"

    timed = "1" + vui(NO_GROUPS, hrd(1))
    sets = ((SPS, rbsp(sps_head() + sps_tail(ue(0) + ue(0), vui_text=timed))), (PPS, rbsp(pps())))
    start = ue(0) + ue(5) + ue(1) + u(4, 7)
    p_slice = start + u(4, 9) + ue(0) + "0"
    steps = ue(0) + ue(5) + ue(2) + ue(1)
    timing = bits(u(23, 70) + u(22, 5) + u(4, 3) + "0" + "1" + u(19, 77) + "0" + u(24, 3))
    return {
        "empty": b"",
        "parameter_sets": seed(*sets, (AUD, b"\xf0")),
        "p_slice": seed(*sets, (0x41, rbsp(p_slice + "0"))),
        "idr_slice": seed(*sets, (IDR, rbsp(ue(0) + ue(7) + ue(1) + u(4, 7) + ue(3) + u(4, 1) + ue(0)) + bytes([0x55] * 300))),
        "list_over_two_blocks": seed(*sets, (0x41, rbsp(p_slice + "1" + steps * 90 + ue(3)) + bytes([0xAA] * 9))),
        "list_with_escapes": seed(*sets, (0x41, rbsp(p_slice + "1" + (ue(0) + ue(65535)) * 60 + ue(3)))),
        "list_without_end": seed(*sets, (0x41, bits(p_slice + "1" + steps * 30) + bytes(9))),
        "slice_without_sets": seed((0x41, rbsp(p_slice + "0"))),
        "malformed_slice": seed(*sets, (0x41, bytes(200))),
        "buffering_period_and_timing": seed(*sets, sei((0, bits(ue(0) + u(24, 90000, 3))), (1, timing))),
        "every_payload": seed(*sets, sei((2, bits(ue(1) + "0" + ue(0) + se(-1) * 4 + ue(1))), (6, b"\xc4"),
                                         (5, bytes(range(0x41, 0x61))), (4, b"\xb5"), (200, b""))),
        "sei_problems": seed(sei((1, timing), (0, b"\x28"), (5, b"\x01"), (2, bits(ue(0) + "0" + ue(128))))),
        "sei_truncated": seed((6, b"\x05\xff\xff\x10\x01\x02")),
    }


def record(sps, pps, sps_count=None, pps_count=None, tail=b""):
    """An AVC decoder configuration record; its counts may lie."""
    counts = (len(sps) if sps_count is None else sps_count, len(pps) if pps_count is None else pps_count)
    head = bytes([1, 0x64, 0, 0x1F, 0xFF, 0xE0 | counts[0]])
    entries = [b"".join(prefixed(2, bytes(entry)) for entry in sets) for sets in (sps, pps)]
    return head + entries[0] + bytes([counts[1]]) + entries[1] + tail


def record_seeds():
    sps, pps = unit(SPS, 0x64, 0, 0x1F), unit(PPS, 0xEE)
    whole = record([sps, b"", sps], [pps, pps])
    return {
        "empty": b"",
        "one_of_each": record([sps], [pps]),
        "several": whole,
        "extension": record([sps], [pps], tail=bytes([0xFD, 0xF8, 0xF8, 0])),
        "six_bytes": whole[:6],
        "no_sps": record([], [pps]),
        "no_pps": record([sps], []),
        "no_pps_and_a_byte": record([sps], [], tail=b"\xfd"),
        "cut_sps": whole[:10],
        "cut_pps": whole[:-1],
        "without_pps_count": record([sps], [pps])[:12],
        "too_few_sps": record([sps], [pps], sps_count=31),
        "too_few_pps": record([sps], [pps], pps_count=255),
        "longest_entry": record([], []) + b"\xff\xff" + sps,
    }


LEGACY_READ, LEGACY_UE, LEGACY_SE, LEGACY_U32, LEGACY_AT_END, LEGACY_READ_NARROW = range(6)


def legacy_bits_seeds():
    counted = bytes(range(0x11, 0x100, 0x11))
    codes = bits("1 010 011 00100 00111 0001000 1") + bytes(12)
    to_the_end = [(LEGACY_AT_END, 0), (LEGACY_READ_NARROW, 7)] * 6
    return {
        "empty": b"",
        "every_width": bitreader([(LEGACY_READ, n) for n in range(26)], counted * 3),
        "widths_that_move_nothing": bitreader([(LEGACY_READ, n) for n in (8, 0, 25, 8, 255, 8)], counted),
        "unsigned_codes": bitreader([(LEGACY_UE, 0)] * 8, codes),
        "signed_codes": bitreader([(LEGACY_SE, 0)] * 8, codes),
        "largest_code": bitreader([(LEGACY_UE, 0)] * 2, bytes(3) + b"\xff" * 9),
        "23_zeros": bitreader([(LEGACY_UE, 0), (LEGACY_SE, 0)], bits("0" * 23 + "1" * 30)),
        "24_zeros_and_a_one": bitreader([(LEGACY_UE, 0), (LEGACY_UE, 0)], bits("0" * 24 + "1" + "01" * 40)),
        "zeros_only": bitreader([(LEGACY_UE, 0), (LEGACY_SE, 0), (LEGACY_UE, 0)], bytes(20)),
        "code_behind_a_bit": bitreader([(LEGACY_READ, 1), (LEGACY_UE, 0), (LEGACY_U32, 0)], bits("1 0001" + "01" * 60)),
        "32_bits": bitreader([(LEGACY_READ, 3), (LEGACY_U32, 0), (LEGACY_U32, 0)], counted),
        "to_the_end": bitreader(to_the_end, b"\x01\x00\x40\x00"),
        "three_bytes": bitreader([(LEGACY_UE, 0), (LEGACY_AT_END, 0)], b"\x00\x00\x01"),
    }


def scanner(k, stream, room=64, cut=0):
    return bytes([k, room, cut]) + stream


def legacy_nal_parser_seeds():
    escapes = unit(SPS, 0x42, 0, 0, 3, 1, 0, 0, 3, 0, 0, 3)
    plain = unit(IDR, *range(0x10, 0x38), 0, 0, 4)
    annexb = bytes(1) + START_CODE + escapes + bytes(1) + START_CODE + unit(PPS, 0xCE) + START_CODE + plain
    seeds = {
        "empty": b"",
        "annexb_units": scanner(0, annexb, cut=12),
        "annexb_forbidden_header": scanner(0, START_CODE + unit(FORBIDDEN, 1) + START_CODE + unit(AUD, 0xF0), cut=4),
        "annexb_junk": scanner(0, bytes([0xEE] * 9 + [0, 0, 2, 0, 7, 0, 0])),
        "annexb_start_code_at_the_end": scanner(0, START_CODE + plain + START_CODE, cut=11),
        "annexb_three_zeros_end_a_unit": scanner(0, START_CODE + unit(SPS, 7, 0, 0, 0)),
        "annexb_type_without_a_name": scanner(0, START_CODE + unit(0x6D, *range(0x70, 0x81))),
    }
    for room in range(8):
        seeds[f"annexb_room_of_{room}"] = scanner(0, START_CODE + unit(SPS, 4, 5, 6, 0, 0, 3, 1, 9), room=room)
    for k in range(1, 5):
        stream = prefixed(k, escapes) + prefixed(k, unit(FORBIDDEN, 1)) + prefixed(k, plain) + prefixed(k, unit(AUD))
        seeds[f"length{k}_units"] = scanner(k, stream, cut=k + 3)
        seeds[f"length{k}_zero"] = scanner(k, prefixed(k, unit(SPS, 1)) + prefixed(k, b"") + plain)
        seeds[f"length{k}_too_large"] = scanner(k, prefixed(k, plain, length=256**k - 1), cut=k)
        seeds[f"length{k}_start_code_inside"] = scanner(k, prefixed(k, unit(SPS, 9, 0, 0, 1, 1, 7)) + stream)
    return seeds


def legacy_nal_write_seeds():
    payload = bytes([0x42, 0, 0, 1, 0, 0, 0, 3, 0, 0, 2, 9, 0, 0, 4])
    seeds = {"empty": b"", "zeros": bytes([0, SPS, 0]) + bytes(40)}
    for k in range(5):
        seeds[f"length{k}"] = bytes([k, SPS, 0]) + payload
        seeds[f"length{k}_forbidden_header"] = bytes([k, FORBIDDEN, 0]) + payload
        seeds[f"length{k}_two_zeros_at_the_end"] = bytes([k, SPS, 0]) + payload + bytes(2)
        seeds[f"length{k}_300_bytes"] = bytes([k, SPS, 0]) + b"\x55" * 300
        for missing in range(10, 24, 3):
            seeds[f"length{k}_{missing}_missing"] = bytes([k, SPS, missing]) + payload
    return seeds
def legacy_sps_seeds():
    def seed(*structures, reset=0):
        return b"".join(bytes([reset, len(data) >> 8, len(data) & 0xFF]) + data for data in structures)

    lists_4x4, lists_8x8 = "1" + scaling_list(*[1] * 16), "1" + scaling_list(*[1] * 64)
    poc_1 = ue(1) + "1" + se(-3) + se(5)
    baseline = rbsp(sps_head() + sps_tail(ue(0) + ue(2)))
    chroma = {idc: ue(idc) + ("1" if idc == 3 else "") + ue(0) + ue(0) + "0" for idc in (0, 1, 2, 3, 4)}
    full_lists = chroma[3] + "1" + lists_4x4 * 6 + lists_8x8 * 6
    full_tail = sps_tail(poc_1 + ue(2) + se(4) + se(-5), "01", "1" + ue(1) * 4, "1" + FULL_VUI)
    full = rbsp(sps_head(244, 1, full_lists) + full_tail)
    with_vui = {f"hrd_{n}": vui(NO_GROUPS, nal=hrd(n)) for n in (1, 2, 32, 33, 128)}
    with_vui |= {f"aspect_ratio_idc_{k}": vui("1" + u(8, k) + "0000") for k in (0, 1, 13, 16, 17, 254)}
    with_vui |= {"both_hrds": vui(NO_GROUPS, hrd(3), hrd(2)), "vcl_hrd": vui(NO_GROUPS, vcl=hrd(1))}
    with_vui |= {"every_group": FULL_VUI}
    seeds = {k: seed(rbsp(sps_head() + sps_tail(ue(2), vui_text="1" + text))) for k, text in with_vui.items()}
    seeds |= {f"chroma_{k}": seed(rbsp(sps_head(100, 0, text + "0") + sps_tail(ue(2)))) for k, text in chroma.items()}
    seeds |= {f"cut_{n}": seed(full, full[:n]) for n in (1, 4, 9, 20, 60, 200, len(full) - 1)}
    for profile_idc in (100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 139, 134, 135):
        text = sps_head(profile_idc, 0, chroma[2] + "0") + sps_tail(ue(0) + ue(0))
        seeds[f"profile_{profile_idc}"] = seed(rbsp(text))
    return seeds | {
        "empty": b"",
        "baseline": seed(baseline),
        "every_element_then_few": seed(full, baseline),
        "every_element_then_few_reset": seed(full, baseline, reset=1),
        "eight_lists": seed(rbsp(sps_head(100, 0, chroma[1] + "1" + lists_4x4 * 6 + lists_8x8 * 2) + sps_tail(ue(2)))),
        "default_lists": seed(rbsp(sps_head(100, 0, chroma[1] + "1" + ("1" + scaling_list(-8)) * 8) + sps_tail(ue(2)))),
        "poc_types": seed(*(rbsp(sps_head() + sps_tail(ue(k) + poc_1 + ue(0))) for k in (2, 5, 255, 256, 257))),
        "cycle_of_255": seed(rbsp(sps_head() + sps_tail(poc_1 + ue(255) + se(-2) * 255))),
        "largest_cycle": seed(bits(u(8, 66, 0, 30) + ue(0) + ue(0) + poc_1 + "0" * 24 + "1" * 24)),
        "fields": seed(rbsp(sps_head(77) + sps_tail(ue(2), mbs_only="01"))),
        "crop_larger_than_picture": seed(rbsp(sps_head() + sps_tail(ue(2), cropping="1" + ue(2**24 - 2) * 4))),
        "prefix_of_24": seed(rbsp(u(8, 66, 0, 30) + ue(2**24 - 1) + sps_tail(ue(2)))),
        "prefix_of_48": seed(bits(u(8, 66, 0, 30) + "0" * 48 + sps_tail(ue(2)))),
    }


def legacy_slice_seeds():
    def seed(*structures, width=4, planes=0, frames=0):
        data = (bits(text) for text in structures)
        return bytes([planes | frames << 1, width]) + b"".join(bytes([len(each)]) + each for each in data)

    start = ue(300) + ue(7) + ue(5)
    seeds = {f"width_{n}": seed(start + u(24, 0x9E9E9E) + "11", width=n) for n in (0, 1, 4, 16, 24, 25, 32, 255)}
    return seeds | {
        "empty": b"",
        "field_then_frame": seed(start + u(4, 9) + "11", start + u(4, 9) + "0"),
        "frames": seed(start + u(4, 9) + "11", frames=1),
        "planes": seed(start + "10" + u(4, 9) + "10", start + "11" + u(4, 9) + "0", planes=1),
        "largest_codes": seed((ue(2**24 - 2) * 3) + u(4, 9) + "11"),
        "prefix_of_24": seed(ue(2**24 - 1) + "0" * 48 + ue(0) + u(4, 9) + "11"),
        "cut": seed(start[:8], start[:16], start[:20]),
    }


def legacy_sei_seeds():
    def seed(content, hrd=0, pic_struct=1, lengths=(24, 24)):
        return bytes([hrd | pic_struct << 2, *lengths]) + content

    def message(kind, payload):
        return bytes([kind, len(payload)]) + payload

    delays = bits(u(24, 0xABCDEF, 0x123456) + u(4, 7))
    seeds = {f"pic_struct_{k}": seed(message(1, bytes([k << 4])) + b"\x80") for k in range(16)}
    seeds |= {f"delays_of_{n}": seed(delays, 1, lengths=(n, 49 - min(n, 49))) for n in (0, 1, 23, 24, 25, 255)}
    return seeds | {
        "empty": b"",
        "no_rbsp": seed(b""),
        "buffering_period_first": seed(message(0, b"\x11\x22") + message(1, b"\x50") + b"\x80"),
        "two_timings": seed(message(1, b"\x10") + message(1, b"\x70") + b"\x80"),
        "empty_timing_first": seed(message(1, b"") + message(1, b"\x70") + b"\x80"),
        "with_delays": seed(message(1, delays) + b"\x80", 2),
        "no_pic_struct": seed(message(1, delays) + b"\x80", 3, 0),
        "long_type_and_size": seed(b"\xff\xff\x03\xff\x05" + bytes(260) + message(1, b"\x70") + b"\x80"),
        "cut_payload": seed(message(0, b"\x01") + b"\x01\x05\x70"),
        "cut_type": seed(message(0, b"\x01") + b"\xff\xff"),
        "cut_size": seed(b"\x01\xff\xff"),
    }
def frame_scan_seeds():
    def sei(pic_struct):
        return unit(6, 1, 1, pic_struct << 4 | 8, 0x80)

    def slice_unit(frame_num, field="0", kind=0x21, width=4):
        return bytes([kind]) + rbsp(ue(0) + ue(5) + ue(0) + u(width, frame_num) + field + "1" * 9)

    def seed(*units, flags=0, room=255):
        streams = [b"".join(START_CODE + one for one in units)]
        streams += [b"".join(prefixed(size, one) for one in units) for size in range(1, 5)]
        return [bytes([framing, flags, room]) + stream for framing, stream in enumerate(streams)]

    top, bottom = "10", "11"
    aud, pps_unit, filler, end = unit(AUD, 0xF0), unit(PPS, 0xCE, 0x38, 0x80), unit(12, 0xFF, 0x80), unit(11)
    sps = bytes([SPS]) + rbsp(sps_head() + sps_tail(ue(0) + ue(0), mbs_only="00", vui_text="1" + vui(NO_GROUPS)))
    timed = bytes([SPS]) + rbsp(sps_head() + sps_tail(ue(2), vui_text="1" + vui(NO_GROUPS, hrd(1))))
    pair = (sps, sei(1), slice_unit(3, top), sei(2), slice_unit(3, bottom), aud)
    rows = {
        "frames": seed(aud, sps, pps_unit, slice_unit(0, kind=IDR), slice_unit(1), slice_unit(1), slice_unit(2), aud),
        "pair": seed(*pair),
        "pair_split": seed(*pair, flags=3),
        "lone_field": seed(sps, slice_unit(3, top), aud, sei(7), slice_unit(4, top), sei(1)),
        "frame_behind_a_field": seed(sps, slice_unit(3, top), aud, slice_unit(3), filler),
        "end_behind_leading_units": seed(filler, sps, end, slice_unit(1), unit(10), end, slice_unit(1), end),
        "little_room": seed(*pair, room=6),
        "no_room": seed(*pair, room=0),
        "delays": seed(timed, unit(6, 1, 7, *range(1, 8), 0x80), slice_unit(3), aud),
        "empty_slices": seed(sps, unit(1), slice_unit(1), unit(5), unit(6), aud),
        "wide_frame_num": seed(
            bytes([SPS]) + rbsp(sps_head() + ue(21) + sps_tail(ue(2), mbs_only="00")[1:]),
            slice_unit(0, top, width=0), sps, slice_unit(3, bottom), slice_unit(4),
        ),
    }
    names = ("annexb", *(f"length{size}" for size in range(1, 5)))
    seeds = {f"{row}_{name}": one for row, framed in rows.items() for name, one in zip(names, framed)}
    return seeds | {"empty": b"", "cut": seeds["pair_annexb"][:-3], "junk_between": bytes([0, 0, 255]) + b"\xee\0" * 9}


def frame_finder_seeds():
    def sei(pic_struct):
        return unit(6, 1, 1, pic_struct << 4 | 8, 0x80)

    def slice_unit(frame_num, field="0", kind=0x21):
        return bytes([kind]) + rbsp(ue(0) + ue(5) + ue(0) + u(4, frame_num) + field + "1" * 9)

    def seed(*units, framing=0, flags=0, piece=4):
        padded = (one if isinstance(one, tuple) else (one, 0) for one in units)
        return bytes([framing, flags, piece]) + b"".join(
            bytes([one[0], padding, len(one) - 1]) + one[1:] for one, padding in padded
        )

    top, bottom = "10", "11"
    aud, pps_unit, filler, end = unit(AUD, 0xF0), bytes([PPS]) + rbsp(pps()), unit(12, 0xFF, 0x80), unit(11)
    frames_only = bytes([SPS]) + rbsp(sps_head() + sps_tail(ue(2)))
    sps = bytes([SPS]) + rbsp(sps_head() + sps_tail(ue(2), mbs_only="00", vui_text="1" + vui(NO_GROUPS)))
    pair = (sps, pps_unit, sei(1), slice_unit(3, top), sei(2), slice_unit(3, bottom))
    seeds = {
        "empty": b"",
        "lone_field_at_the_end": seed(sps, pps_unit, sei(1), slice_unit(3, top)),
        "frame_behind_a_field": seed(sps, slice_unit(3, top), aud, slice_unit(4), filler, end),
        "no_frame": seed(filler, end, (filler, 100), unit(10)),
        "filler_in_front": seed((filler, 200), filler, sps, pps_unit, slice_unit(1)),
        "sps_changes": seed(sps, slice_unit(1, top), frames_only, slice_unit(2), sps, slice_unit(3, bottom)),
        "large_units": seed(aud, frames_only, pps_unit, *((slice_unit(i), 80 * i) for i in range(4))),
        "large_unit_in_the_frame": seed(frames_only, pps_unit, (slice_unit(1), 60), (slice_unit(1), 250), aud),
        "empty_units": seed(unit(9), unit(5), unit(1), unit(7), unit(8), unit(6), unit(1)),
        "zeros_inside": seed(sps, slice_unit(1) + b"\0\0\1\x65", unit(1, 0, 0), unit(5, 0), framing=4),
    }
    for framing, name in enumerate(("annexb", *(f"length{size}" for size in range(1, 5)))):
        seeds[f"pair_{name}"] = seed(*pair, *pair, framing=framing)
        seeds[f"pair_split_{name}"] = seed(*pair, *pair, framing=framing, flags=3)
    return seeds


def block_twins_seeds():
    """A kind of third byte, a step, the room for what is written, and the data."""
    def seed(data, kind=0, step=2, room=1000):
        return bytes([kind, step, room >> 8, room & 0xFF]) + data

    escapes = bytes([0, 0, 3]) * 100
    return {
        "empty": b"",
        "escapes": seed(escapes),
        "escapes_and_an_end": seed(bytes(70) + escapes[:150] + START_CODE + bytes([0x55] * 200)),
        "zeros": seed(bytes(300), step=0),
        "plain": seed(bytes(range(1, 256)) * 2, kind=5),
        "start_codes": seed((START_CODE + bytes([0x65] * 40)) * 8, kind=2),
        "small_room": seed(bytes([9] * 66) + escapes, room=97),
        "short": seed(bytes([0, 0, 2, 0, 0, 1]), kind=1, room=3),
    }


def generations_nal_seeds():
    units = [unit(SPS, 0x42, 0, 0, 3, 1), unit(FORBIDDEN, 1), unit(IDR, 0x88, 0, 0, 3, 0, 0, 3, 3), unit(AUD, 0xF0)]
    annexb = b"".join(START_CODE + body for body in units)
    seeds = {
        "annexb": bytes([0, SPS]) + bytes(1) + annexb,
        "two_zeros_at_the_end": bytes([0, SPS, 7, 0, 0]),
        "four_zeros_at_the_end": bytes([0, SPS, 7, 0, 0, 0, 0]),
        "length_above_its_prefix": bytes([1, SPS]) + bytes([7] * 255),
        "length1_ends_early": bytes([1, SPS]) + prefixed(1, unit(SPS, 9, 0, 0, 1, 7)) + prefixed(1, unit(PPS, 8)),
        "many_zeros": bytes([4, SPS]) + bytes(400),
    }
    for k in range(1, 5):
        seeds[f"length{k}"] = bytes([k, SPS]) + b"".join(prefixed(k, body) for body in units)
    return seeds


def generations_syntax_seeds():
    def seed(sps, slice_bits, sei, flags=2):
        return bytes([flags]) + b"".join(bytes([len(part)]) + part for part in (sps, bits(slice_bits), sei))

    plain = rbsp(sps_head() + sps_tail(ue(0) + ue(0)))
    timed = rbsp(sps_head() + sps_tail(ue(0) + ue(0), vui_text="1" + vui(NO_GROUPS, hrd(1))))
    high = rbsp(sps_head(profile_idc=100, high=ue(1) + ue(0) + ue(0) + "00") + sps_tail(ue(2)))
    start = ue(0) + ue(7) + ue(0) + u(4, 7)
    idr = start + ue(3) + u(4, 9) + se(0) + "0"
    timing = bytes([1, 7]) + bytes(range(7)) + b"\x80"
    return {
        "empty": b"",
        "plain": seed(plain, start + u(4, 9) + se(1) + "000", timing),
        "idr": seed(plain, idr, b"\x05\x01\x00\x80", flags=3),
        "timed": seed(timed, start + u(4, 9) + se(1) + "000", timing),
        "high": seed(high, start + "000", b"\x01\x00\x80"),
    }


def dumps_seeds():
    """How many bytes of a unit, plus 2^31; the prefix size; the size of the stream, the stream; and the fields."""
    def seed(shown, stream, k=0, fields=b""):
        return (shown + 2**31).to_bytes(4, "big") + bytes([k, len(stream)]) + stream + fields

    stream = START_CODE + unit(SPS, *range(40)) + START_CODE + unit(0x1F, 1) + START_CODE + unit(AUD)
    counted = b"".join(i.to_bytes(4, "big") for i in range(1, 63))
    return {
        "every_byte": seed(65536, stream, fields=counted),
        "none": seed(0, stream, fields=b"\xff" * 248),
        "fewer_than_none": seed(-(2**31), stream),
        "sixteen": seed(16, stream, fields=bytes(248)),
        "seventeen": seed(17, prefixed(2, stream[3:20]) + prefixed(2, unit(PPS, 7)), k=2),
    }


def main():
    all_seeds = {
        "frame_finder": frame_finder_seeds(),
        "decoder_configuration_record": record_seeds(),
        "legacy_bits": legacy_bits_seeds(),
        "legacy_nal_parser": legacy_nal_parser_seeds(),
        "legacy_nal_write": legacy_nal_write_seeds(),
        "bitreader": bitreader_seeds(),
        "block_twins": block_twins_seeds(),
        "generations_nal": generations_nal_seeds(),
        "generations_syntax": generations_syntax_seeds(),
        "legacy_dumps": dumps_seeds(),
        "hrd_parameters": hrd_seeds(),
        "legacy_sei": legacy_sei_seeds(),
        "legacy_slice": legacy_slice_seeds(),
        "legacy_sps": legacy_sps_seeds(),
        "legacy_frame_scan": frame_scan_seeds(),
        "nal_aud": aud_seeds(),
        "nal_pps": pps_seeds(),
        "nal_reader": reader_seeds(),
        "nal_slice_header": slice_header_seeds(),
        "nal_sps": sps_seeds(),
        "nal_writer": writer_seeds(),
        "piece_feeder": feeder_seeds(),
        "sei_buffering_period": buffering_period_seeds(),
        "sei_pan_scan_rect": pan_scan_rect_seeds(),
        "sei_pic_timing": pic_timing_seeds(),
        "sei_reader": sei_seeds(),
        "sei_recovery_point": recovery_point_seeds(),
        "sei_user_data_unreg": user_data_unreg_seeds(),
        "scaling_list": scaling_list_seeds(),
        "stream_walker": walker_seeds(),
        "vui_parameters": vui_seeds(),
    }
    for target, seeds in all_seeds.items():
        folder = pathlib.Path(__file__).resolve().parent / "seeds" / target
        folder.mkdir(parents=True, exist_ok=True)
        for name, content in seeds.items():
            (folder / name).write_bytes(content)


if __name__ == "__main__":
    main()
