"""Finds the lines of a call in its recording, by correlation."""

from dataclasses import dataclass

import numpy as np

from demo_call import FAR, NEAR, RATE, decode

FOUND = 0.4  # least correlation of a line in the file; without the line it is below 0.15


def best_match(recording, line, around=None, reach=1.5):
    """(seconds, correlation) of the best match, near the given second or anywhere."""
    first = 0 if around is None else max(0, round((around - reach) * RATE))
    last = len(recording) if around is None else round((around + reach) * RATE) + len(line)
    part = recording[first:last].astype(np.float64)
    if len(part) < len(line):
        return 0.0, 0.0
    size = 1 << (len(part) + len(line)).bit_length()
    product = np.fft.irfft(np.fft.rfft(part, size) * np.conj(np.fft.rfft(line, size)), size)
    energy = np.concatenate([[0], np.cumsum(part * part)])
    energy = energy[len(line):] - energy[:-len(line)]
    scale = np.sqrt(np.maximum(energy, 1e-3) * np.sum(line.astype(np.float64) ** 2))
    match = product[:len(energy)] / scale
    at = int(np.argmax(match))
    return (first + at) / RATE, float(match[at])


@dataclass
class Side:
    found: int
    expected: int
    correlation: float  # of the weakest line
    delays: list  # seconds from each line's time in the call to its time in the file

    def spread(self):
        return max(self.delays) - min(self.delays) if self.delays else 0.0


def find(recording, lines, delay):
    """Looks for each line in the file at its time in the call plus the delay."""
    matches = [(line, *best_match(recording, line.samples, line.start + delay)) for line in lines]
    found = [(line, at) for line, at, correlation in matches if correlation >= FOUND]
    return Side(len(found), len(lines), min((m[2] for m in matches), default=0.0),
                [at - line.start for line, at in found])


def report(path, call, lead):
    """(lines of text, whether all is well) for a recording begun `lead` seconds before the call."""
    recording = decode("-i", path)
    text, good = [], True
    paused = call.resume - call.pause
    parts = [("before the pause", lead, lambda line: line.start < call.pause),
             ("after the pause", lead - paused, lambda line: line.start > call.resume)]
    for name, delay, belongs in parts:
        sides = {voice: find(recording, [l for l in call.lines if l.voice == voice and belongs(l)],
                             delay) for voice in (FAR, NEAR)}
        far, near = sides[FAR], sides[NEAR]
        good &= all(side.found == side.expected for side in sides.values())
        offset = (np.median(near.delays) - np.median(far.delays)
                  if near.delays and far.delays else float("nan"))
        text.append(
            f"{name}: far side {far.found}/{far.expected} (correlation {far.correlation:.2f}), "
            f"microphone {near.found}/{near.expected} ({near.correlation:.2f}); microphone "
            f"{offset * 1000:+.1f} ms against the far side, the players' own start included; "
            f"largest shift within a side "
            f"{max(far.spread(), near.spread()) * 1000:.2f} ms")
    for line in call.lines:
        if call.pause < line.start < call.resume:
            leaked = best_match(recording, line.samples)[1] >= FOUND
            good &= not leaked
            text.append("the line spoken during the pause is " +
                        ("in the file" if leaked else "not in the file, as it should be"))
    return text, good
