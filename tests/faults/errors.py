"""What the system calls of the tool may fail with. A call that stands in neither table is told: somebody has to say."""

import errno
import os

_FILE = ("EIO", "EACCES", "ENOMEM")
_MEMORY = ("ENOMEM",)

ERRORS = {
    "open": ("EINTR", "EIO", "EMFILE", "EACCES", "ENOMEM"),
    "openat": ("EINTR", "EIO", "EMFILE", "EACCES", "ENOSPC"),
    "read": ("EINTR", "EIO", "EAGAIN"),
    "pread64": ("EINTR", "EIO"),
    "write": ("EINTR", "EIO", "ENOSPC", "EAGAIN", "EPIPE"),
    "pwrite64": ("EINTR", "EIO", "ENOSPC"),
    "close": ("EINTR", "EIO", "ENOSPC"),
    "stat": _FILE, "lstat": _FILE, "newfstatat": _FILE, "statx": _FILE,
    "fstat": ("EIO", "ENOMEM"),
    "lseek": ("EIO",),
    "readlink": _FILE, "readlinkat": _FILE,
    "mmap": _MEMORY, "brk": _MEMORY, "munmap": _MEMORY, "mremap": _MEMORY, "mprotect": _MEMORY,
    "ftruncate": ("EINTR", "EIO"),
    "fsync": ("EINTR", "EIO"),
    "rename": ("EIO", "ENOSPC", "EACCES"), "renameat": ("EIO", "ENOSPC", "EACCES"), "renameat2": ("EIO", "EACCES"),
    "link": ("EIO", "ENOSPC", "EPERM"), "linkat": ("EIO", "ENOSPC", "EPERM"),
    "unlink": ("EIO", "EACCES"), "unlinkat": ("EIO", "EACCES"),
    "fchmod": ("EIO", "EPERM"),
    "ioctl": ("EIO",),
    "dup": ("EMFILE",), "dup2": ("EINTR", "EBUSY"), "dup3": ("EINTR", "EBUSY"),
    "pipe2": ("EMFILE", "ENFILE"),
    "poll": ("EINTR", "ENOMEM"), "ppoll": ("EINTR", "ENOMEM"),
    "clone": ("EAGAIN", "ENOMEM"), "clone3": ("EAGAIN", "ENOMEM"), "fork": ("EAGAIN", "ENOMEM"),
    "wait4": ("EINTR", "ECHILD"),
    "getrandom": ("EINTR", "ENOSYS"),
    "access": ("EIO",), "faccessat": ("EIO",), "faccessat2": ("EIO",),
    "getdents64": ("EIO",),
}

# These fail of wrong arguments alone, which are the tool's own and right, or cannot fail at all.
CANNOT_FAIL = frozenset((
    "exit", "exit_group", "execve", "fcntl", "futex", "get_mempolicy", "getpid", "getppid", "gettid", "getuid", "kill",
    "mlock", "prctl", "restart_syscall", "rt_sigaction", "rt_sigprocmask", "rt_sigreturn", "sched_getaffinity",
    "set_mempolicy", "set_robust_list", "rseq", "set_tid_address", "statfs", "tgkill", "umask", "madvise", "uname",
    "sysinfo", "prlimit64", "clock_gettime", "arch_prctl", "rt_sigpending"))

# A signal breaks a call off, and it is made again; not so a close, of which nobody knows then whether all arrived.
RETRIED = frozenset(ERRORS) - {"close"}


def reason(error):
    """As messages have it."""
    return os.strerror(getattr(errno, error))
