#!/usr/bin/env python3
"""Runs the fuzz targets of a build, two at a time, and says how far each came.

    run.py --build FOLDER [--seconds 60] [--target NAME]... [--keep]

Each starts from the inputs that are kept in tests/fuzz/corpus and from what earlier runs of the
build have found; with --seconds 0 it meets these and no others. An input for which something does
not hold stays in the build's folder `fuzz-failures`. --keep copies the fewest inputs that reach all
that was reached, and that are small, into tests/fuzz/corpus.
"""

import argparse
import concurrent.futures
import os
import re
import shutil
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
# The longest input, in bytes: longer ones are slower and seldom tell more.
TARGETS = {"run": 1500, "records": 1500, "search_words": 200, "like": 80, "settings": 400,
           "history": 600, "command_line": 120, "names": 80}
LONGEST_SECONDS = 10
MOST_MEGABYTES = 1024
KEPT_BYTES = 60000  # of each target
AT_ONCE = 2


def program_of(build, target):
    return os.path.join(build, target + "_fuzz")


def folder(*parts):
    path = os.path.join(*parts)
    os.makedirs(path, exist_ok=True)
    return path


def kept_corpus(target):
    return os.path.join(HERE, "corpus", target)


def command(build, target, options):
    dictionary = os.path.join(HERE, target + ".dict")
    found = ["-dict=" + dictionary] if os.path.exists(dictionary) else []
    return [program_of(build, target), "-max_len=%d" % TARGETS[target],
            "-timeout=%d" % LONGEST_SECONDS, "-rss_limit_mb=%d" % MOST_MEGABYTES, "-entropic=0", *found, *options]


def how_long(seconds):
    """0: nothing but the inputs that there are."""
    return ["-max_total_time=%d" % seconds] if seconds > 0 else ["-runs=0"]


def fuzz(build, target, seconds):
    """Whether all held, and the line to be printed."""
    failures = folder(build, "fuzz-failures")
    log = os.path.join(failures, target + ".log")
    with open(log, "wb") as file:
        process = subprocess.Popen(
            command(build, target, [*how_long(seconds), "-print_final_stats=1",
                                    "-artifact_prefix=%s/%s-" % (failures, target),
                                    folder(build, "corpus", target), kept_corpus(target)]),
            stdin=subprocess.DEVNULL, stdout=file, stderr=subprocess.STDOUT)
        _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    with open(log, encoding="utf-8", errors="replace") as file:
        text = file.read()
    if process.returncode != 0:
        return False, "%-12s FAILED, see %s\n%s" % (target, failures, text[-3000:])
    executions = int(re.search(r"number_of_executed_units: (\d+)", text).group(1))
    reached = re.findall(r"cov: (\d+) ft: (\d+)", text)
    taken = max(usage.ru_utime + usage.ru_stime, 0.01)
    return True, "%-12s %9d inputs in %6.1f s of processor (%6d a second), %5s edges, %6s features" % (
        target, executions, taken, executions / taken, *(reached[-1] if reached else "??"))


def keep(build, target):
    """Puts the smallest inputs that reach all in the place of the kept ones."""
    merged = os.path.join(build, "corpus", target + ".merged")
    shutil.rmtree(merged, ignore_errors=True)
    os.makedirs(merged)
    subprocess.run(command(build, target, ["-merge=1", merged, kept_corpus(target),
                                           folder(build, "corpus", target)]),
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                   check=True)
    for name in os.listdir(kept_corpus(target)):
        if not name.startswith("seed-"):
            os.remove(os.path.join(kept_corpus(target), name))
    left = KEPT_BYTES
    for path in sorted((os.path.join(merged, name) for name in os.listdir(merged)),
                       key=os.path.getsize):
        left -= os.path.getsize(path)
        if left < 0:
            break
        shutil.copy(path, os.path.join(kept_corpus(target), os.path.basename(path)[:16]))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", required=True)
    parser.add_argument("--seconds", type=int, default=60)
    parser.add_argument("--target", action="append", choices=sorted(TARGETS))
    parser.add_argument("--keep", action="store_true")
    options = parser.parse_args()
    targets = options.target or list(TARGETS)
    build = os.path.abspath(options.build)
    good = True
    with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
        for held, line in pool.map(lambda target: fuzz(build, target, options.seconds), targets):
            print(line, flush=True)
            good = good and held
        if options.keep and good:
            list(pool.map(lambda target: keep(build, target), targets))
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
