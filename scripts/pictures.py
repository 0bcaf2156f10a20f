#!/usr/bin/python3
"""Renews the README's pictures in docs/ from the real window: pictures.py PROGRAM.

The library in them holds the demo call under several titles. One picture shows one of these being
played, the other a new call being recorded. Paths are visible in the window, so the home is made
at HOME and removed again: run this as root in a container.
"""

import json
import sqlite3
import sys
import time
import uuid
from contextlib import closing
from datetime import datetime, timedelta, timezone
from pathlib import Path
from zoneinfo import ZoneInfo

from demo import play, rows
from demo_call import FAR, NEAR, make_call
from headless import Headless, ProgramWindow, wait_for

DOCS = Path(__file__).resolve().parent.parent / "docs"
HOME = "/home/anna"
ZONE = "Europe/Moscow"
EARLIER = [  # title, format, status, days ago, local time
    ("Поставка в четверг", "opus", "ready", 1, "16:30:02"),
    ("Планёрка отдела", "opus", "ready", 2, "10:00:47"),
    ("Интервью: Анна, дизайнер", "wav", "ready", 3, "14:05:11"),
    ("Созвон с заказчиком", "mp3", "interrupted", 4, "11:32:29"),
    ("Итоги квартала", "opus", "ready", 7, "12:01:56"),
]
SOURCES = [  # the journal's entries about the sources at the start of a recording
    {"from": "", "to": "speakers", "preferred": "", "fallback": False},
    {"microphone": "Microphone", "id": "microphone", "fallback": False},
]


def utc_text(moment):
    return moment.astimezone(timezone.utc).strftime("%Y-%m-%dT%H:%M:%S.000Z")


def add_recording(place, database, length, entry):
    """Adds one row with its journal and its file, named as the program names them."""
    title, kind, status, days, clock = entry
    day = datetime.now(ZoneInfo(ZONE)) - timedelta(days=days)
    started = datetime.combine(day, datetime.strptime(clock, "%H:%M:%S").time(), day.tzinfo)
    identity = str(uuid.uuid4())
    path = place.folder / "Music" / "Quorlin" / (
        f"{started:%Y-%m-%d_%H-%M-%S}_{identity[:8]}.{kind}" + ".part" * (status != "ready"))
    path.parent.mkdir(parents=True, exist_ok=True)
    place.run("ffmpeg", "-v", "error", "-i", place.folder / f"{FAR}.wav",
              "-i", place.folder / f"{NEAR}.wav",
              "-filter_complex", "amix=inputs=2:normalize=0", "-f", kind, path)
    database.execute(
        "INSERT INTO recordings VALUES (?,?,?,?,?,?,?,?,?,?)",
        (identity, title, str(path), kind, ZONE, utc_text(started),
         utc_text(started + timedelta(seconds=length)), round(length * 1000), status, "{}"))
    for source in SOURCES:
        database.execute("INSERT INTO events VALUES (?,?,?,?)",
                         (identity, utc_text(started), "source", json.dumps(source)))


def main():
    program = Path(sys.argv[1]).resolve()
    DOCS.mkdir(exist_ok=True)
    call = make_call()
    with Headless(home=HOME) as place:
        place.env["TZ"] = ZONE
        # Only for this program: Qt has its own Russian dates, others would need the system's locale.
        start = ["env", "LC_ALL=ru_RU.UTF-8", program]
        library = place.folder / ".local/share/Quorlin/Quorlin/library.sqlite3"
        if ProgramWindow(place, *start).quit() != 0:
            raise RuntimeError(place.log())
        for voice in (FAR, NEAR):
            call.write(voice, place.folder / f"{voice}.wav")
        with closing(sqlite3.connect(library)) as database, database:
            for entry in EARLIER:
                add_recording(place, database, call.end, entry)

        window = ProgramWindow(place, *start)
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
        began, _ = play(place, call)
        time.sleep(began + 8.6 - time.monotonic())
        window.picture(DOCS / "recording.png")
        window.press("ctrl+period")
        wait_for("the file", lambda: not [r for r in rows(library) if r[1] == "recording"])
        time.sleep(1)
        window.quit()


if __name__ == "__main__":
    sys.exit(main())
