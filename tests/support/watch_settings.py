"""Settings of a watching program that runs on its own: as files on Linux, as registry of a Wine prefix.

Values are given by name: numbers become DWORDs, texts strings. `lists` holds whole keys beside "Settings", e.g.
{"TrustedHosts": {"Host0": bytes}}.
"""

import os
import shutil

TREE = "HKEY_CURRENT_USER\\Software\\Ostrand Software\\Vardelwatch"
VIEW_COMMAND = "40006"
EXIT_COMMAND = "40004"


def _quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def _value(value):
    if isinstance(value, bytes):
        return "hex:" + ",".join(f"{byte:02x}" for byte in value)
    if isinstance(value, int):
        return f"dword:{value & 0xffffffff:08x}"
    return _quoted(value)


def registry_text(settings, lists=None):
    """A registry text file (REGEDIT4) with these values."""
    lines = ["REGEDIT4", ""]
    for key, values in {"Settings": settings, **(lists or {})}.items():
        lines += [f"[{TREE}\\{key}]"] + [f"{_quoted(name)}={_value(value)}" for name, value in values.items()] + [""]
    return "\r\n".join(lines)


def write_registry_file(path, settings, lists=None):
    with open(path, "w", encoding="latin-1", newline="") as out:
        out.write(registry_text(settings, lists))


def write_linux_folders(folder, settings, lists=None):
    """Writes the settings below `folder` and gives the environment that leads a program to them."""
    places = {"XDG_CONFIG_HOME": "config", "XDG_DATA_HOME": "data", "XDG_RUNTIME_DIR": "runtime"}
    environment = {name: os.path.join(folder, place) for name, place in places.items()}
    for path in environment.values():
        os.makedirs(path, mode=0o700, exist_ok=True)
    store = os.path.join(environment["XDG_CONFIG_HOME"], "vardelwatch")
    os.makedirs(store, exist_ok=True)
    write_registry_file(os.path.join(store, "settings.reg"), settings, lists)
    return environment


def wine_device_of_index(index):
    """The name under which Wine knows the interface of this index."""
    return f"\\Device\\NPF_{{{index:08X}-0000-0000-0000-4E6574446576}}"


def wine_device(interface):
    with open(f"/sys/class/net/{interface}/ifindex", encoding="ascii") as number:
        return wine_device_of_index(int(number.read()))


def prepare_prefix(wine, folder, packet_library, settings, lists=None):
    """Puts settings and packet.dll into a Wine prefix."""
    path = os.path.join(folder, "settings.reg")
    write_registry_file(path, settings, lists)
    wine.import_registry(path)
    shutil.copy(packet_library, os.path.join(wine.drive_c, "windows", "system32", "packet.dll"))


def do_without_display(wine):
    """For a prefix without a display: windows that nobody sees. Without this Wine refuses to make them."""
    wine.run(["reg", "add", "HKCU\\Software\\Wine\\Drivers", "/v", "Graphics", "/d", "null", "/f"])
