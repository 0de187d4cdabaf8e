"""Own appointments to and from iCalendar files, from outside: what other programs write, and what they would read.

    python3 kalender_test.py PATH_TO_QUILLON [unittest arguments]
"""

import os
import re
import sys
import unittest

import quillon_test
from quillon_test import EMPTY, Tool, date, integer, table, text, yes

# A Monday, in winter time.
CLOCK = {**os.environ, "TZ": "Europe/Berlin", "WENDEL_UHR": "2026-11-23 12:00:00", "LC_ALL": "C"}

OWN_ZONE = """BEGIN:VTIMEZONE
TZID:Büro
BEGIN:DAYLIGHT
DTSTART:19700329T020000
RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU
TZOFFSETFROM:+0400
TZOFFSETTO:+0500
END:DAYLIGHT
BEGIN:STANDARD
DTSTART:19701025T030000
RRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU
TZOFFSETFROM:+0500
TZOFFSETTO:+0400
END:STANDARD
END:VTIMEZONE
"""


def event(*lines):
    return "\n".join(["BEGIN:VEVENT", *lines, "END:VEVENT"]) + "\n"


def alarm(trigger, action="DISPLAY"):
    return f"BEGIN:VALARM\nACTION:{action}\nTRIGGER{trigger}\nEND:VALARM"


def calendar(*parts):
    return ("BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:test\n" + "".join(parts) + "END:VCALENDAR\n").encode()


SERIES = event("UID:r", "SUMMARY:Kurs", "DTSTART:20260105T180000", "RRULE:FREQ=WEEKLY")

# name, parts of the calendar, appointments afterwards, what the messages say
FOREIGN = [
    ("floating", [event("SUMMARY:a", "DTSTART:20261201T181530")], ["01.12.2026 18:15:30|0|ja|a"], []),
    ("UTC in winter", [event("SUMMARY:a", "DTSTART:20261201T180000Z")], ["01.12.2026 19:00:00|0|ja|a"], []),
    ("UTC in summer", [event("SUMMARY:a", "DTSTART:20270601T233000Z")], ["02.06.2027 01:30:00|0|ja|a"], []),
    ("zone of the system", [event("SUMMARY:a", "DTSTART;TZID=America/New_York:20270320T120000")],
     ["20.03.2027 17:00:00|0|ja|a"], []),
    ("zone behind a path", [event("SUMMARY:a", "DTSTART;TZID=/example.org/7/America/New_York:20270320T120000")],
     ["20.03.2027 17:00:00|0|ja|a"], []),
    ("zone of the file", [OWN_ZONE, event("SUMMARY:a", "DTSTART;TZID=Büro:20270320T120000"),
                          event("SUMMARY:b", "DTSTART;TZID=Büro:20270620T120000")],
     ["20.03.2027 09:00:00|0|ja|a", "20.06.2027 09:00:00|0|ja|b"], []),
    ("zone nobody knows", [event("SUMMARY:a", "DTSTART;TZID=Nirgendwo:20261201T180000")],
     ["01.12.2026 18:00:00|0|ja|a"], ['"a" (01.12.2026 18:00): Die Zeitzone "Nirgendwo" ist unbekannt']),
    ("zone that changes each second",
     [OWN_ZONE.replace("YEARLY;BYMONTH=3;BYDAY=-1SU", "SECONDLY"),
      event("SUMMARY:a", "DTSTART;TZID=Büro:20270320T120000")],
     ["20.03.2027 12:00:00|0|ja|a"], ['"Büro" ist unbekannt']),
    ("whole day", [event("SUMMARY:a", "DTSTART;VALUE=DATE:20261201")], ["01.12.2026 09:00:00|0|ja|a"],
     ["1 ganztägiger Eintrag erinnert um 09:00 Uhr."]),
    ("whole day with alarm", [event("SUMMARY:a", "DTSTART;VALUE=DATE:20261201", alarm(":-PT6H"))],
     ["30.11.2026 18:00:00|0|ja|a"], []),
    ("alarms", [event("SUMMARY:a", "DTSTART:20261201T180000", alarm(":-P1D", "EMAIL"), alarm(":-PT15M", "AUDIO"),
                      alarm(":-PT5M"))], ["01.12.2026 17:45:00|0|ja|a"],
     ["1 Eintrag erinnert nicht zu seinem Beginn", "1 Eintrag hat mehrere Alarme"]),
    ("alarm before the end", [event("SUMMARY:a", "DTSTART:20261201T180000", "DTEND:20261201T200000",
                                    alarm(";RELATED=END:-PT30M"))], ["01.12.2026 19:30:00|0|ja|a"], []),
    ("alarm at a moment", [event("SUMMARY:a", "DTSTART:20261201T180000", alarm(";VALUE=DATE-TIME:20261130T070000Z"))],
     ["30.11.2026 08:00:00|0|ja|a"], []),
    ("alarm has passed, event not", [event("SUMMARY:a", "DTSTART:20261123T180000", alarm(":-P1D"))],
     ["23.11.2026 18:00:00|0|ja|a"], []),
    ("passed", [event("SUMMARY:a", "DTSTART:20200101T100000")], ["01.01.2020 10:00:00|0|nein|a"],
     ["1 Termin ist vorbei"]),
    ("daily", [event("SUMMARY:a", "DTSTART:20200101T100000", "RRULE:FREQ=DAILY;INTERVAL=1")],
     ["24.11.2026 10:00:00|1|ja|a"], []),
    ("all seven days", [event("SUMMARY:a", "DTSTART:20200101T130000",
                              "RRULE:FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR,SA,SU")], ["23.11.2026 13:00:00|1|ja|a"], []),
    ("working days", [event("SUMMARY:a", "DTSTART:20261127T100000", "RRULE:FREQ=DAILY;BYDAY=MO,TU,WE,TH,FR",
                            "EXDATE:20261128T100000")],
     ["27.11.2026 10:00:00|2|ja|a"], []),
    ("weekly", [event("SUMMARY:a", "DTSTART:20200106T100000", "RRULE:FREQ=WEEKLY;WKST=SU;BYDAY=MO")],
     ["30.11.2026 10:00:00|3|ja|a"], []),
    ("two days a week", [event("SUMMARY:a", "DTSTART:20261124T100000", "RRULE:FREQ=WEEKLY;BYDAY=TU,SA")],
     ["24.11.2026 10:00:00|3|ja|a", "28.11.2026 10:00:00|3|ja|a"], ["Daraus sind 2 wöchentliche Termine geworden."]),
    ("reminder on the day before", [event("SUMMARY:a", "DTSTART:20261124T100000", "RRULE:FREQ=WEEKLY",
                                          alarm(":-P1D"))], ["30.11.2026 10:00:00|3|ja|a"], []),
    ("zone moves the days", [event("SUMMARY:a", "DTSTART:20261129T233000Z", "RRULE:FREQ=WEEKLY;BYDAY=SU,MO,TU,WE,TH")],
     ["30.11.2026 00:30:00|2|ja|a"], ["Ab dem 29.03.2027 erinnert er um 01:30"]),
    ("own zone, hour left out", [event("SUMMARY:a", "DTSTART;TZID=Europe/Berlin:20261129T023000", "RRULE:FREQ=WEEKLY")],
     ["29.11.2026 02:30:00|3|ja|a"], []),
    ("passed exceptions", [event("SUMMARY:a", "DTSTART:20261101T180000", "RRULE:FREQ=DAILY",
                                 "EXDATE:20261110T180000,20261123T180000")], ["24.11.2026 18:00:00|1|ja|a"], []),
    ("exceptions to come", [event("SUMMARY:a", "DTSTART;TZID=Europe/Berlin:20261101T180000", "RRULE:FREQ=DAILY",
                                  "EXDATE:20261224T170000Z", "EXDATE;VALUE=DATE:20261225")],
     ["23.11.2026 18:00:00|1|ja|a"], ["erinnert auch am 24.12.2026, 25.12.2026."]),
    ("moved once", [SERIES, event("UID:r", "SUMMARY:später", "RECURRENCE-ID:20261123T180000",
                                  "DTSTART:20261123T190000")],
     ["30.11.2026 18:00:00|3|ja|Kurs", "23.11.2026 19:00:00|0|ja|später"], []),
    ("dropped once", [SERIES, event("UID:r", "STATUS:CANCELLED", "RECURRENCE-ID:20261123T180000",
                                    "DTSTART:20261123T180000")], ["30.11.2026 18:00:00|3|ja|Kurs"], []),
    ("further days", [event("SUMMARY:a", "DTSTART:20261201T100000", "EXDATE:20261204T110000",
                            "RDATE:20261203T110000,20261101T110000,20261204T110000")],
     ["01.12.2026 10:00:00|0|ja|a", "03.12.2026 11:00:00|0|ja|a"], []),
    ("with an end", [event("SUMMARY:a", "DTSTART;TZID=Europe/Berlin:20261101T180000",
                           "RRULE:FREQ=DAILY;UNTIL=20261123T170000Z")], ["23.11.2026 18:00:00|0|ja|a"],
     ["Die Wiederholung hat ein Ende: nur der nächste, 23.11.2026 18:00, als einmaliger Termin."]),
    ("ended", [event("SUMMARY:a", "DTSTART:20261101T180000", "RRULE:FREQ=DAILY;COUNT=3")], [],
     ['Nicht übernommen: "a" (01.11.2026 18:00): Die Wiederholung hat ein Ende: Es kommt kein Termin mehr.']),
    ("every second week", [event("SUMMARY:a", "DTSTART:20261102T180000", "RRULE:FREQ=WEEKLY;INTERVAL=2")],
     ["30.11.2026 18:00:00|0|ja|a"], ["lässt Tage oder Wochen aus: nur der nächste"]),
    ("monthly", [event("SUMMARY:a", "DTSTART:20260130T180000", "RRULE:FREQ=MONTHLY;BYDAY=-1FR")],
     ["27.11.2026 18:00:00|0|ja|a"], ["Monatliche Wiederholung: nur der nächste"]),
    ("centuries ahead", [event("SUMMARY:a", "DTSTART;TZID=Europe/Berlin:26100701T180000", "RRULE:FREQ=DAILY")],
     ["01.07.2610 18:00:00|1|ja|a"], []),
    ("birthday", [event("SUMMARY:a", "DTSTART;VALUE=DATE:19600229", "RRULE:FREQ=YEARLY")],
     ["29.02.2028 09:00:00|0|ja|a"], ["Jährliche Wiederholung: nur der nächste"]),
    ("each second", [event("SUMMARY:a", "DTSTART:20260130T180000", "RRULE:FREQ=SECONDLY")], [], ["Nicht übernommen"]),
    ("no such day", [event("SUMMARY:a", "DTSTART:20270229T100000")], [], ["Der Beginn fehlt oder ist ungültig."]),
    ("unreadable rule", [event("SUMMARY:a", "DTSTART:20270201T100000", "RRULE:FREQ=OFT")], [],
     ["Die Zeitangaben sind nicht lesbar."]),
    ("cancelled", [event("SUMMARY:a", "DTSTART:20270201T100000", "STATUS:CANCELLED")], [], ["abgesagt"]),
    ("no summary, two without UID", [event("DTSTART:20270201T100000"), event("SUMMARY: ", "DTSTART:20270201T100000")],
     ["01.02.2027 10:00:00|0|ja|"], []),
    ("escapes and folding", [event("SUMMARY:a\\, b\\; c\\\\d\\ne\n  f", "DTSTART:20270201T100000")],
     ["01.02.2027 10:00:00|0|ja|a, b; c\\d e f"], []),
    ("foreign letters", [event("SUMMARY:€ Ω", "DTSTART:20270201T100000")], ["01.02.2027 10:00:00|0|ja|€ ?"],
     ['sind durch "?" ersetzt worden']),
    ("terminal codes", [event("SUMMARY:a\x1b[31m", "DTSTART:20270229T100000")], [], ['"a [31m"']),
    ("other things", [event("SUMMARY:a", "DTSTART:20270201T100000", "LOCATION:b"),
                      "BEGIN:VTODO\nSUMMARY:t\nEND:VTODO\nBEGIN:VJOURNAL\nSUMMARY:j\nEND:VJOURNAL\n"],
     ["01.02.2027 10:00:00|0|ja|a"], ['"t": Das ist eine Aufgabe.', '"j": Das ist ein Tagebucheintrag.',
                                      "1 Eintrag verliert Ort, Beschreibung"]),
]

REFUSED = [
    ("empty", b"", "leer"),
    ("text", b"Hallo\n", "keine Kalenderdatei"),
    ("binary", bytes(range(256)), "keine Kalenderdatei"),
    ("cut", calendar(SERIES)[:-30], "unvollständig"),
    ("crossed", calendar("BEGIN:VEVENT\nEND:VTODO\n"), "beschädigt (Zeile 5)"),
    ("rubbish behind", calendar() + b"rubbish\n", "beschädigt (Zeile 5)"),
    ("deep", b"BEGIN:VCALENDAR\n" + b"BEGIN:VEVENT\n" * 100000, "beschädigt"),
    ("NUL", calendar(event("SUMMARY:a\0b", "DTSTART:20270201T100000")), "beschädigt"),
    ("Latin-1", calendar(SERIES).replace(b"Kurs", b"M\xe4rz"), "nicht in UTF-8"),
    ("100 MB", None, "größer als 32 MB"),
]


class Calendar(Tool):
    def setUp(self):
        super().setUp()
        self.ics = self.ordner / "x.ics"

    def tool(self, *arguments, clock=CLOCK["WENDEL_UHR"], **options):
        return self.run_tool(*arguments, env={**CLOCK, "WENDEL_UHR": clock}, **options)

    def shown(self):
        return self.tool("--zeige", "Termin")[0].replace("Termin=", "").splitlines()

    def logical_lines(self):
        content = self.ics.read_bytes()
        self.assertTrue(content.endswith(b"END:VCALENDAR\r\n"))
        self.assertLessEqual(max(len(line) for line in content.split(b"\r\n")), 75)
        self.assertNotRegex(content, rb"[^\r]\n|\r[^\n]")
        for line in content.split(b"\r\n"):
            line.decode()
        return content.replace(b"\r\n ", b"").decode().split("\r\n")


class Import(Calendar):
    def test_foreign_events(self):
        for name, parts, stored, messages in FOREIGN:
            with self.subTest(name):
                self.cfg.unlink(missing_ok=True)
                self.ics.write_bytes(calendar(*parts))
                out, err = self.tool("--termine-import", str(self.ics))
                self.assertEqual(self.shown(), stored)
                self.assertRegex(out, rf"^{len(stored)} Termine? übernommen")
                for message in messages:
                    self.assertIn(message, err)
                if not messages:
                    self.assertNotIn("Anders als", err)
                    self.assertNotIn("Nicht übernommen", err)
                out, _ = self.tool("--termine-import", str(self.ics))
                self.assertEqual((out[:2], self.shown()), ("0 ", stored))

    def test_counts_in_the_right_number(self):
        self.ics.write_bytes(calendar(SERIES, event("DTSTART:20261201T100000"), event("SUMMARY:a")))
        self.tool("--setze", "Termin=12.01.2026 18:00:00|3|nein| Kurs ")
        self.assertEqual(self.tool("--termine-import", str(self.ics))[0],
                         "1 Termin übernommen, 1 war schon da, 1 nicht übernommen.\n")
        self.assertEqual(self.tool("--termine-import", str(self.ics))[0],
                         "0 Termine übernommen, 2 waren schon da, 1 nicht übernommen.\n")

    def test_alarm_that_passes_between_two_readings(self):
        self.ics.write_bytes(calendar(event("SUMMARY:a", "DTSTART:20261123T180000", alarm(":-P1D"))))
        self.tool("--termine-import", str(self.ics), clock="2026-11-22 12:00:00")
        self.tool("--termine-import", str(self.ics))
        self.assertEqual(self.shown(), ["22.11.2026 18:00:00|0|ja|a"])

    def test_zone_in_which_it_is_still_yesterday(self):
        rule = "DTSTART;TZID=America/Los_Angeles:20260101T210000", "RRULE:FREQ=DAILY"
        self.ics.write_bytes(calendar(event(*rule)))
        self.tool("--termine-import", str(self.ics), clock="2026-11-23 05:00:00")
        self.assertEqual(self.shown(), ["23.11.2026 06:00:00|1|ja|"])

    def test_several_calendars_with_a_mark_and_other_line_ends(self):
        both = calendar(SERIES) + b"\n" + calendar(event("UID:o", "DTSTART:20261201T100000")) + calendar(SERIES)
        self.ics.write_bytes(b"\xef\xbb\xbf" + both.replace(b"\n", b"\r\n").replace(b"BEGIN:VC", b"begin:vc"))
        self.tool("--termine-import", "x.ics", cwd=self.ordner)
        self.assertEqual(self.shown(), ["23.11.2026 18:00:00|3|ja|Kurs", "01.12.2026 10:00:00|0|ja|"])

    def test_columns_of_others_are_kept(self):
        strange = [text("morgen"), integer(7), text("oft"), EMPTY, text("x")]
        self.cfg.write_bytes(self.elements(_20=table([strange], rows=5, lower=0)))
        events = [event("SUMMARY:a\\nb", "DTSTART:20261201T180000"), event("DTSTART:20200101T060000")]
        self.ics.write_bytes(calendar(*events))
        self.tool("--termine-import", str(self.ics))
        added = [[date(46357.75), text("a\r\nb"), integer(0), yes(True), EMPTY],
                 [date(43831.25), text(""), integer(0), yes(False), EMPTY]]
        self.assertEqual(self.cfg.read_bytes(), self.elements(_20=table([strange, *added], rows=5, lower=0)))

    def test_unusable_files_change_nothing(self):
        self.tool("--setze", "Termin=12.01.2027 18:00:00|3|ja|x")
        before = self.cfg.read_bytes()
        for name, content, message in REFUSED + [("missing", b"", "gibt es nicht"), ("folder", b"", "gibt es nicht")]:
            with self.subTest(name):
                self.ics.unlink(missing_ok=True)
                if name == "folder":
                    self.ics.mkdir()
                elif name != "missing":
                    self.ics.write_bytes(content or b"")
                if content is None:
                    os.truncate(self.ics, 100_000_000)
                out, err = self.tool("--termine-import", str(self.ics), code=1)
                self.assertEqual(out, "")
                self.assertIn(message, err)
                self.assertIn(str(self.ics), err)
                self.assertEqual(self.cfg.read_bytes(), before)

    def test_attachment_and_text_of_any_length(self):
        # Longer than what is read, in folded lines and in one.
        attachment = "ATTACH;ENCODING=BASE64;VALUE=BINARY:" + ("A" * 70 + "\n ") * 200_000 + "A" * 10_000_000
        self.ics.write_bytes(calendar(event("DTSTART:20261201T180000", attachment, "SUMMARY:" + "ä" * 70000)))
        _, err = self.tool("--termine-import", str(self.ics))
        self.assertEqual(self.shown(), ["01.12.2026 18:00:00|0|ja|" + "ä" * 65535])
        self.assertIn("auf 65535 Zeichen gekürzt", err)


class Export(Calendar):
    OWN = ["24.12.2026 18:00:00|0|ja|Bescherung, \"bald\"; \\n ist kein Umbruch\r\nZeile " + "äöü€" * 40,
           "01.01.2020 10:00:00|0|nein|vorbei", "24.11.2026 07:00:00|1|ja|", "24.11.2026 07:00:00|1|ja|",
           "27.11.2026 08:00:30|2|nein|Werk", "28.11.2026 20:15:00|2|ja|am Samstag", "25.11.2026 00:00:00|3|ja|a\ttab"]

    def store(self):
        for line in self.OWN:
            self.tool("--setze", "Termin=" + line)

    def test_round_trip(self):
        self.store()
        before, shown = self.cfg.read_bytes(), self.shown()
        self.assertEqual(self.tool("--termine-export", str(self.ics)), ("7 Termine exportiert.\n", ""))
        first = self.logical_lines()
        self.assertEqual(self.tool("--termine-import", str(self.ics))[0],
                         "0 Termine übernommen, 7 waren schon da.\n")
        self.cfg.unlink()
        self.tool("--setze", "Termin=" + self.OWN[2])
        self.assertEqual(self.tool("--termine-import", str(self.ics))[0],
                         "6 Termine übernommen, 1 war schon da.\n")
        self.cfg.unlink()
        self.tool("--termine-import", str(self.ics))
        self.assertEqual(self.shown(), shown)
        self.assertEqual(self.cfg.read_bytes(), before)
        self.tool("--termine-export", str(self.ics))
        self.assertEqual(self.logical_lines(), first)

    def test_what_others_read(self):
        self.store()
        self.tool("--termine-export", str(self.ics))
        lines = self.logical_lines()
        self.assertEqual(lines[:4], ["BEGIN:VCALENDAR", "PRODID:-//Lomrick//quillon//DE", "VERSION:2.0",
                                     "CALSCALE:GREGORIAN"])
        self.assertRegex(lines[6], "^DTSTAMP:20261123T1100..Z$")
        kept = [line for line in lines if re.match("DTSTART|RRULE|TRIGGER|X-LOMRICK-AKTIV", line)]
        workdays, on, off = "RRULE:FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR", "TRIGGER:PT0S", "X-LOMRICK-AKTIV:FALSE"
        self.assertEqual(kept, [
            "DTSTART:20261224T180000", on, "DTSTART:20200101T100000", off,
            *["DTSTART:20261124T070000", "RRULE:FREQ=DAILY", on] * 2,
            "DTSTART:20261127T080030", workdays, off,
            # The rule does not know the Saturday: it is an event of its own.
            "DTSTART:20261130T201500", workdays, on, "DTSTART:20261128T201500", on,
            "DTSTART:20261125T000000", "RRULE:FREQ=WEEKLY", on])
        self.assertIn('SUMMARY:Bescherung\\, "bald"\\; \\\\n ist kein Umbruch\\nZeile ' + "äöü€" * 40, lines)
        uids = [line for line in lines if line.startswith("UID:")]
        self.assertEqual(len(set(uids)), 8)

    def test_uid_stays_while_a_repetition_moves_on(self):
        uids = set()
        for moment in ["24.11.2026 07:00:00", "25.11.2026 07:00:00"]:
            self.cfg.unlink(missing_ok=True)
            self.tool("--setze", f"Termin={moment}|1|ja|x")
            uids.add(re.search("UID:.*", self.tool("--termine-export", "-")[0]).group())
        self.assertEqual(len(uids), 1)

    def test_replaces_calendars_only(self):
        self.store()
        for content in [b"", calendar(SERIES)]:
            self.ics.write_bytes(content)
            self.tool("--termine-export", str(self.ics))
            self.logical_lines()
        self.ics.write_bytes(b"Mein Roman")
        _, err = self.tool("--termine-export", str(self.ics), code=1)
        self.assertIn("keine Kalenderdatei", err)
        self.assertEqual(self.ics.read_bytes(), b"Mein Roman")
        for place in [self.ordner, self.ordner / "fehlt" / "x.ics"]:
            _, err = self.tool("--termine-export", str(place), code=1)
            self.assertIn("kann nicht geschrieben werden", err)

    def test_says_what_is_missing(self):
        self.cfg.write_bytes(self.elements(_20=table([[EMPTY] * 4, [date(400000.), EMPTY, EMPTY, EMPTY],
                                                         [date(402149.), EMPTY, EMPTY, EMPTY]])))
        out, err = self.tool("--termine-export", str(self.ics))
        self.assertEqual(out, "1 Termin exportiert.\n")
        self.assertEqual(err, "2 Einträge fehlen im Kalender: ohne lesbaren Zeitpunkt bis zum Jahr 3000.\n")
        self.cfg.write_bytes(b"This is no settings file.")
        self.tool("--termine-export", str(self.ics), code=1)


if __name__ == "__main__":
    quillon_test.QUILLON = os.path.abspath(sys.argv.pop(1))
    unittest.main()
