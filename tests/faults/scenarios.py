"""What the tool is asked to do while calls fail: every subcommand from files and pipes, to files and the standard output."""

import os
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "cli"))
import container_files  # noqa: E402

OLD = b"what was there before\n"


class Scenario:
    """`old` are the files that are there before, by name (a text is where a link leads), `makes` those that a sound
    run makes or replaces. `named` is without files that have no name; `refused` ends with status 2 in any case."""

    def __init__(self, work, words, piped=None, old=None, makes=(), many=False, named=False, refused=False):
        self.work, self.words, self.piped, self.makes, self.many = work, words, piped, makes, many
        self.old, self.named, self.refused = old or {}, named, refused
        self.command = words[0]

    @property
    def name(self):
        shown = " ".join(os.path.basename(word) for word in self.words)
        link = any(isinstance(content, str) for content in self.old.values())
        marks = ((self.piped is not None, " < pipe"), (link, " (through a link)"), (self.old and not link, " (replaced)"),
                 (self.named, " (named)"))
        return shown + "".join(mark for holds, mark in marks if holds)

    @property
    def writes(self):
        return bool(self.makes)

    def has_nameless_files(self):
        """The file system has them."""
        try:
            os.close(os.open(self.work, os.O_TMPFILE | os.O_RDWR))
            return True
        except OSError:
            return False

    def prepare(self, folder):
        for name, content in self.old.items():
            path = os.path.join(folder, name)
            if isinstance(content, str):
                os.symlink(content, path)
            else:
                with open(path, "wb") as file:
                    file.write(content)


def read(path):
    with open(path, "rb") as file:
        return file.read()


def made_files(tool, streams, work):
    """A record, an MP4 where there is ffmpeg, a list of files."""
    stream = os.path.join(streams, "two_sizes.264")
    one = os.path.join(streams, "main_bpyramid_weighted.264")
    record, files = os.path.join(work, "record.avcc"), os.path.join(work, "list")
    subprocess.run([tool, "convert", one, os.path.join(work, "one.length4"), "--to", "length4", "--avcc", record],
                   check=True, stderr=subprocess.DEVNULL)
    with open(files, "w") as to:
        to.write(f"{stream}\n{os.path.join(streams, 'broken_cut.264')}\n")
    container = None if container_files.is_missing() else container_files.make_mp4(work, stream)
    unit = os.path.join(work, "unit.bin")
    with open(unit, "wb") as to:
        to.write(b"\x06\x05\x11" + bytes(range(16)) + b"x\x80")
    return record, files, container, unit


def all_of(tool, streams, work):
    def at(name):
        return os.path.join(streams, name)

    stream, broken, timed = at("two_sizes.264"), at("broken_cut.264"), at("open_gop_frame_packing.264")
    record, files, container, unit = made_files(tool, streams, work)
    pipe = read(stream)

    def make(*words, **more):
        return Scenario(work, list(words), **more)

    made = [
        make("inspect", stream), make("inspect", "-", piped=pipe), make("inspect", "--json", "--only", "7", broken),
        make("info", stream), make("info", "-", piped=pipe), make("info", "--json", broken),
        make("info", "--json", "--jobs", "2", stream, broken, many=True),
        make("info", "--json", "--jobs", "1", "--files-from", files, many=True),
        make("frames", stream), make("frames", "--json", "-", piped=pipe),
        make("frames", "--json", "--jobs", "2", stream, timed, many=True),
        make("convert", stream, "OUT", "--to", "length4", makes=("OUT",)),
        make("convert", stream, "OUT", "--to", "length4", old={"OUT": OLD}, makes=("OUT",)),
        make("convert", stream, "OUT", "--to", "length4", old={"OUT": "end", "end": OLD}, makes=("end",)),
        make("convert", stream, "OUT", "--to", "length4", old={"OUT": "new"}, makes=("new",)),
        make("convert", stream, "OUT", "--to", "length4", old={"OUT": OLD}, makes=("OUT",), named=True),
        make("convert", "-", "-", "--to", "length4", piped=pipe),
        make("convert", timed, "OUT", "--to", "length4", "--avcc", "RECORD", old={"RECORD": OLD},
             makes=("OUT", "RECORD")),
        make("convert", os.path.join(work, "one.length4"), "OUT", "--to", "annexb", "--parameter-sets", record,
             makes=("OUT",)),
        make("avcc", record), make("avcc", "--json", "-", piped=read(record)),
        make("explain", stream, "600"), make("explain", "--json", stream, "0x1000"),
        make("report", stream, "-o", "OUT", makes=("OUT",)),
        make("report", stream, "-o", "OUT", old={"OUT": OLD}, makes=("OUT",)),
        make("report", "OUT", "-o", "OUT", old={"OUT": pipe}, refused=True),
        make("report", "-", "-o", "-", piped=pipe),
        make("check", stream), make("check", "--json", "-", piped=read(broken)),
        make("check", "--hrd", at("hrd_vbr_aud.264")),
        make("edit", stream, "OUT", "--sar", "4:3", makes=("OUT",)),
        make("edit", stream, "OUT", "--add-aud", old={"OUT": OLD}, makes=("OUT",)),
        make("edit", "-", "-", "--sar", "4:3", piped=pipe),
        make("edit", "-", "-", "--sar", "4:3", piped=pipe, named=True),
        make("edit", stream, "OUT", "--sar", "4:3", makes=("OUT",), named=True),
        make("edit", stream, "--dry-run", "--sar", "4:3"),
        make("edit", stream, "OUT", "--insert", f"file:{unit} before picture", makes=("OUT",)),
        make("cut", stream, "OUT", "--from", "5", makes=("OUT",)),
        make("cut", timed, "OUT", "--from", "0.9s", "--to", "29", "--key", old={"OUT": OLD}, makes=("OUT",)),
        make("cut", "-", "-", "--from", "5", piped=pipe),
        make("diff", stream, timed), make("diff", "--json", stream, broken),
        make("help"), make("help", "convert"), make("info", "--help"), make("--version"),
    ]
    if container:
        made += [
            make("inspect", container), make("info", container), make("info", "-", piped=read(container)),
            make("frames", "--json", container), make("convert", container, "OUT", "--to", "annexb", makes=("OUT",)),
            make("explain", container, "600"), make("report", container, "-o", "OUT", makes=("OUT",)),
            make("check", container), make("edit", container, "OUT", "--sar", "4:3", makes=("OUT",)),
            make("cut", container, "OUT", "--from", "5", makes=("OUT",)), make("diff", stream, container),
            make("info", "--json", "--jobs", "2", container, stream, many=True),
        ]
    if not draws_reports(tool, stream, work):
        made = [scenario for scenario in made if scenario.command != "report"]
    return made


def draws_reports(tool, stream, work):
    """It is built with what a report needs."""
    page = os.path.join(work, "page.html")
    return subprocess.run([tool, "report", stream, "-o", page], stderr=subprocess.DEVNULL, check=False).returncode == 0
