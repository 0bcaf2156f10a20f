#!/usr/bin/python3
"""Renews the README's pictures in docs/ from the real window: pictures.py PROGRAM.

The library in them holds the demo call under several titles; one of them is being played, and
another call is recorded.
"""

import json
import sqlite3
import subprocess
import sys
import time
import uuid
from contextlib import closing
from datetime import datetime, timedelta, timezone
from pathlib import Path

from demo import play, rows
from demo_call import FAR, NEAR, make_call
from headless import Headless, ProgramWindow, wait_for, write_settings

DOCS = Path(__file__).resolve().parent.parent / "docs"
EARLIER = [  # title, format, status, days ago
    ("Поставка в четверг", "opus", "ready", 0.1),
    ("Планёрка отдела", "opus", "ready", 1.05),
    ("Интервью: Анна, дизайнер", "wav", "ready", 1.2),
    ("Созвон с заказчиком", "mp3", "interrupted", 3.1),
    ("Итоги квартала", "opus", "ready", 6.0),
]


def fill_library(place, call, recordings, library):
    """The demo call under each title, with a little of a journal."""
    recordings.mkdir()
    for voice in (FAR, NEAR):
        call.write(voice, place.folder / f"{voice}.wav")
    with closing(sqlite3.connect(library)) as database, database:
        for title, kind, status, days in EARLIER:
            started = datetime.now(timezone.utc) - timedelta(days=days)
            path = recordings / f"{started:%Y-%m-%d_%H-%M-%S}.{kind}"
            place.run("ffmpeg", "-v", "error", "-i", place.folder / f"{FAR}.wav",
                      "-i", place.folder / f"{NEAR}.wav",
                      "-filter_complex", "amix=inputs=2:normalize=0", path)
            name, stamp = str(uuid.uuid4()), "%Y-%m-%dT%H:%M:%S.000Z"
            ended = started + timedelta(seconds=call.end)
            database.execute(
                "INSERT INTO recordings VALUES (?,?,?,?,?,?,?,?,?,?)",
                (name, title, str(path), kind, "Europe/Moscow", started.strftime(stamp),
                 ended.strftime(stamp), round(call.end * 1000), status, "{}"))
            database.execute(
                "INSERT INTO events VALUES (?,?,?,?)",
                (name, started.strftime(stamp), "source",
                 json.dumps({"from": "", "to": "speakers", "preferred": "", "fallback": False})))


def main():
    program = Path(sys.argv[1]).resolve()
    DOCS.mkdir(exist_ok=True)
    call = make_call()
    with Headless() as place:
        place.env["TZ"] = "Europe/Moscow"
        library = place.folder / "library" / "library.sqlite3"
        write_settings(place, place.folder / "Quorlin")
        if ProgramWindow(place, program, "--data-dir", library.parent).quit() != 0:
            raise RuntimeError(place.log())
        fill_library(place, call, place.folder / "Quorlin", library)

        window = ProgramWindow(place, program, "--data-dir", library.parent)
        window.click(300, 330)  # a row of the table
        time.sleep(2)  # for the waveform
        window.press("space")
        window.press("ctrl+Right")
        time.sleep(3)
        window.picture(DOCS / "library.png")
        window.press("space")

        window.click(400, 118)
        window.type("Согласование договора")
        window.press("ctrl+r")
        wait_for("the recording", lambda: [r for r in rows(library) if r[1] == "recording"])
        start, _ = play(place, call)
        time.sleep(start + 8.6 - time.monotonic())
        window.picture(DOCS / "recording.png")
        window.press("ctrl+period")
        wait_for("the file", lambda: [r for r in rows(library) if r[2].endswith("opus")])
        time.sleep(1)
        window.quit()


if __name__ == "__main__":
    sys.exit(main())
