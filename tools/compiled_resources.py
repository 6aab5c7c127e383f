"""Reads compiled Windows resources (.res files): texts, dialog templates and menus, by number.

What the resource compiler made is read, not its source, so that nothing which the compiler understands in another way
goes unseen. Formats: RESOURCEHEADER, DLGTEMPLATEEX, MENUITEMTEMPLATE as the Windows SDK documents them.
"""

import dataclasses
import os
import struct
import subprocess
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
COMPILER = "x86_64-w64-mingw32-windres"

RT_MENU, RT_DIALOG, RT_STRING, RT_GROUP_ICON = 4, 5, 6, 14
CLASSES = {0x80: "Button", 0x81: "Edit", 0x82: "Static", 0x83: "ListBox", 0x84: "ScrollBar", 0x85: "ComboBox"}
WS_VISIBLE, WS_DISABLED, WS_GROUP, WS_TABSTOP = 0x10000000, 0x08000000, 0x20000, 0x10000
MF_POPUP, MF_END = 0x10, 0x80


@dataclasses.dataclass(frozen=True)
class Control:
    id: int
    kind: str
    style: int
    extended: int
    x: int
    y: int
    width: int
    height: int
    text: str

    def is_visible(self):
        return bool(self.style & WS_VISIBLE)


@dataclasses.dataclass(frozen=True)
class Dialog:
    style: int
    extended: int
    width: int
    height: int
    title: str
    font: tuple
    controls: tuple


@dataclasses.dataclass(frozen=True)
class MenuItem:
    """A popup has children, a separator neither children nor an id."""
    id: int
    text: str
    children: tuple = ()

    def is_separator(self):
        return not self.children and not self.id


@dataclasses.dataclass
class Resources:
    texts: dict
    dialogs: dict
    menus: dict
    icons: set


class Reader:
    def __init__(self, data, at=0):
        self.data = data
        self.at = at

    def take(self, form):
        values = struct.unpack_from("<" + form, self.data, self.at)
        self.at += struct.calcsize("<" + form)
        return values if len(values) > 1 else values[0]

    def align(self):
        self.at = (self.at + 3) // 4 * 4

    def text(self):
        end = self.at
        while self.data[end:end + 2] != b"\0\0":
            end += 2
        text = self.data[self.at:end].decode("utf-16-le")
        self.at = end + 2
        return text

    def number_or_text(self):
        if self.data[self.at:self.at + 2] == b"\xff\xff":
            return self.take("HH")[1]
        return self.text()


def read_dialog(data):
    reader = Reader(data)
    version, signature, _, extended, style, count, _, _, width, height = reader.take("HHIIIHhhhh")
    if (version, signature) != (1, 0xFFFF):
        raise ValueError("a dialog template of the old form")
    reader.number_or_text()  # menu
    reader.number_or_text()  # class
    title = reader.text()
    size, weight, _, _ = reader.take("HHBB")
    font = (size, weight, reader.text())
    controls = []
    for _ in range(count):
        reader.align()
        _, control_extended, control_style, x, y, control_width, control_height, number = reader.take("IIIhhhhi")
        kind = reader.number_or_text()
        text = reader.number_or_text()
        creation_data = reader.take("H")
        reader.at += creation_data
        controls.append(Control(number, CLASSES.get(kind, kind), control_style, control_extended, x, y, control_width,
                                control_height, text))
    return Dialog(style, extended, width, height, title, font, tuple(controls))


def read_menu_items(reader):
    items = []
    while True:
        flags = reader.take("H")
        if flags & MF_POPUP:
            text = reader.text()
            items.append(MenuItem(0, text, read_menu_items(reader)))
        else:
            number = reader.take("H")
            items.append(MenuItem(number, reader.text()))
        if flags & MF_END:
            return tuple(items)


def read_menu(data):
    reader = Reader(data)
    version, skipped = reader.take("HH")
    if version != 0:
        raise ValueError("a menu of the extended form")
    reader.at += skipped
    return read_menu_items(reader)


def read_texts(data, block):
    """A block holds 16 texts; one without a length isn't there."""
    reader = Reader(data)
    for at in range(16):
        length = reader.take("H")
        if length:
            text = data[reader.at:reader.at + length * 2].decode("utf-16-le")
            reader.at += length * 2
            yield (block - 1) * 16 + at, text


def read(data):
    resources = Resources({}, {}, {}, set())
    at = 0
    while at + 8 <= len(data):
        size, header = struct.unpack_from("<II", data, at)
        reader = Reader(data, at + 8)
        kind, name = reader.number_or_text(), reader.number_or_text()
        body = data[at + header:at + header + size]
        if kind == RT_DIALOG:
            resources.dialogs[name] = read_dialog(body)
        elif kind == RT_MENU:
            resources.menus[name] = read_menu(body)
        elif kind == RT_STRING:
            resources.texts.update(read_texts(body, name))
        elif kind == RT_GROUP_ICON:
            resources.icons.add(name)
        at = (at + header + size + 3) // 4 * 4
    return resources


def compiled(sources, root=ROOT):
    """What the resource files hold together. `root` is where their includes begin."""
    whole = Resources({}, {}, {}, set())
    for source in sources:
        with tempfile.TemporaryDirectory(prefix="vardelwatch-resources-") as folder:
            made = os.path.join(folder, "made.res")
            subprocess.run([COMPILER, "-I", root, "-J", "rc", "-O", "res", "-i", source, "-o", made], check=True,
                           cwd=root, capture_output=True, text=True)
            with open(made, "rb") as opened:
                part = read(opened.read())
        whole.texts.update(part.texts)
        whole.dialogs.update(part.dialogs)
        whole.menus.update(part.menus)
        whole.icons.update(part.icons)
    return whole


def of_module(path):
    """What a built program or module holds."""
    with tempfile.TemporaryDirectory(prefix="vardelwatch-resources-") as folder:
        made = os.path.join(folder, "made.res")
        subprocess.run([COMPILER, "-J", "coff", "-O", "res", "-i", path, "-o", made], check=True, capture_output=True)
        with open(made, "rb") as opened:
            return read(opened.read())
