#!/usr/bin/python3
"""samples_to_annex_b.py RECORD SAMPLES >OUT   writes samples of H.264 video, as MP4 and Matroska hold them, as an Annex B
stream, with the parameter sets before each IDR picture. RECORD has the AVC decoder configuration record of the file (the
box avcC without its header, CodecPrivate), SAMPLES one sample behind another.
"""

import pathlib
import sys
from collections.abc import Iterator

import orv_h264


def annex_b(record: orv_h264.DecoderConfiguration, samples: bytes) -> Iterator[bytes]:
    """The pictures of the samples, in Annex B."""
    sets = orv_h264.ParameterSetStore()
    if sets.push_configuration(record):
        raise orv_h264.H264Error("a parameter set of the record cannot be read")
    # A file tells where each sample ends; here its access unit does. What is told of these hangs on the parameter sets,
    # so that those of the record come first, as an access unit that is left out.
    first = b"".join(orv_h264.frame(unit, record.framing) for unit in sets.all())
    for picture in orv_h264.access_units([first, samples], record.framing):
        own = [unit for unit in picture.units if unit.offset >= len(first)]
        if any(unit.cut for unit in own):
            raise orv_h264.H264Error("the samples end inside a unit")
        yield sets.write_picture(own, "annex_b", "before_idr")


def main() -> None:
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    try:
        record = orv_h264.DecoderConfiguration.read(pathlib.Path(sys.argv[1]).read_bytes())
        for picture in annex_b(record, pathlib.Path(sys.argv[2]).read_bytes()):
            sys.stdout.buffer.write(picture)
    except (orv_h264.H264Error, OSError) as error:
        sys.exit(f"samples_to_annex_b: {error}")


if __name__ == "__main__":
    main()
