"""Works the viewer under 32-bit Wine on a screen of its own, and looks at the pixels that it shows.

    run.py BUILD                      one line for each check; the last line is the sum
    run.py BUILD --picture PNG IMAGE  a picture of the viewer instead, zoomed in and with a rectangle being drawn
    run.py BUILD --particles PNG IMAGE X Y  a picture with the dark particles, after a click at a point

BUILD is a folder of the 32-bit Windows build. For the pictures the frame needs Wine's own fonts: tahoma.ttf and
marlett.ttf of the Debian package fonts-wine, copied to windows/Fonts of the environment's drive C (see scripts/wine).
"""

import argparse
import math
import os
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from screen import Picture, Screen

ROOT = Path(__file__).resolve().parent.parent.parent
PATIENCE = 10  # seconds until what was asked for must be seen

counts = {"ok": 0, "FAILED": 0, "skipped": 0}


def report(result, what, details=""):
    counts[result] += 1
    print(f"{result:8}{what}", *(f"    {line}" for line in details.splitlines()), sep="\n", flush=True)


def check(what, problem):
    report("FAILED" if problem else "ok", what, problem)


class Unavailable(Exception):
    """What the tests need and this machine has not."""


# --------------------------------------------------------------------------------------------------------- the programs


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class Session:
    """A screen, Wine showing its windows there, and the library registered."""

    def __init__(self, build):
        self.build = build

    def __enter__(self):
        if not shutil.which("Xvfb"):
            raise Unavailable("there is no Xvfb")
        self.screen = Screen()
        self.screen.__enter__()
        # UTF-8 for names of files on command lines.
        self.environment = {**os.environ, "ORLIX_WINE_DISPLAY": self.screen.display, "LC_ALL": "C.UTF-8"}
        try:
            self.wine("stop")  # one that runs knows nothing of the screen
            started = self.wine("start", seconds=240)
            if started.returncode == 127:
                raise Unavailable(started.stdout.strip())
            # Nobody manages windows here: Wine draws their frames itself.
            self.wine("reg", "add", "HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver", "/v", "Managed", "/d", "N", "/f")
            library = sorted(self.build.rglob("orlix.dll"))[0]
            if self.wine("regsvr32", "/s", windows_path(library)).returncode:
                raise RuntimeError(f"{library} cannot be registered")
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        try:
            self.wine("stop")
        finally:
            self.screen.__exit__()

    def wine(self, *words, seconds=60):
        return subprocess.run([ROOT / "scripts/wine", "32", *map(str, words)], env=self.environment, timeout=seconds,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


class Viewer:
    """The viewer's window. Points are those of its picture, which ends where the status line begins."""

    def __init__(self, session, image, finds=True):
        self.session = session
        program = session.build / "examples/viewer/viewer.exe"
        self.process = subprocess.Popen([ROOT / "scripts/wine", "32", program, windows_path(image)],
                                        env=session.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        if finds:
            self.do("find")

    def do(self, *words):
        done = self.session.wine(self.session.build / "tests/viewer_driver.exe", *words, seconds=30)
        if done.returncode:
            raise RuntimeError(f"driver {' '.join(map(str, words))}: status {done.returncode}\n{done.stdout}")
        return done.stdout.strip()

    def resize(self, width, height):
        self.size = width, height
        self.origin = tuple(map(int, self.do("size", width, height).split()))

    def picture(self):
        return self.session.screen.picture().part(*self.origin, *self.size)

    def wait_for(self, what, look, problem_of):
        """Looks until there is no problem with what is there, or too long; gives it."""
        give_up = time.monotonic() + PATIENCE
        while (problem := problem_of(found := look())) and time.monotonic() < give_up:
            time.sleep(0.02)
        check(what, problem)
        return found

    def see(self, what, problem_of):
        return self.wait_for(what, self.picture, problem_of)

    def see_points(self, what, wanted):
        """The picture has these colours: {point: colour}."""
        return self.see(what, lambda seen: differences(seen, wanted))

    def hear(self, what, ending):
        """The status line ends so."""
        self.wait_for(what, lambda: self.do("status"),
                      lambda said: "" if said.endswith(ending) else f"{said!r} instead of {ending!r}")

    def read_panel(self, what, wanted):
        self.wait_for(what, lambda: self.do("panel"),
                      lambda said: "" if said == wanted else f"{said!r} instead of {wanted!r}")

    def click(self, x, y):
        self.do("press", "left", x, y)
        self.do("release", "left", x, y)

    def drag(self, button, first, second, what, problem_of):
        """Looks before the button is released."""
        self.do("press", button, *first)
        self.do("move", *second)
        picture = self.see(what, problem_of)
        self.do("release", button, *second)
        return picture

    def close(self):
        """Status of the program."""
        self.do("close")
        return self.process.wait(10)


# ------------------------------------------------------------------------------------------------------------ the image

# 8 x 6 blocks of 25 x 25 pixels, each of a grey of its own.
BLOCK, COLUMNS, ROWS = 25, 8, 6
WIDTH, HEIGHT = COLUMNS * BLOCK, ROWS * BLOCK
DARKEST, STEP = 60, 2
BRIGHTEST = DARKEST + STEP * (COLUMNS * ROWS - 1)
SURROUND, BAND = (40, 44, 52), (255, 255, 0)
LEFT_KEY, DOWN_KEY, ESCAPE_KEY = 0x25, 0x28, 0x1B


def level(column, row):
    return DARKEST + STEP * (COLUMNS * row + column)


def grey(column, row):
    return (level(column, row),) * 3


def image_rows():
    return [bytes(level(x // BLOCK, y // BLOCK) for x in range(WIDTH)) for y in range(HEIGHT)]


def write_image(file):
    file.write_bytes(b"P5\n%d %d\n255\n" % (WIDTH, HEIGHT) + b"".join(image_rows()))


def differences(picture, wanted):
    """Where the picture is not as wanted: {point: colour}."""
    wrong = [f"{point}: {picture[point]} instead of {color}"
             for point, color in wanted.items() if picture[point] != color]
    return "\n".join(wrong[:5] + ([f"... at {len(wrong)} of {len(wanted)} points"] if len(wrong) > 5 else []))


def blocks(left, top, size, columns=range(COLUMNS), rows=range(ROWS)):
    """The middles of blocks, shown from (left, top) on with sides of `size`, have their greys. (Between blocks the
    system interpolates.)"""
    return {(left + i * size + size // 2, top + k * size + size // 2): grey(column, row)
            for i, column in enumerate(columns) for k, row in enumerate(rows)}


def exactly(wanted):
    """Every pixel is that of another picture."""

    def problem_of(picture):
        if picture.rows == wanted.rows:
            return ""
        return differences(picture, {(x, y): wanted[x, y] for x in range(wanted.width) for y in range(wanted.height)})

    return problem_of


def moved_by(former, dx, dy):
    """The inside of each block has moved by (dx, dy). A view begins with a whole pixel of the image, here 4 pixels of
    the screen, so the insides keep 6 pixels from the edges; and where whole pixels do not fill the window there is some
    surround at its edges."""
    edge, wanted = 15, {}
    for y in range(edge, former.height - edge, 7):
        for x in range(edge, former.width - edge, 7):
            around = {former[x + i, y + k] for i in (-6, 0, 6) for k in (-6, 0, 6)}
            inside = edge <= x + dx < former.width - edge and edge <= y + dy < former.height - edge
            if len(around) == 1 and inside:
                wanted[x + dx, y + dy] = former[x, y]
    if len(set(wanted.values())) < 4:
        return lambda _: "too little of the picture would be seen again"
    return lambda picture: differences(picture, wanted)


# ----------------------------------------------------------------------------------------------------------- the checks


def check_showing(viewer):
    viewer.resize(WIDTH, HEIGHT)
    image = Picture(WIDTH, HEIGHT, [b"".join(bytes([value]) * 3 for value in row) for row in image_rows()])
    viewer.see("a file with letters of any kind in its name is shown, pixel by pixel", exactly(image))

    viewer.resize(500, 300)
    beside = {(x, y): SURROUND for x in (0, 25, 49, 450, 475, 499) for y in (0, 150, 299)}
    viewer.see_points("a wider window has the surround at both sides", {**beside, **blocks(50, 0, 50)})

    viewer.do("move", 50 + 2 * 110, 2 * 60)
    viewer.hear("the status line tells the pixel under the pointer", f"x 110   y 60   value {level(4, 2)}   zoom 1.00")


def check_zooming(viewer):
    viewer.resize(400, 300)
    whole = blocks(0, 0, 50)
    viewer.see_points("the whole image fills a window of its shape", whole)

    # In the middle of a block, away from the middle of the window. Blocks then have sides of 98 pixels.
    x, y = 75, 75
    around = {(x + i * 97, y + k * 97): grey(1 + i, 1 + k) for i in (0, 1, 2, 3) for k in (0, 1, 2)}
    viewer.do("wheel", x, y, 3)
    viewer.see_points("the wheel zooms in, and the pixel under the pointer stays there",
                      {**around, (15, 15): grey(0, 0)})
    viewer.do("wheel", x, y, -3)
    viewer.see_points("the wheel zooms out again", whole)


def check_panning(viewer):
    viewer.do("wheel", 200, 150, 3)
    viewer.hear("the status line tells the zoom", "zoom 1.95")
    former = viewer.picture()
    former = viewer.drag("left", (200, 150), (260, 110), "the picture goes with the pointer that drags it",
                         moved_by(former, 60, -40))
    viewer.do("move", 300, 200)
    former = viewer.see("and stays when the button is released", moved_by(former, 0, 0))
    viewer.do("key", LEFT_KEY)
    # 16 pixels of the image
    former = viewer.see("the left key shows what lies to the left", moved_by(former, 62, 0))
    viewer.do("key", DOWN_KEY)
    viewer.see("the down key shows what lies below", moved_by(former, 0, -62))
    viewer.do("key", ord("0"))
    return viewer.see_points("0 shows the whole image", blocks(0, 0, 50))


def check_rubber_band(viewer, former):
    left, top, right, bottom = 100, 50, 300, 200
    rows = [bytearray(row) for row in former.rows]
    for y in range(top, bottom):
        line = range(left, right) if y in (top, bottom - 1) else (left, right - 1)
        for x in line:
            rows[y][3 * x:3 * x + 3] = bytes(BAND)
    framed = Picture(former.width, former.height, rows)
    # To the left and upwards.
    viewer.drag("right", (right, bottom), (left, top), "a rectangle is drawn over the picture, which stays as it is",
                exactly(framed))
    corners = {(12, 12): grey(2, 1), (387, 12): grey(5, 1), (12, 287): grey(2, 3), (387, 287): grey(5, 3)}
    filled = {**blocks(0, 0, 100, range(2, 6), range(1, 4)), **corners}
    viewer.see_points("the rectangle fills the window", filled)

    viewer.do("key", ord("0"))
    viewer.see_points("0 shows the whole image again", blocks(0, 0, 50))
    viewer.drag("right", (50, 100), (350, 150), "a flat rectangle is drawn",
                lambda seen: differences(seen, {(50, 125): BAND, (349, 125): BAND, (50, 100): BAND}))
    # Six blocks fill the width, with sides of 67 pixels; above and below there is room for more of the image.
    wide = {(15 + i * 74, 150): grey(1 + i, 2) for i in range(6)}
    viewer.see_points("a flat rectangle is seen whole", wide)
    viewer.do("key", ord("0"))


def check_snapping(viewer):
    viewer.see_points("the greys of the image are those of the screen", blocks(0, 0, 50))
    viewer.do("key", ord("S"))

    def problem_of(seen):
        wrong = []
        for point, (value, _, _) in blocks(0, 0, 50).items():
            wanted = 255 * (value - DARKEST) / (BRIGHTEST - DARKEST)
            if abs(seen[point][0] - wanted) > 1 or len(set(seen[point])) != 1:
                wrong.append(f"{point}: {seen[point]} instead of {wanted:.1f}")
        return "\n".join(wrong[:5])

    viewer.see("S spreads the greys from black to white", problem_of)


# Dark rectangles on a bright ground: left, top, width, height, grey of the left and of the right half. The last one has
# too few pixels to count.
GROUND = 200
RECTANGLES = [(20, 30, 40, 20, 50, 70), (120, 90, 30, 40, 80, 80), (100, 10, 3, 3, 60, 60)]
OUTLINE, SELECTED = (0, 200, 255), (255, 255, 0)


def write_particles(file):
    rows = [bytearray([GROUND]) * WIDTH for _ in range(HEIGHT)]
    for left, top, width, height, grey_left, grey_right in RECTANGLES:
        for row in rows[top:top + height]:
            row[left:left + width] = bytes([grey_left] * (width // 2) + [grey_right] * (width - width // 2))
    file.write_bytes(b"P5\n%d %d\n255\n" % (WIDTH, HEIGHT) + b"".join(rows))


def numbers_of(number, label):
    """What the contract defines for a rectangle: the perimeter from the steps and corners of its chain."""
    _, _, width, height, grey_left, grey_right = RECTANGLES[number]
    steps, area = 2 * (width - 1) + 2 * (height - 1), width * height
    return " | ".join([
        f"Particle {number + 1} of 2, label {label}", f"Area {area} pixels",
        f"Equivalent diameter {2 * math.sqrt(area / math.pi):.2f}",
        f"Perimeter {0.980 * steps - 0.091 * 4 + 2 * math.sqrt(2):.2f}",
        f"Feret {min(width, height):.2f} to {math.hypot(width, height):.2f}",
        f"Mean grey {(grey_left + grey_right) / 2:.2f}"])


def around(number, color, size, left=0, top=0):
    """Points on the outline of a rectangle that is shown in the given size, and on either side of it."""
    x, y, width, height, grey_left, grey_right = RECTANGLES[number]
    first, last = left + x * size, left + (x + width) * size
    middle = top + y * size + height * size // 2
    return {(first, middle): color, (last, middle): color, (first - 3, middle): (GROUND,) * 3,
            (first + 3, middle): (grey_left,) * 3, (last - 3, middle): (grey_right,) * 3,
            (first + 5, top + y * size): color, (first + 5, top + (y + height) * size): color}


def check_particles(session, folder):
    image = folder / "particles.pgm"
    write_particles(image)
    viewer = Viewer(session, image)
    viewer.resize(400, 300)
    viewer.read_panel("the panel is hidden before particles are looked for", "")
    viewer.do("key", ord("D"))
    viewer.read_panel("D counts the dark particles", "2 particles")
    found = {**around(0, OUTLINE, 2), **around(1, OUTLINE, 2)}
    viewer.see_points("and outlines them", found)

    viewer.click(80, 80)
    viewer.read_panel("a click on a particle shows its numbers", numbers_of(0, 1))
    chosen = {**around(0, SELECTED, 2), **around(1, OUTLINE, 2)}
    viewer.see_points("and its outline", chosen)
    viewer.click(2 * 149 + 1, 2 * 90)
    viewer.read_panel("so does a click on the last pixel of a row of another one", numbers_of(1, 2))
    viewer.click(2 * 150, 2 * 90)
    viewer.read_panel("a click beside it selects none", "2 particles")

    viewer.drag("left", (300, 220), (320, 200), "a drag selects nothing", lambda seen: "")
    viewer.do("key", ord("0"))
    viewer.do("wheel", 80, 80, 3)
    viewer.hear("the picture is zoomed", "zoom 1.95")
    viewer.click(80, 80)
    viewer.read_panel("a click finds its particle at any zoom", numbers_of(0, 1))
    viewer.do("key", ord("0"))
    viewer.do("key", ord("B"))
    viewer.read_panel("B counts the bright ones", "1 particle")
    viewer.do("key", ESCAPE_KEY)
    viewer.read_panel("Escape forgets them", "")
    viewer.see_points("and their outlines", {(40, 80): (50,) * 3, (37, 80): (GROUND,) * 3})
    viewer.close()


def check_failing(session, folder):
    broken, image = folder / "broken.pgm", folder / "image.pgm"
    broken.write_bytes(b"no image")
    write_image(image)
    viewer = Viewer(session, broken, finds=False)
    said = viewer.do("message")
    wanted = "IImageVPAEx::CreateFromFile: unknown file format."
    check("a file that is no image is refused with the library's words", "" if said == wanted else said)
    viewer.do("find")
    viewer.do("open", windows_path(image))
    viewer.resize(400, 300)
    viewer.see_points("Ctrl+O opens another one", blocks(0, 0, 50))
    status = viewer.close()
    check("the program ends with its window", f"its status is {status}" if status else "")


def check_all(session):
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        image = folder / "Schliff β 表面.pgm"
        write_image(image)
        viewer = Viewer(session, image)
        check_showing(viewer)
        check_zooming(viewer)
        former = check_panning(viewer)
        check_rubber_band(viewer, former)
        check_snapping(viewer)
        viewer.close()
        check_particles(session, folder)
        check_failing(session, folder)


def photograph(viewer, file):
    """With the frame, the title and the menu above, the status line below."""
    (left, top), (width, height) = viewer.origin, viewer.size
    viewer.session.screen.picture().part(left - 4, top - 42, width + 8, height + 42 + 24).write_png(file)


def take_picture(session, image, file):
    viewer = Viewer(session, image)
    viewer.resize(560, 400)
    viewer.do("wheel", 380, 160, 3)
    viewer.hear("the picture is zoomed", "zoom 1.95")
    viewer.do("press", "right", 250, 120)
    viewer.do("move", 470, 270)
    viewer.see_points("a rectangle is drawn", {(250, 200): BAND, (469, 200): BAND})
    photograph(viewer, file)
    viewer.do("release", "right", 470, 270)
    viewer.close()


def take_particles(session, image, file, point):
    viewer = Viewer(session, image)
    viewer.resize(560, 400)
    viewer.do("key", ord("D"))
    viewer.click(*point)
    viewer.see("a particle is outlined", lambda seen: "" if bytes(SELECTED) in b"".join(seen.rows) else "none is")
    photograph(viewer, file)
    viewer.close()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path, metavar="BUILD")
    parser.add_argument("--picture", nargs=2, metavar=("PNG", "IMAGE"))
    parser.add_argument("--particles", nargs=4, metavar=("PNG", "IMAGE", "X", "Y"))
    arguments = parser.parse_args()
    try:
        with Session(arguments.build.resolve()) as session:
            if arguments.picture:
                take_picture(session, Path(arguments.picture[1]).resolve(), arguments.picture[0])
                return 0
            if arguments.particles:
                file, image, x, y = arguments.particles
                take_particles(session, Path(image).resolve(), file, (int(x), int(y)))
                return 0
            try:
                check_all(session)
            except (RuntimeError, subprocess.TimeoutExpired) as error:
                check("the checks come to their end", str(error))
    except Unavailable as reason:
        report("skipped", f"the viewer on a screen: {reason}")
    print(f"{counts['ok']} passed, {counts['FAILED']} failed, {counts['skipped']} skipped")
    return 1 if counts["FAILED"] else 0


sys.exit(main())
