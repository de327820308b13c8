#!/usr/bin/env python3
"""Times whole runs of the program on generated logs, side by side with `wc -l` on the same files.

    whole_runs.py --build DIR [--lines 4000000] [--runs 3]

Each scenario holds one month of logs, made once and kept below DIR/bench. Printed are medians: the
lines a second, the time as a multiple of `wc -l`, and the peak memory. Nothing here can fail on a
slow machine; the ratios are what to compare.
"""

import argparse
import datetime
import os
import statistics
import subprocess
import sys
import tempfile
import time

SCENARIOS = [
    # name, factor of lines, options of the maker of logs
    ("base", 1, []),
    ("twice the lines", 2, []),
    ("a URL of its own per hit", 0.25, ["--distinct-urls"]),
    ("the same without", 0.25, []),
    ("100 visits open", 1, ["--open-visits", "100"]),
    ("20,000 visits open", 1, ["--open-visits", "20000"]),
]


def make_logs(build, name, lines, options):
    month = datetime.date.today().strftime("%Y-%m")
    folder = os.path.join(build, "bench", f"{name.replace(' ', '-').replace(',', '')}-{lines}-{month}")
    if not os.path.isdir(folder):
        subprocess.run([os.path.join(build, "sample_logs"), "bench", folder + ".new", "--lines",
                        str(lines), "--month", month] + options, check=True)
        os.rename(folder + ".new", folder)
    return folder


def run(command, **options):
    """Runs a program to its end; what it used."""
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, **options)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{command[0]} failed")
    return usage


def timed(command, **options):
    """Wall seconds of one run and its peak memory in MB."""
    start = time.monotonic()
    usage = run(command, **options)
    return time.monotonic() - start, usage.ru_maxrss / 1024


def used(command, **options):
    """Processor seconds of one run, user and system, and its peak memory in MB."""
    usage = run(command, stderr=subprocess.DEVNULL, **options)
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def prepare_run(scratch, logs, more_settings=""):
    """Writes the settings of a site "bench" below a folder; the environment that finds them."""
    usage, config = os.path.join(scratch, "usage"), os.path.join(scratch, "config", "hitwick")
    os.makedirs(usage)
    os.makedirs(config)
    with open(os.path.join(config, "settings.ini"), "w", encoding="utf-8") as settings:
        # No listed rows means no name lookups: the network is not what is measured.
        settings.write(f"[bench]\nIISLogDir={os.path.abspath(logs)}\nUsageDir={usage}\n"
                       "UseUTC=True\nMaxListSize=0\n" + more_settings)
    return dict(os.environ, XDG_CONFIG_HOME=os.path.join(scratch, "config"),
                XDG_STATE_HOME=os.path.join(scratch, "state"))


def run_program(build, logs, more_settings=""):
    with tempfile.TemporaryDirectory() as scratch:
        environment = prepare_run(scratch, logs, more_settings)
        return timed([os.path.join(build, "hitwick"), "/BATCH", "/SITE=bench"], env=environment)


def measure(build, logs, runs):
    files = [os.path.join(logs, name) for name in sorted(os.listdir(logs))]
    timed(["cat"] + files)  # warms the file cache
    floor, program, memory = [], [], 0
    for _ in range(runs):
        floor.append(timed(["wc", "-l"] + files)[0])
        seconds, megabytes = run_program(build, logs)
        program.append(seconds)
        memory = max(memory, megabytes)
    return statistics.median(floor), statistics.median(program), memory


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("--lines", type=int, default=4000000)
    parser.add_argument("--runs", type=int, default=3)
    arguments = parser.parse_args()
    print(f"{'scenario':26} {'lines':>9} {'seconds':>8} {'lines/s':>9} {'ns/line':>8} "
          f"{'x wc -l':>8} {'peak MB':>8}")
    for name, factor, options in SCENARIOS:
        lines = int(arguments.lines * factor)
        logs = make_logs(arguments.build, name if options else "plain", lines, options)
        floor, seconds, memory = measure(arguments.build, logs, arguments.runs)
        print(f"{name:26} {lines:9} {seconds:8.2f} {lines / seconds:9.0f} "
              f"{seconds / lines * 1e9:8.0f} {seconds / floor:8.1f} {memory:8.0f}", flush=True)


if __name__ == "__main__":
    main()
