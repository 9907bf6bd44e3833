#!/usr/bin/env python3
"""tool.py BENCH_FOLDER TOOL FOLDER --megabytes N --repetitions N [--update]

Measures TOOL (orv-h264) and what others have for the same, each as a whole process whose output goes nowhere: time by
the clock, time of the processor, and the most memory at one time. The programs of BENCH_FOLDER make the streams, in
FOLDER, and run the processes, which take turns in random order. Who tells every element gets less of a stream; rates
are what is compared. With --update the tables go into docs/performance.md.
"""
import argparse
import pathlib
import random
import re
import statistics
import subprocess
import sys
import typing

import document

DATA = ("large", "8k", "70")
ELEMENTS = {"large": 256, "8k": 256, "70": 32}  # the most megabytes for who tells every element
KEPT = {"large": 32, "8k": 32, "70": 4}  # and for who keeps all that he tells until the end
PARSED = ["-probesize", "32", "-f", "h264"]


class program(typing.NamedTuple):
    """A command, in which FILE and PAGE stand for names; what it does; the most megabytes; exit statuses that are no
    failures."""
    name: str
    command: list
    does: str
    most: dict = {}
    statuses: tuple = (0,)

    def made(self, names):
        return [names.get(word, word) for word in self.command]

    def told(self):
        return " ".join(self.command).replace("TOOL", "orv-h264")


class task(typing.NamedTuple):
    """What is asked for, and the programs, ours first."""
    name: str
    programs: list


def traced(level):
    return ["ffmpeg", "-nostdin", "-v", level, *PARSED, "-i", "FILE", "-c", "copy", "-bsf:v", "trace_headers", "-f", "null", "-"]


DETAILS = ["mediainfo", "--ParseSpeed=1", "--Details=1", "FILE"]
PACKETS = ["ffprobe", "-v", "error", "-nofind_stream_info", "-f", "h264", "-show_packets", "-of", "compact", "FILE"]
TASKS = [
    task("info", [
        program("orv-h264", ["TOOL", "info", "FILE"],
                "reads every header, counts units, SEI messages and pictures, tells what is wrong"),
        program("ffprobe", ["ffprobe", "-v", "error", *PARSED, "-show_streams", "-count_packets", "FILE"],
                "tells what the parameter sets say, and counts packets; decodes one picture first"),
        program("mediainfo", ["mediainfo", "--ParseSpeed=1", "FILE"],
                "tells what the parameter sets say; goes over the whole file for it"),
        program("cat", ["cat", "FILE"], "reads the file, which is what the system takes"),
    ]),
    task("frames", [
        program("orv-h264", ["TOOL", "frames", "FILE"], "a line a picture: place, types, order, references, units"),
        program("ffprobe", PACKETS,
                "a line a packet: place, size, key or not; no types, order, references or units; decodes nothing"),
    ]),
    task("report", [
        program("orv-h264", ["TOOL", "report", "FILE", "-o", "PAGE"],
                "a page with plots of all pictures, parameter sets, what is wrong"),
        program("mediainfo", ["mediainfo", "--ParseSpeed=1", "--Output=HTML", "FILE"],
                "a page of what it tells of `info`; no pictures, no plots"),
    ]),
    task("inspect", [
        program("orv-h264", ["TOOL", "inspect", "FILE"], "every element of the headers, a line each", ELEMENTS),
        program("orv-h264 --json", ["TOOL", "inspect", "--json", "FILE"], "the same, an object a unit", ELEMENTS),
        program("orv-h264 --tsv", ["TOOL", "inspect", "--tsv", "FILE"], "the same with places, a row each", ELEMENTS),
        program("ffmpeg", traced("info"), "the same with bits and places, a line each; decodes one picture first", ELEMENTS),
        program("mediainfo", DETAILS, "the same with places, a line each; all are kept until the end", KEPT),
    ]),
    task("check", [
        program("orv-h264", ["TOOL", "check", "FILE"], "every rule: of elements, units, pictures, levels, reference marking",
                ELEMENTS, (0, 1)),
        program("ffmpeg", traced("error"), "elements of headers outside their ranges, nothing else; decodes one picture first",
                ELEMENTS),
    ]),
]


def slice_counts(names):
    """How many slices, or pictures, each program finds; what reads other units than ours is no measure."""
    def lines(pattern, command):
        run = subprocess.run([names.get(word, word) for word in command], capture_output=True, text=True, check=False)
        return len(re.findall(pattern, run.stdout + run.stderr, re.M))
    slices = {lines(r"^ +slice_type ", ["TOOL", "inspect", "FILE"]), lines(r" slice_type ", traced("info")),
              lines(r"^[0-9A-F]+ +slice_type:", DETAILS)}
    pictures = {lines(r"^frame\t", ["TOOL", "frames", "--tsv", "FILE"]), lines(r"^packet\|", PACKETS)}
    return slices, pictures


class bench:
    """The folders, the sizes, and what was measured."""

    def __init__(self, arguments):
        self.programs = pathlib.Path(arguments.bench_folder)
        self.tool = str(pathlib.Path(arguments.tool).resolve())
        self.folder = pathlib.Path(arguments.folder)
        self.repetitions = arguments.repetitions
        self.megabytes = arguments.megabytes
        self.random = random.Random(264)

    def stream(self, data, megabytes):
        """The names for a stream of that much of the data set, made and read when it is first asked for."""
        file = self.folder / f"{data}.{megabytes}.264"
        if not file.exists():
            subprocess.run([self.programs / "orv_bench", f"--write={file}", f"--data={data}", f"--megabytes={megabytes}"],
                           check=True)
            subprocess.run([self.programs / "orv_process_cost", "cat", file], check=True, capture_output=True)
        return {"TOOL": self.tool, "FILE": str(file), "PAGE": str(self.folder / "page.html")}

    def cost(self, what, names):
        """Seconds by the clock, of the processor, and KiB of memory."""
        command = what.made(names)
        run = subprocess.run([self.programs / "orv_process_cost", *command], capture_output=True, text=True, check=False)
        fields = run.stdout.split()
        if run.returncode != 0 or int(fields[0]) not in what.statuses:
            sys.exit(f"{' '.join(command)}: failed: {run.stdout}")
        return tuple(float(field) for field in fields[1:])

    def agree(self, data):
        names = self.stream(data, 1)
        for counts in slice_counts(names):
            if len(counts) != 1 or 0 in counts:
                sys.exit(f"{data}: the programs do not find the same: {counts}")

    def measure(self, data):
        """{(task, program): (bytes, [cost...])}"""
        self.agree(data)
        turns = [(of, what) for of in TASKS for what in of.programs] * self.repetitions
        self.random.shuffle(turns)
        costs = {}
        for of, what in turns:
            names = self.stream(data, min(self.megabytes, what.most.get(data, self.megabytes)))
            size = pathlib.Path(names["FILE"]).stat().st_size
            costs.setdefault((of.name, what.name), (size, []))[1].append(self.cost(what, names))
        for file in self.folder.iterdir():
            file.unlink()
        return costs


def row(data, what, size, costs, ours):
    """What it takes, and how many times as long a byte as ours."""
    wall, processor, memory = (statistics.median(values) for values in zip(*costs))
    spread = (max(costs)[0] - min(costs)[0]) / 2 / wall
    rate = size / 1e6 / wall
    return rate, [data, what.name, f"{size / 1e6:.0f}", f"{wall:.2f}", f"{100 * spread:.0f} %", f"{processor:.2f}",
                  f"{rate:.0f}", f"{memory / 1024:.0f}", f"{ours / rate:.2f}" if ours else "1"]


def text_of(results):
    text = ""
    for of in TASKS:
        text += f"\n### `{of.name}`\n\n" + document.table(
            ["program", "command", "what it does"],
            [[what.name, f"`{what.told()}`", what.does] for what in of.programs])
        rows = []
        for data, costs in results.items():
            ours = None
            for what in of.programs:
                rate, cells = row(data, what, *costs[of.name, what.name], ours)
                ours = ours or rate
                rows.append(cells)
        text += "\n" + document.table(
            ["data", "program", "MB", "s", "spread", "s of the processor", "MB/s", "most memory, MiB", "x"], rows)
    return text


def line_of(*command, number=0):
    return subprocess.run(command, check=False, capture_output=True, text=True).stdout.splitlines()[number]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("bench_folder")
    parser.add_argument("tool")
    parser.add_argument("folder")
    parser.add_argument("--megabytes", type=int, required=True)
    parser.add_argument("--repetitions", type=int, required=True)
    parser.add_argument("--update", action="store_true")
    arguments = parser.parse_args()
    measured = bench(arguments)
    results = {}
    for data in DATA:
        print(f"{data}, {arguments.megabytes} MB", file=sys.stderr)
        results[data] = measured.measure(data)
    machine = line_of(measured.programs / "orv_bench", "--machine")
    versions = "; ".join([line_of(measured.tool, "--version"), line_of("ffprobe", "-version").split(" Copyright")[0],
                          line_of("mediainfo", "--Version", number=1)])
    document.tell(
        "tool",
        f"By `script/bench --tool --megabytes {arguments.megabytes} --repetitions {arguments.repetitions}`. {machine}; "
        f"{versions}.\n" + text_of(results),
        arguments.update)


if __name__ == "__main__":
    main()
