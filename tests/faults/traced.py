"""The system calls of a program as strace tells them, and strace making one of them fail."""

import os
import re
import subprocess

ENTRY = re.compile(r"^(\d+) +(\w+)\((.*)")
MARKER = "fcntl"  # main() asks for the standard descriptors before anything else
MODULE = "orv_h264_libavformat.so"
BEHIND_LOADING = frozenset(("pipe2", "clone", "clone3", "poll", "ppoll", "write"))
OF_SYSTEM = ("/sys/", "/proc/", "/dev/", "/etc/", "/selinux")


class Call:
    """A system call of a recorded run; `number` counts those of its name in its process from the start of that."""

    def __init__(self, process, name, number, text):
        self.process, self.name, self.number, self.text = process, name, number, text
        self.in_main = self.of_loader = False
        self.is_of_written = False  # about a file of the run that was written to, through the same descriptor

    @property
    def path(self):
        """Of the file that it is about, where strace tells: behind its descriptor, or quoted."""
        found = re.match(r"(?:AT_FDCWD, )?(?:\d+<([^>]*)>|\"([^\"]*)\")", self.text)
        return (found.group(1) or found.group(2) or "") if found else ""

    @property
    def descriptor(self):
        found = re.match(r"(\d+)<", self.text)
        return int(found.group(1)) if found else None

    def __str__(self):
        return f"{self.name} {self.number} ({self.text[:160]})"


def calls_of(log):
    calls, counts = [], {}
    with open(log, errors="replace") as lines:
        for line in lines:
            found = ENTRY.match(line)
            if not found:
                continue
            process, name, text = int(found.group(1)), found.group(2), found.group(3)
            text = re.sub(r"^AT_FDCWD<[^>]*>", "AT_FDCWD", text)
            number = counts[process, name] = counts.get((process, name), 0) + 1
            calls.append(Call(process, name, number, text))
    mark(calls)
    mark_written(calls)
    return calls


def mark(calls):
    """Tells what main() does from what the loader does before it, and while it loads the module for containers."""
    first = calls[0].process if calls else 0
    begun = loading = False
    last_library = max((i for i, call in enumerate(calls) if call.name == "openat" and ".so" in call.text), default=-1)
    for i, call in enumerate(calls):
        begun = begun or (call.name == MARKER and call.text.startswith("0"))
        call.in_main = begun or call.process != first
        loading = loading or (call.name == "openat" and MODULE in call.text)
        if loading and i > last_library:
            own = call.path and ".so" not in call.path and not call.path.startswith(OF_SYSTEM)
            loading = not own and call.name not in BEHIND_LOADING
        call.of_loader = loading and call.process == first


def mark_written(calls):
    written = set()
    for call in calls:
        of = call.process, call.descriptor
        if call.name == "write" and (call.descriptor == 1 or "/run/" in call.path):
            written.add(of)
        call.is_of_written = of in written
        if call.name == "close":
            written.discard(of)


def recording(log):
    return ["strace", "-f", "-y", "-s", "40", "-o", log]


def failing(log, call, error):
    # A brk() that fails returns the end of the heap that there is; of 0 the C library asks for that again.
    how = "retval=0" if call.name == "brk" else f"error={error}"
    return ["strace", "-f", "--seccomp-bpf", "-o", log, "-e", f"trace={call.name}",
            "-e", f"inject={call.name}:{how}:when={call.number}"]


def ending(log, call, signal):
    """The signal comes when the call begins. With --seccomp-bpf none comes."""
    return ["strace", "-f", "-o", log, "-e", f"trace={call.name}",
            "-e", f"inject={call.name}:signal={signal}:when={call.number}"]


def is_injected(log):
    if not os.path.exists(log):
        return False
    with open(log, errors="replace") as lines:
        return "(INJECTED)" in lines.read()


def works(folder):
    """strace is there, and may trace and inject here."""
    log = os.path.join(folder, "try")
    try:
        subprocess.run(["strace", "-f", "--seccomp-bpf", "-o", log, "-e", "trace=write", "-e",
                        "inject=write:error=EIO:when=1", "echo"], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                       timeout=20, check=False)
    except (OSError, subprocess.TimeoutExpired):
        return False
    return is_injected(log)
