#!/usr/bin/python3
"""Runs every benchmark and prints one table, each figure beside its yardstick.

run.py BUILD_FOLDER [WORD...]: with words, runs only the groups whose names contain one of them.
QUORLIN_BENCH_SECONDS=600 records that long in each whole-program benchmark (default 60).
"""

import json
import os
import re
import subprocess
import sys
from pathlib import Path

import sync
import whole_program
from row import Row

# Google Benchmark programs: (title, benchmark, yardstick, counter or None for the time, limit).
PAIRS = {
    "mixer_benchmark": [
        ("mixer, 48 kHz mono + 44.1 kHz stereo, per sample",
         "mixer/48k_mono_and_44k1_stereo", "leastWork/48k_mono_and_44k1_stereo",
         "per_sample", 1.25),
        ("mixer, both inputs 48 kHz mono, per sample",
         "mixer/both_48k_mono", "leastWork/both_48k_mono", "per_sample", 2.0),
    ],
    "catalog_benchmark": [
        (f"catalog() with 6 streams, {server}",
         f"catalog/{server}/real_time", f"bareQuery/{server}/real_time", None, 2.0)
        for server in ("PulseAudio", "PipeWire")
    ],
}

NANOSECONDS = {"s": 1e9, "ms": 1e6, "us": 1e3, "ns": 1.0}


def time_text(nanoseconds):
    for unit, size in NANOSECONDS.items():
        if nanoseconds >= size:
            break
    return f"{nanoseconds / size:.2f} {unit}"


def google_rows(program):
    """Rows of a Google Benchmark program: medians of interleaved runs."""
    done = subprocess.run(
        [program, "--benchmark_format=json", "--benchmark_repetitions=7",
         "--benchmark_min_time=0.1", "--benchmark_enable_random_interleaving=true",
         "--benchmark_report_aggregates_only=true"],
        check=True, stdout=subprocess.PIPE, text=True)
    medians = {entry["run_name"]: entry for entry in json.loads(done.stdout)["benchmarks"]
               if entry.get("aggregate_name") == "median"}

    def value(name, counter):
        entry = medians[name]
        return entry[counter] * 1e9 if counter else (
            entry["real_time"] * NANOSECONDS[entry["time_unit"]])

    for title, ours, theirs, counter, limit in PAIRS[program.name]:
        measured, yardstick = value(ours, counter), value(theirs, counter)
        yield Row(title, time_text(measured), time_text(yardstick), measured / yardstick, limit)


def compared_rows(program):
    """Rows of a program that prints: name, wall ms, yardstick, ratio, cpu ms, yardstick, ratio, limit."""
    done = subprocess.run([program], check=True, stdout=subprocess.PIPE, text=True,
                          env=os.environ | {"QT_QPA_PLATFORM": "offscreen"})
    for line in done.stdout.splitlines():
        fields = re.split(r"\s+", line.strip())
        try:
            wall, wall_yardstick, _, cpu, cpu_yardstick, _, limit = map(float, fields[-7:])
        except ValueError:
            continue  # the heading
        name = " ".join(fields[:-7])
        yield Row(f"{name}, wall", time_text(wall * 1e6), time_text(wall_yardstick * 1e6),
                  wall / wall_yardstick, limit)
        yield Row(f"{name}, processor", time_text(cpu * 1e6), time_text(cpu_yardstick * 1e6),
                  cpu / cpu_yardstick, limit)


def main():
    build = Path(sys.argv[1])
    words = sys.argv[2:]
    seconds = int(os.environ.get("QUORLIN_BENCH_SECONDS", "60"))
    programs = sorted((build / "benchmarks").glob("*_benchmark"))
    groups = [(program.name, lambda program=program: google_rows(program)
               if program.name in PAIRS else compared_rows(program))
              for program in programs if program.name != "meters_benchmark"]
    groups += [
        ("meters", lambda: whole_program.meters(build)),
        ("row selection", lambda: whole_program.row_selection(build)),
        ("first picture", lambda: whole_program.first_picture(build)),
        ("recording", lambda: whole_program.recording(build, seconds)),
        ("sync pulseaudio", lambda: sync.in_step(build, "pulseaudio", seconds)),
        ("sync pipewire", lambda: sync.in_step(build, "pipewire", seconds)),
    ]
    if words:
        names = ", ".join(name for name, _ in groups)
        groups = [group for group in groups if any(word in group[0] for word in words)]
        if not groups:
            sys.exit("no group matches; the groups are: " + names)
    print(Row.heading(), flush=True)
    missed, failed = 0, []
    for name, rows in groups:
        try:
            for row in rows():
                print(row, flush=True)
                missed += row.missed()
        except (OSError, RuntimeError, subprocess.SubprocessError) as error:
            failed.append(f"{name} could not be measured: {error}")
    print(f"{missed} figures are beyond their limits" if missed
          else "every measured figure is within its limit")
    if failed:
        sys.exit("\n".join(failed))


if __name__ == "__main__":
    main()
