"""Faults that once went wrong: a run of a sample has each of them. Scenario, fault, and how many that fit are tried."""

KNOWN = (
    # A signal showed, or made a temporary file's second name an invalid one.
    (r"frames \S+$", r"EINTR at openat", 1),
    (r"convert .*named", r'EINTR at openat \d+ .*"\./\.orv-h264-', 1),
    (r"help$", r"EINTR at write", 1),
    # A loss that the file system tells when the standard output is closed went untold.
    (r"inspect two_sizes\S+$", r"ENOSPC at close \d+ \(1<", 1),
    # A link was replaced, a stream by its report; a file was taken for a pipe.
    (r"convert .*link\)$", r'EIO at readlink \d+ \("OUT"', 3),
    (r"convert .*link\)$", r'EIO at newfstatat \d+ \(AT_FDCWD, "OUT".*IFLNK.*NOFOLLOW', 2),
    (r"report OUT", r'EIO at newfstatat \d+ \(.*OUT"', 2),
    (r"diff two_sizes\S+ open\S+$", r"EIO at newfstatat \d+ \(3<", 1),
    (r"info mp4\S+$", r"EIO at lseek", 1),
    # What a short read left out was not there.
    (r"info mp4\S+$", r"pread:0:1", 1),
    # Processes: output elsewhere, output lost, a failure that was none.
    (r"info .*--jobs 1", r"EBUSY at dup2", 4),
    (r"info .*--jobs 1", r"EIO at read \d+ \(\d+<pipe", 8),
    (r"info .*--jobs 1", r"ECHILD at wait4", 2),
    # A file that a signal left behind, or that had to have a name and kept it.
    (r"convert .*named", r'SIGTERM at openat \d+ .*"\./\.orv-h264-', 1),
    (r"edit - .*named", r"SIGTERM at openat \d+ .*/tmp/orv-h264-", 1),
    (r"edit - .*named", r"EIO at unlink", 1),
    (r"convert two_sizes\S+ OUT --to length4$", r"SIGKILL at write", 1),
    # What was to be proved had no name.
    (r"edit two_sizes\S+ OUT --sar 4:3$", r"EIO at read \d+ \(\d+<\S*/run/", 1),
    # No memory: ended by a signal, or printed as if the stream had been so.
    (r"frames --json - ", r"allocation:\d+\+", 8),
    (r"info two_sizes\S+$", r"allocation:\d+$", 12),
)
