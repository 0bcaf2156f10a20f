#!/usr/bin/python3
"""Records a demo call through the program's real window on a machine without a display.

demo.py PROGRAM: leaves the recording, the library and pictures of the window in a new folder
of the working directory and checks that both voices are in the file. Environment:
QUORLIN_DEMO_SERVER=pipewire uses PipeWire even where PulseAudio's server is installed,
QUORLIN_DEMO_MINUTES=10 makes the call that long, QUORLIN_DEMO_FORMAT=wav or mp3 replaces opus.
"""

import os
import sqlite3
import subprocess
import sys
import time
from contextlib import closing
from pathlib import Path

from demo_call import FAR, NEAR, make_call
from find_voices import report
from headless import Headless, ProgramWindow, wait_for, write_settings


TITLE = "Поставка в четверг"


def rows(library):
    """All recordings in the library: [(title, status, path, duration in ms)]."""
    with closing(sqlite3.connect(f"file:{library}?mode=ro", uri=True)) as database:
        return database.execute("SELECT title, status, path, duration_ms FROM recordings").fetchall()


def sleep_until(moment):
    time.sleep(max(0.0, moment - time.monotonic()))


def play(place, call):
    """Starts both sides of the call; returns the time of the start and the players."""
    players = []
    for voice, sink in ((FAR, "speakers"), (NEAR, "voice")):
        file = place.folder / f"{voice}.wav"
        call.write(voice, file)
        players.append(place.spawn("paplay", f"--device={sink}", file))
    return time.monotonic(), players


def record(place, program, call, out):
    """Returns (the library's row, seconds from the start of the recording to that of the call)."""
    library = out / "library" / "library.sqlite3"
    window = ProgramWindow(place, program, "--data-dir", library.parent)
    window.picture(out / "1-ready.png")
    window.press("shift+Tab")
    window.type(TITLE)
    window.press("ctrl+r")
    wait_for("the recording to begin",
             lambda: [row for row in rows(library) if row[1] == "recording"])
    began = time.monotonic()
    time.sleep(2)  # both sources are open by then
    start, players = play(place, call)
    sleep_until(start + 4)
    window.picture(out / "2-recording.png")
    sleep_until(start + call.pause)
    window.press("ctrl+p")
    wait_for("the pause", lambda: rows(library)[0][1] == "paused")
    window.picture(out / "3-paused.png")
    sleep_until(start + call.resume)
    window.press("ctrl+p")
    sleep_until(start + call.end)
    if any(player.wait(10) for player in players):
        raise RuntimeError("the call could not be played: " + place.log())
    window.press("ctrl+period")
    row = wait_for(
        "the file to be saved",
        lambda: rows(library)[0] if rows(library)[0][1] in ("ready", "failed") else None, 30)
    time.sleep(1)  # for the waveform
    window.picture(out / "4-saved.png")
    if window.quit() != 0:
        raise RuntimeError("the program did not end cleanly: " + place.log())
    return row, start - began


def main():
    program = Path(sys.argv[1]).resolve()
    out = Path.cwd() / time.strftime("quorlin-demo-%Y-%m-%d_%H-%M-%S")
    out.mkdir()
    audio_format = os.environ.get("QUORLIN_DEMO_FORMAT", "opus")
    call = make_call(float(os.environ.get("QUORLIN_DEMO_MINUTES", "0")))
    with Headless(os.environ.get("QUORLIN_DEMO_SERVER")) as place:
        print(f"No display: recording a demo call on a private {place.server} server.", flush=True)
        write_settings(place, out / "recordings", audio_format)
        (title, status, path, duration), lead = record(place, program, call, out)
    text, good = report(path, call, lead)
    for line in text:
        print("  " + line)
    stream = subprocess.run(
        ["ffprobe", "-v", "error", "-show_entries", "stream=codec_name,sample_rate,channels",
         "-of", "csv=p=0", path], capture_output=True, text=True, check=True).stdout.strip()
    print(f"{'Both sides are' if good else 'NOT both sides are'} in the file: "
          f"\"{title}\", {duration / 1000:.1f} s of {stream}, status \"{status}\". See {out}")
    return 0 if good and title == TITLE and status == "ready" else 1


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit("interrupted; all processes that were started have been ended")
    except (OSError, RuntimeError, subprocess.SubprocessError) as failure:
        sys.exit(f"the demo failed: {failure}")
