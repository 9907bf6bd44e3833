import io
import mmap
import os
import pathlib
import random
import subprocess

import orv_h264
import pytest
from orv_h264 import units


def facts(source, *arguments, **keywords):
    return [(u.number, u.offset, u.size, u.framing_size, u.stated_length, u.cut, u.nal_ref_idc, u.nal_unit_type, bytes(u))
            for u in units(source, *arguments, **keywords)]


def in_pieces(data, seed):
    numbers = random.Random(seed)
    at = 0
    while at < len(data):
        size = numbers.choice((0, 1, 2, 3, 50, 4096))
        yield data[at:at + size]
        at += size


def test_every_source_gives_the_same_units(stream):
    data = stream.read_bytes()
    expected = facts(data)
    assert expected
    with open(stream, "rb") as file, mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as mapped:
        assert facts(mapped) == expected
        assert facts(file) == expected
    for source in (bytearray(data), memoryview(data), memoryview(bytearray(data)), str(stream), stream, io.BytesIO(data),
                   [data], in_pieces(data, 1), map(bytearray, in_pieces(data, 2))):
        assert facts(source) == expected, type(source)


def test_units_are_those_of_the_tool(stream, tool):
    listed = subprocess.run([tool, "inspect", "--nals", stream], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    expected = [line.split() for line in listed.stdout.splitlines() if line.startswith("offset")]
    assert [(u.offset - u.framing_size, u.framing_size, u.size, u.nal_ref_idc, u.nal_unit_type) for u in units(stream)] == \
        [(int(w[1]), int(w[3]), int(w[5]), int(w[9]), int(w[11])) for w in expected]


def test_bytes_of_a_unit_are_not_copied(hrd):
    buffer = bytearray(hrd)
    view = next(units(buffer)).data
    before = view[0]
    buffer[4] ^= 0xFF
    assert view[0] == before ^ 0xFF
    assert view.readonly and view.format == "B" and view.ndim == 1


def test_a_source_is_locked_while_a_unit_lives(hrd):
    buffer = bytearray(hrd)
    unit = next(units(buffer))
    with pytest.raises(BufferError):
        buffer.clear()
    view = unit.data
    del unit
    with pytest.raises(BufferError):
        buffer.extend(b"x")
    assert bytes(view) == b"\x09\x10"
    view.release()
    buffer.clear()


def test_a_closed_map_and_a_released_view_are_refused(hrd, tmp_path):
    path = tmp_path / "x"
    path.write_bytes(hrd)
    with open(path, "rb") as file:
        mapped = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
    kept = list(units(mapped))
    with pytest.raises(BufferError):
        mapped.close()
    assert bytes(kept[0]) == b"\x09\x10"
    del kept
    mapped.close()
    with pytest.raises(ValueError):
        list(units(mapped))
    view = memoryview(hrd)
    view.release()
    with pytest.raises(ValueError):
        list(units(view))


def test_a_view_with_gaps_in_memory_is_refused(hrd):
    with pytest.raises(BufferError):
        list(units(memoryview(hrd)[::2], "annex_b"))


@pytest.mark.parametrize("source", [None, 3, 2.5, object(), ["text"], [1], "no such file", iter([None])])
def test_what_is_no_source_is_refused(source):
    with pytest.raises((TypeError, OSError)):
        list(units(source, "annex_b"))


def test_an_unknown_framing_is_refused(hrd):
    with pytest.raises(ValueError, match="annex_c"):
        units(hrd, "annex_c")
    with pytest.raises((TypeError, OverflowError)):
        units(hrd, max_unit=-1)


def test_what_is_no_stream_is_named():
    with pytest.raises(orv_h264.H264Error, match="PNG"):
        units(b"\x89PNG\r\n\x1a\n" + bytes(100))
    with pytest.raises(orv_h264.H264Error, match="no H.264 stream"):
        units(b"hello, world" * 100)
    with pytest.raises(orv_h264.H264Error):
        units([b"hello, world"] * 100)


def test_framings_are_recognised(stream):
    expected = "length_4" if stream.suffix == ".length4" else "annex_b"
    assert orv_h264.recognise_framing(stream) == expected
    data = stream.read_bytes()
    assert orv_h264.recognise_framing(io.BytesIO(data)) == expected


def test_nothing_holds_no_unit(tmp_path):
    empty = tmp_path / "empty"
    empty.touch()
    for source in (b"", [], [b"", b""], io.BytesIO(), empty):
        assert list(units(source)) == []


def test_a_pipe_by_its_path_is_read(hrd, tmp_path):
    path = tmp_path / "pipe"
    os.mkfifo(path)
    writer = subprocess.Popen(["cp", pathlib.Path(__file__).parents[2] / "tests/streams/hrd_vbr_aud.264", path])
    read_end = os.open(path, os.O_RDONLY | os.O_NONBLOCK)  # so that opening it again does not wait
    found = facts(open(path, "rb"))
    os.close(read_end)
    assert writer.wait() == 0
    assert found == facts(hrd)


def test_gaps_are_told_where_they_are_asked_for():
    source = b"\x01\x02\x00\x00\x01\x09\x10\x00\x00\x00\x05\x00\x00\x01\x0a" + b"\x00\x00\x01"
    found = list(units(source, "annex_b", gaps=True))
    reasons = [x.reason for x in found if isinstance(x, orv_h264.Gap)]
    assert reasons == ["before_first_unit", "between_units", "no_header"]
    assert sum(isinstance(x, orv_h264.Unit) for x in found) == 2
    assert [x.nal_unit_type for x in units(source, "annex_b")] == [9, 10]
    [large] = [x for x in units(source, "annex_b", gaps=True, max_unit=1) if getattr(x, "reason", "") == "too_large"]
    assert large.nal_unit_type == 9 and large.size >= 2
    [cut] = units(b"\x00\x05\x09\x10", "length_2")
    assert cut.cut and cut.stated_length == 5 and cut.size == 2


def test_an_iterator_can_be_left(hrd):
    for _ in range(200):
        iterator = units(hrd)
        next(iterator)
        del iterator
        generator = in_pieces(hrd, 3)
        next(units(generator, "annex_b"))


def test_what_a_source_raises_comes_out(hrd):
    def pieces():
        yield hrd[:1000]
        raise KeyError("lost")

    iterator = units(pieces(), "annex_b")
    with pytest.raises(KeyError):
        for _ in iterator:
            pass
    assert list(iterator) == []


def test_a_source_that_asks_for_its_own_units_is_refused(hrd):
    iterator = None

    def pieces():
        yield hrd[:100]
        next(iterator)

    iterator = units(pieces(), "annex_b")
    with pytest.raises((RuntimeError, ValueError)):
        list(iterator)


def test_units_are_made_by_streams_alone():
    for type_ in (orv_h264.Unit, orv_h264.Gap):
        with pytest.raises(TypeError):
            type_()
    with pytest.raises(AttributeError):
        next(units(b"\x00\x00\x01\x09\x10")).offset = 3
