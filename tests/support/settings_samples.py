"""A full set of settings, each value unlike its default, as settings_tool takes and prints it."""

PRODUCT_KEY = "HKEY_CURRENT_USER\\Software\\Ostrand Software\\Vardelwatch"

NUMBERS = {
    "AutoStart": 0,
    "AutoCapture": 1,
    "UseToolTips": 1,
    "Visualization": 0,
    "NotifyTrusted": 1,
    "MACSpoofingVisualization": 1,
    "MACSpoofingVisualizationStyle": 0,
    "SaveViewWindow": 1,
    "SaveColumnWidth": 1,
    "RAIgnoreLocalhost": 1,
    "RAIgnoreTrustedHosts": 1,
    "RAIgnoreIPCNoUsername": 1,
    "RAVisualization": 1,
    "RAVisualizationType": 1,
    "VisibleColumns": 11111,
    "DeleteARPCache": 1,
    "GreyedOutOldEntries": 1,
    "UseWMI": 1,
    "UpdateCheck": 1,
    "LastUpdateTime": 1234605616436508552,
    "ShareSearch": 1,
    "ShareVisualization": 1,
    "ShareUseToolTips": 1,
    "OtherAppDistrusted": 1,
    "OtherAppUnknown": 0,
    "ViewFilterOptions": 5,
    "ReportOptions": 4000000000,
    "ReportInterval": 15,
    "WatchInterval": 4294967295,
    "WatchConfirm": 0,
    "WatchVisualization": 0,
    "UsingEventLog": 1,
    "EventLogSave": 1,
    "MaxEventLogFileSize": -2147483648,
    "Syslog": 1,
    "SyslogMaxEntries": 100,
    "SyslogNotification": 1,
    "SyslogNotificationLevel": 8,
    "SyslogNotificationType": 1,
    "SyslogNotificationFacility": -1,
    "ViewGrayTime": 30,
    "ViewOfflineRed": 1,
    "ViewHideSecure": 1,
    "MACListVersion": 17,
}

TEXTS = {
    "SyslogNotificationWords": "error,\tfailed,\"quoted\"",
    "Interface": "\\Device\\NPF_{12345678-9ABC-DEF0-1234-56789ABCDEF0}",
    "Language": "English",
    "TrustedApp": "C:\\Program Files\\Trusted [1]\\tool.exe",
    "TrustedAppParams": "-ip \"%VDLW_IP%\" ; not a comment",
    "OtherApp": "C:\\other.exe",
    "OtherAppParams": "x" * 299,
    "ReportTemplate": "C:\\templates\\plain.vdlt",
    "ReportPath": "C:\\reports\\",
}

RECTANGLE = [-1200, 20, 640, 480]


def field(text, size):
    """A text in a field of a record, NUL-terminated and filled."""
    data = text if isinstance(text, bytes) else text.encode("ascii")
    assert len(data) < size
    return data.ljust(size, b"\0")


def plugin(name, active=1, present=1):
    return field(name, 50) + bytes((active, present))


def application(name):
    return field(name, 260) + field(f"C:\\apps\\{name}.exe", 260) + field("%VDLW_IP% \"%VDLW_NAME%\"", 1040)


def listed_host(ip, name, mac="00:11:22:aa:bb:cc"):
    return field(name, 260) + field(mac, 260) + field(ip, 260) + field("23:59:58", 50)


def watched_host(ip, online):
    return field("watched", 50) + field(ip, 20) + bytes((online,))


def account(label):
    # Every byte but NUL may stand in an enciphered password.
    return field("administrator", 50) + field(bytes(range(157, 256)), 100) + field(label, 50)


RECORDS = {
    "Plugins": [plugin("9e107d9d372bb6826bd81d3542a419d6"), plugin("e4d909c290d0fb1ca068ffaddf22cbd0", present=0)],
    "Applications": [application("zeta"), application("alpha"), application("zeta")],
    "TrustedHosts": [listed_host(f"10.0.0.{number}", f"trusted{number}") for number in range(1, 13)],
    "DistrustedHosts": [listed_host("10.0.0.1", "also trusted"), listed_host("192.168.100.200", "n\xe4me".encode("latin-1"))],
    "WatchedHosts": [watched_host("10.0.0.1", 1), watched_host("10.0.0.2", 0)],
    "AdminAccounts": [account("office"), account("home")],
}


def description(numbers=None, texts=None, rectangle=None, records=None):
    """What `settings_tool write` takes."""
    lines = [f"{name} {value}" for name, value in (numbers or {}).items()]
    lines += [f"{name} {value}" for name, value in (texts or {}).items()]
    if rectangle:
        lines.append("SavedViewWindowDimension " + " ".join(map(str, rectangle)))
    lines += [f"{name} {record.hex()}" for name, some in (records or {}).items() for record in some]
    return "".join(line + "\n" for line in lines)


def expected(numbers, texts, rectangle, records):
    """What `settings_tool read` prints for it, as a dictionary."""
    ordered = ("Applications", "AdminAccounts")
    lists = {
        name: [record.hex() for record in some] if name in ordered else sorted(record.hex() for record in some)
        for name, some in records.items()
    }
    return {**numbers, **texts, "SavedViewWindowDimension": rectangle, **lists}
