"""A private display, sound server and home, so that the user's own are not touched."""

import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

def sound_modules(echo):
    """The sound server's modules: speakers, and a microphone that hears what is played into
    "voice" or, with an echo, into the speakers."""
    # Without rewinds the sink renders 50 ms ahead instead of seconds.
    heard = "speakers" if echo else "voice"
    return [
        "module-null-sink sink_name=speakers rate=48000 norewinds=1"
        " sink_properties=device.description=Speakers",
        "module-null-sink sink_name=voice rate=48000",
        f"module-remap-source master={heard}.monitor source_name=microphone"
        " source_properties=device.description=Microphone",
    ]


def wait_for(what, condition, seconds=10):
    """Polls until the condition returns something true, and returns that."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise RuntimeError(f"timed out after {seconds} s waiting for {what}")
        time.sleep(0.02)


class Headless:
    """A context manager that ends everything it started, also after a signal.

    The server is "pulseaudio" or "pipewire", by default the first of them that is installed. The
    home is a new folder: the given path, or a temporary one."""

    def __init__(self, server=None, screen="1140x850", echo=False, home=None):
        self.server = server or ("pulseaudio" if shutil.which("pulseaudio") else "pipewire")
        self.modules = sound_modules(echo)
        self.screen = screen
        self.home = home
        self.processes = []

    def __enter__(self):
        for number in (signal.SIGTERM, signal.SIGHUP):
            signal.signal(number, lambda *_: sys.exit(1))
        self.folder = Path(self.home or tempfile.mkdtemp(prefix="quorlin-"))
        if self.home:
            self.folder.mkdir()
        try:
            self._make_home()
            self._start_display()
            self._start_sound()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            signal.signal(number, signal.SIG_IGN)  # a second Ctrl-C must not leave anything behind
        for process in reversed(self.processes):
            process.terminate()
            try:
                process.wait(5)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            signal.signal(number, signal.SIG_DFL)

    def spawn(self, *command, **options):
        """Starts a process that does not get the terminal's Ctrl-C and ends with this object."""
        options.setdefault("stdout", subprocess.DEVNULL)
        options.setdefault("stderr", open(self.folder / "log", "ab"))
        process = subprocess.Popen(
            [str(word) for word in command], env=self.env, start_new_session=True, **options
        )
        self.processes.append(process)
        return process

    def run(self, *command):
        """Runs a command and returns its output; raises if it fails."""
        return subprocess.run(
            [str(word) for word in command],
            env=self.env, check=True, timeout=60, capture_output=True, text=True,
        ).stdout

    def log(self):
        return (self.folder / "log").read_text(errors="replace")

    def _make_home(self):
        foreign = ("PULSE_", "PIPEWIRE_", "QT_QPA_", "DBUS_", "WAYLAND_", "XDG_", "XAUTHORITY")
        self.env = {k: v for k, v in os.environ.items() if not k.startswith(foreign)}
        runtime = self.folder / "runtime"
        runtime.mkdir(mode=0o700)
        self.env |= {"HOME": str(self.folder), "XDG_RUNTIME_DIR": str(runtime),
                     "LC_ALL": "C.UTF-8"}

    def _start_display(self):
        reader, writer = os.pipe()
        # Without -noreset, Xvfb refuses clients for a moment whenever the last one leaves.
        self.spawn("Xvfb", "-noreset", "-displayfd", writer, "-screen", "0", f"{self.screen}x24",
                   pass_fds=[writer])
        os.close(writer)
        with open(reader, encoding="ascii") as numbers:
            number = numbers.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start: " + self.log())
        self.env["DISPLAY"] = ":" + number

    def _start_sound(self):
        if self.server == "pipewire":
            self._start_pipewire()
        else:
            self.spawn("pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1",
                       "-L", "module-native-protocol-unix")
        wait_for("the sound server", lambda: self._pactl("info").returncode == 0)
        for module in self.modules:
            self.run("pactl", "load-module", *module.split())
        self.run("pactl", "set-default-sink", "speakers")
        self.run("pactl", "set-default-source", "microphone")
        wait_for("the default devices",
                 lambda: "Default Sink: speakers\nDefault Source: microphone"
                 in self._pactl("info").stdout)

    def _start_pipewire(self):
        runtime = Path(self.env["XDG_RUNTIME_DIR"])
        bus = runtime / "bus"
        self.env["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={bus}"
        self.spawn("dbus-daemon", "--session", "--nofork", f"--address=unix:path={bus}")
        wait_for("the session bus", bus.exists)
        self.spawn("pipewire")
        wait_for("PipeWire", (runtime / "pipewire-0").exists)
        config = Path(__file__).resolve().parent / "private-sound"
        self.spawn("env", f"XDG_CONFIG_HOME={config}", "wireplumber")
        self.spawn("pipewire-pulse")

    def _pactl(self, *arguments):
        return subprocess.run(["pactl", *arguments], env=self.env, timeout=60,
                              capture_output=True, text=True)


class ProgramWindow:
    """The program's real window, with keys to drive it and pictures of the display."""

    def __init__(self, place, program, *arguments):
        self.place = place
        self.process = place.spawn(program, *arguments)
        self.id = wait_for("the window", self._find, 20)
        # There is no window manager to give it the focus.
        place.run("xdotool", "windowfocus", "--sync", self.id)

    def _find(self):
        if self.process.poll() is not None:
            raise RuntimeError("the program ended: " + self.place.log())
        found = subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--name", "^Quorlin$"],
            env=self.place.env, capture_output=True, text=True)
        return found.stdout.split()[-1] if found.stdout.split() else None

    def press(self, key):
        self.place.run("xdotool", "key", "--clearmodifiers", key)

    def click(self, x, y):
        self.place.run("xdotool", "mousemove", x, y, "click", 1)

    def type(self, text):
        """Types Russian text; only characters of the Russian keyboard arrive reliably."""
        self.place.run("setxkbmap", "ru")
        self.place.run("xdotool", "type", "--delay", 30, text)
        self.place.run("setxkbmap", "us")

    def picture(self, path):
        self.place.run("ffmpeg", "-v", "error", "-f", "x11grab", "-draw_mouse", 0,
                       "-video_size", self.place.screen, "-i", self.place.env["DISPLAY"],
                       "-frames:v", 1, "-y", path)

    def quit(self):
        """Quits the program as a user would; returns its exit status."""
        self.press("ctrl+q")
        return self.process.wait(30)


def write_settings(place, recordings, audio_format="opus"):
    """The program's preferences, so that it records into the given folder."""
    folder = Path(place.env["HOME"]) / ".config" / "Quorlin"
    folder.mkdir(parents=True, exist_ok=True)
    path = str(recordings).replace("\\", "\\\\").replace('"', '\\"')
    (folder / "Quorlin.conf").write_text(
        f'[audio]\nformat={audio_format}\ndirectory="{path}"\n', encoding="utf-8")
