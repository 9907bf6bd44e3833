from fractions import Fraction

import orv_h264
import pytest
from conftest import STREAMS
from orv_h264 import DecoderConfiguration, H264Error, ParameterSetStore, structures


def sets_of(stream):
    return [bytes(u) for u in orv_h264.units(stream) if u.nal_unit_type in (7, 8)]


def test_a_record_is_made_and_read(stream):
    store = ParameterSetStore()
    assert [store.push(unit) for unit in orv_h264.units(stream)]
    try:
        record = store.make_configuration()
    except H264Error:
        assert stream.name == "two_sizes.264" or "broken" in stream.name
        return
    again = DecoderConfiguration.read(record.write())
    assert again == record and again.framing == "length_4"
    other = ParameterSetStore()
    assert other.push_configuration(again) == 0
    assert other.all() == store.all()
    first = store.all()[0]
    assert record.AVCProfileIndication == first[1]
    assert store.make_configuration(2, orv_h264.read_unit(first).rbsp.seq_parameter_set_data.seq_parameter_set_id)


def test_arrivals(hrd):
    sps, pps = sets_of(hrd)[:2]
    store = ParameterSetStore()
    assert [store.push(sps), store.push(pps), store.push(bytearray(sps)), store.push(b"\x09\x10")] == \
        ["added", "added", "same", "no_set"]
    assert store.changes == 2 and store.all() == [sps, pps] == store.of_sps(0) and store.of_sps(5) == []
    assert store.push(orv_h264.edit(sps, "level_idc", 31)) == "changed" and store.changes == 3
    assert store.push(b"\x67\x64") == "damaged"
    for wrong in (None, 3, "x"):
        with pytest.raises(TypeError):
            store.push(wrong)
    with pytest.raises(H264Error):
        store.make_configuration(3)
    with pytest.raises(H264Error):
        ParameterSetStore().make_configuration()


def test_damaged_records_are_told(hrd):
    store = ParameterSetStore()
    for unit in orv_h264.units(hrd):
        store.push(unit)
    whole = store.make_configuration().write()
    for end in range(len(whole) - 4):
        with pytest.raises(H264Error):
            DecoderConfiguration.read(whole[:end])
    with pytest.raises(H264Error, match="configurationVersion"):
        DecoderConfiguration.read(b"\x02" + whole[1:])
    assert DecoderConfiguration.read(whole + b"xy").behind == b"xy"
    with pytest.raises(H264Error):
        DecoderConfiguration(AVCProfileIndication=66, extension_present=True).write()
    with pytest.raises(ValueError):
        DecoderConfiguration(sequenceParameterSetNALUnit=[b"x"] * 32).write()
    with pytest.raises((RuntimeError, TypeError)):
        DecoderConfiguration(AVCProfileIndication=256).write()
    with pytest.raises(TypeError):
        DecoderConfiguration(pictureParameterSetNALUnit=[3]).write()


def test_pictures_get_their_sets(hrd):
    store = ParameterSetStore()
    for unit in sets_of(hrd)[:2]:
        store.push(unit)
    bare = [[u for u in a.units if u.nal_unit_type not in (7, 8)] for a in orv_h264.access_units(hrd)]
    stream = b"".join(store.write_picture(units) for units in bare)
    types = [[u.nal_unit_type for u in a.units] for a in orv_h264.access_units(stream)]
    assert all((7 in t) == (5 in t) == (8 in t) for t in types) and len(types) == len(bare)
    samples = b"".join(store.write_picture(a.units, "length_4", "left_out") for a in orv_h264.access_units(hrd))
    assert not [u for u in orv_h264.units(samples, "length_4") if u.nal_unit_type in (7, 8)]
    with pytest.raises(ValueError):
        store.write_picture([bytes(300)], "length_1")
    with pytest.raises(TypeError):
        store.write_picture([3])
    with pytest.raises(KeyError):
        store.write_picture([], "annex_b", "never")
    assert store.write_picture([]) == b""


def test_values_that_follow(hrd):
    reading = next(r for r in orv_h264.read(hrd) if r.unit.nal_unit_type == 5)
    for sps in (reading.sps, reading.context.sps[0]):
        assert orv_h264.coded_size(sps) == orv_h264.cropped_size(sps) == (176, 144)
        assert orv_h264.sample_aspect_ratio(sps) == (1, 1)
        assert (orv_h264.field_rate(sps), orv_h264.frame_rate(sps)) == (50, Fraction(25))
        assert orv_h264.bit_depths(sps) == (8, 8) and orv_h264.chroma_subsampling(sps) == (2, 2)
        assert (orv_h264.profile_name(sps), orv_h264.codec_string(sps)) == ("High", "avc1.64000B")
        assert orv_h264.level_limits(sps)["name"] == "1.1" and orv_h264.max_dpb_frames(sps) == 9
        assert (orv_h264.most_buffered_frames(sps), orv_h264.most_reordered_frames(sps)) == (4, 2)
        small, large = orv_h264.scaling_lists(sps, reading.pps)
        assert [len(x) for x in small + large] == [16] * 6 + [64] * 6
        assert set(orv_h264.slice_group_map(sps, reading.pps)) == {0}
        assert len(orv_h264.slice_group_map(sps, reading.pps)) == 99
    [schedule] = orv_h264.schedules(reading.sps.vui_parameters.nal_hrd_parameters)
    assert schedule == (219968, 300000, False)


def test_values_of_anything():
    sps = structures.seq_parameter_set_data()
    for name, _, lowest, highest, _ in type(sps)._members():
        if isinstance(getattr(sps, name), int):
            setattr(sps, name, highest)
    pps = structures.pic_parameter_set_rbsp(num_slice_groups_minus1=7, slice_group_map_type=6)
    for function in (orv_h264.coded_size, orv_h264.cropped_size, orv_h264.profile_name, orv_h264.codec_string,
                     orv_h264.level_limits, orv_h264.max_dpb_frames, orv_h264.scaling_lists, orv_h264.field_rate,
                     orv_h264.sample_aspect_ratio, orv_h264.most_buffered_frames, orv_h264.chroma_subsampling):
        function(sps)
        for wrong in (None, 3, pps):
            with pytest.raises(TypeError):
                function(wrong)
    with pytest.raises(ValueError):
        orv_h264.slice_group_map(sps, pps)
    assert orv_h264.slice_group_map(structures.seq_parameter_set_data(pic_width_in_mbs_minus1=9), pps) is None
    assert orv_h264.field_rate(structures.seq_parameter_set_data()) is None
    with pytest.raises(TypeError):
        orv_h264.schedules(sps)
