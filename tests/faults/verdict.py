"""What has to hold of a run in which something failed: it ends by itself, tells the truth with its status, says what failed
of which file, and leaves every file as it was or as a sound run leaves it."""

import json
import re

import errors

# What libavformat says of no memory and of a file that asks for more than is allowed, which may not be told apart.
LIMITS = "cannot be opened: Cannot allocate memory"


def judge_files(scenario, sound, result, may_stay=False):
    """What is wrong with the files, or nothing."""
    before = before_of(scenario, sound)
    for name, content in result.files.items():
        if name not in sound.files and name not in before:
            if not may_stay:
                return f"{name} is left behind"
        elif content not in (sound.files.get(name), before.get(name)):
            return f"{name} is neither as it was nor as it should be: {len(content)} bytes"
    lost = [name for name in before if name not in result.files]
    if lost:
        return f"{lost[0]} is gone"
    if result.left_elsewhere and not may_stay:
        return f"{result.left_elsewhere[0]} is left in TMPDIR"
    return ""


def before_of(scenario, sound):
    """The files in front of a run, links with what they lead to."""
    found = {}
    for name, content in scenario.old.items():
        if not isinstance(content, str):
            found[name] = content
        elif content in scenario.old:
            found[name] = b"link " + scenario.old[content]
        else:
            found[name] = b"link"
    return found


def judge_output(scenario, sound, result):
    """The standard output is a prefix of the sound one, or, of many files, has a record of failure in place of some."""
    if sound.out.startswith(result.out):
        return ""
    if not scenario.many:
        return "the standard output is no prefix of what it should be"
    whole = set(sound.out.splitlines(keepends=True))
    for line in result.out.splitlines(keepends=True):
        if line not in whole and not is_failure_record(line):
            return f"the standard output has a line that is neither sound nor a failure: {line[:200]!r}"
    return ""


def is_failure_record(line):
    try:
        record = json.loads(line)
        return record.get("status", 0) >= 2 or LIMITS in record.get("error", "")
    except ValueError:
        return False


def told(scenario, sound, result, names, reasons):
    """Whether a message that a sound run has not names one of the files and one of the reasons."""
    usual = set(sound.err.splitlines())
    for line in result.err.splitlines():
        if line in usual or not line.startswith("orv-h264: "):
            continue
        if "out of memory" in line and "out of memory" in reasons:
            return True
        if any(reason in line for reason in reasons) and any(name in line for name in names):
            return True
    return False


def names_of(scenario, call):
    """What a message may call the file of this call."""
    if scenario.many:
        return [""]  # which file of many a process has is its affair
    if call.descriptor in (0, 1):
        return ["standard input" if call.descriptor == 0 else "standard output"]
    if call.of_loader:
        return [".so"]
    files = [word for word in scenario.words if word in ("OUT", "RECORD")]
    files += [path for word in scenario.words for path in re.findall(r"/\S+", word)]
    return files + ["standard input", "standard output", "temporary file", "the output, read back"]


def judge_ended(sound, result):
    if result.status is None:
        return "hangs"
    if result.status < 0 or result.status in (134, 136, 139):
        return f"ended by signal {-result.status}: {result.err[-300:]}"
    return ""


def has_written(call):
    """A close that tells whether what was written has arrived."""
    return call.name == "close" and call.is_of_written


def judge_error(scenario, sound, result, call, error):
    """The outcome, and what is wrong with it."""
    stays = call.name in ("unlink", "unlinkat")
    wrong = (judge_ended(sound, result) or judge_files(scenario, sound, result, stays) or
             judge_output(scenario, sound, result))
    if wrong:
        return "wrong", wrong
    if result.is_as(sound) and not result.left_elsewhere and not (
            scenario.refused and call.descriptor != 2 and result.err != sound.err):
        if has_written(call) and error != "EINTR":
            return "wrong", "the loss is not told"
        if call.descriptor == 2 or result.err == sound.err:
            return "as sound", ""
        return "wrong", f"other messages: {result.err[-300:]!r}"
    if error == "EINTR" and call.name in errors.RETRIED and not call.of_loader:
        return "wrong", f"a signal shows: status {result.status}, {result.err[-300:]!r}"
    if result.status != (3 if call.of_loader else 2):  # 3: a container that there is nothing to read it with
        return "wrong", f"status {result.status}: {result.err[-300:]!r}"
    reasons = [errors.reason(error)] + (["out of memory"] if error == "ENOMEM" else [])
    if call.of_loader:
        reasons += ["cannot ", "failed to map "]
    if scenario.many:  # what failed in a process that cannot tell
        reasons.append("ended with status")
    if not told(scenario, sound, result, names_of(scenario, call), reasons):
        return "wrong", f"the message has not both file and reason: {result.err[-300:]!r}"
    return f"status {result.status}", ""


def judge_short(scenario, sound, result):
    wrong = judge_ended(sound, result)
    if not wrong and not (result.is_as(sound) and result.err == sound.err and not result.left_elsewhere):
        wrong = f"not as a sound run: status {result.status}, {result.err[-300:]!r}"
    return ("wrong", wrong) if wrong else ("as sound", "")


def judge_allocation(scenario, sound, result):
    wrong = judge_ended(sound, result) or judge_files(scenario, sound, result) or judge_output(scenario, sound, result)
    if wrong:
        return "wrong", wrong
    if result.is_as(sound) and result.err == sound.err:
        return "as sound", ""
    told_here = result.err + (result.out.decode(errors="replace") if scenario.many else "")
    texts = ["out of memory"] + (["ended with status 4"] if scenario.many else [])
    if result.status == 2 and any(text in told_here for text in texts):
        return "status 2", ""
    if result.status in (1, 2) and LIMITS in result.err:
        return f"status {result.status}", ""
    return "wrong", f"status {result.status}: {result.err[-300:]!r}"


def judge_signal(scenario, sound, result, call, signal_number):
    """A signal that can be caught leaves nothing behind; SIGKILL a file that has a name, which one without a name gets for
    the time of two calls."""
    if result.status is None:
        return "wrong", "hangs"
    has_name = scenario.named or not scenario.has_nameless_files() or call.name in ("close", "rename")
    wrong = (judge_files(scenario, sound, result, may_stay=signal_number == 9 and has_name) or
             judge_output(scenario, sound, result))
    if wrong:
        return "wrong", wrong
    if result.is_as(sound) and signal_number != 9:  # as it has ended
        return "as sound", ""
    if result.status != -signal_number:
        return "wrong", f"status {result.status}: {result.err[-300:]!r}"
    stays = set(result.files) - set(sound.files) - set(scenario.old) or result.left_elsewhere
    return ("ended, a file stays" if stays else "ended by it"), ""
