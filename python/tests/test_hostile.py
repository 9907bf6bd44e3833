"""Nothing crashes, whatever the bytes are; damaged streams give what the library gives, and end."""

import random

import orv_h264
import pytest
from conftest import ALL_STREAMS
from orv_h264 import H264Error


def everything(source, framing):
    """Asks all that can be asked of a stream."""
    for unit in orv_h264.units(source, framing, gaps=True):
        repr(unit)
    for reading in orv_h264.read(source, framing):
        repr(reading)
        if reading.rbsp is not None:
            assert type(reading.rbsp)(**reading.rbsp.to_dict()) == reading.rbsp
        trace = reading.trace()
        assert all(e.bits > 0 for e in trace)
        assert reading.finding_count >= len(reading.findings)
        if reading.sps is not None:
            orv_h264.cropped_size(reading.sps)
            orv_h264.level_limits(reading.sps)
        try:
            orv_h264.write(reading.header, reading.rbsp, reading.context)
        except H264Error as error:
            assert error.failure is not None
        try:
            orv_h264.edit(reading, "nal_ref_idc", 1)
        except H264Error as error:
            assert error.failure is not None
    for order in ("output", "decoding"):
        for picture in orv_h264.pictures(source, framing, order=order):
            assert picture.units
    orv_h264.info(source, framing)


@pytest.mark.parametrize("seed", range(12))
def test_damaged_streams(seed):
    numbers = random.Random(seed)
    stream = bytearray(numbers.choice(ALL_STREAMS).read_bytes()[:12000])
    for _ in range(numbers.choice((1, 10, 100, 1000))):
        at = numbers.randrange(len(stream))
        how = numbers.randrange(3)
        if how == 0:
            stream[at] ^= 1 << numbers.randrange(8)
        elif how == 1:
            del stream[at:at + numbers.randrange(8)]
        else:
            stream[at:at] = numbers.choice((b"\0\0\1", b"\0\0\0", b"\xff\xff", b"\0\0\3"))
    everything(bytes(stream), "annex_b")


@pytest.mark.parametrize("seed", range(8))
def test_random_bytes(seed):
    numbers = random.Random(seed)
    data = bytes(numbers.choice((0, 1, 3, 0x67, 0x68, 0x06, 0x65, numbers.randrange(256))) for _ in range(4000))
    for framing in ("annex_b", "length_1", "length_2", "length_3", "length_4"):
        everything(data, framing)
    try:
        orv_h264.recognise_framing(data)
    except H264Error:
        pass


@pytest.mark.parametrize("seed", range(4))
def test_units_by_themselves(seed):
    numbers = random.Random(seed)
    for _ in range(400):
        unit = bytes([numbers.randrange(256)]) + numbers.randbytes(numbers.randrange(40))
        reading = orv_h264.read_unit(unit)
        reading.trace()
        orv_h264.unescape(unit)
        orv_h264.ParameterSetStore().push(unit)
        for path in ("nal_ref_idc", "", ".", "a" * 1000, "x[", "x[99999999999999999999]", "\0", "é"):
            try:
                orv_h264.edit(unit, path, numbers.randrange(-5, 300))
            except H264Error:
                pass
        try:
            orv_h264.DecoderConfiguration.read(unit)
        except H264Error:
            pass


def test_many_tiny_units_stay_in_bounds():
    data = b"\0\0\1\x06\x80" * 50000
    assert sum(1 for _ in orv_h264.units(data, "annex_b")) == 50000
    assert sum(1 for _ in orv_h264.read(data, "annex_b")) == 50000
    assert sum(1 for _ in orv_h264.access_units(data, "annex_b")) >= 1


@pytest.mark.parametrize("function", [orv_h264.units, orv_h264.read, orv_h264.pictures, orv_h264.access_units, orv_h264.info,
                                      orv_h264.recognise_framing, orv_h264.unescape, orv_h264.read_unit, orv_h264.frame],
                         ids=lambda f: f.__name__)
def test_wrong_arguments(function):
    for wrong in (None, 1.5, object(), type, {1: 2}, {"a"}, [None], [1, 2], 10 ** 30, lambda: 3):
        with pytest.raises((TypeError, ValueError, OSError, OverflowError, MemoryError)):
            result = function(wrong)
            if not isinstance(result, (bytes, dict, str)):
                list(result)
            else:
                raise TypeError  # bytes(3) is no mistake
