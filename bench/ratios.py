#!/usr/bin/env python3
"""ratios.py [--growth] [--update] RESULT.json...

Makes tables of Markdown of what Google Benchmark measured: for each task, data set and contender of the libraries its
rate, and how many times as long the best peer, the fastest memory pass and the literal loop took in the same run. With
--growth: the exponent with which the time grows with the size of the data, beside that of the memory pass. With
--update the tables go into docs/performance.md.
"""
import collections
import json
import math
import statistics
import sys
import typing

import document


class goal(typing.NamedTuple):
    """The ratios that are to be reached."""
    peer: float | None = None
    memory: float | None = None
    scalar: float | None = None


# task -> data set -> goal
GOALS = {
    "T1 split": {
        "large": goal(2.7, 0.9), "8k": goal(2.7, 0.9), "70": goal(2.5), "5": goal(1.0, scalar=1.0), "zeros": goal(1.5),
        "0to3": goal(8)},
    "T2 decode reader": {
        "large": goal(1.8, 0.6), "8k": goal(1.8, 0.6), "70": goal(2), "zeros": goal(1.0), "0to3": goal(3.5)},
    "T2 decode legacy": {
        "large": goal(2.4, 0.9), "8k": goal(2.4, 0.9), "70": goal(2.5), "zeros": goal(1.0), "0to3": goal(3.5)},
    "T3 encode writer": {
        "large": goal(14, 0.9), "8k": goal(14, 0.9), "70": goal(6), "zeros": goal(2.6), "0to3": goal(3)},
    "T3 encode legacy": {
        "large": goal(13, 0.9), "8k": goal(13, 0.9), "70": goal(8), "zeros": goal(2.6), "0to3": goal(3)},
    "T4 headers": {"large": goal(2.5), "8k": goal(2.5), "70": goal(3)},
    "T5 frames": {"large": goal(3, 0.9), "8k": goal(3, 0.9), "70": goal(3)},
    "T6 to length4, copied": {"large": goal(2.6), "8k": goal(2.6), "70": goal(3)},
    "T6 to length4, rewritten": {"large": goal(1.8), "8k": goal(1.8), "70": goal(1.5)},
    "T6 to length4, as it stands": {"large": goal(1.0), "8k": goal(1.0), "70": goal(1.0)},
    "T6 to Annex B, as it stands": {"large": goal(1.0), "8k": goal(1.0), "70": goal(1.0)},
    "T6 to Annex B, rewritten": {"large": goal(0.9), "8k": goal(0.9), "70": goal(1.5)},
    "T7 SPS with VUI and HRD": {"70": goal(0.77)},
    "T7 slice header beside its class, which stops at the lists": {"70": goal(0.77)},
    "T7 whole headers": {"large": goal(2), "8k": goal(2), "70": goal(2)},
    "T7 pictures beside their headers": {"large": goal(0.67), "8k": goal(0.67), "70": goal(0.67)},
}
DATA = ["large", "8k", "70", "5", "zeros", "0to3", "000104", "0000xx"]
# Those whose calls do more than the task says, with certain data; what they cost is shown, and no goal of the task is theirs.
NO_GOALS = {("T1 split", "splitter"): DATA, ("T1 split", "reader"): ["70", "5"]}
# A goal of the one need not be reached where the other reaches its own.
INSTEAD = {
    "T6 to length4, rewritten": "T6 to length4, as it stands",
    "T6 to Annex B, rewritten": "T6 to Annex B, as it stands",
}
OF_ONE_UNIT = {  # which is the same for any data
    "T7 SPS with VUI and HRD", "T7 slice header beside its class, which stops at the lists"}
WORDS = {"peer": "the peer", "memory": "the memory pass", "scalar": "the literal loop"}
OF_UNITS = ("T4", "T7")  # rates are in units, not in bytes


class contender:
    """The runs of one."""

    def __init__(self, name, place):
        self.name = name
        self.place = place  # among the benchmarks as the program registers them
        self.times = []
        self.rates = []

    def median(self):
        return statistics.median(self.times)

    def rate(self):
        return statistics.median(self.rates)

    def spread(self):
        """Half the middle range of the times over the median."""
        if len(self.times) < 2:
            return 0.0
        quarters = statistics.quantiles(self.times, n=4)
        return (quarters[2] - quarters[0]) / 2 / self.median()


def read(paths):
    """{(task, data, megabytes or "json"): {side: [contender]}} and the machine."""
    found = collections.defaultdict(lambda: collections.defaultdict(dict))
    machine = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            result = json.load(file)
        machine = result["context"]
        size = path.rsplit("/", 1)[-1].split(".")[1]
        for run in result["benchmarks"]:
            if run.get("error_occurred"):
                sys.exit(f"{run['name']}: {run['error_message']}")
            if run["run_type"] != "iteration":
                continue
            task, data, side, name = run["run_name"].split("/")[:4]
            by = found[task, data, size][side].setdefault(name, contender(name, run["family_index"]))
            by.times.append(run["cpu_time"] / 1000)
            by.rates.append(run["bytes_per_second"])
    runs = {key: {side: sorted(by.values(), key=lambda one: one.place) for side, by in sides.items()}
            for key, sides in found.items()}
    order = {name: i for i, name in enumerate(DATA)}
    return dict(sorted(runs.items(), key=lambda item: (item[0][0], order[item[0][1]]))), machine


def fastest(contenders):
    return min(contenders, key=contender.median)


def cells_of(task, data, by, sides, notes):
    """A row of the table; what is below a goal, or slower than the literal loop, goes to the notes."""
    per_second = by.rate() / (1e6 if task.startswith(OF_UNITS) else 1e9)
    cells = [data, by.name, f"{per_second:.2f}", f"{100 * by.spread():.0f} %"]
    goals = GOALS.get(task, {}).get(data, goal()) if data not in NO_GOALS.get((task, by.name), ()) else goal()
    for side in ("peer", "memory", "scalar"):
        if side not in sides:
            cells += ["-"] if side == "scalar" else ["-", "-"]
            continue
        beside = fastest(sides[side])
        ratio = beside.median() / by.median()
        wanted = getattr(goals, side)
        cells.append(f"{ratio:.2f}" + (f" (goal {wanted})" if wanted else ""))
        if side != "scalar":
            cells.append(beside.name)
        if wanted and ratio < wanted:
            notes["missed"][task, data].append(f"{task}, {data}, {by.name}: {ratio:.2f} x {WORDS[side]}, goal {wanted}")
        if side == "scalar" and ratio < 1 - by.spread():
            notes["slower"][task, data].append(f"{task}, {data}, {by.name}: {ratio:.2f}")
    return cells


def listed(title, lines):
    return f"\n{title}:" + (" none\n" if not lines else "\n\n" + "".join(f"- {line}\n" for line in lines))


def check_names(runs):
    """Nothing in the lists above is for what is not measured, of the data sets that are."""
    data = {data for _, data, _ in runs}
    measured = {(task, data) for task, data, _ in runs}
    lost = [key for key in ((task, of) for task, goals in GOALS.items() for of in goals)
            if key[1] in data and key not in measured]
    lost += NO_GOALS.keys() - {(task, by.name) for (task, _, _), sides in runs.items() for by in sides["ours"]}
    if "70" in data:
        lost += OF_ONE_UNIT - {task for task, _ in measured}
    if lost:
        sys.exit(f"not measured: {lost}")


def ratios_text(runs):
    check_names(runs)
    notes = {"missed": collections.defaultdict(list), "slower": collections.defaultdict(list)}
    text = ""
    for task in dict.fromkeys(key[0] for key in runs):
        rows = [cells_of(task, data, by, sides, notes)
                for (of, data, _), sides in runs.items() if of == task for by in sides["ours"]]
        unit = "M units/s" if task.startswith(OF_UNITS) else "GB/s"
        text += f"\n### {task}\n\n" + document.table(
            ["data", "ours", unit, "spread", "x peer", "peer", "x memory pass", "memory pass", "x literal loop"], rows)
    done = {(task, data) for task, data, _ in runs}
    missed = [line for (task, data), lines in notes["missed"].items() for line in lines
              if (INSTEAD.get(task), data) not in done or (INSTEAD[task], data) in notes["missed"]]
    slower = [line for lines in notes["slower"].values() for line in lines]
    return (text + "\n### Goals\n" + listed("Below the goal", missed)
            + listed("Slower than the literal loop", slower))


def exponent(points):
    """Of the power of the size that the time is; a size is in MB."""
    sizes = [math.log(size) for size, _ in points]
    times = [math.log(seconds) for _, seconds in points]
    return statistics.linear_regression(sizes, times).slope


def span(values):
    return f"{min(values):.2f} to {max(values):.2f}" if values else "-"


def growth_text(runs):
    """What does not fit the caches costs more a byte, for any program: so the memory pass stands beside."""
    times = collections.defaultdict(list)
    memory_times = collections.defaultdict(list)
    for (task, data, size), sides in runs.items():
        if task in OF_ONE_UNIT:
            continue
        for by in sides["ours"]:
            times[task, by.name, data].append((float(size), by.median()))
        if "memory" in sides:
            memory_times[task, data].append((float(size), fastest(sides["memory"]).median()))
    grown = collections.defaultdict(list)
    for (task, name, data), points in times.items():
        memory = exponent(memory_times[task, data]) if (task, data) in memory_times else None
        grown[task, name].append((exponent(points), memory, data))
    rows = []
    for (task, name), found in grown.items():
        beyond, data = max((ours - max(memory or 1, 1), data) for ours, memory, data in found)
        rows.append([task, name, span([ours for ours, _, _ in found]), span([m for _, m, _ in found if m is not None]),
                     f"{round(beyond, 2) + 0.0:+.2f}", data])
    return document.table(["task", "ours", "exponent", "of the memory pass", "most beyond it, or 1", "with"], rows)


def main():
    paths = [argument for argument in sys.argv[1:] if not argument.startswith("--")]
    growth, update = "--growth" in sys.argv, "--update" in sys.argv
    runs, machine = read(paths)
    if growth:
        document.tell("growth", growth_text(runs), update)
        return
    command = "script/bench" + (f" --megabytes {machine['megabytes']}" if machine["megabytes"] != "200" else "")
    document.tell("ratios", f"By `{command}`. {machine['machine']}.\n" + ratios_text(runs), update)


if __name__ == "__main__":
    main()
