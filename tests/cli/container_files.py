"""What the tests of containers share: the containers that ffmpeg makes of a raw stream, and what the tool says of them."""

import collections
import json
import os
import shutil
import struct
import subprocess

# Name: extension and options of ffmpeg's muxer. It makes them out of the MP4, since a raw stream has no times.
FORMS = {
    "mp4": ("mp4", []),
    "fragmented": ("mp4", ["-movflags", "+frag_keyframe+empty_moov+default_base_moof"]),
    "mov": ("mov", []),
    "matroska": ("mkv", []),
    "ts": ("ts", []),
    "m2ts": ("m2ts", ["-mpegts_m2ts_mode", "1"]),
    "flv": ("flv", []),
}
TRANSPORT = {"ts": 188, "m2ts": 192}
# Members of a unit that tell where it lies.
PLACED = {"number", "offset", "framing_size", "in_record", "stream_offset"}

unit = collections.namedtuple("unit", "offset framing_size length type bytes elements json")


def is_missing():
    return not all(map(shutil.which, ("ffmpeg", "ffprobe")))


def run(*command, stdin=None, limit=60):
    return subprocess.run(command, input=stdin, stdin=None if stdin is not None else subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=limit, check=False)


def run_on(file, *command):
    """Runs with an open file as the standard input."""
    return subprocess.run(command, stdin=file, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60, check=False)


def ffmpeg(*arguments):
    made = run("ffmpeg", "-nostdin", "-v", "error", "-y", *arguments)
    if made.returncode != 0:
        raise RuntimeError(f"ffmpeg {' '.join(arguments)}: {made.stderr.decode(errors='replace')}")


def make_mp4(folder, stream):
    path = os.path.join(folder, "mp4.mp4")
    ffmpeg("-f", "h264", "-i", stream, "-c", "copy", "-bitexact", path)
    return path


def make(folder, stream, forms=tuple(FORMS)):
    """The paths of the containers, by the names of their forms."""
    mp4 = make_mp4(folder, stream)
    made = {form: os.path.join(folder, f"{form}.{FORMS[form][0]}") for form in forms}
    others = [form for form in forms if form != "mp4"]
    outputs = [word for form in others for word in ("-c", "copy", "-bitexact", *FORMS[form][1], made[form])]
    if others:
        ffmpeg("-fflags", "+genpts", "-i", mp4, *outputs)
    return {"mp4": mp4} | made


def objects(tool, *arguments):
    """What it prints as JSON, an object a line. It has to find nothing wrong."""
    done = run(tool, *arguments)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(arguments)}: status {done.returncode}, {done.stderr.decode(errors='replace')}")
    return [json.loads(line) for line in done.stdout.decode().splitlines()]


def records(tool, what, *arguments):
    return [o for o in objects(tool, *arguments) if o["record"] == what]


def record_of(path):
    """The decoder configuration record of the first track, out of what ffprobe dumps."""
    dump = run("ffprobe", "-v", "error", "-show_data", "-show_streams", "-of", "json", path).stdout
    lines = json.loads(dump)["streams"][0]["extradata"].splitlines()
    return bytes.fromhex("".join(line[10:50].replace(" ", "") for line in lines if line))


def box(kind, payload):
    return struct.pack(">I4s", len(payload) + 8, kind) + payload


def full(kind, *numbers):
    """A box with version and flags, ISO/IEC 14496-12 4.2."""
    return box(kind, struct.pack(f">{len(numbers) + 1}I", 0, *numbers))


def mp4_of_samples(size, count, chunks, in_chunks, records=(b"",), sizes=()):
    """The box moov of a track of so many samples of a size, or of these sizes, in chunks at these places; from which
    chunk on, how many are in a chunk, and by which of the records."""
    entries = [box(b"avc1", bytes(6) + b"\0\1" + bytes(16) + struct.pack(">HH", 64, 64) + bytes(50)
                   + (box(b"avcC", record) if record else b"")) for record in records]
    stbl = box(b"stbl", box(b"stsd", struct.pack(">II", 0, len(entries)) + b"".join(entries))
               + full(b"stts", 1, count, 1) + full(b"stsc", len(in_chunks), *(n for row in in_chunks for n in row))
               + full(b"stsz", size, count, *sizes) + full(b"stco", len(chunks), *chunks))
    mdia = box(b"mdia", full(b"mdhd", 0, 0, 1000, 1000, 0) + box(b"hdlr", bytes(8) + b"vide" + bytes(13))
               + box(b"minf", stbl))
    return box(b"moov", full(b"mvhd", 0, 0, 1000, 1000, *[0] * 20)
               + box(b"trak", full(b"tkhd", 0, 0, 1, *[0] * 17) + mdia))


def units_of(tool, path, *options):
    """The units as the tool lists them, with their bytes where their offset leads."""
    with open(path, "rb") as file:
        content = file.read()
    table = run(tool, "inspect", "--tsv", *options, path).stdout.decode().splitlines()[1:]
    elements = collections.defaultdict(list)
    for line in table:
        number, kind, byte, *rest = line.split("\t")
        elements[int(number)].append((int(byte), kind, *rest))
    units = []
    for u in records(tool, "unit", "inspect", "--json", *options, path):
        own = elements[u["number"]]
        begin = u["offset"] + u["framing_size"]
        first = own[0][0]
        units.append(unit(u["offset"], u["framing_size"], u["length"], u["nal_unit_type"],
                          content[begin:begin + u["length"]], [(byte - first, *rest) for byte, *rest in own],
                          {k: v for k, v in u.items() if k not in PLACED}))
    return units
