"""Uses the editor as a person does, in a desktop of its own: opens a photo, drags the end view onto a
detail, adds a stop, plays, saves, makes the film, and looks for the detail in the film's last frame.
Then it is ended by force in the middle of a drag, which is taken up again.

desktop_test.py PROGRAMS MODULE
"""
import json
import os
import subprocess
import sys
import tempfile
import time

PROGRAMS, MODULE = sys.argv[1:3]
PHOTO = (1600, 1200)
DETAIL = (1000, 760)  # the middle of the white mark
CORNER = 24  # pixels of the magenta marks in the photo's corners


def run(*words, **more):
    return subprocess.run(words, check=True, stdout=subprocess.PIPE, **more).stdout


def wait_for(what, done, seconds=60):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        result = done()
        if result:
            return result
        time.sleep(0.2)
    sys.exit(f"desktop_test: {what}: not within {seconds} s")


class Picture:
    """Pixels of a picture file, through ImageMagick."""

    def __init__(self, source):
        data = run("convert", source, "-depth", "8", "ppm:-")
        _, size, _, pixels = data.split(b"\n", 3)
        self.width, self.height = map(int, size.split())
        self.pixels = pixels

    def middle_of(self, wanted, box=None):
        """The middle of the pixels for which `wanted` holds, and how many they are."""
        left, top, right, bottom = box or (0, 0, self.width, self.height)
        count = x_sum = y_sum = 0
        for y in range(top, bottom):
            row = self.pixels[(y * self.width) * 3:(y * self.width + self.width) * 3]
            for x in range(left, right):
                if wanted(row[x * 3], row[x * 3 + 1], row[x * 3 + 2]):
                    count, x_sum, y_sum = count + 1, x_sum + x + 0.5, y_sum + y + 0.5
        return (x_sum / count, y_sum / count, count) if count else (0, 0, 0)


def is_magenta(r, g, b):
    return r > 60 and b > 60 and abs(r - b) < 30 and g * 3 < r  # though views may shade it


def is_white(r, g, b):
    return min(r, g, b) > 200


class Editor:
    def __init__(self, folder, file="photo.png"):
        self.folder = folder
        self.project = os.path.join(folder, "photo.json")
        environment = {**os.environ, "QT_QPA_PLATFORM": "xcb", "KELTO_MODULE": MODULE, "HOME": folder,
                       "XDG_CONFIG_HOME": folder, "LC_ALL": "C.UTF-8", "QT_SCALE_FACTOR": "1"}
        self.process = subprocess.Popen([os.path.join(PROGRAMS, "kelto-edit"), "--theme", "dark",
                                         os.path.join(folder, file)], env=environment)
        self.window = wait_for("the window", lambda: run(
            "sh", "-c", "xdotool search --onlyvisible --name 'Kelto Pan & Zoom' | head -1").strip())
        run("xdotool", "windowactivate", "--sync", self.window)

    def keys(self, *names):
        for name in names:
            run("xdotool", "key", "--clearmodifiers", name)
            time.sleep(0.1)

    def saved(self):
        """Saves, and reads the project."""
        before = os.stat(self.project).st_mtime_ns if os.path.exists(self.project) else 0
        self.keys("ctrl+s")
        wait_for("the project", lambda: os.path.exists(self.project) and
                 (os.stat(self.project).st_mtime_ns != before))
        with open(self.project, encoding="utf-8") as file:
            return json.load(file)

    def screen(self):
        name = os.path.join(self.folder, "screen.png")
        run("import", "-window", "root", name)
        return Picture(name)


def canvas_of(screen):
    """Where the photo lies on the screen: scale, left, top; none while it is not shown."""
    half = (screen.width * 2 // 3, screen.height)
    left = screen.middle_of(is_magenta, (0, 0, half[0] // 2, half[1] // 2))
    low = screen.middle_of(is_magenta, (0, half[1] // 2, half[0] // 2, half[1]))
    right = screen.middle_of(is_magenta, (half[0] // 2, 0, half[0], half[1] // 2))
    if min(left[2], low[2], right[2]) < 9:
        return None
    scale = (right[0] - left[0]) / (PHOTO[0] - CORNER)
    return scale, left[0] - CORNER / 2 * scale, left[1] - CORNER / 2 * scale


def part_of(view):
    return [float(number) for number in view["view"].split(",")]


def drag(start, end, release=True):
    run("xdotool", "mousemove", *map(str, map(round, start)), "mousedown", "1")
    for step in range(1, 11):
        x, y = (a + (b - a) * step / 10 for a, b in zip(start, end))
        run("xdotool", "mousemove", str(round(x)), str(round(y)))
        time.sleep(0.02)
    if release:
        run("xdotool", "mouseup", "1")
    time.sleep(0.3)


def use(folder):
    photo = os.path.join(folder, "photo.png")
    c, (w, h) = CORNER, PHOTO
    marks = "".join(f"rectangle {x},{y} {x + c - 1},{y + c - 1} " for x in (0, w - c) for y in (0, h - c))
    run("convert", "-size", f"{w}x{h}", "xc:#204060", "-fill", "magenta", "-draw", marks, "-fill", "white",
        "-draw", f"rectangle {DETAIL[0] - 20},{DETAIL[1] - 20} {DETAIL[0] + 19},{DETAIL[1] + 19}", photo)
    editor = Editor(folder)
    scale, left, top = wait_for("the photo on the canvas", lambda: canvas_of(editor.screen()))

    def on_screen(x, y):
        return left + x * scale, top + y * scale

    x, y, width, height = part_of(editor.saved()["views"][-1])
    drag(on_screen(x + width / 2, y + height / 2), on_screen(*DETAIL))
    views = editor.saved()["views"]
    x, y, width, height = part_of(views[-1])
    off = max(abs(x + width / 2 - DETAIL[0]), abs(y + height / 2 - DETAIL[1]))
    assert off <= 2 / scale + 10, f"the end view lies {off} pixels of the photo off the detail"

    # A stop, where the photo is double-clicked.
    place = on_screen(500, 400)
    run("xdotool", "mousemove", *map(str, map(round, place)), "click", "--repeat", "2", "--delay", "80", "1")
    time.sleep(0.5)
    project = editor.saved()
    assert len(project["views"]) == 3, project["views"]
    assert part_of(project["views"][-1]) == [x, y, width, height], "the end stays the end"

    editor.keys("ctrl+space")
    time.sleep(1.5)
    editor.keys("ctrl+space")

    # The film, by the dialog as it comes up.
    editor.keys("ctrl+r")
    time.sleep(1.0)
    editor.keys("Return")
    film = os.path.join(folder, "photo.mp4")
    wait_for("the film", lambda: os.path.exists(film), 120)
    editor.keys("ctrl+q")
    editor.process.wait(30)

    last = os.path.join(folder, "last.png")
    run("ffmpeg", "-v", "error", "-sseof", "-1", "-i", film, "-update", "1", "-y", last)
    frame = Picture(last)
    found_x, found_y, count = frame.middle_of(is_white)
    assert count > 100, "the film's last frame does not show the detail"
    expected_x = (DETAIL[0] - x) / width * frame.width
    expected_y = (DETAIL[1] - y) / height * frame.height
    off = max(abs(found_x - expected_x), abs(found_y - expected_y))
    assert off <= 1.0, f"the detail lies {off} pixels off where the view has it"
    print(f"detail at {found_x:.2f}, {found_y:.2f}; by the view {expected_x:.2f}, {expected_y:.2f}")


def crash(folder):
    """Ends the editor by force in the middle of a drag, and takes the drag up again."""
    editor = Editor(folder, "photo.json")
    scale, left, top = wait_for("the photo on the canvas", lambda: canvas_of(editor.screen()))
    with open(editor.project, encoding="utf-8") as file:
        before = part_of(json.load(file)["views"][-1])
    x, y = before[0] + before[2] / 2, before[1] + before[3] / 2
    drag((left + x * scale, top + y * scale), (left + (x - 150) * scale, top + (y - 100) * scale), False)
    kept = os.path.join(folder, ".photo.json.kelto-unsaved")
    wait_for("what is kept of the drag", lambda: os.path.exists(kept))
    time.sleep(1)
    editor.process.kill()
    editor.process.wait(30)
    run("xdotool", "mouseup", "1")
    editor = Editor(folder, "photo.json")
    time.sleep(2)
    editor.keys("Return")  # takes up the unsaved changes
    wait_for("the photo on the canvas", lambda: canvas_of(editor.screen()))
    after = part_of(editor.saved()["views"][-1])
    off = max(abs(after[0] - before[0] + 150), abs(after[1] - before[1] + 100))
    assert off <= 2 / scale + 10, f"the drag was taken up {off} pixels of the photo off: {before}, {after}"
    assert not os.path.exists(kept), "nothing is unsaved any more"
    editor.keys("ctrl+q")
    editor.process.wait(30)


def main():
    with tempfile.TemporaryDirectory() as folder:
        read, write = os.pipe()
        screen = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x720x24",
                                   "-nolisten", "tcp"], pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        os.environ["DISPLAY"] = ":" + os.read(read, 16).decode().strip()
        manager = subprocess.Popen(["openbox"], stderr=subprocess.DEVNULL)
        try:
            time.sleep(1)
            use(folder)
            crash(folder)
        except BaseException:
            subprocess.run(["import", "-window", "root", "desktop_test.png"], check=False)
            print("desktop_test: the screen as it was: " + os.path.abspath("desktop_test.png"))
            raise
        finally:
            for process in (manager, screen):
                process.terminate()
                process.wait()


main()
