"""A call between two people with different voices, made by ffmpeg's own speech synthesis."""

import subprocess
import wave
from dataclasses import dataclass

import numpy as np

RATE = 48000
FAR, NEAR = "slt", "rms"  # voices of the far side and of the microphone
# (voice, seconds after the end of the previous line, text). If negative, the lines overlap.
BEFORE_PAUSE = [
    (FAR, 0.3, "Good morning. Can you hear me well on your side of the line?"),
    (NEAR, 0.3, "Yes, loud and clear. Shall we go through the plan for Thursday?"),
    (FAR, -0.7, "Gladly. The first delivery arrives at nine, the second one at noon."),
    (NEAR, 0.2, "Good, then I will be at the warehouse with both keys."),
]
DURING_PAUSE = [
    (FAR, 0, "Between you and me, the price is still open."),
]
AFTER_PAUSE = [
    (NEAR, 0.3, "Let us write that down. How many boxes do you expect?"),
    (FAR, 0.2, "Forty two boxes, and three of them are fragile."),
    (NEAR, -0.6, "Understood, forty two. I will call you when they are here."),
    (FAR, 0.3, "Thank you very much. Have a pleasant day, and goodbye."),
]
MARGIN = 0.8  # seconds of silence around the moments of pausing and resuming


@dataclass
class Line:
    voice: str
    start: float  # seconds into the call
    samples: np.ndarray


@dataclass
class Call:
    lines: list
    pause: float  # seconds into the call
    resume: float
    end: float

    def write(self, voice, path):
        """One side of the call as a WAV file."""
        mix = np.zeros(int((self.end + 1) * RATE), dtype=np.float32)
        for line in self.lines:
            if line.voice == voice:
                at = round(line.start * RATE)
                mix[at:at + len(line.samples)] += line.samples
        with wave.open(str(path), "wb") as file:
            file.setnchannels(1)
            file.setsampwidth(2)
            file.setframerate(RATE)
            file.writeframes((mix * 32767).astype("<i2").tobytes())


def decode(*source, rate=RATE):
    """An input of ffmpeg as mono samples."""
    command = ["ffmpeg", "-v", "error", "-nostdin", *map(str, source),
               "-f", "f32le", "-ac", "1", "-ar", str(rate), "-"]
    done = subprocess.run(command, check=True, capture_output=True)
    return np.frombuffer(done.stdout, dtype="<f4")


def speak(voice, text, number):
    try:
        samples = decode("-f", "lavfi", "-i", f"flite=voice={voice}:text='{text}'")
    except subprocess.CalledProcessError:
        # This ffmpeg has no speech: syllables of noise, with a pitch per voice, different per line.
        band = "bandpass=f=900:w=500" if voice == FAR else "bandpass=f=300:w=150"
        samples = decode("-f", "lavfi", "-i",
                         f"anoisesrc=d=3:r={RATE}:seed={number},{band},tremolo=f=4:d=0.9")
    return samples * (0.4 / np.abs(samples).max())


def make_call(minutes=0):
    """The dialogue; the part after the pause is repeated until the call is about that long."""
    lines, spoken = [], {}

    def place(dialogue, now):
        for voice, gap, text in dialogue:
            if text not in spoken:
                spoken[text] = speak(voice, text, len(spoken))
            lines.append(Line(voice, now + gap, spoken[text]))
            now += gap + len(spoken[text]) / RATE
        return now

    pause = place(BEFORE_PAUSE, 0) + MARGIN
    resume = place(DURING_PAUSE, pause + MARGIN) + MARGIN
    now = place(AFTER_PAUSE, resume + MARGIN)
    while now < minutes * 60:
        now = place(AFTER_PAUSE, now)
    return Call(lines, pause, resume, now + MARGIN)
