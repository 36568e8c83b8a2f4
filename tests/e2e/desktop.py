"""A virtual desktop with a scratch home for tests that run the whole program on it."""

import os
import pathlib
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time

SKIPPED = 77  # what ctest takes for "could not be run here"
TITLE = "^Vellumar Photo Organizer$"
PATIENCE = 60  # seconds
NORMAL_EXIT = 1
NO_TIP = '"DontShowAddFolderTip"=dword:00000001'


def need(*tools):
    """Ends the test as skipped unless the tools are installed."""
    missing = [tool for tool in tools if shutil.which(tool) is None]
    if missing:
        print("skipped: not installed:", ", ".join(missing))
        sys.exit(SKIPPED)


def wait_until(condition, what, patience=PATIENCE):
    """The first true answer of `condition`."""
    deadline = time.monotonic() + patience
    while time.monotonic() < deadline:
        answer = condition()
        if answer:
            return answer
        time.sleep(0.02)
    raise AssertionError(f"waited {patience} s for {what}")


def make_photo(path, colour, size=(1600, 1200)):
    """A JPEG of one colour, as a triple of red, green and blue."""
    width, height = size
    picture = b"P6 %d %d 255\n" % (width, height) + bytes(colour) * (width * height)
    jpeg = subprocess.run(["cjpeg", "-quality", "90"], input=picture, stdout=subprocess.PIPE, check=True)
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(jpeg.stdout)


def read_ppm(data):
    """Width, height and pixel bytes of a binary PPM without comments."""
    fields = data.split(None, 4)[:4]
    start = 0
    for field in fields:
        start = data.index(field, start) + len(field)
    return int(fields[1]), int(fields[2]), data[start + 1 :]


def is_near(a, b, distance=24):
    return all(abs(x - y) <= distance for x, y in zip(a, b))


class Desktop:
    """Xvfb with a window manager, and a home folder that goes with it."""

    def __init__(self, size=(1280, 900)):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="vellumar-e2e-"))
        self.home = self.folder / "home"
        self.pictures = self.home / "Pictures"
        self.data = self.home / ".local" / "share" / "Vellumar Photo Organizer"
        runtime = self.folder / "run"
        self.pictures.mkdir(parents=True)
        runtime.mkdir(mode=0o700)
        self.environment = {
            key: value
            for key, value in os.environ.items()
            if not key.startswith(("XDG_", "QT_", "WAYLAND_", "VELLUMAR_"))
        }
        self.environment.update(HOME=str(self.home), XDG_RUNTIME_DIR=str(runtime), QT_QPA_PLATFORM="xcb")
        # A sanitizer's finding is told from a normal exit, and a leak of a system library is passed over.
        passed_over = self.folder / "leaks"
        passed_over.write_text("leak:libdbus-1\n")
        self.environment["ASAN_OPTIONS"] = "exitcode=99"
        self.environment["LSAN_OPTIONS"] = f"suppressions={passed_over}:print_suppressions=0"
        self.children = []
        self.set_settings()
        self._start_display(size)

    def set_settings(self, *lines):
        """Gives the program these settings and no others, but for the tip at the start, which is not shown."""
        folder = self.home / ".config" / "Vellumar Photo Organizer"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "settings").write_text("".join(line + "\n" for line in (NO_TIP, *lines)))

    def wait_for_setting(self, line):
        file = self.home / ".config" / "Vellumar Photo Organizer" / "settings"
        wait_until(lambda: line in file.read_text(), f"the setting {line}", 10)

    def _start_display(self, size):
        reading, writing = os.pipe()
        screen = f"{size[0]}x{size[1]}x24"
        # Without -noreset the display starts anew, and ends every program, when a first client leaves.
        command = ["Xvfb", "-noreset", "-displayfd", str(writing), "-screen", "0", screen, "-nolisten", "tcp"]
        self.children.append(subprocess.Popen(command, pass_fds=[writing], stderr=subprocess.DEVNULL))
        os.close(writing)
        with os.fdopen(reading) as pipe:
            number = pipe.readline().strip()
        assert number, "the virtual display did not start"
        self.environment["DISPLAY"] = ":" + number
        self.children.append(
            subprocess.Popen(["openbox"], env=self.environment, stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        )
        probe = ["xdotool", "get_desktop"]  # answers once the window manager is there
        wait_until(lambda: self._run(probe).returncode == 0, "the window manager")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for child in reversed(self.children):
            if child.poll() is None:
                child.terminate()
            try:
                child.wait(PATIENCE)
            except subprocess.TimeoutExpired:
                child.kill()
                child.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def _run(self, command):
        return subprocess.run(command, env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

    def start(self, program, **environment):
        child = subprocess.Popen([program], env={**self.environment, **environment})
        self.children.append(child)
        return child

    def window_size(self, window):
        answer = self._run(["xdotool", "getwindowgeometry", "--shell", window]).stdout.decode()
        fields = dict(line.split("=") for line in answer.split())
        return int(fields["WIDTH"]), int(fields["HEIGHT"])

    def find_window(self):
        found = self._run(["xdotool", "search", "--onlyvisible", "--name", TITLE]).stdout.split()
        return found[0].decode() if found else None

    def wait_for_dialog(self, title):
        """Waits for a window of that title."""
        command = ["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"]
        wait_until(lambda: self._run(command).stdout.strip(), f"the window {title}", 20)

    def wait_for_window(self, child):
        def look():
            assert child.poll() is None, f"the program ended with {child.returncode} instead of showing its window"
            return self.find_window()

        return wait_until(look, "the main window")

    def press(self, *keys):
        subprocess.run(["xdotool", "key", *keys], env=self.environment, check=True)

    def hold(self, key, seconds):
        """Holds a key down; the display repeats it."""
        subprocess.run(["xdotool", "keydown", key], env=self.environment, check=True)
        time.sleep(seconds)
        subprocess.run(["xdotool", "keyup", key], env=self.environment, check=True)

    def type(self, text):
        """Types a text of one line."""
        subprocess.run(["xdotool", "type", "--delay", "8", text], env=self.environment, check=True)

    def click(self, x, y, count=1):
        """Clicks at a place of the screen, told in pixels."""
        command = ["xdotool", "mousemove", str(x), str(y), "click", "--repeat", str(count), "1"]
        subprocess.run(command, env=self.environment, check=True)

    def wait_for_query(self, statement, rows, what):
        """Waits until the catalog, read while the program runs, holds these rows."""

        def holds():
            try:
                return self.query("vellumar.db", statement) == rows
            except sqlite3.OperationalError:  # the program is just writing
                return False

        wait_until(holds, what, 10)

    def colour_at(self, x, y):
        """The colour of one pixel of the screen, told in parts of its width and height."""
        command = ["import", "-window", "root", "-depth", "8", "ppm:-"]
        picture = subprocess.run(command, env=self.environment, stdout=subprocess.PIPE, check=True).stdout
        width, height, pixels = read_ppm(picture)
        offset = 3 * (int(y * height) * width + int(x * width))
        return tuple(pixels[offset : offset + 3])

    def wait_for_photo(self, colour):
        """Waits until the large photo has that colour."""
        wait_until(lambda: is_near(self.colour_at(0.5, 0.4), colour), f"the photo of colour {colour}", 10)

    def end(self, child, number=signal.SIGTERM):
        child.send_signal(number)
        return child.wait(PATIENCE)

    def query(self, file, statement):
        with sqlite3.connect(self.data / file) as database:
            return database.execute(statement).fetchall()
