"""The live-update program as a whole: XMLTV in, rows and marks of a real database out, read with the suite's own SQL.

    python3 skarvel_test.py PATH_TO_SKARVEL [unittest arguments]

The clock stands at 24.12.2026 12:00, the zone is Berlin's. No session bus answers, except where a test says so.
"""

import gzip
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

SKARVEL = QUILLON = JETSQL = None
BROKEN_OFF = "Das Live-Update ist abgebrochen worden."


def programme(start, title, stop="", channel="eins.example", more=""):
    """start and stop as "ddhhmm" of December 2026, in Berlin's zone."""
    end = f' stop="202612{stop}00 +0100"' if stop else ""
    return (f'<programme start="202612{start}00 +0100"{end} channel="{channel}">'
            f"<title>{title}</title>{more}</programme>")


def xmltv(*programmes, channels=""):
    return f'<?xml version="1.0" encoding="UTF-8"?><tv>{channels}{"".join(programmes)}</tv>'


EVENING = [programme("242000", "News", "242015"), programme("242015", "Der Film", "242200", more="<desc>Lang.</desc>"),
           programme("242200", "Spät", "242300")]


def guide(channels, days, words=30):
    """Half-hour broadcasts around the clock."""
    text = []
    for c in range(channels):
        for n in range(days * 48):
            day, minute = 24 + n // 48, n % 48 * 30
            start = f"{day:02}{minute // 60:02}{minute % 60:02}"
            text.append(programme(start, f"Sendung {n % 50}", channel=f"sender{c}.example", more=f"<desc>{'Wort ' * words}{n}</desc>"))
    return xmltv(*text)


class Update(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="skarvel-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.environment = dict(os.environ, WENDEL_ORDNER=str(self.folder / "o"), XDG_RUNTIME_DIR=str(self.folder),
                                XDG_CONFIG_HOME=str(self.folder), TZ="Europe/Berlin", WENDEL_UHR="2026-12-24 12:00:00",
                                WENDEL_RECHNER="PC-TEST", DBUS_SESSION_BUS_ADDRESS=f"unix:path={self.folder}/nichts")
        for variable in ("DISPLAY", "WAYLAND_DISPLAY"):
            self.environment.pop(variable, None)
        self.database = self.folder / "o/tvdaten.mdb"
        self.source = self.folder / "guide.xml"
        self.tool(QUILLON, "--anlegen", "--setze", f"XmltvQuelle={self.source}")

    def tool(self, *command):
        done = subprocess.run(command, env=self.environment, capture_output=True, text=True, timeout=60)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def sql(self, *statements):
        """The rows of the last one, as lists of texts."""
        lines = self.tool(JETSQL, self.database, *statements).splitlines()
        return [line.split("\t") for line in lines[1:]]

    def column(self, statement):
        return [row[0] for row in self.sql(statement)]

    def set(self, *settings):
        self.tool(QUILLON, *(argument for setting in settings for argument in ("--setze", setting)))

    def start(self, *switches):
        """With the ends of children ignored, as some launchers leave it."""
        return subprocess.Popen([SKARVEL, "/hidden", "/liveupdate", "/onlyuseWinConnection", *switches], env=self.environment,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                preexec_fn=lambda: signal.signal(signal.SIGCHLD, signal.SIG_IGN))

    def update(self, text=None):
        """Exit code and what it says."""
        if text is not None:
            self.source.write_text(text, encoding="utf-8")
        process = self.start()
        output, errors = process.communicate(timeout=120)
        self.assertEqual(output, "")
        return process.returncode, errors.strip()

    def updated(self, text=None):
        self.assertEqual(self.update(text), (0, ""))

    def refused(self, text, expected):
        before = self.database.read_bytes()
        code, message = self.update(text)
        self.assertEqual(code, 1)
        self.assertIn(expected, message)
        self.assertEqual(self.database.read_bytes(), before, "the database is as before")

    def assert_sound(self):
        self.assertEqual(self.tool(JETSQL, self.database, "--pruefen"), "")
        for lost in ("Sendungen left join SendungenDetails on Sendungen.Pos=SendungenDetails.Pos Where SendungenDetails.Pos",
                     "SendungenDetails left join Sendungen on Sendungen.Pos=SendungenDetails.Pos Where Sendungen.Pos"):
            self.assertEqual(self.column(f"Select Count(*) from {lost} is null"), ["0"])

    def mark(self, title, options="Erinnerungszeit=202612242005"):
        row = self.sql(f"Select Pos,SenderKennung,Beginn,Dauer from Sendungen Where Titel='{title}'")[0]
        year, month, rest = row[2].split("-")
        day, at = rest.split(" ")
        self.sql("Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,Optionen,"
                 f"Aufzeichnung,KzAusblenden) Values ('PC-TEST',{row[0]},'{title}','{row[1]}',#{month}/{day}/{year}#,"
                 f"#12/30/1899 {at}#,'{row[3]}',true,-1,'{options}',0,0)")
        return row[0]

    def marks(self):
        return self.sql("Select Pos,Sendung,Format(Datum+Uhrzeit,'dd hh:nn'),Dauer,Optionen from Markierungen Order by ID")


class Guide(Update):
    def test_first_import_makes_channels_favourites_and_details(self):
        channels = "".join(f'<channel id="s{n:02}"><display-name>Sender {n}</display-name></channel>' for n in range(14))
        more = programme("242015", "Film", channel="s13", more="<desc>Käse</desc><star-rating><value>3/4</value></star-rating>")
        self.updated(xmltv(*(programme("242000", "A", "242100", f"s{n:02}") for n in range(14)), more, channels=channels +
                     '<channel id="leer"><display-name>Ohne Sendungen</display-name></channel>'))
        self.assertEqual(self.column("Select Bezeichnung from Sender Where Favorit=true Order by SortNr"),
                         [f"Sender {n}" for n in range(12)])
        self.assertEqual(self.column("Select Count(*) from Sender"), ["14"])
        self.assertEqual(self.sql("Select Titel,Dauer,Bewertung,Beschreibung from Sendungen inner join SendungenDetails on "
                                  "Sendungen.Pos=SendungenDetails.Pos Where Bewertung=4 and SenderKennung='s13'"),
                         [["Film", "60", "4", "Käse"]])
        self.sql("Update Sender Set Favorit=false")
        self.updated()
        self.assertEqual(self.column("Select Count(*) from Sender Where Favorit=true"), ["0"], "only the first import does")

    def test_the_same_file_twice_changes_no_byte(self):
        self.updated(xmltv(*EVENING, programme("250230", "🎬" * 70 + "Ende ", more="<desc>" + "ü€\n" * 5000 + "</desc>")))
        before = self.database.read_bytes()
        self.updated()
        self.assertEqual(self.database.read_bytes(), before)
        self.assert_sound()

    def test_marks_follow_their_broadcast(self):
        self.updated(xmltv(*EVENING))
        pos = self.mark("Der Film", "Wiederkehrend=0;Erinnerungszeit=202612242005")
        self.mark("Spät", "Erinnerungszeit=202612242155")
        self.updated(xmltv(EVENING[0], programme("242015", "Sondersendung", "242030"),
                           programme("242030", "Der Film", "242215"), programme("242215", "Anderes", "242300")))
        self.assertEqual(self.marks(), [
            [pos, "Der Film", "24 20:30", "105", "Wiederkehrend=0;Erinnerungszeit=202612242020"],
            [self.marks()[1][0], "Spät", "24 22:00", "60", "Erinnerungszeit=202612242155"]])
        self.assertEqual(self.column(f"Select Titel from Sendungen Where Pos={pos}"), ["Der Film"])
        self.assertEqual(self.column("Select Count(*) from Sendungen Where Titel='Spät'"), ["0"])
        self.updated(xmltv(*EVENING))
        self.assertEqual(self.marks()[1][0], self.column("Select Pos from Sendungen Where Titel='Spät'")[0],
                         "one that comes back with another key is found by its mark")
        self.assert_sound()

    def test_a_reminder_that_moves_into_the_past_comes_at_once(self):
        self.updated(xmltv(programme("241330", "Spiel", "241500"), *EVENING))
        self.mark("Spiel", "Erinnerungszeit=202612241320")
        self.updated(xmltv(programme("241205", "Spiel", "241400"), *EVENING))
        self.assertEqual(self.marks()[0][4], "Erinnerungszeit=202612241202")

    def test_a_recording_gets_the_new_length_of_its_broadcast(self):
        self.updated(xmltv(*EVENING))
        for title in ("News", "Der Film"):
            self.mark(title, "")
        self.sql("Update Markierungen Set Aufzeichnung=true,Dauer=IIf(Sendung='News','99',Dauer)")
        self.updated(xmltv(programme("242000", "News", "242010"), programme("242015", "Der Film", "242220")))
        self.assertEqual(self.column("Select Dauer from Markierungen Where Aufzeichnung=true Order by ID"), ["99", "125"],
                         "a length that the user has set stays")

    def test_vanished_and_expired_go_others_stay(self):
        self.updated(xmltv(*EVENING, programme("262000", "Übermorgen", "262100"), programme("242000", "Fremd", channel="zwei")))
        old = "Insert Into Sendungen (SenderKennung,Beginn,Ende,Titel,KzImArchiv) Values ('eins.example',#12/{0}/2026 20:00:00#,#12/{0}/2026 21:00:00#,'{1}',{2})"
        self.sql(*(old.format(*row) for row in ((16, "Alt", 0), (16, "Archiv", -1), (20, "Neulich", 0))))
        self.updated(xmltv(EVENING[0], EVENING[2], programme("142000", "Längst vorbei", "142100")))
        self.assertEqual(self.column("Select Titel from Sendungen Order by Beginn,Titel"),
                         ["Archiv", "Neulich", "Fremd", "News", "Spät", "Übermorgen"])

    def test_values_of_others_stay_and_lost_details_come_back(self):
        self.updated(xmltv(*EVENING))
        self.sql("Update Sendungen Set Bilddateiname='x.jpg',KzInFavoritenliste=true Where Titel='Der Film'",
                 "Delete from SendungenDetails Where Beschreibung='Lang.'")
        self.updated(xmltv(*(p.replace("Lang.", "Länger.") for p in EVENING)))
        self.assertEqual(self.sql("Select Bilddateiname,KzInFavoritenliste,Beschreibung from Sendungen inner join SendungenDetails "
                                  "on Sendungen.Pos=SendungenDetails.Pos Where Titel='Der Film'"), [["x.jpg", "-1", "Länger."]])
        self.assert_sound()

    def test_a_folder_with_compressed_files(self):
        folder = self.folder / "quelle"
        folder.mkdir()
        (folder / "a.xml").write_text(xmltv(*EVENING), encoding="utf-8")
        (folder / "b.XML.gz").write_bytes(gzip.compress(xmltv(programme("242015", "Der andere Film", "242200")).encode()))
        (folder / "liesmich.txt").write_text("kein XMLTV")
        self.set(f"XmltvQuelle={folder}")
        self.updated()
        self.assertEqual(self.column("Select Titel from Sendungen Order by Beginn"), ["News", "Der andere Film", "Spät"])
        (folder / "b.XML.gz").write_bytes((folder / "b.XML.gz").read_bytes()[:-12])
        self.refused(None, "ist beschädigt oder unvollständig")


class Failures(Update):
    def test_broken_sources_leave_the_database_alone(self):
        self.updated(xmltv(*EVENING))
        whole = xmltv(*EVENING)
        for text, message in ((whole[:len(whole) // 2], "guide.xml, Zeile 1: "), ("", "Es ist keine XMLTV-Datei, oder sie ist leer."),
                              (whole.replace("+0100", "MARS"), "Die Zeitangabe \"20261224200000 MARS\" ist nicht lesbar."),
                              (whole.replace("</tv>", "</tv><tv/>"), "Das XML ist fehlerhaft"),
                              (xmltv(), "Die Quelle enthält keine Sendungen.")):
            self.refused(text, message)
        self.source.unlink()
        self.refused(None, "kann nicht gelesen werden: Es gibt sie nicht.")
        os.mkfifo(self.source)
        self.refused(None, "ist weder eine Datei noch ein Ordner.")
        self.set("XmltvQuelle=")
        self.refused(None, "Es ist keine Quelle eingestellt")

    def test_a_grabber(self):
        self.source.write_text(xmltv(*EVENING), encoding="utf-8")
        self.set(f"XmltvBefehl=cat '{self.source}'")
        self.updated()
        self.assertEqual(self.column("Select Count(*) from Sendungen"), ["3"])
        self.set(f"XmltvBefehl=cat '{self.source}'; sleep 30 &")  # keeps the pipe open
        self.updated()
        for command, message in ((f"cat '{self.source}'; echo Erste >&2; echo 'Server antwortet nicht' >&2; exit 3",
                                  "mit dem Code 3 gescheitert: Server antwortet nicht"),
                                 ("gibtesnicht --days 3", "mit dem Code 127 gescheitert"),
                                 (f"head -c 300 '{self.source}'", "Ausgabe des Befehls, Zeile 1"),
                                 ("true", "Ausgabe des Befehls, Zeile 1: Es ist keine XMLTV-Datei, oder sie ist leer.")):
            self.set(f"XmltvBefehl={command}")
            self.refused(None, message)

    def test_whatever_ends_it_ends_all_that_the_grabber_has_started(self):
        file = self.folder / "pid"
        self.set(f"XmltvBefehl=sh -c 'trap \"\" TERM; echo $$ > {file}; exec sleep 300'; true")

        def until(condition, failure):
            deadline = time.monotonic() + 20
            while not condition():
                self.assertLess(time.monotonic(), deadline, failure)
                time.sleep(0.01)

        def gone():
            stat = Path("/proc") / file.read_text().strip() / "stat"
            return not stat.exists() or stat.read_text().split(") ")[1][0] == "Z"

        for number, code, message in ((signal.SIGTERM, 1, BROKEN_OFF), (signal.SIGKILL, -signal.SIGKILL, "")):
            file.unlink(missing_ok=True)
            process = self.start()
            until(lambda: file.exists() and file.read_text(), "the grabber has not begun")
            self.assertEqual(subprocess.run([SKARVEL, "/liveupdate", "/hidden"], env=self.environment, capture_output=True,
                                            text=True, timeout=20).stderr.strip(), "Ein Live-Update läuft bereits.")
            process.send_signal(number)
            self.assertEqual(process.communicate(timeout=20)[1].strip(), message)
            self.assertEqual(process.returncode, code)
            until(gone, "the grabber lives")

    def test_usage(self):
        for switches, code, text in (("/?", 0, "skarvel /hidden /liveupdate"), ("/was", 2, 'Unbekannter Schalter "/was"'),
                                     ("", 3, "Kein Bildschirm gefunden")):
            done = subprocess.run([SKARVEL, switches], env=self.environment, capture_output=True, text=True, timeout=20)
            self.assertEqual(done.returncode, code)
            self.assertIn(text, done.stdout + done.stderr)

    def test_killed_at_any_moment(self):
        seed = int(os.environ.get("WENDEL_SEED", "7"))
        kills = int(os.environ.get("WENDEL_KILLS", "20"))
        print(f"seed {seed}", file=sys.stderr)
        chance = random.Random(seed)
        versions = [guide(3, 3), guide(3, 3, 31).replace("Sendung 4", "Ein anderer Titel 4").replace("0000 +0100", "0500 +0100")]
        self.updated(versions[0])
        begin = time.monotonic()
        self.updated(versions[1])
        length = time.monotonic() - begin
        expected = self.sql("Select Beginn,Ende,Titel,SenderKennung from Sendungen Order by SenderKennung,Beginn")
        for n in range(kills):
            self.source.write_text(versions[n % 2], encoding="utf-8")
            process = self.start()
            try:
                process.wait(chance.uniform(0, length))
            except subprocess.TimeoutExpired:
                process.kill()
            process.communicate(timeout=20)
            rows = self.column("Select Count(*) from Sendungen")
            self.assertAlmostEqual(int(rows[0]), len(expected), delta=100, msg=f"kill {n}")
            self.assertEqual(self.tool(JETSQL, self.database, "--pruefen"), "", f"kill {n}")
        self.updated(versions[1])
        self.assertEqual(self.sql("Select Beginn,Ende,Titel,SenderKennung from Sendungen Order by SenderKennung,Beginn"), expected)
        self.assert_sound()


if __name__ == "__main__":
    SKARVEL = str(Path(sys.argv.pop(1)).resolve())
    QUILLON, JETSQL = (str(Path(SKARVEL).with_name(name)) for name in ("quillon", "jetsql"))
    unittest.main()
