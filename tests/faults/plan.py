"""Which faults there are to try: what a sound run of a scenario does, and how each of that may fail."""

import collections
import os
import re
import signal

import errors
import runs
import traced

SIGNALS = (signal.SIGKILL, signal.SIGTERM, signal.SIGINT)
SHORTENED = ("read", "pread", "write", "pwrite")
SHORT = 3  # single transfers of one function that are shortened, beside all of them in one run
CALLS = (10, 10)  # of one name in one run: so many of the first, and others, and the last
CALLS_OF_LOADER = (1, 2)
ALLOCATIONS = (20, 20)

Fault = collections.namedtuple("Fault", "scenario kind call wish")


class Record:
    """A sound run of a scenario: how it ends, which calls it makes, and how often each function of the library."""

    def __init__(self, scenario, options):
        self.scenario = scenario
        self.sound = runs.run(scenario, options.tool, library=options.library)
        if self.sound.status not in ((2,) if scenario.refused else (0, 1)):
            raise SystemExit(f"{scenario.name}: the sound run fails: {self.sound.err}")
        if self.sound.left_elsewhere or set(self.sound.files) != {*scenario.old, *scenario.makes}:
            raise SystemExit(f"{scenario.name}: the sound run leaves {sorted(self.sound.files)}: {self.sound.err}")
        log, counts = (os.path.join(scenario.work, f"{name}-{id(self)}") for name in ("log", "counts"))
        self.require_same(runs.run(scenario, options.tool, traced.recording(log), library=options.library))
        self.calls = reachable(traced.calls_of(log))
        self.require_same(runs.run(scenario, options.tool, library=options.library, counts=counts))
        with open(counts) as file:
            self.counts = {name: int(count) for name, count in map(str.split, file)}
        os.unlink(log)
        os.unlink(counts)

    def require_same(self, result):
        if not result.is_as(self.sound):
            raise SystemExit(f"{self.scenario.name}: watched, it ends otherwise: {result.err}")

    def unknown_calls(self):
        return {call.name for call in self.calls
                if not call.of_loader and call.name not in errors.ERRORS and call.name not in errors.CANNOT_FAIL}


def reachable(calls):
    """Those of main(). strace counts in each process: a call of another one can be told from the first one's by its number
    where the first has left that behind before main()."""
    first = calls[0].process
    startup = {(call.name, call.number) for call in calls if not call.in_main}
    return [call for call in calls if call.in_main and (call.process == first or (call.name, call.number) not in startup)]


def some(items, first, others, chance):
    """The first ones, the last one, and some between."""
    items = list(items)
    if len(items) <= first + others + 1:
        return items
    between = sorted(chance.sample(range(first, len(items) - 1), others))
    return items[:first] + [items[i] for i in between] + items[-1:]


def calls_to_fail(record, chance):
    groups = collections.defaultdict(list)
    for call in record.calls:
        # Libraries that are loaded do what they like; the loader itself is asked for theirs. Whatever is closed is let
        # go of, and strace keeps a pipe from that.
        wanted = ".so" in call.text if call.of_loader else not (call.name == "close" and "<pipe:" in call.text)
        if wanted and call.name in errors.ERRORS:
            groups[call.name, call.of_loader].append(call)
    for (_, of_loader), calls in groups.items():
        yield from some(calls, *(CALLS_OF_LOADER if of_loader else CALLS), chance)


def faults_of(record, chance):
    scenario = record.scenario
    for call in calls_to_fail(record, chance):
        for error in errors.ERRORS[call.name]:
            yield Fault(scenario, "error", call, error)
    if scenario.writes or scenario.named:
        for call in record.calls:
            if not call.of_loader:
                yield from (Fault(scenario, "signal", call, number) for number in SIGNALS)
    if not scenario.named:  # the library does one thing at a time
        yield from faults_of_library(record, chance)


def faults_of_library(record, chance):
    for name in SHORTENED:
        for number in some(range(1, record.counts[name] + 1), 1, SHORT - 2, chance):
            yield Fault(record.scenario, "short", None, f"{name}:{number}:1")
        if record.counts[name]:
            yield Fault(record.scenario, "short", None, f"{name}:0:1")
    for number in some(range(1, record.counts["allocation"] + 1), *ALLOCATIONS, chance):
        yield Fault(record.scenario, "allocation", None, f"allocation:{number}")
        yield Fault(record.scenario, "allocation", None, f"allocation:{number}+")


def shown(fault):
    what = fault.wish.name if fault.kind == "signal" else fault.wish
    return what + (f" at {fault.call}" if fault.call else "")


def known_among(faults, known, chance):
    """Of those that once went wrong as many as are wanted, and the ones of which there is none here."""
    chosen, missing = [], []
    for scenario, pattern, count in known:
        of_scenario = [fault for fault in faults if re.search(scenario, fault.scenario.name)]
        fitting = [fault for fault in of_scenario if re.search(pattern, shown(fault))]
        chosen += chance.sample(fitting, min(count, len(fitting)))
        if of_scenario and not fitting:
            missing.append(f"{scenario}: {pattern}")
    return chosen, missing
