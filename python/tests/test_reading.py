import collections
import random
import subprocess
from fractions import Fraction

import orv_h264
import pytest
from conftest import STREAMS
from orv_h264 import H264Error, structures

SLICES = (1, 2, 3, 4, 5, 19, 20, 21)


def test_traces_are_those_of_the_tool(stream, tool):
    table = subprocess.run([tool, "inspect", "--tsv", stream], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    expected = [line.split("\t") for line in table.stdout.splitlines()[1:]]
    found = []
    for reading in orv_h264.read(stream):
        for e in reading.trace():
            value = f"0x{e.value.hex()}" if isinstance(e.value, bytes) else str(e.value)
            found.append([str(reading.unit.number), str(reading.unit.nal_unit_type), str(e.byte), str(e.bit % 8), str(e.bit),
                          str(e.bits), e.descriptor, e.structure, e.name, value, str(int(e.inside))])
    assert found == expected and found


def test_structures_are_written_as_they_were(stream):
    count = 0
    for reading in orv_h264.read(stream):
        rbsp = reading.rbsp
        if reading.failure or rbsp is None or reading.ending not in ("sound", "cabac_zero_words"):
            continue
        again = type(rbsp)(**rbsp.to_dict())
        assert again == rbsp and eval(repr(rbsp), vars(structures)) == rbsp
        header = structures.nal_unit_header(**reading.header.to_dict())
        data_of = reading if reading.unit.nal_unit_type in SLICES else None
        written = orv_h264.write(header, again, reading.context, data_of=data_of)
        original = bytearray(orv_h264.unescape(reading.unit).rstrip(b"\0"))
        original[0] &= 0x7F  # a forbidden bit that is set is not kept
        assert orv_h264.unescape(written) == original
        count += 1
    assert count > 10


def test_what_a_slice_stands_on(hrd):
    readings = list(orv_h264.read(hrd))
    slices = [r for r in readings if r.unit.nal_unit_type in (1, 5)]
    assert len(slices) == 75
    for r in slices:
        assert orv_h264.cropped_size(r.sps) == (176, 144)
        assert r.pps.entropy_coding_mode_flag is True
        assert r.context.sps[0].seq_parameter_set_data == r.sps and r.context.pps[0] == r.pps
        assert r.rbsp.slice_header.slice_type in range(10)
        assert r.sound and r.ending == "sound" and not r.findings and r.finding_count == 0
    assert [r.unit.number for r in readings] == list(range(len(readings)))
    assert readings[1].sps is None and readings[1].rbsp is readings[1].rbsp
    sei = [r for r in readings if r.unit.nal_unit_type == 6]
    assert all(r.sps is not None for r in sei)


def test_what_a_stream_holds_cannot_be_changed(hrd):
    slice_ = next(r for r in orv_h264.read(hrd) if r.unit.nal_unit_type == 5)
    for wrong in (lambda: setattr(slice_.sps, "level_idc", 3), lambda: setattr(slice_.sps.vui_parameters, "time_scale", 1),
                  lambda: slice_.pps.lists[0].delta_scale.append(1), lambda: slice_.pps.top_left.__setitem__(0, 1),
                  lambda: slice_.context.sps[0].seq_parameter_set_data.__setattr__("level_idc", 1)):
        with pytest.raises(AttributeError, match="copy"):
            wrong()
    copy = slice_.sps.copy()
    copy.level_idc = 3
    assert slice_.sps.level_idc == 11
    slice_.rbsp.slice_header.frame_num = 3
    assert slice_.rbsp.slice_header.frame_num == 3


def test_parameter_sets_that_change(tmp_path):
    sizes = collections.Counter(orv_h264.cropped_size(r.sps) for r in orv_h264.read(STREAMS / "two_sizes.264")
                                if r.unit.nal_unit_type in (1, 5))
    assert len(sizes) == 2
    kept = list(orv_h264.read(STREAMS / "two_sizes.264"))
    assert sizes == collections.Counter(orv_h264.cropped_size(r.sps) for r in kept if r.unit.nal_unit_type in (1, 5))
    for reading in kept:  # with the sets of their own place
        again = orv_h264.read_unit(reading.unit, reading.context)
        assert again.rbsp == reading.rbsp and again.failure == reading.failure


def test_failures_are_told_with_their_places():
    stream = b"\x00\x00\x00\x01\x67\x64\x00\x0b\xff\x00\x00\x00\x01\x68"
    readings = list(orv_h264.read(stream, "annex_b"))
    failures = [r.failure for r in readings]
    assert all(failures) and failures[1].reason == "unit_ends" and failures[1].element == "pic_parameter_set_id"
    assert failures[1].bit == 8 and "pic_parameter_set_id" in failures[1].text
    with pytest.raises(H264Error) as caught:
        list(orv_h264.read(stream, "annex_b", strict=True))
    assert caught.value.unit.number == 0 and caught.value.element == failures[0].element
    assert caught.value.bit == failures[0].bit and "at 4" in str(caught.value)
    assert "failed" in repr(readings[0])
    with pytest.raises(H264Error):
        readings[0].check()


def test_findings_are_told():
    aud = orv_h264.read_unit(orv_h264.write(structures.nal_unit_header(nal_unit_type=7),
                                            structures.seq_parameter_set_rbsp(seq_parameter_set_data={
                                                "profile_idc": 66, "level_idc": 10, "log2_max_frame_num_minus4": 13})))
    [finding] = aud.findings
    assert finding[0] == "log2_max_frame_num_minus4" and finding[2:] == (13, 0, 12)
    assert not aud.sound and aud.failure is None and aud.finding_count == 1


def test_traces_name_their_clauses(hrd):
    sps = next(r for r in orv_h264.read(hrd) if r.unit.nal_unit_type == 7)
    element = next(e for e in sps.trace() if e.name == "time_scale")
    assert element.path == "seq_parameter_set_rbsp.seq_parameter_set_data.vui_parameters.time_scale"
    assert (element.value, element.clause, element.semantics) == (50, "E.1.1", "E.2.1")
    values = {e.name: e.value for e in sps.trace()}
    for name, _, _, _, _ in type(sps.rbsp.seq_parameter_set_data)._members():
        if name in values:
            assert values[name] == int(getattr(sps.rbsp.seq_parameter_set_data, name))


def test_edits(hrd):
    reading = next(r for r in orv_h264.read(hrd) if r.unit.nal_unit_type == 7)
    changed = orv_h264.edit(reading, "time_scale", 60000)
    assert orv_h264.read_unit(changed).rbsp.seq_parameter_set_data.vui_parameters.time_scale == 60000
    several = orv_h264.edit(bytes(reading.unit), {"time_scale": 60000, "num_units_in_tick": 1001})
    assert orv_h264.frame_rate(orv_h264.read_unit(several).rbsp) == Fraction(30000, 1001)
    assert orv_h264.read_unit(several).rbsp.seq_parameter_set_data.vui_parameters.num_units_in_tick == 1001
    for path, value, reason in (("no_such", 1, "no_such_element"), ("level_idc", 256, "too_large"),
                                ("cpb_size_value_minus1[5]", 1, "no_such_element"), ("level_idc", -1, "too_small")):
        with pytest.raises(H264Error) as caught:
            orv_h264.edit(reading, path, value)
        assert caught.value.failure.reason == reason and path in str(caught.value)
    for wrong in (1 << 70, "x", None, 1.5):
        with pytest.raises((TypeError, OverflowError)):
            orv_h264.edit(reading, "time_scale", wrong)
    with pytest.raises(H264Error):
        orv_h264.edit(b"", "time_scale", 1)


def test_slices_keep_their_data(stream):
    numbers = random.Random(1)
    for reading in orv_h264.read(stream):
        if reading.unit.nal_unit_type not in (1, 5) or reading.failure or numbers.random() > 0.2:
            continue
        data = orv_h264.edit(reading, "slice_qp_delta", reading.rbsp.slice_header.slice_qp_delta + 1)
        again = orv_h264.read_unit(data, reading.context)
        assert again.rbsp.slice_header.slice_qp_delta == reading.rbsp.slice_header.slice_qp_delta + 1
        back = orv_h264.edit(data, "slice_qp_delta", reading.rbsp.slice_header.slice_qp_delta, reading.context)
        assert back == bytes(reading.unit)


def test_writing_refuses_what_does_not_fit():
    header = structures.nal_unit_header(nal_unit_type=7)
    sps = structures.seq_parameter_set_rbsp()
    sps.seq_parameter_set_data.log2_max_frame_num_minus4 = 0xFFFFFFFF
    with pytest.raises(H264Error) as caught:
        orv_h264.write(header, sps)
    assert caught.value.element == "log2_max_frame_num_minus4"
    with pytest.raises(H264Error) as caught:
        orv_h264.write(header, structures.access_unit_delimiter_rbsp())
    assert caught.value.failure.reason == "wrong_kind"
    for wrong in (structures.vui_parameters(), 3, "x"):
        with pytest.raises(TypeError):
            orv_h264.write(header, wrong)
    with pytest.raises(TypeError):
        orv_h264.write(None, None)


def test_framing_of_units():
    assert orv_h264.frame(b"\x09\x10") == b"\x00\x00\x00\x01\x09\x10"
    assert orv_h264.frame(bytearray(255), "length_1")[0] == 255
    for wrong in ((bytes(256), "length_1"), (bytes(65536), "length_2")):
        with pytest.raises(ValueError):
            orv_h264.frame(*wrong)
    with pytest.raises(KeyError):
        orv_h264.frame(b"", "length_5")
