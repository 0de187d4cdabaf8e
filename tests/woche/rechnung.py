"""What the week has to bring, worked out from the guide, the marks, the appointments and the hours in which the machine
was awake: plain rules over lists, none of the program's code. All moments are local wall time."""
from dataclasses import dataclass, replace
from datetime import datetime, timedelta

ICH, VORLAUF, NACHLAUF, LOESCHTAGE = 'PC-BUERO', 1, 2, 2
EINMAL, TAEGLICH, WERKTAGS, WOECHENTLICH = range(4)
SCHLAF = timedelta(minutes=5)  # a shorter stop harms no recording


def minuten(n):
    return timedelta(minutes=n)


def grenztag(jetzt):
    return jetzt.replace(hour=0, minute=0, second=0, microsecond=0) - timedelta(days=LOESCHTAGE)


@dataclass
class Sendung:
    kanal: str
    titel: str
    beginn: datetime
    dauer: int

    @property
    def ende(self):
        return self.beginn + minuten(self.dauer)


@dataclass
class Marke:
    name: str | None  # of its broadcast in the guide; None once that is gone
    sendung: Sendung  # as the mark tells it: it keeps its title
    rechner: str = ICH
    erinnerung: datetime | None = None
    aufzeichnung: bool = False
    wiederkehrend: bool = False

    @property
    def text(self):
        return f'{self.sendung.beginn:%H:%M} {self.sendung.titel} ({self.sendung.kanal})'


@dataclass
class Termin:
    moment: datetime
    intervall: int
    texte: list  # more than one when a notice of several was put off
    aktiv: bool = True

    def weiter(self, jetzt):
        if self.intervall == EINMAL:
            self.aktiv = False
            return
        while self.moment <= jetzt:
            self.moment += timedelta(days=7 if self.intervall == WOECHENTLICH else 1)
            while self.intervall == WERKTAGS and self.moment.weekday() > 4:
                self.moment += timedelta(days=1)


class Rechnung:
    def __init__(self, termine):
        self.guide, self.marken, self.termine = {}, [], termine
        self.gezeigt, self.planung = set(), []  # reminders shown; all recordings that were ever planned
        self.wach = []  # [from, to, the program was started at the first of them]

    # --- the machine and the program ---

    def startet(self, jetzt):
        self.wach.append([jetzt, jetzt, True])
        self.pflege(jetzt)

    def wacht_auf(self, jetzt):
        self.wach.append([jetzt, jetzt, False])

    def schlaeft_ein(self, jetzt):
        self.wach[-1][1] = jetzt

    # --- reminders and appointments ---

    def faellig(self, jetzt):
        start = next(von for von, _, neu in reversed(self.wach) if neu)
        def ruft(m):
            # What passes while the program is there comes, however late; else only while the broadcast runs.
            return (m.rechner == ICH and m.erinnerung and m.erinnerung <= jetzt
                    and (m.erinnerung, m.text) not in self.gezeigt
                    and (m.erinnerung >= start.replace(second=0, microsecond=0) or m.sendung.ende > start))
        return [t for t in self.termine if t.aktiv and t.moment <= jetzt], [m for m in self.marken if ruft(m)]

    def texte(self, jetzt):
        termine, marken = self.faellig(jetzt)
        return sorted([text for t in termine for text in t.texte] + [m.text for m in marken])

    def zeigt(self, jetzt):
        """The notice is on the screen; returns what it says."""
        texte = self.texte(jetzt)
        termine, marken = self.faellig(jetzt)
        for termin in termine:
            termin.weiter(jetzt)
        self.gezeigt |= {(m.erinnerung, m.text) for m in marken}
        self.pflege(jetzt)
        return texte

    # --- guide and marks ---

    def markiert(self, name, vorher=None, **wie):
        s = replace(self.guide[name])
        self.marken.append(Marke(name, s, erinnerung=None if vorher is None else s.beginn - minuten(vorher), **wie))
        if self.marken[-1].aufzeichnung and self.marken[-1].rechner == ICH:
            self.planung.append(self.marken[-1])
        return self.marken[-1]

    def update(self, guide, von, jetzt):
        """A new guide, which begins at `von`; of what was before it the last days stay."""
        guide = {name: s for name, s in self.guide.items() if s.beginn < von} | guide
        for m in self.marken:
            neu = guide.get(m.name)
            if not neu:
                continue
            if m.erinnerung:
                m.erinnerung += neu.beginn - m.sendung.beginn
            m.sendung = replace(neu, titel=m.sendung.titel)
        self.guide = {name: s for name, s in guide.items() if s.ende >= grenztag(jetzt)}
        self.pflege(jetzt)

    def pflege(self, jetzt):
        grenze = grenztag(jetzt)
        markiert = {m.name for m in self.marken}
        serien = {(m.sendung.titel, m.sendung.kanal): m for m in self.marken if m.wiederkehrend and m.rechner == ICH}
        for (titel, kanal), m in serien.items():
            for name, s in self.guide.items():
                if (s.titel, s.kanal) == (titel, kanal) and s.beginn >= jetzt and name not in markiert:
                    self.marken.append(replace(m, name=name, sendung=replace(s),
                                               erinnerung=m.erinnerung + (s.beginn - m.sendung.beginn)))
        def bleibt(m):
            if m.rechner != ICH:
                return True
            if not m.wiederkehrend:
                return m.sendung.ende >= jetzt and m.sendung.beginn >= grenze
            return m.sendung.beginn >= grenze or not any(
                a.wiederkehrend and a.sendung.titel == m.sendung.titel and a.sendung.beginn > m.sendung.beginn
                for a in self.marken)
        # One that is due has been read, whatever becomes of its mark.
        offen = self.faellig(jetzt)[1] if self.wach else []
        self.marken = [m for m in self.marken if bleibt(m) or m in offen]
        for m in self.marken:
            if m.name not in self.guide:
                m.name = None

    # --- recordings ---

    def aufzeichnungen(self):
        """The lines of the log, and what the TV application is sent, by channel number and keys."""
        offen = sorted([m.sendung for m in self.planung], key=lambda s: s.beginn)
        zeilen, laufend, getippt, verspaetung, zusatz, letzter = [], None, [], 0, '', None
        fenster = lambda s: (s.beginn - minuten(VORLAUF), s.ende + minuten(NACHLAUF))
        def fertig(s, ergebnis):
            zeilen.append(f'{fenster(s)[0]:%d.%m.%Y %H:%M} | {s.kanal} | {s.titel} | {ergebnis}')
        for von, bis, neu in self.wach:
            jetzt, geschlafen = von, letzter is not None and von - letzter > SCHLAF
            while True:
                if laufend:
                    ende = fenster(laufend)[1]
                    if geschlafen and jetzt < ende and not neu:
                        zusatz = '; Rechner schlief währenddessen'
                    if bis < ende:
                        break
                    unterbrochen = jetzt >= ende and (geschlafen or neu)
                    jetzt, geschlafen = max(jetzt, ende), False
                    spaet = f', {verspaetung} min verspätet begonnen' if verspaetung else ''
                    fertig(laufend, ('unterbrochen' if unterbrochen else 'aufgezeichnet' + spaet) + zusatz)
                    getippt.append('rq')
                    laufend, zusatz = None, ''
                for s in [s for s in offen if fenster(s)[1] <= jetzt]:
                    fertig(s, 'verpasst: Programm lief nicht' if neu else 'verpasst: Rechner schlief')
                    offen.remove(s)
                laufend = next((s for s in offen if fenster(s)[0] < bis), None)
                if not laufend:
                    break
                offen.remove(laufend)
                beginn = fenster(laufend)[0]
                jetzt, geschlafen = max(jetzt, beginn), False
                verspaetung = (jetzt - beginn) // minuten(1)
                getippt.append(laufend.kanal + 'r')
            letzter = bis
        return zeilen, getippt
