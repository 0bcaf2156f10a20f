"""How well both sides stay in step when the microphone hears exactly what the speakers play."""

import sys
import time
import wave
from pathlib import Path

import numpy as np

from row import Row

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "scripts"))
# pylint: disable=wrong-import-position
from demo_call import RATE, decode
from headless import Headless, ProgramWindow, wait_for, write_settings

PIECE = RATE // 2
STEP = 2 * RATE
LEAD = 2  # seconds of the call before it is recorded
REACH = 2 * RATE  # how far around its expected place a piece is searched


def strongest(match, away_from=None):
    """The place of the highest peak, other than `away_from` and its neighbours."""
    match = match.copy()
    if away_from is not None:
        match[max(0, away_from - 1):away_from + 2] = 0
    return int(np.argmax(match))


def places(recording, noise, lead):
    """For half a second in every two: seconds by which each side is later in the file than played."""
    result = []
    for at in range((LEAD + 4) * RATE, len(noise) - 3 * RATE, STEP):
        first = at - round(lead * RATE) - REACH
        part = recording[first:first + 2 * REACH + PIECE].astype(np.float64)
        size = 1 << (len(part) + PIECE).bit_length()
        match = np.fft.irfft(np.fft.rfft(part, size) *
                             np.conj(np.fft.rfft(noise[at:at + PIECE], size)), size)[:2 * REACH]
        far = strongest(match)  # because the microphone is turned down
        near = strongest(match, far)
        if match[near] < match[far] / 4:  # no second peak: both sides are in the same place
            near = far
            gain = match[far] / np.sum(noise[at:at + PIECE] ** 2)
            if gain < 1.2:  # 1.0 is the far side alone
                raise RuntimeError(f"the microphone is not in the recording: gain {gain:.2f}")
        result.append(((first + far - at) / RATE, (first + near - at) / RATE))
    return np.array(result)


def in_step(build, server, seconds):
    """Records noise that one player sends to both inputs; yields rows of offset and shifts."""
    noise = np.random.default_rng(1).normal(0, 0.1, seconds * RATE)
    with Headless(server, echo=True) as place:
        recordings = place.folder / "recordings"
        write_settings(place, recordings, "wav")
        place.run("pactl", "set-source-volume", "microphone", "80%")
        with wave.open(str(place.folder / "noise.wav"), "wb") as file:
            file.setparams((1, 2, RATE, 0, "NONE", ""))
            file.writeframes((noise * 32767).astype("<i2").tobytes())
        window = ProgramWindow(place, build / "app" / "quorlin", "--data-dir", place.folder / "d")
        began = time.monotonic()
        player = place.spawn("env", "PULSE_LATENCY_MSEC=60",  # what a call program requests
                             "paplay", "--device=speakers", place.folder / "noise.wav")
        time.sleep(LEAD)
        window.press("ctrl+r")
        lead = time.monotonic() - began
        wait_for("the recording", lambda: list(recordings.glob("*.part")))
        player.wait(seconds + 20)
        window.press("ctrl+period")
        file, = wait_for("the file", lambda: list(recordings.glob("*.wav")), 30)
        recording = decode("-i", file)
        window.quit()
    far, near = places(recording, noise, lead).T * 1000
    offset = near - far
    spread = np.ptp(offset)
    yield Row(f"{server}: microphone after the far side, {seconds} s", f"{np.median(offset):.1f} ms",
              value=abs(np.median(offset)), limit=5, is_ratio=False)
    yield Row("  spread of that", f"{spread:.2f} ms", value=spread, limit=1, is_ratio=False)
    yield Row("  largest shift of the far side against the player", f"{np.ptp(far):.2f} ms",
              value=np.ptp(far), limit=2, is_ratio=False)
