"""What documents, docstrings, examples and stubs promise."""

import contextlib
import doctest
import io
import os
import pathlib
import re
import subprocess
import sys

import orv_h264
import pytest
from conftest import ROOT, STREAMS

EXAMPLES = ROOT / "python/examples"


def run(program, *arguments, stdin=None):
    return subprocess.run([sys.executable, EXAMPLES / program, *arguments], input=stdin, capture_output=True)


def test_the_page_says_what_comes_out(monkeypatch):
    monkeypatch.chdir(ROOT)
    names = {}
    blocks = re.findall(r"^```python\n(.*?)^```", (ROOT / "docs/python.md").read_text(encoding="utf-8"), re.M | re.S)
    assert len(blocks) > 6
    for block in blocks:
        expected = re.findall(r"^# (.*)\n", block, re.M)
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            exec(compile(block, "docs/python.md", "exec"), names)
        assert printed.getvalue().splitlines() == expected, block


def test_docstrings_are_true():
    failed, tried = doctest.testmod(orv_h264, extraglobs={"orv_h264": orv_h264})
    assert tried > 25 and failed == 0


def test_every_function_says_what_it_does():
    for name, value in vars(orv_h264).items():
        if not name.startswith("_") and getattr(value, "__module__", "") == "orv_h264" and callable(value):
            assert value.__doc__, name
            for part, member in vars(value).items() if isinstance(value, type) else ():
                if not part.startswith("_") and callable(member):
                    assert member.__doc__, f"{name}.{part}"


def test_packets_to_access_units():
    units = list(orv_h264.access_units(STREAMS / "hrd_vbr_aud.264"))
    lines = "".join(f"{3600 * a.number} {b''.join(map(orv_h264.frame, a.units)).hex()}\n" for a in units)
    done = run("packets_to_access_units.py", stdin=lines.encode())
    assert done.returncode == 0, done.stderr
    printed = done.stdout.decode().splitlines()
    assert printed[0] == "access unit 0: 7 units, 2834 bytes, at 0.000 s, IDR"
    assert len(printed) == 75 and printed[1].endswith("at 0.040 s")


def test_samples_to_annex_b(tmp_path):
    store = orv_h264.ParameterSetStore()
    samples = b"".join(store.write_picture(a.units, "length_4", "left_out")
                       for a in orv_h264.access_units(STREAMS / "hrd_vbr_aud.264"))
    (tmp_path / "record").write_bytes(store.make_configuration().write())
    (tmp_path / "samples").write_bytes(samples)
    done = run("samples_to_annex_b.py", tmp_path / "record", tmp_path / "samples")
    assert done.returncode == 0, done.stderr
    original = [bytes(u) for u in orv_h264.units(STREAMS / "hrd_vbr_aud.264")]
    assert [bytes(u) for u in orv_h264.units(done.stdout)] == original
    (tmp_path / "samples").write_bytes(samples[:-3])
    assert run("samples_to_annex_b.py", tmp_path / "record", tmp_path / "samples").returncode == 1
    (tmp_path / "record").write_bytes(b"\2")
    assert b"configurationVersion" in run("samples_to_annex_b.py", tmp_path / "record", tmp_path / "samples").stderr


def test_change_rate(tmp_path):
    stream = STREAMS / "pulldown32.264"
    done = run("change_rate.py", "1", "48", stream, tmp_path / "out")
    assert done.returncode == 0, done.stderr
    before, after = orv_h264.info(stream), orv_h264.info(tmp_path / "out")
    assert after["sequences"][0]["frame_rate"]["value"] == 24
    assert before["frames"]["count"] == after["frames"]["count"]
    (tmp_path / "bad").write_bytes(b"\0\0\1\x67\x64")
    assert run("change_rate.py", "1", "48", tmp_path / "bad", tmp_path / "out").returncode == 1


@pytest.mark.parametrize("program", sorted(EXAMPLES.glob("*.py")), ids=lambda p: p.name)
def test_examples_are_short(program):
    assert len(program.read_text(encoding="utf-8").splitlines()) <= 80


def test_stubs_are_those_of_the_module():
    built = os.environ["PYTHONPATH"].split(os.pathsep)[0]
    done = subprocess.run([sys.executable, ROOT / "python/make-stubs", "--check", built], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr


def test_types_are_right(tmp_path):
    pytest.importorskip("mypy")
    user = tmp_path / "user.py"
    user.write_text("import orv_h264\n"
                    "def frames(path: str) -> list[int]:\n"
                    "    for reading in orv_h264.read(path):\n"
                    "        if reading.sps is not None:\n"
                    "            reveal_type(reading.sps.vui_parameters.time_scale)\n"
                    "    return [picture.number for picture in orv_h264.pictures(path)]\n"
                    "bad: str = orv_h264.units(b'')\n", encoding="utf-8")
    command = [sys.executable, "-m", "mypy", "--strict", "--cache-dir", str(tmp_path / "cache")]
    environment = {**os.environ, "MYPYPATH": str(ROOT / "python")}
    done = subprocess.run([*command, *EXAMPLES.glob("*.py")], capture_output=True, text=True, env=environment)
    assert done.returncode == 0, done.stdout
    done = subprocess.run([*command, user], capture_output=True, text=True, env=environment)
    assert 'Revealed type is "builtins.int"' in done.stdout and done.stdout.count("error:") == 1, done.stdout
