"""What a virtual display shows, as a PNG file. Needs no program but the X server, which keeps its pixels in a file."""

import os
import struct
import zlib

# X11/XWDFile.h: 25 words, big-endian, then the window's name up to `header_size`, then the colour map.
HEADER = struct.Struct(">25I")
COLOR_ENTRY_BYTES = 12
FILE_VERSION = 7
LEAST_BYTE_FIRST = 0
MASKS = (0xFF0000, 0x00FF00, 0x0000FF)
# The forms of the PNG header that are used here: eight bits a colour, red, green and blue.
PNG_SIGNATURE = b"\x89PNG\r\n\x1a\n"
PNG_RGB = (8, 2, 0, 0, 0)


class Picture:
    """Rows from the top, three bytes a pixel: red, green, blue."""

    def __init__(self, width, height, pixels):
        self.width = width
        self.height = height
        self.pixels = pixels

    def part(self, left, top, width, height):
        """The piece that begins there; what would lie outside is left out."""
        right, bottom = min(left + width, self.width), min(top + height, self.height)
        rows = (self.pixels[3 * (y * self.width + left):3 * (y * self.width + right)] for y in range(top, bottom))
        return Picture(right - left, bottom - top, b"".join(rows))

    def save(self, path):
        """Under a name beside it first: whoever sees `path` sees the whole picture."""
        os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
        making = f"{path}.making"
        with open(making, "wb") as out:
            out.write(png(self))
        os.replace(making, path)


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(picture):
    stride = 3 * picture.width
    rows = b"".join(b"\0" + picture.pixels[at:at + stride] for at in range(0, stride * picture.height, stride))
    return (PNG_SIGNATURE + _chunk(b"IHDR", struct.pack(">2I5B", picture.width, picture.height, *PNG_RGB))
            + _chunk(b"IDAT", zlib.compress(rows, 9)) + _chunk(b"IEND", b""))


def read_frame(path):
    """The Picture in an X server's frame file. ValueError where it isn't of the one form that is known here."""
    with open(path, "rb") as source:
        data = source.read()
    if len(data) < HEADER.size:
        raise ValueError(f"{path} is no picture of a display")
    (header_size, version, _, _, width, height, _, byte_order, _, _, _, bits, stride, _, *masks, _, _, colors, _, _, _,
     _, _) = HEADER.unpack_from(data)
    if (version, byte_order, bits, tuple(masks)) != (FILE_VERSION, LEAST_BYTE_FIRST, 32, MASKS):
        raise ValueError(f"{path} has pixels of another form")
    begin = header_size + colors * COLOR_ENTRY_BYTES
    if len(data) < begin + stride * height:
        raise ValueError(f"{path} ends before its last row")
    raw = b"".join(data[at:at + 4 * width] for at in range(begin, begin + stride * height, stride))
    pixels = bytearray(3 * width * height)
    for color, place in ((0, 2), (1, 1), (2, 0)):
        pixels[color::3] = raw[place::4]
    return Picture(width, height, bytes(pixels))
