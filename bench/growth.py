#!/usr/bin/env python3
"""growth.py PROGRAM KIB...

Runs PROGRAM (orv_bounded) under valgrind, which counts the instructions of every work over every adversary at each of
the sizes, each twice the one before, and prints how they grow. Exit status 1: somewhere at 2n they are more than 2.1
times those at n. 77: there is no valgrind.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

MOST = 2.1
SMALL = 50000  # instructions that do not depend on the size: growth from so few says nothing


def names(program, sizes):
    lines = subprocess.run([program, "--names", *sizes], check=True, capture_output=True, text=True).stdout
    return [tuple(line.split("\t")) for line in lines.splitlines()]


def counts(program, sizes):
    """The instructions of each call of measured_work(), in order."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(
            ["valgrind", "-q", "--tool=callgrind", "--collect-atstart=no", "--toggle-collect=measured_work",
             "--dump-after=measured_work", f"--callgrind-out-file={folder}/out", program, "--run", *sizes],
            check=True, stdout=subprocess.DEVNULL)
        found = {}
        for path in pathlib.Path(folder).glob("out.*"):
            total = re.search(r"^(?:totals|summary): (\d+)", path.read_text(encoding="utf-8"), re.M)
            found[int(path.suffix[1:])] = int(total.group(1)) if total else 0
    return [found[part] for part in sorted(found)]


def main():
    program, *sizes = sys.argv[1:]
    if not shutil.which("valgrind"):
        return 77
    of = {}
    named = names(program, sizes)
    counted = counts(program, sizes)
    if len(counted) < len(named):
        print(f"{len(counted)} counts for {len(named)} runs")
        return 1
    for (work, adversary, size), count in zip(named, counted):
        of.setdefault((work, adversary), []).append((int(size), count))
    worst = 0
    fine = True
    print("| Work | Data | Instructions a byte, KiB: " + ", ".join(sizes) + " | Largest ratio |")
    print("|---|---|---|---|")
    for (work, adversary), runs in of.items():
        ratios = [b / a for (_, a), (_, b) in zip(runs, runs[1:]) if b > SMALL and a > 0]
        ratio = max(ratios, default=0)
        worst = max(worst, ratio)
        fine = fine and ratio <= MOST
        per_byte = ", ".join(f"{count / 1024 / size:.2f}" for size, count in runs)
        print(f"| {work} | {adversary} | {per_byte} | {f'{ratio:.3f}' if ratio else 'constant'} |"
              + (" ABOVE THE BOUND" if ratio > MOST else ""))
    print(f"\n{len(of)} pairs, the largest ratio {worst:.3f}")
    if worst == 0:
        print("nothing grew: the counting is broken")
        return 1
    return 0 if fine else 1


if __name__ == "__main__":
    sys.exit(main())
