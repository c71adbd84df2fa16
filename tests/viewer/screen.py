"""A screen of its own to show windows on, and what is to be seen there."""

import os
import struct
import subprocess
import tempfile
import zlib
from pathlib import Path


class Picture:
    """Pixels (red, green, blue), row by row."""

    def __init__(self, width, height, rows):
        self.width, self.height, self.rows = width, height, rows

    def __getitem__(self, point):
        x, y = point
        return tuple(self.rows[y][3 * x:3 * x + 3])

    def part(self, left, top, width, height):
        return Picture(width, height, [row[3 * left:3 * (left + width)] for row in self.rows[top:top + height]])

    def write_png(self, file):
        def chunk(kind, content):
            return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

        pixels = b"".join(b"\0" + row for row in self.rows)
        Path(file).write_bytes(b"\x89PNG\r\n\x1a\n" +
                               chunk(b"IHDR", struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)) +
                               chunk(b"IDAT", zlib.compress(pixels, 9)) + chunk(b"IEND", b""))


class Screen:
    """An X server without a monitor, which keeps its screen in a file: the test reads the pixels without any tool."""

    def __init__(self, width=800, height=600):
        self.size = f"{width}x{height}x24"

    def __enter__(self):
        """Without the pointer's picture, which would hide what lies under it."""
        self.folder = tempfile.TemporaryDirectory()
        number, told = os.pipe()  # the server looks for a free display number and tells it
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(told), "-screen", "0", self.size, "-fbdir", self.folder.name, "-nolisten", "tcp",
             "-noreset", "-nocursor"],
            pass_fds=[told], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(told)
        with os.fdopen(number) as pipe:
            answer = pipe.readline().strip()
        if not answer:
            self.__exit__()
            raise RuntimeError("Xvfb does not start")
        self.display = f":{answer}"
        return self

    def __exit__(self, *_):
        self.server.terminate()
        try:
            self.server.wait(10)
        except subprocess.TimeoutExpired:
            self.server.kill()
            self.server.wait()
        self.folder.cleanup()

    def picture(self):
        """The file is an X window dump, version 7: a head of big-endian numbers, colours, rows of pixels B, G, R, 0."""
        content = (Path(self.folder.name) / "Xvfb_screen0").read_bytes()
        head = struct.unpack_from(">25I", content)
        head_size, version, width, height, bits, stride, colors = (head[i] for i in (0, 1, 4, 5, 11, 12, 19))
        if version != 7 or bits != 32 or head[7] != 0:
            raise RuntimeError("the screen is not stored as 32-bit pixels, low byte first")
        start = head_size + 12 * colors
        rows = []
        for y in range(height):
            stored = content[start + y * stride:start + y * stride + 4 * width]
            row = bytearray(3 * width)
            row[0::3], row[1::3], row[2::3] = stored[2::4], stored[1::4], stored[0::4]
            rows.append(bytes(row))
        return Picture(width, height, rows)
