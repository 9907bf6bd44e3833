#!/usr/bin/env python3
"""ratios.py [--growth] RESULT.json...

Prints what Google Benchmark measured as tables of Markdown: for each task and data set the libraries' time, and how
many times as long the best peer, a memory pass and the literal loop took in the same run. With --growth: the exponent
with which the time grows with the size of the data, beside that of the memory pass.
"""
import collections
import json
import math
import statistics
import sys

# task -> data set -> (of the best peer, of the memory pass): the ratios that are to be reached
GOALS = {
    "T1 split": {
        "large": (2.0, 0.7), "8k": (2.0, 0.7), "70": (1.8, None), "5": (0.9, None), "zeros": (1.5, None),
        "0to3": (8, None)},
    "T2 decode reader": {
        "large": (1.3, 0.45), "8k": (0.95, 0.45), "70": (1.3, None), "zeros": (1.0, None), "0to3": (3.5, None)},
    "T2 decode legacy": {
        "large": (1.8, 0.6), "8k": (1.2, 0.6), "70": (2.5, None), "zeros": (1.0, None), "0to3": (3.5, None)},
    "T3 encode writer": {
        "large": (10, 0.7), "8k": (10, 0.7), "70": (6, None), "zeros": (2.6, None), "0to3": (3, None)},
    "T3 encode legacy": {
        "large": (10, 0.7), "8k": (10, 0.7), "70": (6, None), "zeros": (2.6, None), "0to3": (3, None)},
    "T4 headers": {"large": (2, None), "8k": (2, None), "70": (2, None)},
    "T5 frames": {"large": (1.8, 0.6), "8k": (1.8, 0.6), "70": (2.5, None)},
    "T7 SPS with VUI and HRD": {"70": (0.77, None)},
    "T7 slice header beside its class, which stops at the lists": {"70": (0.77, None)},
    "T7 whole headers": {"large": (2, None), "8k": (2, None), "70": (2, None)},
    "T7 pictures beside their headers": {"large": (0.67, None), "8k": (0.67, None), "70": (0.67, None)},
    "T6 to length4, copied": {"large": (2, None), "8k": (2, None), "70": (3, None)},
    "T6 to length4, rewritten": {"large": (0.9, None), "8k": (0.9, None), "70": (1.5, None)},
    "T6 to Annex B, rewritten": {"large": (0.9, None), "8k": (0.9, None), "70": (1.5, None)},
}


def read(paths):
    """{(task, data, megabytes or ""): {side: {contender: ([seconds...], bytes a second)}}}"""
    runs = collections.defaultdict(lambda: collections.defaultdict(dict))
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
            task, data, side, contender = run["run_name"].split("/")[:4]
            times, rates = runs[task, data, size][side].setdefault(contender, ([], []))
            times.append(run["cpu_time"] / 1000)
            rates.append(run["bytes_per_second"])
    return runs, machine


def fastest(contenders):
    """(name, median, spread: half the middle range of the times over the median) of the one with the least median."""
    best = None
    for name, (times, _) in contenders.items():
        median = statistics.median(times)
        quarters = statistics.quantiles(times, n=4) if len(times) > 1 else [median] * 3
        if best is None or median < best[1]:
            best = (name, median, (quarters[2] - quarters[0]) / 2 / median)
    return best


def print_ratios(runs):
    missed = []
    slower = []
    last = None
    for (task, data, _), sides in sorted(runs.items(), key=lambda item: item[0][0]):
        if task != last:
            unit = "M units/s" if task.startswith("T4") else "GB/s"
            print(f"\n### {task}\n\n| data | ours, {unit} | spread | x peer | peer | x memory pass | x literal loop |")
            print("|---|---|---|---|---|---|---|")
            last = task
        _, ours, spread = fastest(sides["ours"])
        rate = statistics.median(next(iter(sides["ours"].values()))[1])
        cells = [data, f"{rate / (1e6 if task.startswith('T4') else 1e9):.2f}", f"{100 * spread:.0f} %"]
        goals = GOALS.get(task, {}).get(data, (None, None))
        for side, goal in (("peer", goals[0]), ("memory", goals[1]), ("scalar", None)):
            if side not in sides:
                cells += ["-", "-"] if side == "peer" else ["-"]
                continue
            name, median, _ = fastest(sides[side])
            ratio = median / ours
            cells.append(f"{ratio:.2f}" + (f" (goal {goal})" if goal else ""))
            if side == "peer":
                cells.append(name)
            if goal and ratio < goal:
                missed.append(f"{task}, {data}: {ratio:.2f} x {side}, goal {goal}")
            if side == "scalar" and ratio < 1 - spread:
                slower.append(f"{task}, {data}: {ratio:.2f}")
        print("| " + " | ".join(cells) + " |")
    for title, lines in (("Below the goal", missed), ("Slower than the literal loop", slower)):
        print(f"\n{title}: " + ("none" if not lines else ""))
        for line in lines:
            print("- " + line)


def exponent(points):
    """Of the power of the size that the time is; a size is in MB."""
    sizes = [math.log(size) for size, _ in points]
    times = [math.log(seconds) for _, seconds in points]
    return statistics.linear_regression(sizes, times).slope


def print_growth(runs):
    """What does not fit the caches costs more a byte, for any program: so the memory pass stands beside."""
    times = collections.defaultdict(lambda: collections.defaultdict(list))
    for (task, data, size), sides in runs.items():
        for side, contenders in sides.items():
            times[task, data][side].append((float(size), fastest(contenders)[1]))
    print("\n| task | data | exponent | of the memory pass | beyond it |\n|---|---|---|---|---|")
    most = 0.0
    for (task, data), sides in sorted(times.items()):
        ours = exponent(sides["ours"])
        memory = exponent(sides["memory"]) if "memory" in sides else None
        beyond = ours - max(memory or 1, 1)
        most = max(most, beyond)
        print(f"| {task} | {data} | {ours:.2f} | {'-' if memory is None else f'{memory:.2f}'} | {beyond:+.2f} |")
    print(f"\nmost beyond the memory pass, or 1: {most:+.2f}")


def main():
    arguments = sys.argv[1:]
    growth = arguments[:1] == ["--growth"]
    runs, machine = read(arguments[1:] if growth else arguments)
    print(f"{machine['num_cpus']} x {machine['mhz_per_cpu']} MHz, "
          + ", ".join(f"L{c['level']} {c['type']} {c['size'] // 1024} KiB" for c in machine["caches"]))
    (print_growth if growth else print_ratios)(runs)


main()
