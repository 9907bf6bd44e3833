"""What the tests are given by CTest, in the environment: the module on PYTHONPATH, the tool, and folders of streams."""

import os
import pathlib

import pytest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
STREAMS = ROOT / "tests/streams"
ALL_STREAMS = sorted(path for path in STREAMS.iterdir() if path.suffix in (".264", ".length4"))


def pytest_generate_tests(metafunc: pytest.Metafunc) -> None:
    if "stream" in metafunc.fixturenames:
        metafunc.parametrize("stream", ALL_STREAMS, ids=lambda path: path.name)


@pytest.fixture(scope="session")
def tool() -> str:
    path = os.environ.get("ORV_H264_TOOL", "")
    if not path:
        pytest.skip("ORV_H264_TOOL does not say where the tool is")
    return path


@pytest.fixture()
def hrd() -> bytes:
    return (STREAMS / "hrd_vbr_aud.264").read_bytes()
