"""What `orv-h264 --help` tells, for the checks of what has to agree with it."""

import re
import subprocess


class Help:
    """The options and arguments of one subcommand, or of the tool itself."""

    def __init__(self, tool, subcommand=None):
        words = [tool] + ([subcommand] if subcommand else []) + ["--help"]
        self.text = subprocess.run(words, check=True, capture_output=True, text=True).stdout
        self.options = {name for names in self.entries("Options") for name in names.split(",")}
        self.arguments = self.entries("Positionals")
        if "--help" not in self.options:
            raise SystemExit(f"the help is not understood:\n{self.text}")

    def entries(self, heading):
        """The first words of the lines below a heading."""
        found = re.search(rf"^{heading}:\n((?:  .*\n)+)", self.text, re.MULTILINE)
        return [line.split()[0] for line in found[1].splitlines()] if found else []

    def examples(self):
        found = re.search(r"^Examples:\n((?:  .*\n)+)", self.text, re.MULTILINE)
        return [line.strip() for line in found[1].splitlines()] if found else []


def read_all(tool):
    """The help of the tool, under None, and of each of its subcommands."""
    main = Help(tool)
    subcommands = main.entries("Subcommands")
    if not subcommands:
        raise SystemExit("the help names no subcommand")
    return {None: main, **{name: Help(tool, name) for name in subcommands}}
