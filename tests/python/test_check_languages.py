"""The check of the language modules: it holds for ours, and sees what would break one."""

import glob
import os
import re
import shutil
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tools"))

import check_languages
import compiled_resources
import dialog_font


class OurLanguagesTest(unittest.TestCase):
    def test_all_rules_hold(self):
        found = check_languages.problems()
        self.assertEqual({rule: places for rule, places in found.items() if places}, {})
        self.assertEqual({rule.split(":")[0] for rule in found}, {"english", "french", "german", "spanish"})

    def test_a_built_module_holds_what_its_sources_say(self):
        built = [path for preset in ("windows-x64", "windows-x86")
                 for path in glob.glob(os.path.join(ROOT, "build", preset, "app", "Language", "*.lang"))]
        for path in built:
            name = os.path.basename(path)[:-len(".lang")]
            with self.subTest(path):
                self.assertEqual(compiled_resources.of_module(path),
                                 compiled_resources.compiled(check_languages.modules()[name]))


class BrokenLanguageTest(unittest.TestCase):
    """Each test breaks one thing in a copy of the sources."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = folder.name
        for part in ("resources", "languages"):
            shutil.copytree(os.path.join(ROOT, part), os.path.join(self.root, part))

    def change(self, name, pattern, replacement):
        path = os.path.join(self.root, name)
        with open(path, encoding="utf-8") as source:
            text = source.read()
        changed, count = re.subn(pattern, replacement, text, count=1, flags=re.MULTILINE)
        self.assertEqual(count, 1, pattern)
        with open(path, "w", encoding="utf-8") as source:
            source.write(changed)

    def own_templates(self, file):
        """German gets templates of its own, as a translator may make them."""
        shutil.copy(os.path.join(self.root, "resources", file), os.path.join(self.root, "languages", "german", file))
        self.change("languages/german/german.rc", f"resources/{file}", f"languages/german/{file}")
        return f"languages/german/{file}"

    def assert_found(self, *expected):
        found = {rule: places for rule, places in check_languages.problems(self.root).items() if places}
        self.assertEqual(set(found), {rule for rule, _ in expected}, found)
        for rule, place in expected:
            self.assertTrue(any(place in told for told in found[rule]), found[rule])

    def test_nothing_is_found_in_an_unchanged_copy(self):
        self.assert_found()

    def test_a_missing_text(self):
        self.change("languages/german/strings.rc", r"^ *IDS_ALERT_NEW_HOSTS .*\n", "")
        self.assert_found(("german: each number is there", "text 76 is missing"))

    def test_a_text_too_many(self):
        self.change("languages/french/strings.rc", "^END", '    999 "de trop"\nEND')
        self.assert_found(("french: each number is there", "text 999 is not in English"))

    def test_a_changed_placeholder(self):
        self.change("languages/german/strings.rc", "%s - %d Host", "%d - %s Host")
        self.assert_found(("german: the same placeholders", "text 75"))

    def test_a_missing_numbered_placeholder(self):
        self.change("languages/spanish/strings.rc", r"%2 - %3", "%2")
        self.assert_found(("spanish: the same placeholders", "text 214"))

    def test_a_missing_line_end(self):
        self.change("languages/french/strings.rc", r"\]\\n\\t%4", "] %4")
        self.assert_found(("french: the same placeholders", "text 214"))

    def test_missing_blanks_around_a_text(self):
        self.change("languages/french/strings.rc", '" connecté à "', '"connecté à "')
        self.assert_found(("french: the same placeholders", "text 79"))

    def test_a_changed_placeholder_of_a_control(self):
        self.change("languages/german/DialogTexts.h", "Version %s", "Version")
        self.assert_found(("german: the same placeholders", "dialog 136, control 1074"))

    def test_a_missing_control(self):
        file = self.own_templates("dialogs_hosts.rc")
        self.change(file, r"^ *PUSHBUTTON TX_WATCHED_SETTINGS.*\n", "")
        self.assert_found(("german: the same controls", "[1144]"))

    def test_a_control_of_another_style(self):
        file = self.own_templates("dialogs_hosts.rc")
        self.change(file, "ES_AUTOHSCROLL . ES_NUMBER", "ES_AUTOHSCROLL")
        self.assert_found(("german: the same controls", "dialog 159, control 1138"))

    def test_a_missing_template(self):
        self.change("languages/german/german.rc", '^#include "resources/dialogs_pages.rc"\n', "")
        self.assert_found(("german: each number is there", "dialog 165 is missing"))

    def test_an_empty_control(self):
        self.change("languages/spanish/DialogTexts.h", 'TX_WATCH_SECONDS ".*"', 'TX_WATCH_SECONDS ""')
        self.assert_found(("spanish: the same controls", "dialog 159"))

    def test_a_missing_menu_entry(self):
        file = self.own_templates("menus.rc")
        self.change(file, r"^ *MENUITEM TX_MENU_ABOUT.*\n", "")
        self.assert_found(("german: the same menu", "other entries"))

    def test_a_missing_flag(self):
        self.change("languages/french/french.rc", "^IDI_FLAG ICON.*\n", "")
        self.assert_found(("french: each number is there", "the flag"))

    def test_a_letter_beyond_the_code_page(self):
        self.change("languages/french/DialogTexts.h", 'TX_TRUSTED_LIST ".*"', 'TX_TRUSTED_LIST "H\u014dtes"')
        self.assert_found(("french: texts keep within their bounds", "dialog 137, control -1"))

    def test_a_text_beyond_its_buffer(self):
        self.change("languages/german/strings.rc", "Keine Updates verfügbar!", "x" * 255)
        self.assert_found(("german: texts keep within their bounds", "text 217"))

    def test_a_key_that_stands_twice(self):
        self.change("languages/german/DialogTexts.h", "&Kennwort:|Ke&nnwort:", "&Kennwort:")
        self.assert_found(("german: no key stands twice", "dialog 148"))

    def test_a_page_with_a_key_of_the_dialogs_buttons(self):
        self.change("resources/DialogTexts_en.h", "Hos&tname", "&Hostname")
        self.assert_found(("english: no key stands twice", "dialog 138"))

    def test_a_key_that_stands_twice_in_a_menu(self):
        self.change("languages/french/DialogTexts.h", 'TX_MENU_EXIT ".*"', 'TX_MENU_EXIT "Quitter &Démarrer"')
        self.change("languages/french/DialogTexts.h", 'TX_MENU_START ".*"', 'TX_MENU_START "&Démarrer"')
        self.assert_found(("french: no key stands twice", "menu 111, TrayMenu"))

    def test_a_control_without_a_key(self):
        self.change("languages/spanish/DialogTexts.h", 'TX_EXPORT_SETTINGS ".*"', 'TX_EXPORT_SETTINGS "Exportar"')
        self.assert_found(("spanish: no key stands twice", "no key for 'Exportar'"))

    def assert_keyboard(self, place):
        self.assert_found(*[(f"{name}: the keyboard reaches each control", place)
                            for name in ("english", "french", "german", "spanish")])

    def test_a_control_that_tab_does_not_reach(self):
        self.change("resources/dialogs_hosts.rc", r"(IDC_HOST_ENTRY_IP, .*)WS_TABSTOP", r"\g<1>0")
        self.assert_keyboard("dialog 144: tab does not reach 1061")

    def test_a_control_out_of_its_order(self):
        self.change("resources/dialogs_hosts.rc", r"^(.*IDC_TRUSTED_ADD.*\n)(.*IDC_TRUSTED_EDIT.*\n)", r"\2\1")
        self.assert_keyboard("dialog 137: tab leads back")

    def test_radio_buttons_that_lead_to_another_control(self):
        self.change("resources/dialogs_settings.rc", r"(IDC_NOTIFY_TRUSTED, .*)WS_GROUP \| ", r"\g<1>")
        self.assert_keyboard("dialog 118: arrow keys lead from radio buttons to")

    def test_two_default_buttons(self):
        self.change("resources/dialogs_hosts.rc", " PUSHBUTTON TX_CANCEL, IDCANCEL, 149, 49",
                    " DEFPUSHBUTTON TX_CANCEL, IDCANCEL, 149, 49")
        self.assert_keyboard("dialog 144: Enter means [1, 2]")

    def test_a_text_too_wide_for_its_control(self):
        self.change("languages/german/DialogTexts.h", 'TX_SETTINGS_HELP ".*"', 'TX_SETTINGS_HELP "&Hilfe und Anleitung"')
        self.assert_found(("german: texts fit their controls", "dialog 117, control 1016"))

    def test_a_text_with_too_many_lines(self):
        self.change("languages/spanish/DialogTexts.h", 'TX_SYSLOG_BY_WORDS "(.*)"',
                    r'TX_SYSLOG_BY_WORDS "\1 una lista muy larga de palabras que no termina y sigue y sigue hasta el final de la línea"')
        self.assert_found(("spanish: texts fit their controls", "dialog 165, control 1175"))

    def test_a_page_title_too_wide_for_the_tree(self):
        self.change("languages/german/strings.rc", '"Ereignisprotokoll"', '"Ereignisprotokoll und seine Datei"')
        self.assert_found(("german: texts fit their controls", "text 45"))

    def test_controls_that_overlap(self):
        self.change("resources/dialogs_hosts.rc", "IDC_TRUSTED_EDIT, 95,", "IDC_TRUSTED_EDIT, 90,")
        self.assert_found(*[(f"{name}: controls leave each other room", "overlap")
                            for name in ("english", "french", "german", "spanish")])

    def test_a_control_that_leaves_its_dialog(self):
        self.change("resources/dialogs_hosts.rc", "TX_CANCEL, IDCANCEL, 149, 49,", "TX_CANCEL, IDCANCEL, 149, 59,")
        self.assert_found(*[(f"{name}: controls leave each other room", "leaves the dialog")
                            for name in ("english", "french", "german", "spanish")])


class DialogFontTest(unittest.TestCase):
    def test_a_dialog_unit_is_a_quarter_of_the_letters_mean_width(self):
        self.assertEqual([dialog_font.horizontal_pixels(4, scale) for scale in (100, 150, 200)], [6, 9, 12])

    def test_widths_are_those_of_whole_pixels(self):
        self.assertEqual(dialog_font.width("iii", 100), 3 * dialog_font.width("i", 100))
        self.assertLess(dialog_font.width("i", 100), dialog_font.width("W", 100))

    def test_lines_break_at_blanks(self):
        self.assertEqual(dialog_font.wrapped("one two three", dialog_font.width("one two", 100), 100),
                         ["one two", "three"])
        self.assertEqual(dialog_font.wrapped("one\ntwo", 1000, 100), ["one", "two"])


if __name__ == "__main__":
    unittest.main()
