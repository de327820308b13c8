"""A clock of its own for one program and what it starts: one that stands still, or one set to a
moment.

The library of `faketime` is preloaded without the program `faketime` around it: that one gives up
where a killed process of the same number has left its shared memory behind, the library does not.
"""
import os
import sys

LIBRARY = "/usr/$LIB/faketime/libfaketime.so.1"  # the loader puts the machine's folder for $LIB


def require():
    """Ends the test program with a clear word where the library is missing."""
    folders = ("lib", "lib64", os.path.join("lib", os.uname().machine + "-linux-gnu"))
    if not any(os.path.exists(LIBRARY.replace("$LIB", folder)) for folder in folders):
        sys.exit(sys.argv[0] + " needs the library of faketime (Debian package faketime)")


def environment(epoch):
    """What a program's environment needs for its clock to stand at `epoch` (seconds since 1970).
    Only the date stands still: waiting goes on, and files keep their own times (Wine would believe
    itself outdated, and the sanitizers' report of a leak would end in an abort)."""
    return {"LD_PRELOAD": LIBRARY, "FAKETIME": str(epoch), "FAKETIME_FMT": "%s",
            "FAKETIME_DONT_FAKE_MONOTONIC": "1", "NO_FAKE_STAT": "1"}


def prefix(epoch):
    """The same as a command in front of the program's. A wrapper that changes the user stands
    before it: the library's shared memory is for the user who has loaded it."""
    return ["env", *(f"{name}={value}" for name, value in environment(epoch).items())]


def running(start):
    """The same for a clock that goes on from `start`, a local date and time."""
    return {"LD_PRELOAD": LIBRARY, "FAKETIME": "@" + start}
