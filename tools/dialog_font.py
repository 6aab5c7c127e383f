"""Widths of texts in the dialogs' font, as the system measures them.

The advance widths of Tahoma, which stands behind "MS Shell Dlg", for the characters of Windows-1252 from the blank on, in
units of which 2048 make the font's size. The system rounds each to whole pixels, so a text is measured at the size that
the font has at a scale.
"""

UNITS_PER_SIZE = 2048
ADVANCES = """
639 680 821 1491 1118 2001 1380 432 784 784 1118 1491 621 743 621 782 1118 1118 1118 1118 1118 1118 1118 1118
1118 1118 725 725 1491 1491 1491 971 1862 1229 1206 1231 1389 1149 1067 1366 1382 764 854 1204 1020 1579 1366
1450 1128 1450 1272 1141 1196 1343 1223 1847 1190 1180 1145 784 782 784 1491 1118 1118 1075 1133 944 1133 1077
651 1133 1143 469 578 1020 469 1720 1143 1112 1133 1133 737 913 684 1143 1020 1520 1014 1020 909 983 782 983
1491 1000 1118 0 432 1118 813 1673 1118 1118 1118 2849 1141 784 2001 0 1145 0 0 432 432 821 821 932 1118 1862
1118 1794 913 784 1862 0 909 1180 639 680 1118 1118 1118 1118 782 1118 1118 1903 1010 1174 1491 744 1903 1118
965 1491 1010 1010 1118 1163 1118 621 1118 1010 1010 1174 2048 2048 2048 971 1229 1229 1229 1229 1229 1229
1870 1231 1149 1149 1149 1149 764 764 764 764 1430 1366 1450 1450 1450 1450 1450 1491 1450 1343 1343 1343 1343
1180 1157 1122 1075 1075 1075 1075 1075 1075 1802 944 1077 1077 1077 1077 469 469 469 469 1118 1143 1112 1112
1112 1112 1112 1491 1112 1143 1143 1143 1143 1020 1133 1020
""".split()

# Pixels of the 8 point font at 100, 150 and 200 %.
SIZES = {100: 11, 150: 16, 200: 21}
LETTERS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"


def width(text, scale):
    """Pixels. What is not in Windows-1252 is drawn, and measured, as a question mark."""
    size = SIZES[scale]
    return sum(round(int(ADVANCES[byte - 0x20]) * size / UNITS_PER_SIZE) for byte in text.encode("cp1252", "replace"))


def horizontal_pixels(units, scale):
    """Pixels of horizontal dialog units: four of them are the letters' mean width."""
    mean = (width(LETTERS, scale) // 26 + 1) // 2
    return units * mean // 4


def lines_in(units):
    """How many lines of text go into so many vertical dialog units: eight of them are the font's height."""
    return max(1, units // 8)


def wrapped(text, pixels, scale):
    """The lines into which a text is broken at its blanks to keep within so many pixels."""
    lines = []
    for paragraph in text.split("\n"):
        line = ""
        for word in paragraph.split(" "):
            longer = f"{line} {word}" if line else word
            if line and width(longer, scale) > pixels:
                lines.append(line)
                longer = word
            line = longer
        lines.append(line)
    return lines
