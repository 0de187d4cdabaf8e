"""The machine of the week: the programs over one folder, the clock that they all follow, what is seen of them, and beside
each step what the calculation says. To be imported before everything else of the desktop tests."""
import html, os, signal, struct, sys
from datetime import timezone
from zoneinfo import ZoneInfo
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'desktop'))
from baum import *
from rechnung import *

NEBENAN = os.path.dirname(PROGRAMM)
TVSTANDIN, JETSQL = (os.path.join(NEBENAN, name) for name in ('tvstandin', 'jetsql'))
WOCHENUHR = os.environ['WENDEL_WOCHENUHR']
NOTIZ, STATUS, WARTEN, KOLLISION, MENUE, TV = ('Lomrick - Aufzeichnung', 'Lomrick - Aufzeichnungsskript', 'Aufzeichnung',
                                               'Datenzugriffskollision', 'Lomrick - Menü', 'Wochen-TV')
BERLIN = ZoneInfo('Europe/Berlin')
VORSATZ = 'Sie wollten sich erinnern lassen.'
KANAELE = {'ARD': ('Das Erste', '01'), 'ZDF': ('Zweites', '02'), 'RTL': ('RTL', '05')}
SKRIPT = '''<kestrin pirrow aufzeichnungsskript 1.0>
tvanwendungdatei={tv}
tvanwendungtitel=Wochen-TV
befehlanwendungstarten=anwendungstarten,{tv} --title Wochen-TV --log {log} --record "[TVAufzeichnungenPfad]"
befehlanwendungstarten=fensteraktivieren,[TVAnwendungtitel]
befehlkanalwechseln=tastensenden,[Kanal]
befehlaufnahmestarten=tastensenden,r
befehlaufnahmebeenden=fensteraktivieren,[TVAnwendungtitel]
befehlaufnahmebeenden=tastensenden,r
befehlanwendungbeenden=tastensenden,q
befehlanwendungbeenden=warten,1
'''
INS_KALENDERBLATT = 'BEGIN:VEVENT\nUID:{text}@woche\nDTSTAMP:20120101T000000Z\nDTSTART:{beginn}\n{regel}SUMMARY:{text}\nEND:VEVENT\n'


def utc(moment):
    return moment.replace(tzinfo=BERLIN).astimezone(timezone.utc)


def xmltv(guide, von, bis):
    """Of all channels, without a hole: what the story does not know lies between."""
    teile = ['<?xml version="1.0" encoding="UTF-8"?><tv>']
    teile += [f'<channel id="{k}"><display-name>{name}</display-name><display-name>{nr}</display-name></channel>'
              for k, (name, nr) in KANAELE.items()]
    def sende(kanal, beginn, ende, titel):
        teile.append(f'<programme start="{beginn:%Y%m%d%H%M%S} +0000" stop="{ende:%Y%m%d%H%M%S} +0000" channel="{kanal}">'
                     f'<title>{html.escape(titel)}</title></programme>')
    for kanal in KANAELE:
        frei = utc(von)
        eigene = sorted((s for s in guide.values() if s.kanal == kanal), key=lambda s: s.beginn)
        for s in [*eigene, Sendung(kanal, '', bis, 0)]:
            while frei < utc(s.beginn):
                ende = min(frei + minuten(240), utc(s.beginn))
                sende(kanal, frei, ende, f'Programm {frei:%d.%H%M}')
                frei = ende
            frei = utc(s.beginn) + minuten(s.dauer)
            if s.dauer:
                sende(kanal, utc(s.beginn), frei, s.titel)
    return ''.join(teile) + '</tv>'


def gleich(gefunden, erwartet):
    fehlt, extra = (sorted(e for e in a if a.count(e) > b.count(e)) for a, b in ((erwartet, gefunden), (gefunden, erwartet)))
    assert not fehlt and not extra, f'missing {fehlt}, extra {extra}'


def stimmt(pruefung):
    """What the program brings up to date from its event loop may come a moment later."""
    ende = time.monotonic() + 10
    while True:
        try:
            return pruefung()
        except AssertionError:
            if time.monotonic() > ende:
                raise
        time.sleep(0.2)


def bis(tun, bedingung, was):
    """Done again each time it had no effect: the first key after a window was activated may get lost on its way."""
    def versuch():
        tun()
        ende = time.monotonic() + 2
        while not (erreicht := bedingung()) and time.monotonic() < ende:
            time.sleep(0.02)
        return erreicht
    warte(versuch, was, 15)


class Maschine(Lomrick):
    def __init__(self, termine):
        super().__init__(datenbank=None)
        self.r = Rechnung(termine)
        self.geburt, self.gesehen, self.wanduhr, self.geschlafen = time.monotonic(), 0, 0, 0
        self.uhr = os.open(self.datei('uhr'), os.O_RDWR | os.O_CREAT)
        self.schreibe_uhr()
        self.tv = f'tv{os.getpid()}'
        shutil.copy(TVSTANDIN, self.datei(self.tv))
        os.mkdir(self.datei('Videos'))
        self.schreibe('woche.cfs', SKRIPT.format(tv=self.tv, log=self.datei('tv.log')))
        werte = [f'XmltvQuelle={self.datei("guide.xml")}', 'LiveUpdate=ja', 'Zeitplan=0100100 06:00', 'Skript=woche.cfs',
                 f'Aufzeichnungsordner={self.datei("Videos")}', f'Vorlauf={VORLAUF}', f'Nachlauf={NACHLAUF}',
                 f'Loeschtage={LOESCHTAGE}', 'Wiederholungen=1', *('Termin=' + self.als_text(t) for t in termine)]
        self.quillon('--anlegen', *(teil for wert in werte for teil in ('--setze', wert)))

    def datei(self, name):
        return os.path.join(self.ordner, name)

    def schreibe(self, name, text):
        with open(self.datei(name), 'w', encoding='utf-8') as datei:
            datei.write(text)

    def zeilen(self, name, kodierung='utf-8'):
        if not os.path.exists(self.datei(name)):
            return []
        with open(self.datei(name), encoding=kodierung) as datei:
            return datei.read().splitlines()

    # --- the clock ---

    def schreibe_uhr(self):
        os.pwrite(self.uhr, struct.pack('qq', self.wanduhr, self.geschlafen), 0)

    def weltzeit(self):
        return time.time() + self.wanduhr / 1e9

    def jetzt(self):
        return datetime.fromtimestamp(self.weltzeit(), BERLIN).replace(tzinfo=None)

    def stelle(self, moment, fold=0, schlaf=True):
        """Nothing runs while the machine sleeps: the program is held until both clocks have moved."""
        ns = int((moment.replace(tzinfo=BERLIN, fold=fold).timestamp() - self.weltzeit()) * 1e9)
        laeuft = self.prozess and self.laeuft()
        if laeuft:
            self.prozess.send_signal(signal.SIGSTOP)
        self.wanduhr += ns
        self.geschlafen += ns if schlaf else 0
        self.schreibe_uhr()
        if laeuft:
            self.prozess.send_signal(signal.SIGCONT)
            self.tickt()

    def tickt(self):
        """The program has seen the new time: it answers from the event loop that hears of it, the second time after it."""
        for _ in range(2):
            self.sende('tick')

    # --- what happens to it ---

    def an(self, moment):
        self.stelle(moment)
        self.r.startet(self.jetzt())
        self.starte('/m', uhr=None)

    def aus(self):
        self.r.schlaeft_ein(self.jetzt())
        self.beende()

    def stirbt(self):
        self.r.schlaeft_ein(self.jetzt())
        self.toete()

    def schlafe_bis(self, moment, sekunden=0.0, fold=0):
        """Sleeps; awake so many seconds after the moment, or before. No window is forgotten over that."""
        offen = [titel(f) for f in re.findall(r'0x[0-9a-f]+', lauf('xprop', '-root', '_NET_CLIENT_LIST'))]
        assert set(offen) <= {'panel', TV, STATUS, NOTIZ, ''}, f'{self.jetzt()}: {offen}'  # nameless: it is just going
        self.r.schlaeft_ein(self.jetzt())
        self.stelle(moment + timedelta(seconds=sekunden), fold)
        self.r.wacht_auf(self.jetzt())
        print(f'  {self.jetzt():%a %d.%m. %H:%M:%S}  {time.monotonic() - self.geburt:5.1f} s', flush=True)

    def doese_bis(self, moment):
        """Awake at the moment; before it, naps that are too short to harm a recording."""
        while (jetzt := self.jetzt()) < moment:
            naechster = min(moment - timedelta(seconds=0.7), jetzt + minuten(4))
            if naechster <= jetzt:
                time.sleep(0.1)
                continue
            self.r.schlaeft_ein(jetzt)
            self.stelle(naechster)
            self.r.wacht_auf(self.jetzt())

    def umgebung(self, uhr=None, **mehr):
        asan = os.environ.get('ASAN_OPTIONS', '') + ':verify_asan_link_order=0'
        return super().umgebung(uhr, LD_PRELOAD=WOCHENUHR, WOCHENUHR=self.datei('uhr'), ASAN_OPTIONS=asan,
                                PATH=self.ordner + ':' + os.environ['PATH'], **VORLESER, **mehr)

    def programm(self, name, *argumente):
        while True:
            lauf = subprocess.run([os.path.join(NEBENAN, name), *argumente], env=self.umgebung(), capture_output=True,
                                  text=True, timeout=60)
            if not lauf.stderr.startswith('(3260) '):  # somebody else is writing just now
                assert lauf.returncode == 0, lauf
                return lauf.stdout

    def quillon(self, *argumente):
        return self.programm('quillon', '--ordner', self.ordner, *argumente)

    def sql(self, anweisung):
        return [z.split('\t') for z in self.programm('jetsql', self.datei('tvdaten.mdb'), anweisung).splitlines()[1:]]

    def komprimiere(self):
        """Another program packs the database and puts it in the place of the old one."""
        self.programm('jetsql', self.datei('tvdaten.mdb'), '--komprimieren', self.datei('neu.mdb'))
        os.replace(self.datei('neu.mdb'), self.datei('tvdaten.mdb'))

    def sperre(self):
        sperre = subprocess.Popen([JETSQL, self.datei('tvdaten.mdb'), '--sperren', '120'], stdout=subprocess.PIPE,
                                  env=self.umgebung(), text=True)
        assert sperre.stdout.readline() == 'Gesperrt.\n'
        return sperre

    def importiere(self, *ereignisse):
        """Each with its text, its beginning in the calendar, a rule of repetition, and the moment that is to come of it."""
        inhalt = ''.join(INS_KALENDERBLATT.format(text=text, beginn=beginn, regel=regel) for text, beginn, regel, _ in ereignisse)
        self.schreibe('kalender.ics', f'BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//Test//Test//DE\n{inhalt}END:VCALENDAR\n')
        self.quillon('--termine-import', self.datei('kalender.ics'))
        self.r.termine += [Termin(moment, EINMAL, [text]) for text, _, _, moment in ereignisse]
        self.sende('refreshkonfig')

    def guide(self, guide, von, bis):
        self.neu = guide, von
        self.schreibe('guide.xml', xmltv(guide, von, bis))

    def update(self, wann):
        """The program has started it by itself, and it is through."""
        def letztes():
            return self.quillon('--zeige', 'LetztesUpdate').partition('=')[2].strip()
        warte(lambda: letztes().startswith(f'{wann:%d.%m.%Y %H:%M}'), f'the update of {wann}, not {letztes()}', 60)
        self.r.update(*self.neu, self.jetzt())
        stimmt(self.marken_stimmen)

    def markiere(self, name, rechner=ICH, **wie):
        s, m = self.r.guide[name], self.r.markiert(name, rechner=rechner, **wie)
        self.sql('Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,Optionen,'
                 f"Aufzeichnung,Aktualisierung,KzAusblenden) Select '{rechner}',Pos,Titel,SenderKennung,#{s.beginn:%m/%d/%Y}#,"
                 f"#12/30/1899 {s.beginn:%H:%M}:00#,'{s.dauer}',true,{bool(m.erinnerung)},'{self.optionen(m)}',"
                 f"{m.aufzeichnung},0,0 from Sendungen where Titel='{s.titel}' and Beginn=#{s.beginn:%m/%d/%Y %H:%M}:00#")

    # --- what is seen ---

    def hinweistexte(self):
        """The entries of the notice that is open, in no order."""
        label = next((k.get_name() for k in knoten(fensterbaum(HINWEIS)) if k.get_name().startswith(VORSATZ)), '')
        return sorted(text.strip('\r\n') for text in label.split(VORSATZ)[1:])

    def sieh(self, *texte):
        """The notice of everything that is due, which is what the story says."""
        warte(lambda: self.r.texte(self.jetzt()), f'{self.jetzt()}: something is due', 5)
        warte_fenster(HINWEIS, 20)
        def stimmt_ueberein():
            jetzt = self.jetzt()
            gleich(self.hinweistexte(), self.r.texte(jetzt))
            return jetzt
        jetzt = stimmt(stimmt_ueberein)
        assert self.r.zeigt(jetzt) == sorted(texte), (jetzt, texte)
        self.gesehen += 1

    def beantworte(self, antworte, name=HINWEIS):
        """A notice locks its answers for a moment each time it comes up."""
        f = warte_fenster(name)
        bis(lambda: antworte(f), lambda: not fenster(name), f'"{name}" is answered')

    def erlebe(self, *texte):
        self.sieh(*texte)
        self.beantworte(schliesse)

    def verschiebe(self, um, *texte):
        """The notice comes and is put off for so many minutes."""
        self.sieh(*texte)
        aktiviere(warte_fenster(HINWEIS))
        wahl = lambda: next(k.get_name() for k in knoten(fensterbaum(HINWEIS)) if k.get_role_name() == 'combo box')
        while (vorher := wahl()) != f'Erneut erinnern in {um} Minuten':
            bis(lambda: taste('Down'), lambda: wahl() != vorher, f'the row behind "{vorher}"')
        minute = self.jetzt().replace(second=0, microsecond=0)
        self.beantworte(lambda _: taste('alt+o'))
        self.r.termine.append(Termin(minute + minuten(um), EINMAL, list(texte)))

    def kurzzeitwecker(self):
        """Three minutes, the first of the tray menu's list."""
        x, y, b, h = warte(trayicon, 'the icon')[0]
        klick(x + b // 2, y + h // 2, knopf=3)
        aktiviere(warte_fenster(MENUE))
        time.sleep(0.3)
        bis(lambda: taste('End', 'Up', 'Right'), lambda: len(fenster(MENUE)) == 2, 'the list of alarms')
        taste('Return')
        warte_weg(MENUE)
        self.r.termine.append(Termin(self.jetzt() + minuten(3), EINMAL, ['']))

    def nichts(self):
        """Long enough for a tick and the wait before a notice."""
        bleibt(lambda: not fenster(HINWEIS), f'{self.jetzt()}: nothing is due', 3)
        assert not self.r.texte(self.jetzt())

    def getippt(self):
        return ''.join(z[1] for z in self.zeilen('tv.log') if z[0] == '+')

    def nimmt_auf(self, s):
        """It runs, and is noted as running."""
        warte(lambda: fenster(TV) and any(z.startswith('laeuft\t') and z.endswith(s.titel) for z in self.zeilen('aufzeichnung.txt')),
              f'{s.titel} is recorded', 30)

    def schreibt_ins_protokoll(self, s):
        warte(lambda: any(f' | {s.titel} | ' in z for z in self.zeilen('aufzeichnungen.log')), f'{s.titel} is told of', 30)

    # --- what is stored ---

    @staticmethod
    def optionen(m):
        return ';'.join(['Wiederkehrend=1'] * m.wiederkehrend + ([f'Erinnerungszeit={m.erinnerung:%Y%m%d%H%M}'] if m.erinnerung else []))

    @staticmethod
    def als_text(t):
        return f'{t.moment:%d.%m.%Y %H:%M:%S}|{t.intervall}|{"ja" if t.aktiv else "nein"}|{t.texte[0]}'

    def marken_stimmen(self):
        """The marks of both computers, each with its broadcast, if it has one, and no other broadcast knows itself as marked."""
        gemerkt = {pos: (titel, beginn) for pos, titel, beginn in self.sql(
            'Select Pos,Titel,Beginn from Sendungen Where KzInFavoritenListe=true')}
        gefunden = [(rechner, titel, kanal, tag[:10] + uhrzeit[10:], *werte, *gemerkt.get(pos, ('', '')))
                    for rechner, titel, kanal, tag, uhrzeit, *werte, pos in self.sql(
                        'Select User,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Aufzeichnung,Optionen,Pos from Markierungen')]
        erwartet = []
        for m in self.r.marken:
            s, g = m.sendung, self.r.guide.get(m.name)
            erwartet.append((m.rechner, s.titel, s.kanal, str(s.beginn), str(s.dauer), str(-m.aufzeichnung), self.optionen(m),
                             *((g.titel, str(g.beginn)) if g else ('', ''))))
        gleich(gefunden, erwartet)
        assert len(gemerkt) == len({m.name for m in self.r.marken if m.name}), gemerkt
