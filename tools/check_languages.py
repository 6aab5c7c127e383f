#!/usr/bin/python3
"""Compares each language module with the English texts, templates and menu, and looks whether its texts fit.

`problems()` gives, by rule, what breaks it; a rule with an empty list holds. Started by itself it prints them. What
the resource compiler makes of the files is compared, so it takes what `tools/install_needs windows` installs.
"""

import os
import re
import sys

import compiled_resources
import dialog_font

ROOT = compiled_resources.ROOT
ENGLISH = ("resources/strings_en.rc", "resources/windows_en.rc")
SETTINGS = 117  # its buttons stand beside every page's controls
LONGEST_TEXT = 254  # the smallest buffer into which any text is loaded
# Templates' combo boxes and the texts that they show.
COMBO_TEXTS = {(165, 1166): range(159, 168), (165, 1173): range(189, 214)}
PAGE_TITLES, TREE_SPARE = range(35, 52), 62  # lines, image and scroll bar of the tree, in pixels at 100 %
FLAG = 146

BUTTON_TYPE, GROUP_BOX, MULTILINE = 0xF, 7, 0x2000
CHECKS_AND_RADIOS = (2, 3, 4, 5, 6, 9)
STATIC_TYPE, STATIC_TEXTS, NO_PREFIX = 0x1F, (0, 1, 2), 0x80
WS_CHILD, WS_GROUP, WS_TABSTOP = 0x40000000, 0x20000, 0x10000
DEFAULT_BUTTON, RADIOS, OK = 1, (4, 9), 1
FOCUSED = ("edit", "combobox", "listbox", "syslistview32", "systreeview32", "sysipaddress32")
INPUTS = ("Edit", "ComboBox", "SYSIPADDRESS32")
# What lies beside a text in its control, in pixels at 100 %.
BESIDE_CHECK, BESIDE_PUSH_BUTTON, BESIDE_GROUP_TITLE, BESIDE_COMBO = 17, 12, 18, 24
NO_KEY_NEEDED = (1, 2)  # Enter and Escape reach them


def modules(root=ROOT):
    """The languages' folders and their resource files."""
    folder = os.path.join(root, "languages")
    return {name: (f"languages/{name}/{name}.rc",) for name in sorted(os.listdir(folder))
            if os.path.isdir(os.path.join(folder, name))}


# ---- the same as in English ----

def differing_ids(english, other):
    for kind in ("texts", "dialogs", "menus"):
        ours, theirs = getattr(english, kind), getattr(other, kind)
        yield from (f"{kind[:-1]} {number} is missing" for number in sorted(ours.keys() - theirs.keys()))
        yield from (f"{kind[:-1]} {number} is not in English" for number in sorted(theirs.keys() - ours.keys()))
    if FLAG not in other.icons:
        yield "the flag is missing"


def placeholders(text):
    """What the program replaces or looks for, in its order; numbered places in any order."""
    printf = re.findall(r"%[-+ #0]*\d*(?:\.\d+)?[sdiuxXc]|%VDLW_\w+%|\*\.\w+|\$\w+", text)
    return printf, sorted(re.findall(r"%[1-9]", text))


def differing_placeholders(english, other):
    for number in sorted(english.texts.keys() & other.texts.keys()):
        ours, theirs = english.texts[number], other.texts[number]
        if placeholders(ours) != placeholders(theirs):
            yield f"text {number}: other placeholders than {ours!r}: {theirs!r}"
        elif [ours.count(char) for char in "\n\t"] != [theirs.count(char) for char in "\n\t"]:
            yield f"text {number}: other line ends or tabs than {ours!r}: {theirs!r}"
        elif (ours[:1] == " ", ours[-1:] == " ") != (theirs[:1] == " ", theirs[-1:] == " "):
            yield f"text {number}: other blanks around it than {ours!r}: {theirs!r}"
    for place, ours, theirs in control_pairs(english, other):
        if placeholders(shown(ours)) != placeholders(shown(theirs)):
            yield f"{place}: other placeholders than {ours.text!r}: {theirs.text!r}"


def control_pairs(english, other):
    for number in sorted(english.dialogs.keys() & other.dialogs.keys()):
        for ours, theirs in zip(english.dialogs[number].controls, other.dialogs[number].controls):
            if ours.id == theirs.id:
                yield f"dialog {number}, control {ours.id}", ours, theirs


def differing_controls(english, other):
    for number in sorted(english.dialogs.keys() & other.dialogs.keys()):
        ours, theirs = english.dialogs[number], other.dialogs[number]
        if [c.id for c in ours.controls] != [c.id for c in theirs.controls]:
            yield (f"dialog {number}: missing or additional controls, or another order: "
                   f"{sorted({c.id for c in ours.controls} ^ {c.id for c in theirs.controls})}")
        if (ours.style, ours.extended, ours.font, bool(ours.title)) != (theirs.style, theirs.extended, theirs.font,
                                                                       bool(theirs.title)):
            yield f"dialog {number}: another frame"
    for place, ours, theirs in control_pairs(english, other):
        if (ours.kind, ours.style, ours.extended) != (theirs.kind, theirs.style, theirs.extended):
            yield f"{place}: another kind or style"
        if bool(ours.text) != bool(theirs.text):
            yield f"{place}: {theirs.text!r} for {ours.text!r}"


def differing_menus(english, other):
    def compare(place, ours, theirs):
        if [item.id for item in ours] != [item.id for item in theirs]:
            yield f"{place}: other entries"
            return
        for own, foreign in zip(ours, theirs):
            if bool(own.text) != bool(foreign.text) or bool(own.children) != bool(foreign.children):
                yield f"{place}: {foreign.text!r} for {own.text!r}"
            yield from compare(f"{place}, {own.text}", own.children, foreign.children)

    for number in sorted(english.menus.keys() & other.menus.keys()):
        yield from compare(f"menu {number}", english.menus[number], other.menus[number])


# ---- what holds for each language ----

def texts_out_of_bounds(resources):
    """The program's texts are of 8 bits, and their buffers have an end."""
    texts = [(f"text {number}", text) for number, text in sorted(resources.texts.items())]
    for number, dialog in sorted(resources.dialogs.items()):
        texts += [(f"dialog {number}", dialog.title)] + [(f"dialog {number}, control {c.id}", c.text)
                                                         for c in dialog.controls]
    for place, text in texts:
        try:
            if len(text.encode("cp1252")) > LONGEST_TEXT:
                yield f"{place}: longer than {LONGEST_TEXT} bytes"
        except UnicodeEncodeError:
            yield f"{place}: a character that is not in Windows-1252: {text!r}"


def key_of(text):
    found = re.search(r"&([^&])", text.replace("&&", ""))
    return found.group(1).lower() if found else ""


def keyed_controls(dialog):
    """The controls that take a key: what can be pressed, and the labels before inputs."""
    for at, control in enumerate(dialog.controls):
        if not control.is_visible():
            continue
        follower = dialog.controls[at + 1].kind if at + 1 < len(dialog.controls) else ""
        is_button = control.kind == "Button" and control.style & BUTTON_TYPE != GROUP_BOX
        is_label = control.kind == "Static" and control.text and follower in INPUTS
        if is_button or is_label:
            yield control


def clashing_keys(resources):
    frame = [c for c in keyed_controls(resources.dialogs[SETTINGS])] if SETTINGS in resources.dialogs else []
    for number, dialog in sorted(resources.dialogs.items()):
        controls = list(keyed_controls(dialog)) + (frame if dialog.style & WS_CHILD else [])
        yield from twice(f"dialog {number}", [c.text for c in controls])
        for control in keyed_controls(dialog):
            has_letters = any(char.isalpha() for char in control.text)
            if has_letters and control.id not in NO_KEY_NEEDED and not key_of(control.text):
                yield f"dialog {number}: no key for {control.text!r}"
    for number, menu in sorted(resources.menus.items()):
        for popup in menu:
            yield from clashing_menu_keys(f"menu {number}, {popup.text}", popup.children)


def clashing_menu_keys(place, items):
    yield from twice(place, [item.text for item in items])
    for item in items:
        if len(items) > 1 and not item.is_separator() and not key_of(item.text):
            yield f"{place}: no key for {item.text!r}"
        if item.children:
            yield from clashing_menu_keys(f"{place}, {item.text}", item.children)


def is_input(control):
    """Takes the focus."""
    is_button = control.kind == "Button" and control.style & BUTTON_TYPE != GROUP_BOX
    return is_button or control.kind.lower() in FOCUSED


def is_radio(control):
    return control.kind == "Button" and control.style & BUTTON_TYPE in RADIOS


def keyboard_gaps(resources):
    """Tab must reach all inputs as they are read, arrow keys must stay among the radio buttons of a question, and
    Enter must mean one button."""
    for number, dialog in sorted(resources.dialogs.items()):
        yield from (f"dialog {number}: {told}" for told in unreachable(dialog) + turning_back(dialog))
        defaults = [c.id for c in dialog.controls if c.kind == "Button" and c.style & BUTTON_TYPE == DEFAULT_BUTTON]
        has_ok = any(c.id == OK for c in dialog.controls)
        if len(defaults) > 1 or dialog.style & WS_CHILD and defaults or has_ok and defaults != [OK]:
            yield f"dialog {number}: Enter means {defaults}"


def unreachable(dialog):
    found, radio_before = [], False
    for control in dialog.controls:
        if control.style & WS_GROUP:
            radio_before = False
        if not is_input(control):
            continue
        if radio_before and not is_radio(control):
            found.append(f"arrow keys lead from radio buttons to {control.id} {control.text!r}")
        if not control.style & WS_TABSTOP and not radio_before:
            found.append(f"tab does not reach {control.id} {control.text!r}")
        radio_before = is_radio(control)
    return found


def turning_back(dialog):
    """A control that stands before the one from which tab leads to it, unless a column begins there."""
    found, inputs = [], [control for control in dialog.controls if is_input(control)]
    for one, two in zip(inputs, inputs[1:]):
        is_above, is_right = two.y + height(two) <= one.y, two.x >= one.x + one.width
        same_row = two.y < one.y + height(one) and one.y < two.y + height(two)
        if is_above and not is_right or same_row and two.x < one.x:
            found.append(f"tab leads back from {one.id} {one.text!r} to {two.id} {two.text!r}")
    return found


def twice(place, texts):
    seen = {}
    for text in texts:
        key = key_of(text)
        if key and key in seen:
            yield f"{place}: {seen[key]!r} and {text!r} have the same key"
        seen.setdefault(key, text)


# ---- layout ----

def shown(control):
    """The text as it is drawn."""
    if control.kind == "Static" and control.style & NO_PREFIX:
        return control.text
    return control.text.replace("&&", "\0").replace("&", "").replace("\0", "&")


def room(control, scale):
    """Pixels for the text in one line of the control; None where it holds no text of its own."""
    pixels = dialog_font.horizontal_pixels(control.width, scale)
    if control.kind == "Static":
        return pixels if control.style & STATIC_TYPE in STATIC_TEXTS else None
    if control.kind != "Button":
        return None
    kind = control.style & BUTTON_TYPE
    beside = (BESIDE_CHECK if kind in CHECKS_AND_RADIOS else BESIDE_GROUP_TITLE if kind == GROUP_BOX
              else BESIDE_PUSH_BUTTON)
    return pixels - beside * scale // 100


def has_several_lines(control):
    return bool(control.kind == "Static" or control.style & MULTILINE)


def texts_that_do_not_fit(resources):
    for number, dialog in sorted(resources.dialogs.items()):
        for control in dialog.controls:
            yield from (f"dialog {number}, control {control.id}, {scale} %: no room for {control.text!r}"
                        for scale in dialog_font.SIZES if control.is_visible() and not fits(control, scale))
    for (dialog, number), texts in COMBO_TEXTS.items():
        for control in resources.dialogs[dialog].controls if dialog in resources.dialogs else ():
            if control.id == number:
                yield from too_wide(resources, texts, control.width, BESIDE_COMBO)
    for control in resources.dialogs[SETTINGS].controls if SETTINGS in resources.dialogs else ():
        if control.kind.lower() == "systreeview32":
            yield from too_wide(resources, PAGE_TITLES, control.width, TREE_SPARE)


def fits(control, scale):
    pixels = room(control, scale)
    if pixels is None:
        return True
    lines = dialog_font.wrapped(shown(control), pixels, scale)
    most = dialog_font.lines_in(control.height) if has_several_lines(control) else 1
    return len(lines) <= most and all(dialog_font.width(line, scale) <= pixels for line in lines)


def too_wide(resources, numbers, units, beside):
    for number in numbers:
        text = resources.texts.get(number, "")
        for scale in dialog_font.SIZES:
            if dialog_font.width(text, scale) > dialog_font.horizontal_pixels(units, scale) - beside * scale // 100:
                yield f"text {number}, {scale} %: no room for {text!r}"


def is_frame(control):
    """Stands around or beneath others on purpose."""
    return not control.is_visible() or control.kind == "Button" and control.style & BUTTON_TYPE == GROUP_BOX


def height(control):
    """A combo box tells its list's height; shut it is as high as an edit field."""
    return 14 if control.kind == "ComboBox" else control.height


def controls_in_the_way(resources):
    for number, dialog in sorted(resources.dialogs.items()):
        for at, one in enumerate(dialog.controls):
            if one.x < 0 or one.y < 0 or one.x + one.width > dialog.width or one.y + height(one) > dialog.height:
                yield f"dialog {number}: control {one.id} {one.text!r} leaves the dialog"
            for two in dialog.controls[at + 1:]:
                if not is_frame(one) and not is_frame(two) and overlap(one, two):
                    yield f"dialog {number}: {one.id} {one.text!r} and {two.id} {two.text!r} overlap"


def overlap(one, two):
    return (one.x < two.x + two.width and two.x < one.x + one.width and one.y < two.y + height(two)
            and two.y < one.y + height(one))


COMPARISONS = {
    "each number is there": differing_ids,
    "the same placeholders": differing_placeholders,
    "the same controls": differing_controls,
    "the same menu": differing_menus,
}
RULES = {
    "texts keep within their bounds": texts_out_of_bounds,
    "no key stands twice": clashing_keys,
    "the keyboard reaches each control": keyboard_gaps,
    "texts fit their controls": texts_that_do_not_fit,
    "controls leave each other room": controls_in_the_way,
}


def problems(root=ROOT):
    english = compiled_resources.compiled(ENGLISH, root)
    found = {}
    for rule, check in RULES.items():
        found[f"english: {rule}"] = list(check(english))
    for name, sources in modules(root).items():
        module = compiled_resources.compiled(sources, root)
        for rule, compare in COMPARISONS.items():
            found[f"{name}: {rule}"] = list(compare(english, module))
        for rule, check in RULES.items():
            found[f"{name}: {rule}"] = list(check(module))
    return found


def main():
    found = problems()
    for rule, places in found.items():
        print(f"{'FAILED' if places else 'ok':6} {rule}")
        for place in places:
            print(f"       {place}")
    return 1 if any(found.values()) else 0


if __name__ == "__main__":
    sys.exit(main())
