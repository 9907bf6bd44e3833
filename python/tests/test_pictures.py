import io
import json
import subprocess
from fractions import Fraction

import orv_h264
import pytest
from conftest import STREAMS

STRUCTURES = {"frame": "frame", "mbaff_frame": "MBAFF", "both_fields": "fields", "top_field": "top",
              "bottom_field": "bottom"}


def fraction(of):
    return None if of is None else Fraction(of["numerator"], of["denominator"])


def test_pictures_are_those_of_the_tool(stream, tool):
    lines = subprocess.run([tool, "frames", "--json", stream], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                           text=True).stdout.splitlines()
    rows = [row for row in map(json.loads, lines) if row["record"] == "frame"]
    pictures = list(orv_h264.pictures(stream, order="decoding"))
    assert len(pictures) == len(rows) > 0
    for p, row in zip(pictures, rows):
        assert p.number == row["picture"]
        assert p.output_number == row["output_number"]
        assert p.units[0].offset - p.units[0].framing_size == row["offset"]
        assert [u.nal_unit_type for u in p.units] == row["nal_unit_types"]
        assert sum(u.size + u.framing_size for u in p.units) == row["unit_bytes"]
        assert (p.idr, p.key, p.nal_ref_idc) == (row["idr"], row["key"], row["nal_ref_idc"])
        assert STRUCTURES[p.structure] == row["structure"]
        assert p.poc == row["poc"] and sorted(p.slice_types) == sorted(row["slice_types"])
        assert p.presentation_time == fraction(row["pts"]) and p.decoding_time == fraction(row["dts"])
        assert p.duration == fraction(row["duration"]) or row["duration"] is None or p.duration is None
        assert p.time_source == (row["time_source"] or "none")
        assert p.fields_shown == row["field_duration"] and len(p.access_units) == row["coded_pictures"]


def test_output_order_is_that_of_the_numbers(stream):
    decoded = list(orv_h264.pictures(stream, order="decoding"))
    shown = list(orv_h264.pictures(stream.read_bytes()))
    assert [p.output_number for p in shown] == list(range(len(shown)))
    assert sorted(p.number for p in shown) == [p.number for p in decoded]
    for mode in ("bumping", "when_decoded"):
        assert len(list(orv_h264.pictures(stream, mode=mode))) == len(shown)
    assert [p.number for p in orv_h264.frames(stream)] == [p.number for p in shown]


def test_access_units_hold_all_units(stream):
    units = [unit for a in orv_h264.access_units(stream) for unit in a.units]
    assert [(u.offset, bytes(u)) for u in units] == [(u.offset, bytes(u)) for u in orv_h264.units(stream)]
    for access_unit in orv_h264.access_units(io.BytesIO(stream.read_bytes())):
        assert len(access_unit.roles) == len(access_unit.units)


def test_timestamps_come_with_pieces():
    units = list(orv_h264.access_units(STREAMS / "baseline_slices.264"))
    pieces = [(b"".join(orv_h264.frame(u) for u in a.units), 2**32 - 1800 + 3600 * i & 2**32 - 1, None)
              for i, a in enumerate(units)]
    stamped = list(orv_h264.access_units(pieces, clock_bits=32))
    assert [a.presentation_stamp - stamped[0].presentation_stamp for a in stamped] == \
        [Fraction(3600 * i, 90000) for i in range(len(stamped))]
    assert all(p.presentation_stamp is not None for p in orv_h264.pictures(pieces, clock_bits=32))
    for wrong in ([(b"x",)], [(b"x", 1)], [(b"x", "1", None)], [(b"x", 1 << 70, None)], [(3, 1, None)]):
        with pytest.raises((TypeError, RuntimeError, OverflowError)):
            list(orv_h264.access_units(wrong, "annex_b"))
    for wrong in ({"clock": 0}, {"clock_bits": 0}, {"clock_bits": 65}):
        with pytest.raises(ValueError):
            orv_h264.pictures(b"", **wrong)


def test_wrong_orders_are_refused():
    with pytest.raises(ValueError):
        orv_h264.pictures(b"", order="backwards")
    with pytest.raises(KeyError):
        orv_h264.pictures(b"", mode="never")


def test_info_is_that_of_the_tool(stream, tool):
    expected = json.loads(subprocess.run([tool, "info", "--json", stream], stdout=subprocess.PIPE,
                                         stderr=subprocess.DEVNULL).stdout)
    assert orv_h264.info(stream) == expected
    data = stream.read_bytes()
    for source in (data, bytearray(data), [data[:1000], data[1000:]], io.BytesIO(data)):
        assert orv_h264.info(source, name=str(stream)) == expected
    assert orv_h264.info(data)["file"] == ""


def test_info_of_hostile_bytes_is_that_of_the_tool(tool, tmp_path, hrd):
    import random
    numbers = random.Random(7)
    path = tmp_path / "damaged.264"
    for _ in range(6):
        damaged = bytearray(hrd)
        for _ in range(200):
            damaged[numbers.randrange(len(damaged))] = numbers.randrange(256)
        path.write_bytes(damaged)
        run = subprocess.run([tool, "info", "--json", "--format", "annexb", path], stdout=subprocess.PIPE,
                             stderr=subprocess.DEVNULL)
        assert orv_h264.info(path, "annex_b") == json.loads(run.stdout)


def test_containers_are_refused_by_their_names():
    with pytest.raises(orv_h264.H264Error, match="MP4"):
        orv_h264.info(bytes.fromhex("00000018") + b"ftypmp42" + bytes(4) + b"mp42isom" + bytes(200))
