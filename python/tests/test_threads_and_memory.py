import gc
import os
import threading
import tracemalloc

import orv_h264
import pytest
from conftest import STREAMS

STREAM = STREAMS / "hrd_vbr_aud.264"


def resident():
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * 4096


def use_everything(data):
    units = list(orv_h264.units(data))
    views = [unit.data for unit in units]
    readings = list(orv_h264.read(data))
    for reading in readings[:20]:
        reading.trace()
        rbsp = reading.rbsp
        if rbsp is not None:
            rbsp.copy().to_dict()
            repr(rbsp)
            type(rbsp)(**rbsp.to_dict())
        reading.sps, reading.pps, reading.context.sps, reading.header, reading.findings
        try:
            orv_h264.edit(reading, "no_such_element", 1)
        except orv_h264.H264Error:
            pass
    list(orv_h264.pictures([data[:5000], data[5000:]]))
    list(orv_h264.pictures(data, order="decoding"))
    orv_h264.info(data)
    store = orv_h264.ParameterSetStore()
    for unit in units:
        store.push(unit)
    orv_h264.DecoderConfiguration.read(store.make_configuration().write())
    pps = orv_h264.structures.subset_seq_parameter_set_rbsp()
    for bit in range(10):
        pps.additional_extension2_data_flag.append(bit % 2)
        with pytest.raises(OverflowError):
            pps.additional_extension2_data_flag.append(2)
    iterator = orv_h264.read(data)
    next(iterator)
    return len(views)


def test_memory_stays_flat():
    data = STREAM.read_bytes()
    for _ in range(4):
        use_everything(data)
    gc.collect()
    before = resident()
    tracemalloc.start()
    first = tracemalloc.get_traced_memory()[0]
    for _ in range(12):
        use_everything(data)
    gc.collect()
    traced = tracemalloc.get_traced_memory()[0] - first
    tracemalloc.stop()
    assert traced < 100_000
    if "ASAN_OPTIONS" not in os.environ:  # which keeps what is freed for a while
        assert resident() - before < 24 << 20


def test_objects_go_with_their_last_user():
    data = bytearray(STREAM.read_bytes())
    kept = [next(orv_h264.read(data)), next(orv_h264.pictures(data)), next(orv_h264.units(data)).data]
    with pytest.raises(BufferError):
        data.clear()
    del kept
    gc.collect()
    data.clear()


@pytest.mark.parametrize("make", [orv_h264.units, orv_h264.read, orv_h264.pictures, orv_h264.access_units])
def test_threads_on_one_iterator_do_no_harm(make):
    data = STREAM.read_bytes() * 20
    expected = sum(1 for _ in make(data))
    iterator = make(data)
    taken, refused, wrong = [], [], []

    def take():
        while True:
            try:
                next(iterator)
                taken.append(1)
            except StopIteration:
                return
            except (RuntimeError, ValueError) as error:
                refused.append(error)
            except BaseException as error:  # noqa: B036
                wrong.append(error)
                return

    threads = [threading.Thread(target=take) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong and len(taken) <= expected


def test_threads_on_sources_of_their_own():
    data = STREAM.read_bytes() * 3
    results = []

    def work():
        results.append((sum(1 for _ in orv_h264.read(data)), sum(1 for _ in orv_h264.pictures(data))))

    threads = [threading.Thread(target=work) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(results) == 4 and len(set(results)) == 1


def test_other_threads_run_meanwhile():
    data = STREAM.read_bytes() * 100
    counted = [0]
    stop = threading.Event()

    def count():
        while not stop.is_set():
            counted[0] += 1

    thread = threading.Thread(target=count)
    thread.start()
    before = counted[0]
    orv_h264.info(data)
    after = counted[0]
    stop.set()
    thread.join()
    assert after > before


def test_a_buffer_that_is_written_to_meanwhile_does_no_harm():
    data = bytearray(STREAM.read_bytes() * 10)
    stop = threading.Event()

    def scribble():
        at = 0
        while not stop.is_set():
            data[at * 7919 % len(data)] ^= 0xFF
            at += 1

    thread = threading.Thread(target=scribble)
    thread.start()
    for make in (orv_h264.units, orv_h264.read, orv_h264.pictures):
        for _ in make(data, "annex_b"):
            pass
    stop.set()
    thread.join()
