"""The settings tool from outside: real folders, and files read and written here byte by byte after the layout that
the suite's programs share (little-endian, variant type first, strings in Windows-1252).

    python3 quillon_test.py PATH_TO_QUILLON [unittest arguments]
"""

import csv
import hashlib
import os
import resource
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

EXAMPLE = Path(__file__).resolve().parents[3] / "shared/data/tvdaten-klein.mdb"

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
        result = subprocess.run(command, capture_output=True, timeout=60, check=False, **options)
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
        self.assertEqual(self.files(), ["Hyperlinks", "Sender", "fennow.cfg", "kestrin.cfg", "tvdaten.mdb"])
        self.assertEqual(self.cfg.read_bytes(), self.elements())
        self.assertEqual((self.ordner / "kestrin.cfg").read_bytes(), b"appname=Kestrin Pirrow\r\n")
        names = ["fennow.cfg", "kestrin.cfg", "Hyperlinks", "Sender", "tvdaten.mdb"]
        self.assertEqual(out, "".join(f"Angelegt: {self.ordner}/{name}\n" for name in names))
        self.assertEqual(self.run_tool("--anlegen"), ("", ""))

    def test_leaves_everything_that_is_there(self):
        (self.ordner / "KESTRIN.CFG").write_text("appname=Anders\n")
        self.cfg.write_bytes(array([text("x")], lower=5))
        self.run_tool("--anlegen")
        self.assertEqual(self.files(), ["Hyperlinks", "KESTRIN.CFG", "Sender", "fennow.cfg", "tvdaten.mdb"])
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


def digests(folder):
    """Every file below the folder with what it holds."""
    return {str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).hexdigest()
            for path in Path(folder).rglob("*") if path.is_file()}


@unittest.skipUnless(shutil.which("mdb-export"), "mdbtools are not installed")
class Database(Tool):
    """What other readers see of the databases made here."""

    NOW = dict(os.environ, WENDEL_UHR="2026-11-23 17:32:11", WENDEL_RECHNER="PC-BUERO", TZ="Europe/Berlin")

    @classmethod
    def setUpClass(cls):
        cls.filled = tempfile.TemporaryDirectory()
        command = [QUILLON, "--ordner", cls.filled.name, "--erststart"]
        cls.said = subprocess.run(command, env=cls.NOW, capture_output=True, check=True, timeout=60).stdout.decode()

    @classmethod
    def tearDownClass(cls):
        cls.filled.cleanup()

    def rows(self, table, file=None):
        file = file or Path(self.filled.name, "tvdaten.mdb")
        options = ["-D", "%Y-%m-%d %H:%M:%S", "-T", "%Y-%m-%d %H:%M:%S"]
        out = subprocess.run(["mdb-export", *options, file, table], capture_output=True, check=True)
        return list(csv.DictReader(out.stdout.decode().splitlines(keepends=True)))

    def schema(self, file):
        """Tables with their columns in order, then the indexes, which have no order."""
        out = subprocess.run(["mdb-schema", "--indexes", file, "postgres"], capture_output=True, check=True)
        lines = out.stdout.decode().splitlines()
        indexes = [line for line in lines if "INDEX" in line or "CONSTRAINT" in line]
        return [line for line in lines if line not in indexes], sorted(indexes)

    @unittest.skipUnless(EXAMPLE.exists(), f"{EXAMPLE} is not there")
    def test_has_the_tables_and_indexes_of_the_suite(self):
        self.run_tool("--anlegen")
        self.maxDiff = None
        self.assertEqual(self.schema(self.ordner / "tvdaten.mdb"), self.schema(EXAMPLE))
        for table in ("Sender", "Sendungen", "SendungenDetails", "Markierungen"):
            self.assertEqual(self.rows(table, self.ordner / "tvdaten.mdb"), [])

    def test_example_guide_is_said_and_read_by_others(self):
        sendungen = self.rows("Sendungen")
        self.assertEqual(
            self.said.splitlines()[-3:],
            ["Es gab noch keine TV-Datenbank. Die neue enthält ein erfundenes Programm zum Ausprobieren:",
             f"  {self.filled.name}/tvdaten.mdb",
             f"Beispielprogramm: 14 Sender, {len(sendungen)} Sendungen vom 22.11.2026 bis zum 06.12.2026."])
        self.assertGreater(len(sendungen), 6000)
        self.assertEqual([int(row["Pos"]) for row in sendungen], list(range(1, len(sendungen) + 1)))
        details = self.rows("SendungenDetails")
        self.assertEqual([row["Pos"] for row in details], [row["Pos"] for row in sendungen])
        self.assertTrue(all(len(row["Beschreibung"]) > 10 for row in details if row["Beschreibung"] != "Es knistert."))
        sender = self.rows("Sender")
        self.assertEqual({row["Senderkennung"] for row in sender}, {row["SenderKennung"] for row in sendungen})
        self.assertIn("11 Bühnenlicht", [row["Bezeichnung"] for row in sender])
        films = [row for row in sendungen if row["Titel"] == "Das Mädchen mit der Laterne"]
        self.assertTrue(films and all(row["Genre"] == "Märchen" and row["KzFilm"] == "1" for row in films))

    def test_marks_belong_to_this_computer_and_to_broadcasts(self):
        marks = self.rows("Markierungen")
        titles = {row["Pos"]: row["Titel"] for row in self.rows("Sendungen")}
        self.assertEqual(len(marks), 4)
        for mark in marks:
            self.assertEqual((mark["User"], mark["Sendung"]), ("PC-BUERO", titles[mark["Pos"]]))
        self.assertIn("Erinnerungszeit=202611231734;Wiederkehrend=0", [mark["Optionen"] for mark in marks])

    def test_nothing_that_is_there_is_touched(self):
        self.run_tool("--anlegen")
        rows = [("own empty database", lambda: None),
                ("any file of that name", lambda: (self.ordner / "tvdaten.mdb").write_bytes(b"x")),
                ("other case", lambda: (self.ordner / "tvdaten.mdb").rename(self.ordner / "TVDATEN.MDB"))]
        for name, prepare in rows:
            with self.subTest(name):
                prepare()
                before = digests(self.ordner)
                for switch in ("--anlegen", "--erststart"):
                    self.assertEqual(self.run_tool(switch), ("", ""))
                self.assertEqual(digests(self.ordner), before)

    def test_guide_is_not_written_over_broadcasts(self):
        before = digests(self.filled.name)
        self.ordner = Path(self.filled.name)
        _, err = self.run_tool("--beispiel", code=1)
        self.assertIn("stehen schon Sender oder Sendungen", err)
        self.assertEqual(digests(self.filled.name), before)

    def test_guide_fills_an_empty_database(self):
        _, err = self.run_tool("--beispiel", code=1)
        self.assertIn("noch keine TV-Datenbank", err)
        self.run_tool("--anlegen", "--beispiel", env=self.NOW)
        self.assertEqual(self.rows("Sendungen", self.ordner / "tvdaten.mdb"), self.rows("Sendungen"))

    def test_database_stands_where_the_settings_say(self):
        (self.ordner / "anderswo").mkdir()
        self.run_tool("--setze", f"Datenbank={self.ordner}/anderswo/meine.mdb")
        self.run_tool("--erststart")  # the own one is only away for now
        self.assertNotIn("tvdaten.mdb", self.files())
        self.run_tool("--anlegen")
        self.assertEqual([path.name for path in (self.ordner / "anderswo").iterdir()], ["meine.mdb"])
        self.assertNotIn("tvdaten.mdb", self.files())

    def test_unreadable_settings_bring_no_database(self):
        self.cfg.write_bytes(b"This is no settings file.")
        self.run_tool("--erststart")
        self.assertNotIn("tvdaten.mdb", self.files())

    def test_kill_leaves_no_half_database(self):
        command = [QUILLON, "--ordner", str(self.ordner), "--erststart"]
        target, unfinished = self.ordner / "tvdaten.mdb", self.ordner / "tvdaten.mdb.neu"
        for pause in (0, 0.2):
            process = subprocess.Popen(command, env=self.NOW, stdout=subprocess.DEVNULL)
            while not unfinished.exists() and process.poll() is None:
                time.sleep(0.001)
            time.sleep(pause)
            process.send_signal(signal.SIGKILL)
            if process.wait() == 0:
                self.skipTest("too fast to be killed")
            self.assertFalse(target.exists())
        self.run_tool("--erststart", env=self.NOW)
        self.assertEqual(self.files(), ["Hyperlinks", "Sender", "fennow.cfg", "kestrin.cfg", "tvdaten.mdb"])
        self.assertEqual(self.rows("Sendungen", target), self.rows("Sendungen"))

    def test_guide_that_a_kill_cut_off_is_made_anew(self):
        self.run_tool("--anlegen")
        target = self.ordner / "tvdaten.mdb"
        size = target.stat().st_size
        process = subprocess.Popen([QUILLON, "--ordner", str(self.ordner), "--beispiel"], env=self.NOW)
        while process.poll() is None and target.stat().st_size == size:  # grows in the middle of the broadcasts
            time.sleep(0.001)
        process.send_signal(signal.SIGKILL)
        if process.wait() == 0:
            self.skipTest("too fast to be killed")
        self.assertEqual(self.rows("Sender", target), [])
        self.run_tool("--beispiel", env=self.NOW)
        rows = [[{**row, "Pos": "", "ID": ""} for row in self.rows(table, file)]
                for file in (target, None) for table in ("Sendungen", "SendungenDetails", "Markierungen", "Sender")]
        self.assertEqual(rows[:4], rows[4:])

    def test_full_disk_is_said_and_leaves_nothing(self):
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 20, 1 << 20))

        _, err = self.run_tool("--erststart", code=1, preexec_fn=limit)
        self.assertNotEqual(err, "")
        self.assertEqual([name for name in self.files() if name.startswith("tvdaten")], [])

    def test_two_at_once_make_one_database(self):
        command = [QUILLON, "--ordner", str(self.ordner), "--erststart"]
        both = [subprocess.Popen(command, env=self.NOW, stdout=subprocess.PIPE) for _ in range(2)]
        said = [process.communicate(timeout=60)[0].decode() for process in both]
        self.assertEqual([process.returncode for process in both], [0, 0])
        self.assertEqual(sum("Es gab noch keine" in text for text in said), 1)
        self.assertEqual(self.rows("Sendungen", self.ordner / "tvdaten.mdb"), self.rows("Sendungen"))


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
