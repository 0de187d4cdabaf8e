"""The settings tool from outside: real folders, and files read and written here byte by byte after the layout that
the suite's programs share (little-endian, variant type first, strings in Windows-1252).

    python3 quillon_test.py PATH_TO_QUILLON [unittest arguments]
"""

import os
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

QUILLON = None

DEFAULTS = """\
Datenbank={ordner}/tvdaten.mdb
Hyperlinks={ordner}/Hyperlinks/
Autostart=nein
LiveUpdate=nein
LiveUpdateModus=2
Zeitplan=1111111 06:00
LiveUpdateStunden=24
LetztesUpdate=30.12.1899 00:00:00
LiveUpdateVersteckt=ja
LinkParameter=
Doppelklick=0
Erinnerung=ja
Vorlauf=5
Nachlauf=10
Skript=
TVOrdner=
Aufzeichnungsordner=
Debuganzeige=nein
Benutzer=
Klang={ordner}/wendel.wav
Tagestipp=ja
Loeschtage=7
Verpasste=ja
UpdateNachholen=nein
Wachhalten=ja
Wecken=nein
XmltvQuelle=
XmltvBefehl=
Wiederholungen=10
"""


def text(value):
    data = value.encode("cp1252")
    return struct.pack("<HH", 8, len(data)) + data


def array(elements, lower=0):
    """The bytes of a settings array of these serialised elements."""
    return struct.pack("<HHii", 0x200C, 1, len(elements), lower) + b"".join(elements)


EMPTY = struct.pack("<H", 0)


def date(days):
    return struct.pack("<Hd", 7, days)


def integer(value):
    return struct.pack("<Hh", 2, value)


def yes(value):
    return struct.pack("<Hh", 11, -1 if value else 0)


def table(columns, rows=4, lower=1):
    head = struct.pack("<HHiiii", 0x200C, 2, rows, lower, len(columns), lower)
    return head + b"".join(b"".join(column) for column in columns)


class Tool(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.ordner = Path(temporary.name)
        self.cfg = self.ordner / "fennow.cfg"

    def run_tool(self, *arguments, code=0, ordner=True, **options):
        command = [QUILLON] + (["--ordner", str(self.ordner)] if ordner else []) + list(arguments)
        result = subprocess.run(command, capture_output=True, timeout=20, check=False, **options)
        self.assertEqual(result.returncode, code, result.stderr.decode())
        return result.stdout.decode(), result.stderr.decode()

    def files(self):
        return sorted(path.name for path in self.ordner.iterdir())

    def elements(self, **changed):
        """The bytes of a new array of 200 elements in which _3=... stands at index 3."""
        elements = [EMPTY] * 200
        for name, element in changed.items():
            elements[int(name[1:])] = element
        return array(elements)


class Creating(Tool):
    def test_makes_what_is_missing_and_says_so_once(self):
        out, _ = self.run_tool("--anlegen")
        self.assertEqual(self.files(), ["Hyperlinks", "Sender", "fennow.cfg", "kestrin.cfg"])
        self.assertEqual(self.cfg.read_bytes(), self.elements())
        self.assertEqual((self.ordner / "kestrin.cfg").read_bytes(), b"appname=Kestrin Pirrow\r\n")
        names = ["fennow.cfg", "kestrin.cfg", "Hyperlinks", "Sender"]
        self.assertEqual(out, "".join(f"Angelegt: {self.ordner}/{name}\n" for name in names))
        self.assertEqual(self.run_tool("--anlegen"), ("", ""))

    def test_leaves_everything_that_is_there(self):
        (self.ordner / "KESTRIN.CFG").write_text("appname=Anders\n")
        self.cfg.write_bytes(array([text("x")], lower=5))
        self.run_tool("--anlegen")
        self.assertEqual(self.files(), ["Hyperlinks", "KESTRIN.CFG", "Sender", "fennow.cfg"])
        self.assertEqual(self.cfg.read_bytes(), array([text("x")], lower=5))

    def test_leaves_an_unreadable_settings_file_and_says_so(self):
        self.cfg.write_bytes(b"This is no settings file.")
        _, err = self.run_tool("--anlegen")
        self.assertEqual(self.cfg.read_bytes(), b"This is no settings file.")
        self.assertIn("können nicht gelesen werden", err)

    def test_empty_file_left_by_a_reader_counts_as_missing(self):
        self.cfg.write_bytes(b"")
        self.run_tool("--anlegen")
        self.assertEqual(self.cfg.read_bytes(), self.elements())

    def test_makes_the_folder_itself_only_when_asked(self):
        self.ordner = self.ordner / "neu" / "tief"
        _, err = self.run_tool("--zeige", code=1)
        self.assertIn("ist nicht da", err)
        self.assertFalse(self.ordner.parent.exists())
        self.run_tool("--zeige", "--anlegen")
        self.assertTrue((self.ordner / "fennow.cfg").is_file())

    def test_reports_what_cannot_be_made(self):
        (self.ordner / "Sender").write_text("a file in the way")
        _, err = self.run_tool("--anlegen", code=1)
        self.assertEqual(err, f'Der Ordner "{self.ordner}/Sender" kann nicht angelegt werden.\n')

    def test_relative_folder_counts_from_the_current_one(self):
        subprocess.run([QUILLON, "--ordner", "a/b", "--anlegen"], cwd=self.ordner, capture_output=True, check=True)
        self.assertTrue((self.ordner / "a/b/fennow.cfg").is_file())

    def test_folder_of_the_environment_is_used_without_the_switch(self):
        environment = dict(os.environ, WENDEL_ORDNER=str(self.ordner / "x"))
        self.run_tool("--anlegen", ordner=False, env=environment)
        self.assertTrue((self.ordner / "x" / "fennow.cfg").is_file())


class Setting(Tool):
    def test_each_type_is_stored_in_its_bytes(self):
        rows = [
            ("Datenbank=/tv/März €.mdb", 1, text("/tv/März €.mdb")),
            ("hyperlinks=", 2, text("")),
            ("AUTOSTART=Ja", 3, yes(True)),
            ("Erinnerung=nein", 12, yes(False)),
            ("Vorlauf=-3", 13, integer(-3)),
            ("LetztesUpdate=24.12.2012 20:15:00", 8, date(41267.84375)),
            ("LinkParameter=a=b=c", 10, text("a=b=c")),
            ("Wiederholungen=70000", 127, struct.pack("<Hi", 3, 70000)),
            ("XmltvBefehl=grab --days 7", 29, text("grab --days 7")),
        ]
        for assignment, index, element in rows:
            with self.subTest(assignment):
                self.cfg.unlink(missing_ok=True)
                self.assertEqual(self.run_tool("--setze", assignment), ("", ""))
                self.assertEqual(self.cfg.read_bytes(), self.elements(**{f"_{index}": element}))

    def test_other_elements_stay_bit_for_bit_and_a_short_array_grows(self):
        odd = [struct.pack("<Hd", 5, 0.1), date(41267.8437500001), struct.pack("<HHiihh", 0x2002, 1, 2, 7, 1, 2)]
        self.cfg.write_bytes(array(odd, lower=1))
        self.run_tool("--setze", "Autostart=ja", "--setze", "Zeitplan=1000001 05:30")
        grown = odd[:2] + [yes(True), EMPTY, EMPTY, text("1000001 05:30")]
        self.assertEqual(self.cfg.read_bytes(), array(grown, lower=1))

    def test_unreadable_file_is_put_aside_first(self):
        rubbish = b"This is no settings file."
        self.cfg.write_bytes(rubbish)
        _, err = self.run_tool("--setze", "Vorlauf=1")
        self.assertEqual((self.ordner / "fennow.cfg.defekt").read_bytes(), rubbish)
        self.assertEqual(self.cfg.read_bytes(), self.elements(_13=integer(1)))
        self.assertIn("fennow.cfg.defekt", err)

    def test_character_that_cannot_be_stored_is_reported(self):
        _, err = self.run_tool("--setze", "Benutzer=Ω1")
        self.assertEqual(self.cfg.read_bytes(), self.elements(_19=text("?1")))
        self.assertIn("Benutzer", err)

    def test_file_that_cannot_be_written_is_an_error(self):
        self.cfg.mkdir()
        _, err = self.run_tool("--setze", "Vorlauf=1", code=1)
        self.assertIn("fennow.cfg", err)

    def test_appointments_are_appended(self):
        self.run_tool("--setze", "Termin=24.12.2012 20:15:00|0|ja|Bescherung | bald")
        self.run_tool("--setze", "termin=01.01.2013 00:05:00|3|nein|")
        columns = [
            [date(41267.84375), text("Bescherung | bald"), integer(0), yes(True)],
            [date(41275 + 300 / 86400), text(""), integer(3), yes(False)],
        ]
        self.assertEqual(self.cfg.read_bytes(), self.elements(_20=table(columns)))
        out, _ = self.run_tool("--zeige", "Termin")
        self.assertEqual(
            out, "Termin=24.12.2012 20:15:00|0|ja|Bescherung | bald\nTermin=01.01.2013 00:05:00|3|nein|\n")

    def test_appending_keeps_columns_it_cannot_use(self):
        strange = [text("morgen"), integer(7), text("oft"), EMPTY, struct.pack("<Hi", 3, 42)]
        self.cfg.write_bytes(self.elements(_20=table([strange], rows=5, lower=0)))
        self.run_tool("--setze", "Termin=24.12.2012 20:15:00|1|ja|x")
        added = [date(41267.84375), text("x"), integer(1), yes(True), EMPTY]
        self.assertEqual(self.cfg.read_bytes(), self.elements(_20=table([strange, added], rows=5, lower=0)))

    def test_appointments_of_unknown_form_are_not_touched(self):
        for name, element in [("text", text("Termine")), ("three rows", table([[EMPTY] * 3], rows=3)),
                              ("one dimension", array([EMPTY]))]:
            with self.subTest(name):
                before = self.elements(_20=element)
                self.cfg.write_bytes(before)
                self.run_tool("--setze", "Termin=24.12.2012 20:15:00|0|ja|x", code=1)
                self.assertEqual(self.cfg.read_bytes(), before)


class Showing(Tool):
    def test_missing_file_shows_the_defaults_and_stays_missing(self):
        out, _ = self.run_tool("--zeige")
        self.assertEqual(out, DEFAULTS.format(ordner=self.ordner))
        self.assertEqual(self.files(), [])

    def test_stored_values_are_shown_as_they_are(self):
        self.cfg.write_bytes(self.elements(
            _1=text("C:\\TV\\tvdaten.mdb"), _8=date(41267.84375), _12=yes(False), _13=text("12"), _19=text("A\r\nB"),
            _20=table([[date(41267.84375), text("Ein\nAnruf"), integer(2), yes(True)]])))
        out, _ = self.run_tool("--zeige")
        expected = DEFAULTS.format(ordner=self.ordner).splitlines()
        expected[0] = "Datenbank=C:\\TV\\tvdaten.mdb"
        expected[7] = "LetztesUpdate=24.12.2012 20:15:00"
        expected[11] = "Erinnerung=nein"
        expected[12] = "Vorlauf=12"
        expected[18] = "Benutzer=A B"
        expected.insert(19, "Termin=24.12.2012 20:15:00|2|ja|Ein Anruf")
        self.assertEqual(out.splitlines(), expected)

    def test_one_setting_by_its_name(self):
        self.assertEqual(self.run_tool("--zeige", "vorlauf", "--zeige", "Nachlauf")[0], "Vorlauf=5\nNachlauf=10\n")

    def test_unreadable_file_is_an_error(self):
        rows = [b"This is no settings file.", self.elements()[:-1], struct.pack("<HHii", 0x200C, 1, 2**31 - 1, 0)]
        for content in rows:
            with self.subTest(content[:20]):
                self.cfg.write_bytes(content)
                out, err = self.run_tool("--zeige", code=1)
                self.assertEqual(out, "")
                self.assertNotEqual(err, "")
                self.assertEqual(self.cfg.read_bytes(), content)


class WrongUsage(Tool):
    def test_is_refused_before_anything_is_done(self):
        rows = [
            ([], "nichts zu tun"),
            (["--bogus"], '"--bogus" ist unbekannt.'),
            (["Vorlauf=1"], '"Vorlauf=1" ist unbekannt.'),
            (["--anlegen", "--setze"], 'Zu "--setze" fehlt die Angabe.'),
            (["--anlegen", "--setze", "Vorlauf"], '"Vorlauf" hat nicht die Form NAME=WERT.'),
            (["--anlegen", "--setze", "Farbe=rot"], 'Die Einstellung "Farbe" gibt es nicht.'),
            (["--anlegen", "--zeige", "Farbe"], 'Die Einstellung "Farbe" gibt es nicht.'),
            (["--anlegen", "--setze", "Vorlauf=40000"], "-32768 bis 32767"),
            (["--anlegen", "--setze", "Vorlauf=1.5"], "ganze Zahl"),
            (["--anlegen", "--setze", "Autostart=wahr"], '"ja" oder "nein"'),
            (["--anlegen", "--setze", "LetztesUpdate=31.02.2012 20:15:00"], "Datum"),
            (["--anlegen", "--setze", "Termin=24.12.2012 20:15:00|0|ja"], "Termin"),
            (["--anlegen", "--setze", "Termin=24.12.2012 25:15:00|0|ja|x"], "Termin"),
            (["--anlegen", "--setze", b"Benutzer=\xe4"], "UTF-8"),
            (["--anlegen", "--ordner", ""], "Ordner"),
        ]
        for arguments, message in rows:
            with self.subTest(arguments):
                out, err = self.run_tool(*arguments, code=2)
                self.assertIn(message, err)
                self.assertEqual(out, "")
                self.assertEqual(self.files(), [])

    def test_help_names_every_setting(self):
        out, _ = self.run_tool("--hilfe")
        for line in DEFAULTS.splitlines() + ["Termin="]:
            self.assertRegex(out, rf"(?m)^  {line.split('=')[0]} ")


if __name__ == "__main__":
    QUILLON = os.path.abspath(sys.argv.pop(1))
    unittest.main()
