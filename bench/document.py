"""The parts of docs/performance.md, or of another document, that scripts make: each between the lines of its name."""
import pathlib
import re
import sys

DOCUMENT = pathlib.Path(__file__).parent.parent / "docs/performance.md"


def put(name, text, document=DOCUMENT):
    """Puts the text between the lines of that name."""
    begin, end = f"<!-- {name}: begin -->\n", f"<!-- {name}: end -->\n"
    before = document.read_text(encoding="utf-8")
    parts = re.split(f"(?s)(?<={re.escape(begin)})(.*)(?={re.escape(end)})", before)
    if len(parts) != 3:
        sys.exit(f"{document} has no lines {begin.strip()} and {end.strip()}")
    document.write_text(parts[0] + "\n" + text.strip() + "\n\n" + parts[2], encoding="utf-8")


def tell(name, text, update):
    """Prints the text, or puts it into the document."""
    if update:
        put(name, text)
        print(f"{DOCUMENT.name}: {name} is new", file=sys.stderr)
    else:
        print(text)


def table(head, rows):
    lines = [head, ["---"] * len(head), *rows]
    return "".join("| " + " | ".join(line) + " |\n" for line in lines).replace("| --- ", "|---").replace("--- |", "---|")
