#!/usr/bin/env python3
"""instructions.py PROGRAM MEGABYTES [--update]

Runs PROGRAM (orv_bench) under valgrind, which counts the instructions of one pass of each contender of ours, and of the
literal loop, over short units, and prints them per unit. Nothing that the machine does meanwhile changes them. With
--update the table goes into docs/performance.md.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

import document


def names(program, megabytes):
    """(task, data, side, contender, units) of each counted run, in order."""
    lines = subprocess.run([program, "--list-counted", megabytes], check=True, capture_output=True, text=True).stdout
    return [tuple(line.split("\t")) for line in lines.splitlines()]


def counts(program, megabytes):
    """The instructions of each call of measured_run(), in order."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(
            ["valgrind", "-q", "--tool=callgrind", "--collect-atstart=no", "--toggle-collect=measured_run",
             "--dump-after=measured_run", f"--callgrind-out-file={folder}/out", program, "--run-counted", megabytes],
            check=True, stdout=subprocess.DEVNULL)
        found = {}
        for path in pathlib.Path(folder).glob("out.*"):
            total = re.search(r"^(?:totals|summary): (\d+)", path.read_text(encoding="utf-8"), re.M)
            found[int(path.suffix[1:])] = int(total.group(1)) if total else 0
    return [found[part] for part in sorted(found)]


def per_unit(program, megabytes):
    """{(task, data): {side: {contender: instructions a unit}}}"""
    named = names(program, megabytes)
    counted = counts(program, megabytes)
    if len(counted) < len(named) or 0 in counted[:len(named)]:
        sys.exit(f"{len(counted)} counts for {len(named)} runs: {counted}")
    runs = {}
    for (task, data, side, name, units), count in zip(named, counted):
        runs.setdefault((task, data), {}).setdefault(side, {})[name] = count / int(units)
    return runs


def main():
    program, megabytes = sys.argv[1], f"--megabytes={sys.argv[2]}"
    rows = [[task, data, name, f"{count:.1f}", *(f"{literal:.1f}" for literal in sides.get("scalar", {"": 0}).values())]
            for (task, data), sides in per_unit(program, megabytes).items() for name, count in sides["ours"].items()]
    vectors = subprocess.run(["valgrind", "-q", "--tool=none", program, "--vectors"], check=True, capture_output=True,
                             text=True).stdout.strip()
    version = subprocess.run(["valgrind", "--version"], check=True, capture_output=True, text=True).stdout.strip()
    document.tell(
        "instructions",
        f"By `script/bench --instructions`, under {version}, where the libraries take {vectors}.\n\n"
        + document.table(["task", "data", "ours", "instructions a unit", "of the literal loop"],
                         [row if row[4] != "0.0" else [*row[:4], "-"] for row in rows]),
        "--update" in sys.argv)


if __name__ == "__main__":
    main()
