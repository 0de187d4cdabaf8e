"""The check of an installation from outside: what it says about which state of things, that it gives nothing private
away, changes nothing, and comes to an end. The states are made here, the sound ones by the tool itself.

    python3 pruefe_test.py PATH_TO_QUILLON [unittest arguments]
"""

import os
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

QUILLON = None
HEADER = "<kestrin pirrow aufzeichnungsskript 1.0>\n"


class Pruefe(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.muster = tempfile.TemporaryDirectory()
        subprocess.run([QUILLON, "--ordner", cls.muster.name, "--anlegen", "--beispiel"], check=True, timeout=60,
                       capture_output=True)

    @classmethod
    def tearDownClass(cls):
        cls.muster.cleanup()

    def setUp(self):
        temporary = tempfile.TemporaryDirectory(dir="/tmp")  # sockets want a short path
        self.addCleanup(temporary.cleanup)
        self.oben = Path(temporary.name)
        self.ordner = self.oben / "Ordner"
        self.umgebung = {
            "HOME": str(self.oben / "heim"), "PATH": "/usr/bin:/bin", "QT_QPA_PLATFORM": "offscreen",
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.oben}/kein-bus", "WENDEL_ORDNER": str(self.ordner),
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self.oben}/kein-bus", "XDG_RUNTIME_DIR": str(self.oben)}

    def setze(self, *werte):
        subprocess.run([QUILLON, *(wort for wert in werte for wort in ("--setze", wert))], env=self.umgebung,
                       check=True, capture_output=True, timeout=60)

    @property
    def mdb(self):
        return self.ordner / "tvdaten.mdb"

    def richte_ein(self):
        shutil.copytree(self.muster.name, self.ordner)
        (self.ordner / "skarvel.exe").touch(0o755)

    def bericht(self, code, **umgebung):
        result = subprocess.run([QUILLON, "--pruefe"], env=self.umgebung | umgebung, capture_output=True, text=True,
                                timeout=60, check=False)
        self.assertEqual(result.stderr, "")
        self.assertEqual(result.returncode, code, result.stdout)
        self.assertRegex(result.stdout, r"\nErgebnis: \d+ Fehler, \d+ Hinweise?\.\n$")
        return result.stdout

    def stand(self):
        """Everything below, with contents and times."""
        return {str(p): (p.lstat().st_mtime_ns, p.read_bytes() if p.is_file() else b"")
                for p in [self.oben, *self.oben.rglob("*")]}

    def test_a_sound_installation_has_no_errors(self):
        self.richte_ein()
        bericht = self.bericht(0)
        for zeile in ("  ok       Programmordner (mit WENDEL_ORDNER genannt): les- und schreibbar\n",
                      "  ok       Sperren: niemand hat die Datenbank offen\n",
                      "  ok       Seiten und Indizes: passen zusammen\n", "SendungenDetails 7", "Jet 4"):
            self.assertIn(zeile, bericht)
        ohne = subprocess.run(["sh", "-c", 'exec "$0" --pruefe <&- 2>&-', QUILLON], env=self.umgebung, timeout=60,
                              capture_output=True, text=True, check=False)
        ohne_uhr_und_platz = lambda text: [z for z in text.splitlines()[1:] if "Freier Platz" not in z]
        self.assertEqual(ohne_uhr_und_platz(ohne.stdout), ohne_uhr_und_platz(bericht))
        with open("/dev/full", "w", encoding="utf-8") as voll:
            self.assertEqual(subprocess.run([QUILLON, "--pruefe"], env=self.umgebung, stdout=voll, timeout=60,
                                            stderr=subprocess.DEVNULL, check=False).returncode, 1)

    def test_tells_what_is_wrong(self):
        garbage = b"no settings at all, but long enough"
        lang = b"\x0c\x20\x01\x00\x0e\x00\x00\x00\x00\x00\x00\x00" + 13 * b"\x00\x00" + b"\x08\x00\x03\x00abc"
        setze = lambda *werte: lambda: self.setze(*werte)
        datei = lambda name, inhalt: lambda: (self.ordner / name).write_bytes(inhalt)

        def skript(text):
            (self.ordner / "a.txt").write_text(text, encoding="utf-8")
            self.setze("Skript=a.txt")

        def autostart():
            ordner = self.oben / "heim/.config/autostart"
            ordner.mkdir(parents=True)
            (ordner / "wendel.desktop").write_text(f'[Desktop Entry]\nExec="{self.oben}/weg" "/pcstart"\n'
                                                   "X-Wendel-Run=x\n")

        def abgeschnitten():
            self.mdb.write_bytes(self.mdb.read_bytes()[:9 * 4096 + 100])

        def mitten_kaputt():
            inhalt = bytearray(self.mdb.read_bytes())
            inhalt[20 * 4096:] = os.urandom(len(inhalt) - 20 * 4096)
            self.mdb.write_bytes(inhalt)

        def ohne_inhalt():
            self.mdb.unlink()
            os.mkfifo(self.mdb)

        zeile = "Fehler   Datenbank: "
        for name, mache, code, erwartet in [
            ("no folder", lambda: shutil.rmtree(self.ordner), 1, ["noch nicht da", zeile + "nicht gefunden"]),
            ("folder is a file", lambda: (shutil.rmtree(self.ordner), self.ordner.write_bytes(b"")), 1,
             ["Fehler   Programmordner (mit WENDEL_ORDNER genannt): nicht zugänglich"]),
            ("settings damaged", datei("fennow.cfg", garbage), 1, ["fennow.cfg ist beschädigt"]),
            ("settings of another type", datei("fennow.cfg", lang), 0, ["Hinweis  Unbrauchbare Werte: Vorlauf\n"]),
            ("settings interrupted", datei("fennow.cfg.neu", b"half"), 0, ["Hinweis  Einstellungen: ein Schreiben"]),
            ("no database", lambda: self.mdb.unlink(), 1, [zeile + "nicht gefunden"]),
            ("database elsewhere is gone", setze("Datenbank=/weg/tv.mdb"), 0, ["Hinweis  Datenbank: die eingestellte"]),
            ("text as database", datei("tvdaten.mdb", b"dies ist keine Datenbank" * 99), 1,
             [zeile + "keine Datenbank der Suite (Fehler 3343)", "Fehler   Inhalt: nicht lesbar"]),
            ("empty database", datei("tvdaten.mdb", b""), 1, [zeile + "keine Datenbank der Suite"]),
            ("pipe as database", ohne_inhalt, 1, [zeile + "nicht gefunden"]),
            ("database cut off", abgeschnitten, 1, [zeile + "beschädigt (Fehler 3049)"]),
            ("database overwritten", mitten_kaputt, 1, ["Fehler   "]),
            ("foreign journal", datei("tvdaten.mdb-journal", b"x" * 5000), 0, ["Journal: 4,8 KB"]),
            ("no such script", setze("Skript=fehlt.txt"), 1, ["Fehler   Skript: eingestellt, aber nicht da"]),
            ("no script", lambda: skript("beep\n"), 1, ["Fehler   Skript: Zeile 1 ist nicht die Kopfzeile"]),
            ("bad lines", lambda: skript(HEADER + "\nBefehlAufnahmeStarten=tanzen,1\nBefehlAufnahmeStarten=beep\n"
                                         "BefehlAnwendungStarten=anwendungstarten,gibt-es-nicht-4711 -x\n"
                                         "BefehlAnwendungStarten=anwendungstarten,sh -c true\n"
                                         "BefehlKanalWechseln=tastensenden,{nichts}\n"), 1,
             ["Zeile 3: unbekannter Befehl", "Zeile 5: das Programm wird nicht gefunden", "Zeile 7: ungültige Tasten",
              "5 Befehle, davon 3 mit Mängeln"]),
            ("no source", setze("LiveUpdate=ja"), 1, ["Fehler   Quelle: keine", "an 7 Tagen der Woche um 06:00 Uhr"]),
            ("source is gone", setze("XmltvQuelle=/weg.xml"), 1, ["Fehler   Quelle: eine Datei, die nicht da ist"]),
            ("command is gone", setze("XmltvBefehl=gibt-es-nicht-4711 -x"), 0, ["Hinweis  Quelle: ein Programm, das"]),
            ("schedule without days", setze("LiveUpdate=ja", "XmltvBefehl=true", "Zeitplan=0000000 06:00"), 0,
             ["Hinweis  Live-Update: eingeschaltet, aber der Wochenplan hat keinen Termin"]),
            ("autostart of what is gone", autostart, 1, ["Fehler   Autostart: eingetragen, aber das Programm"]),
        ]:
            with self.subTest(name):
                self.richte_ein()
                mache()
                vorher = self.stand()
                bericht = self.bericht(code)
                for teil in erwartet:
                    self.assertIn(teil, bericht)
                self.assertEqual(self.stand(), vorher)
            self.ordner.unlink() if self.ordner.is_file() else shutil.rmtree(self.ordner, ignore_errors=True)
            shutil.rmtree(self.oben / "heim", ignore_errors=True)

    def test_gives_nothing_private_away(self):
        kanarie = "Kanarie"
        self.ordner = self.oben / (kanarie + " Ordner")
        heim = self.oben / (kanarie + "heim")
        heim.mkdir()
        self.umgebung |= {"WENDEL_ORDNER": str(self.ordner), "HOME": str(heim), "USER": kanarie, "LOGNAME": kanarie,
                          "WENDEL_RECHNER": kanarie, "XDG_CURRENT_DESKTOP": f"X-{kanarie.upper()}", "TZ": f"{kanarie}1",
                          "PULSE_SERVER": kanarie + ".example"}
        self.richte_ein()
        shutil.move(self.mdb, self.ordner / (kanarie + ".mdb"))
        (self.ordner / (kanarie + ".txt")).write_text(HEADER + f"TVAnwendungtitel={kanarie}\nBeschreibung={kanarie}\n"
                                                      f"BefehlAnwendungStarten=AnwendungStarten,/{kanarie}/tv\n"
                                                      f"BefehlAufnahmeStarten={kanarie},1\n")
        werte = [f"{name}={kanarie}" for name in ("Hyperlinks", "LinkParameter", "TVOrdner", "Benutzer", "Klang",
                                                  "Aufzeichnungsordner", "Zeitplan")]
        werte += [f"Datenbank={self.ordner}/{kanarie}.mdb", f"Skript={kanarie}.txt", "LiveUpdate=ja",
                  f"Termin=24.12.2030 20:15:00|0|ja|{kanarie}"]
        self.setze(*werte)
        quelle = f"https://{kanarie}:{kanarie}@{kanarie}.example/{kanarie}.xml"
        for wert, erwartet in [("XmltvQuelle=" + quelle, "Fehler   Quelle: im Netz"),
                               ("XmltvBefehl=wget -O- " + quelle, "Quelle: ein Programm"),
                               (f"XmltvBefehl=/{kanarie}/grab", "Quelle: ein Programm, das nicht")]:
            self.setze(wert)
            vorher = self.stand()
            bericht = self.bericht(1)
            self.assertNotIn(kanarie.lower(), bericht.lower())
            for teil in (erwartet, "an anderem Ort", "1, davon 1 aktiv", "Zeitzone: ohne Namen", "Oberfläche: nicht",
                         "Zeile 4: das Programm", "Zeile 5: unb"):
                self.assertIn(teil, bericht)
            self.assertEqual(self.stand(), vorher)

    def test_sees_who_has_the_database_and_what_a_killed_program_left(self):
        jetsql = Path(QUILLON).parent / "jetsql"
        if not jetsql.exists():
            self.skipTest("jetsql is not built")
        self.richte_ein()
        with subprocess.Popen([jetsql, self.mdb, "Update Sender Set SortNr=7", "--sperren", "100"],
                              stdout=subprocess.PIPE, text=True) as anderes:
            self.addCleanup(anderes.kill)
            self.assertEqual([anderes.stdout.readline() for _ in range(3)][-1], "Gesperrt.\n")
            self.assertIn("ok       Sperren: 1 Programm hat sie offen, eines schreibt gerade\n", self.bericht(0))
            anderes.kill()
        vorher = self.stand()
        bericht = self.bericht(0)
        self.assertRegex(bericht, r"ok       Journal: \d+,\d KB, gehört dazu und wird")
        self.assertIn("niemand hat die Datenbank offen", bericht)
        self.assertEqual(self.stand(), vorher)

    def test_servers_that_never_answer_are_not_waited_for(self):
        self.richte_ein()
        with socket.socket(socket.AF_UNIX) as bus, socket.socket() as x:
            bus.bind(str(self.oben / "bus"))
            bus.listen()
            # Displays are numbered from port 6000.
            x.bind(("127.0.0.1", next(p for p in range(6100, 6200) if x.connect_ex(("127.0.0.1", p)))))
            x.listen()
            beginn = time.monotonic()
            bericht = self.bericht(1, DBUS_SESSION_BUS_ADDRESS=f"unix:path={self.oben}/bus",
                                   DISPLAY=f"127.0.0.1:{x.getsockname()[1] - 6000}", QT_QPA_PLATFORM="")
        self.assertLess(time.monotonic() - beginn, 30)
        self.assertIn("Hinweis  Sitzungsbus: nicht erreichbar", bericht)
        self.assertIn("Fehler   Dieser Teil der Prüfung kam nicht zu Ende", bericht)
        self.assertIn("ok       Seiten und Indizes: passen zusammen", bericht)

    def test_stands_alone(self):
        result = subprocess.run([QUILLON, "--pruefe", "--anlegen"], env=self.umgebung, capture_output=True, text=True,
                                timeout=60, check=False)
        self.assertEqual((result.returncode, result.stderr),
                         (2, '"--pruefe" steht allein oder mit "--ordner".\n'))
        self.assertFalse(self.ordner.exists())


if __name__ == "__main__":
    QUILLON = os.path.abspath(sys.argv.pop(1))
    unittest.main()
