"""Writes frames as a libpcap savefile (link type Ethernet, microseconds, little-endian) and reads it back."""

import struct

FILE_HEADER = struct.Struct("<IHHiIII")
RECORD_HEADER = struct.Struct("<IIII")
MAGIC_MICROSECONDS = 0xA1B2C3D4
SNAP_LENGTH = 65536
LINK_TYPE_ETHERNET = 1


def write(path, frames, start):
    """`frames` as of `lan_schedule`; `start` is second 0, in seconds since 1970. Returns the count."""
    count = 0
    with open(path, "wb") as out:
        out.write(FILE_HEADER.pack(MAGIC_MICROSECONDS, 2, 4, 0, 0, SNAP_LENGTH, LINK_TYPE_ETHERNET))
        for frame in frames:
            seconds, microseconds = divmod(round((start + frame.seconds) * 1000000), 1000000)
            out.write(
                RECORD_HEADER.pack(seconds, microseconds, len(frame.data), len(frame.data)) + frame.data
            )
            count += 1
    return count


def read(path):
    """[(seconds since 1970, frame bytes)] of a savefile that `write` made."""
    with open(path, "rb") as source:
        content = source.read()
    magic, _, _, _, _, _, link_type = FILE_HEADER.unpack_from(content)
    if magic != MAGIC_MICROSECONDS or link_type != LINK_TYPE_ETHERNET:
        raise ValueError(f"{path} is no savefile of this kind")
    frames = []
    position = FILE_HEADER.size
    while position < len(content):
        seconds, microseconds, captured, _ = RECORD_HEADER.unpack_from(content, position)
        position += RECORD_HEADER.size
        frames.append((seconds + microseconds / 1000000, content[position : position + captured]))
        position += captured
    return frames
