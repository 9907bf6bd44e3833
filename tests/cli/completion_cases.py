"""What every shell has to offer behind a piece of a command line. A tester gives a way to ask one shell."""

import os
import sys
import tempfile

import tool_help

SUBCOMMANDS = ["avcc", "check", "convert", "cut", "diff", "edit", "explain", "frames", "help", "info", "inspect", "report"]
FRAMINGS = ["annexb", "length1", "length2", "length3", "length4"]
LENGTHS = FRAMINGS[1:]
FILES = ["movie.264", "movie.avc", "sample.bin"]

CASES = [
    ("orv-h264 ", SUBCOMMANDS),
    ("orv-h264 in", ["info", "inspect"]),
    ("orv-h264 c", ["check", "convert", "cut"]),
    ("orv-h264 mov", []),
    ("orv-h264 convert --to ", FRAMINGS),
    ("orv-h264 convert --to le", LENGTHS),
    ("orv-h264 convert movie.264 copy --to a", ["annexb"]),
    ("orv-h264 convert --to avcc", []),
    ("orv-h264 convert --format length4 --to ", FRAMINGS),
    ("orv-h264 info --format ", FRAMINGS),
    ("orv-h264 inspect --nals --format l", LENGTHS),
    ("orv-h264 frames --format a", ["annexb"]),
    ("orv-h264 inspect --limit ", []),
    ("orv-h264 inspect --only ", []),
    ("orv-h264 frames --limit ", []),
    ("orv-h264 info --max-unit ", []),
    ("orv-h264 info ", FILES),
    ("orv-h264 info --json mov", ["movie.264", "movie.avc"]),
    ("orv-h264 inspect --limit 3 s", ["sample.bin"]),
    ("orv-h264 convert movie.264 sa", ["sample.bin"]),
    ("orv-h264 convert --to length4 s", ["sample.bin"]),
    ("orv-h264 cut movie.264 sa", ["sample.bin"]),
    ("orv-h264 cut movie.264 --to ", []),
    ("orv-h264 cut --from ", []),
    ("orv-h264 diff movie.264 sa", ["sample.bin"]),
    ("orv-h264 diff --ignore ", []),
    ("orv-h264 avcc s", ["sample.bin"]),
    ("orv-h264 convert movie.264 --avcc s", ["sample.bin"]),
    ("orv-h264 convert movie.264 --parameter-sets s", ["sample.bin"]),
    ("orv-h264 rep", ["report"]),
    ("orv-h264 report mov", ["movie.264", "movie.avc"]),
    ("orv-h264 report movie.264 -o sa", ["sample.bin"]),
    ("orv-h264 report --format length4 movie.264 --output sa", ["sample.bin"]),
    ("orv-h264 check --json mov", ["movie.264", "movie.avc"]),
    ("orv-h264 check --profile lo", ["low-latency"]),
    ("orv-h264 check --profile mov", ["movie.264", "movie.avc"]),
    ("orv-h264 check --ignore ", []),
    ("orv-h264 check --explain ", []),
    ("orv-h264 ed", ["edit"]),
    ("orv-h264 edit mov", ["movie.264", "movie.avc"]),
    ("orv-h264 edit movie.264 sa", ["sample.bin"]),
    ("orv-h264 edit --format length4 --full-range o", ["off", "on"]),
    ("orv-h264 edit --sei-at ", ["first", "idr", "picture"]),
    ("orv-h264 edit --level au", ["auto"]),
    ("orv-h264 edit --set ", []),
    ("orv-h264 help ", SUBCOMMANDS),
    ("orv-h264 help co", ["convert"]),
]


def option_cases(tool):
    """The options of each subcommand, as its help has them."""
    known = tool_help.read_all(tool)
    if sorted(name for name in known if name) != SUBCOMMANDS:
        raise SystemExit(f"the help has the subcommands {sorted(name for name in known if name)}")
    for name, of_name in known.items():
        yield f"orv-h264 {name + ' ' if name else ''}-", of_name


def check(tool, ask, more_cases=()):
    """Asks for each case in a folder that holds FILES; `ask` gives the candidates, in any order."""
    wrong = []
    cases = [*CASES, *more_cases, *((line, of_name.options) for line, of_name in option_cases(tool))]
    with tempfile.TemporaryDirectory() as folder:
        for name in FILES:
            with open(os.path.join(folder, name), "wb"):
                pass
        for line, wanted in cases:
            found = ask(line, folder)
            if sorted(found) != sorted(wanted):
                wrong.append(f"'{line}' is completed to {sorted(found)}, not to {sorted(wanted)}")
    if wrong:
        sys.exit("\n".join(wrong))
    print(f"{len(cases)} pieces of command lines are completed")
