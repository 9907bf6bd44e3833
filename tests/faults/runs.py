"""Runs of the tool in a folder of their own, and what each leaves there."""

import fcntl
import os
import shutil
import signal
import subprocess
import tempfile

TIME_LIMIT = 60  # seconds; a run takes 0.1
PIPE_ROOM = 1 << 20


class Result:
    """How a run has ended: `status` below zero is a signal, None a hang. `files` are those of its folder by name."""

    def __init__(self, status, out, err, files, left_elsewhere):
        self.status, self.out, self.err = status, out, err
        self.files, self.left_elsewhere = files, left_elsewhere

    def is_as(self, other):
        return (self.status, self.out, self.files) == (other.status, other.out, other.files)


def contents(folder):
    found = {}
    for name in os.listdir(folder):
        path = os.path.join(folder, name)
        if os.path.islink(path) and not os.path.exists(path):
            found[name] = b"link"
            continue
        with open(path, "rb") as file:
            found[name] = (b"link " if os.path.islink(path) else b"") + file.read()
    return found


def piped(content):
    """A pipe that holds all of it, so that reads are the same each time."""
    out, into = os.pipe()
    fcntl.fcntl(into, 1031, PIPE_ROOM)  # F_SETPIPE_SZ, which Python 3.9 has no name for
    os.write(into, content)
    os.close(into)
    return out


def run(scenario, tool, before=(), library="", wish="", counts=""):
    """`before` is a command that starts the tool; `wish` and `counts` are for the library."""
    top = tempfile.mkdtemp(prefix="orv-faults-", dir=scenario.work)
    own, temporary = os.path.join(top, "run"), os.path.join(top, "tmp")
    for folder in (own, temporary):
        os.mkdir(folder)
    try:
        scenario.prepare(own)
        settings = dict(os.environ, LC_ALL="C", TMPDIR=temporary)
        wish = wish or ("named" if scenario.named else "")
        if wish or counts:
            # The library stands between the tool and dlopen(), which looks where the caller says.
            settings.update(LD_PRELOAD=library, ORV_FAULT=wish, ORV_FAULT_COUNTS=counts,
                            LD_LIBRARY_PATH=os.path.dirname(tool))
        stdin = piped(scenario.piped) if scenario.piped is not None else os.open(os.devnull, os.O_RDONLY)
        out, err = os.path.join(top, "out"), os.path.join(top, "err")
        try:
            with open(out, "wb") as to_out, open(err, "wb") as to_err:
                status = wait_for([*before, tool, *scenario.words], own, settings, stdin, to_out, to_err)
        finally:
            os.close(stdin)
        with open(out, "rb") as from_out, open(err, "rb") as from_err:
            return Result(status, from_out.read(), from_err.read().decode(errors="replace"), contents(own),
                          os.listdir(temporary))
    finally:
        shutil.rmtree(top, ignore_errors=True)


def wait_for(command, folder, settings, stdin, out, err):
    with subprocess.Popen(command, cwd=folder, env=settings, stdin=stdin, stdout=out, stderr=err,
                          start_new_session=True) as process:
        try:
            return process.wait(TIME_LIMIT)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            return None
