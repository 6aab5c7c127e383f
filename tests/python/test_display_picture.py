"""Pictures of a display: what the X server's frame file says, and that the PNG says the same."""

import os
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))

import display_picture
import wine_prefix

NAME = b"a display\0\0\0"
RED, GREEN, BLUE = b"\xff\0\0", b"\0\xff\0", b"\0\0\xff"


def frame_file(rows, spare_bytes=0, **changed):
    """An XWD file of these rows of (red, green, blue) pixels, each row followed by `spare_bytes`."""
    fields = {"header_size": 100 + len(NAME), "version": 7, "format": 2, "depth": 24, "width": len(rows[0]),
              "height": len(rows), "xoffset": 0, "byte_order": 0, "bitmap_unit": 32, "bit_order": 0, "pad": 32,
              "bits": 32, "stride": 4 * len(rows[0]) + spare_bytes, "visual": 4, "red": 0xFF0000, "green": 0xFF00,
              "blue": 0xFF, "rgb_bits": 8, "entries": 256, "colors": 2, "window_width": 0, "window_height": 0, "x": 0,
              "y": 0, "border": 0}
    header = struct.pack(">25I", *{**fields, **changed}.values())
    pixels = b"".join(b"".join(pixel[::-1] + b"\x55" for pixel in row) + b"\xaa" * spare_bytes for row in rows)
    return header + NAME + bytes(24) + pixels


def pixels_of_png(data):
    """(width, height, pixels) of a PNG without filters, every chunk's sum checked."""
    assert data.startswith(b"\x89PNG\r\n\x1a\n")
    at, packed, size = 8, b"", None
    while at < len(data):
        length, kind = struct.unpack_from(">I4s", data, at)
        body = data[at + 8:at + 8 + length]
        assert struct.unpack_from(">I", data, at + 8 + length)[0] == zlib.crc32(kind + body)
        if kind == b"IHDR":
            size = struct.unpack_from(">2I", body)
        packed += body if kind == b"IDAT" else b""
        at += 12 + length
    rows, stride = zlib.decompress(packed), 3 * size[0] + 1
    assert not any(rows[::stride])
    return (*size, b"".join(rows[row * stride + 1:(row + 1) * stride] for row in range(size[1])))


class PictureTest(unittest.TestCase):
    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory())
        self.path = os.path.join(self.folder, "frame")

    def read(self, data):
        with open(self.path, "wb") as out:
            out.write(data)
        return display_picture.read_frame(self.path)

    def test_rows_come_from_the_top_with_red_first(self):
        picture = self.read(frame_file([[RED, GREEN], [BLUE, RED]]))
        self.assertEqual((picture.width, picture.height, picture.pixels), (2, 2, RED + GREEN + BLUE + RED))

    def test_what_stands_behind_a_row_is_left_out(self):
        self.assertEqual(self.read(frame_file([[RED], [BLUE]], spare_bytes=8)).pixels, RED + BLUE)

    def test_pixels_of_another_form_are_refused(self):
        for changed in ({"version": 6}, {"byte_order": 1}, {"bits": 16}, {"red": 0xFF, "blue": 0xFF0000}):
            with self.assertRaisesRegex(ValueError, "another form"):
                self.read(frame_file([[RED]], **changed))

    def test_a_torn_file_is_refused(self):
        whole = frame_file([[RED, GREEN], [BLUE, RED]])
        for length in (0, 99, len(whole) - 1):
            with self.assertRaises(ValueError):
                self.read(whole[:length])

    def test_a_part_ends_at_the_edge(self):
        picture = display_picture.Picture(2, 2, RED + GREEN + BLUE + RED)
        part = picture.part(1, 0, 9, 9)
        self.assertEqual((part.width, part.height, part.pixels), (1, 2, GREEN + RED))

    def test_is_saved_whole_into_a_folder_that_is_made(self):
        path = os.path.join(self.folder, "new", "picture.png")
        display_picture.Picture(2, 2, RED + GREEN + BLUE + RED).save(path)
        with open(path, "rb") as source:
            self.assertEqual(pixels_of_png(source.read()), (2, 2, RED + GREEN + BLUE + RED))
        self.assertEqual(os.listdir(os.path.dirname(path)), ["picture.png"])

    def test_a_virtual_display_shows_what_is_painted_on_it(self):
        paint = ("import ctypes; x = ctypes.CDLL('libX11.so.6'); x.XOpenDisplay.restype = ctypes.c_void_p\n"
                 "d = ctypes.c_void_p(x.XOpenDisplay(None)); root = x.XDefaultRootWindow(d)\n"
                 "x.XSetWindowBackground(d, root, ctypes.c_ulong(0xff8001)); x.XClearWindow(d, root)\n"
                 # The server paints its root afresh when the last client goes; the frame is read before that.
                 "x.XSync(d, 0); print('painted', flush=True); input()\n")
        with wine_prefix.VirtualDisplay("64x48x24") as display:
            painter = subprocess.Popen([sys.executable, "-c", paint], env={**os.environ, "DISPLAY": display.name},
                                       stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
            try:
                self.assertEqual(painter.stdout.readline(), "painted\n")
                picture = display_picture.read_frame(display.frame_file)
            finally:
                painter.communicate("\n", timeout=20)
            self.assertEqual((picture.width, picture.height), (64, 48))
            self.assertEqual(picture.part(0, 0, 4, 1).pixels, b"\xff\x80\x01" * 4)
        self.assertFalse(os.path.exists(display.frame_file))


if __name__ == "__main__":
    unittest.main()
