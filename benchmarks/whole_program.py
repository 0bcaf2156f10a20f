"""Benchmarks of the whole program in a real window, on a private display and sound server."""

import os
import statistics
import sys
import time
from pathlib import Path

from row import Row

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "scripts"))
# pylint: disable=wrong-import-position
from demo_call import FAR, NEAR, make_call
from headless import Headless, ProgramWindow, wait_for, write_settings

IDLE_SECONDS = 20
PICTURES = 11
OPUS = "-c:a libopus -b:a 64k -vbr on -application voip -f opus -page_duration 200000"
YARDSTICK = ("ffmpeg -v error -nostdin -y -f pulse -i speakers.monitor -f pulse -i microphone"
             f" -filter_complex amix=inputs=2 -ac 1 -ar 48000 {OPUS} -flush_packets 1")


def meters(build):
    """The two level meters compared with two bars that paint two fills each."""
    with Headless() as place:
        measured, yardstick = map(
            float, place.run(build / "benchmarks" / "meters_benchmark", 24).split())
    yield Row("two level meters at 50 updates/s, processor per min", f"{measured:.2f} s",
              f"{yardstick:.2f} s", measured / yardstick, 1.0)


def row_selection(build):
    """The time from selecting another row until its details are painted."""
    with Headless() as place:
        place.env["QT_MEDIA_BACKEND"] = "ffmpeg"
        for events, limit in ((100, 12), (1000, 40)):
            took = float(place.run(build / "benchmarks" / "row_selection", events))
            yield Row(f"selecting another row, journal of {events} events", f"{took:.1f} ms",
                      value=took, limit=limit, is_ratio=False)


def first_picture(build):
    """The time from start to first picture compared with a bare window; medians of runs in turn."""
    commands = {"program": [build / "app" / "quorlin", "--data-dir"],
                "bare": [build / "benchmarks" / "bare_window"]}
    times = {name: [] for name in commands}
    with Headless() as place:
        place.env["QT_MEDIA_BACKEND"] = "ffmpeg"
        for k in range(PICTURES + 1):
            for name, command in commands.items():
                printed = place.run(build / "benchmarks" / "first_picture", *command,
                                    place.folder / f"{name}{k}")
                times[name].append(float(printed))
    program, bare = (statistics.median(times[name][1:]) for name in ("program", "bare"))
    yield Row("first picture of the window, fresh data folder", f"{program:.0f} ms",
              f"{bare:.0f} ms", program / bare, 1.5)


def processor_seconds(pid):
    """User and system time of a process."""
    fields = Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def child(pid):
    """The id of the program's child process, the encoder; None without one."""
    children = Path(f"/proc/{pid}/task/").glob("*/children")
    ids = [word for file in children for word in file.read_text().split()]
    return int(ids[0]) if ids else None


def resident_mib(pid):
    for line in Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith("VmRSS"):
            return int(line.split()[1]) / 1024
    return 0.0


def measure(pids, seconds):
    """Processor seconds per minute of each process, measured over that many seconds."""
    before, began = [processor_seconds(pid) for pid in pids], time.monotonic()
    time.sleep(seconds)
    minutes = (time.monotonic() - began) / 60
    return [(processor_seconds(pid) - b) / minutes for pid, b in zip(pids, before)]


def recording(build, seconds):
    """Measures the program idle, then recording while plain ffmpeg records the same inputs."""
    call = make_call((seconds + IDLE_SECONDS + 30) / 60)
    with Headless() as place:
        recordings = place.folder / "recordings"
        write_settings(place, recordings)
        for voice, sink in ((FAR, "speakers"), (NEAR, "voice")):
            call.write(voice, place.folder / f"{voice}.wav")
            place.spawn("paplay", f"--device={sink}", place.folder / f"{voice}.wav")
        window = ProgramWindow(place, build / "app" / "quorlin", "--data-dir", place.folder / "d")
        program = window.process.pid
        time.sleep(3)
        idle, = measure([program], IDLE_SECONDS)

        window.press("ctrl+r")
        wait_for("the recording", lambda: list(recordings.glob("*.part")))
        plain = place.spawn(*YARDSTICK.split(), place.folder / "yardstick.opus").pid
        time.sleep(5)
        resident = resident_mib(program)
        ours, encoder, yardstick = measure([program, child(program), plain], seconds)
        grown = resident_mib(program) - resident
        window.press("ctrl+period")
        wait_for("the file", lambda: list(recordings.glob("*.opus")), 30)
        window.quit()
    yield Row("recording to Opus: program + encoder, processor per min", f"{ours + encoder:.2f} s",
              f"{yardstick:.2f} s", (ours + encoder) / yardstick, 1.25)
    yield Row("  of it the program alone", f"{ours:.2f} s", value=ours, limit=1.0, is_ratio=False)
    yield Row("idle, window on screen, processor per min", f"{idle:.2f} s",
              value=idle, limit=0.3, is_ratio=False)
    yield Row("resident memory while recording", f"{resident + grown:.1f} MiB",
              value=resident + grown, limit=100, is_ratio=False)
    yield Row(f"  its growth in {seconds} s", f"{grown:.2f} MiB", value=grown, limit=1,
              is_ratio=False)
