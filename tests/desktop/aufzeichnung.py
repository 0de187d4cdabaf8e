"""Recordings from the mark in the database to the line in the log, with a stand-in for the TV application and with the
players of the example scripts: aufzeichnung.py abend|abbruch|pannen|mpv|vlc. VLC refuses to run as root, and is tried
by hand: runuser -u nobody -- headless-desktop -- python3 aufzeichnung.py vlc"""
import glob, sys
from hilfe import *

NEBENAN = os.path.dirname(PROGRAMM)
TVSTANDIN, JETSQL = (os.path.join(NEBENAN, name) for name in ('tvstandin', 'jetsql'))
SKRIPTE = os.path.join(HIER, '..', '..', 'assets', 'skripte')
NOTIZ, STATUS, VERLAUF, FEHLER = ('Lomrick - Aufzeichnung', 'Lomrick - Aufzeichnungsskript',
                                  'Lomrick - Aufzeichnungen', 'Aufzeichnung')
TITEL, TV = 'Tatort: Der Fall/2', 'Prüf-TV'
SKRIPT = '''<kestrin pirrow aufzeichnungsskript 1.0>
tvanwendungdatei={tv}
tvanwendungtitel=Prüf-TV
befehlanwendungstarten=anwendungstarten,{tv} --title "[TVAnwendungtitel]" --log {log} --record "[TVAufzeichnungenPfad]" {wie}
befehlanwendungstarten=fensteraktivieren,[TVAnwendungtitel]
befehlkanalwechseln=fensteraktivieren,[TVAnwendungtitel]
befehlkanalwechseln=tastensenden,[Kanal]
befehlkanalwechseln=warten,0.5
befehlaufnahmestarten=tastensenden,r
befehlaufnahmebeenden=fensteraktivieren,[TVAnwendungtitel]
befehlaufnahmebeenden=tastensenden,r
befehlanwendungbeenden=tastensenden,q
befehlanwendungbeenden=warten,0.5
befehlanwendungbeenden=terminieren,{tv}
'''


class Loginverwalter:
    """The system bus of this desktop, with a stand-in for the login manager."""

    def __init__(self):
        adresse = '--address=' + os.environ['DBUS_SYSTEM_BUS_ADDRESS']
        bus = subprocess.Popen(['dbus-daemon', '--session', '--nofork', '--nopidfile', '--print-address', adresse],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        bus.stdout.readline()
        self.datei = os.path.join(os.environ['HEADLESS_DESKTOP'], 'login')
        with open(self.datei, 'w') as ausgabe:
            subprocess.Popen(['/usr/bin/python3', os.path.join(HIER, 'loginverwalter.py')], stdout=ausgabe)
        warte(lambda: self.zeilen(), 'the login manager')

    def zeilen(self):
        return open(self.datei).read().splitlines()

    def warte(self, *zeilen):
        warte(lambda: self.zeilen()[1:] == list(zeilen), f'the login manager was told {zeilen}', 5)


class Aufzeichner(Lomrick):
    """A programme folder with one channel, one broadcast 20:15 to 20:16 marked for recording, and a script."""

    def __init__(self, wie='', **einstellungen):
        super().__init__(datenbank=None)
        if not os.path.exists(JETSQL):
            skip('jetsql is not built')
        self.rec = os.path.join(self.ordner, 'Videos')
        os.mkdir(self.rec)
        self.log = os.path.join(self.ordner, 'tv.log')
        # A name of its own: "terminieren" ends all programs of that name.
        self.tv = f'tv{os.getpid()}'
        shutil.copy(TVSTANDIN, os.path.join(self.ordner, self.tv))
        with open(os.path.join(self.ordner, 'probe.cfs'), 'w', encoding='utf-8') as datei:
            datei.write(SKRIPT.format(tv=self.tv, log=self.log, wie=wie))
        self.quillon('--anlegen', Skript='probe.cfs', TVOrdner=self.ordner, Aufzeichnungsordner=self.rec, Vorlauf=0,
                     Nachlauf=0, Debuganzeige='ja', **einstellungen)
        self.fuelle()

    def fuelle(self):
        self.sql("Insert Into Sender (Bezeichnung,Senderkennung,Favorit) Values ('07 Das Erste','ARD',true)",
                 "Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Aufzeichnung,"
                 f"KzAusblenden,Optionen) Values ('PC-BUERO',1,'{TITEL}','ARD',#12/24/2012#,#20:15:00#,'1',true,0,'')")

    def umgebung(self, uhr=None, **mehr):
        return super().umgebung(uhr, PATH=self.ordner + ':' + os.environ['PATH'], **mehr)

    def quillon(self, *argumente, **einstellungen):
        for name, wert in einstellungen.items():
            argumente += '--setze', f'{name}={wert}'
        subprocess.run([QUILLON, '--ordner', self.ordner, *argumente], check=True, env=self.umgebung(),
                       stdout=subprocess.DEVNULL)

    def sql(self, *anweisungen):
        for anweisung in anweisungen:
            lauf = subprocess.run([JETSQL, os.path.join(self.ordner, 'tvdaten.mdb'), anweisung], capture_output=True)
            assert lauf.returncode == 0, lauf

    def liste(self):
        """What the TV application saw, without the window events that depend on the window manager."""
        zeilen = open(self.log, encoding='utf-8').read().splitlines() if os.path.exists(self.log) else []
        return [z.split(' /')[0] for z in zeilen
                if z[0] in '+-' or z.split()[0] in ('map', 'record', 'stop', 'close', 'end')]

    def warte_tasten(self, text, sekunden=10):
        """Everything that was typed into it since its start."""
        getippt = lambda: ''.join(z[1:] for z in self.liste() if z[0] == '+')
        warte(lambda: getippt() == text, f'"{text}" typed, not "{getippt()}"', sekunden)

    def videos(self):
        return sum(os.path.getsize(f) for f in glob.glob(self.rec + '/*'))

    def waechst(self, sekunden=5):
        vorher = self.videos()
        warte(lambda: self.videos() > vorher, 'the file grows', sekunden)

    def warte_protokoll(self, ergebnis, sekunden):
        datei = os.path.join(self.ordner, 'aufzeichnungen.log')
        zeilen = lambda: open(datei, encoding='utf-8').read().splitlines() if os.path.exists(datei) else []
        warte(zeilen, 'the line in the log', sekunden)
        assert zeilen() == [f'24.12.2012 20:15 | ARD | {TITEL} | {ergebnis}'], zeilen()

    def uhr_wird(self, sekunde):
        """Waits until the program's clock shows 20:15 and so many seconds."""
        rest = self.beginn + sekunde - self.start - time.monotonic()
        assert rest > -1, f'late by {-rest:.1f} s'
        time.sleep(max(0, rest))

    def ab(self, sekunde, *argumente):
        """Starts the program at 20:15 and so many seconds; negative ones are before."""
        self.start = sekunde
        minute, rest = divmod(20 * 3600 + 15 * 60 + sekunde, 60)
        return self.starte(*argumente, uhr=f'2012-12-24 {minute // 60:02}:{minute % 60:02}:{rest:02}')

    def tv_weg(self):
        warte(lambda: not fenster(TV) and not lauf('pgrep', '-x', self.tv), 'the TV application has ended', 5)


def abend():
    """As it should be: announced, started, watched, stopped, closed, and told afterwards."""
    login, p = Loginverwalter(), Aufzeichner()
    p.ab(-14, '/m')
    notiz = warte_fenster(NOTIZ, 8)
    time.sleep(0.3)  # painted
    bild('aufzeichnung-1-hinweis')
    login.warte('sleep:idle Lomrick Lomrick zeichnet eine Sendung auf. block')
    assert not p.liste(), 'nothing is started before its time'
    p.uhr_wird(0)
    warte_weg(NOTIZ, 3)
    warte_aktiv(TV)
    p.warte_tasten('07r')
    status = warte_fenster(STATUS)
    bild('aufzeichnung-2-start')
    assert int(aktiv(), 16) == int(fenster(TV)[0], 16), 'the status window takes no focus'
    p.waechst()
    p.uhr_wird(30)
    p.sende('showwendel')
    aktiviere(warte_fenster(LISTE))
    time.sleep(0.3)
    bild('aufzeichnung-3-liste')
    # The menu stays open and holds the keyboard; the script gets its keys through all the same.
    x, y, breite, hoehe = lage(status)
    klick(x + breite // 2, y + hoehe // 2)
    time.sleep(0.5)
    assert int(aktiv(), 16) == int(fenster(LISTE)[0], 16), 'nor does it take the focus when it is clicked'
    bild('aufzeichnung-4-verlauf')
    p.warte_tasten('07rrq', 40)
    p.tv_weg()
    p.warte_protokoll('aufgezeichnet', 5)
    assert p.liste() == ['map', '+0', '-0', '+7', '-7', '+r', 'record', '-r', '+r', 'stop', '-r', '+q', 'end'], p.liste()
    login.warte('sleep:idle Lomrick Lomrick zeichnet eine Sendung auf. block', 'frei')
    warte_weg(STATUS, 3)
    aktiviere(warte_fenster(LISTE))
    taste('ctrl+h')
    warte_fenster(VERLAUF)
    time.sleep(0.5)
    bild('aufzeichnung-5-ergebnis')
    p.beende()


def abbruch():
    """Killed in the middle, started again inside the window and after it."""
    login, p = Loginverwalter(), Aufzeichner()
    p.ab(5, '/m')
    p.warte_tasten('07r')
    p.waechst()
    time.sleep(1)  # noted
    p.toete()
    login.warte('sleep:idle Lomrick Lomrick zeichnet eine Sendung auf. block', 'frei')
    p.waechst()
    p.ab(25, '/m')
    warte(lambda: len(login.zeilen()) == 4, 'awake again')
    bleibt(lambda: p.liste().count('map') == 1, 'nothing is started twice', 4)
    p.warte_tasten('07r')
    p.toete()
    p.ab(75, '/m')
    p.warte_tasten('07rrq', 15)
    p.tv_weg()
    p.warte_protokoll('unterbrochen', 5)
    p.beende()


def nie():
    """The application never opens its window."""
    p = Aufzeichner('--after never').ab(30, '/m')
    warte_fenster(STATUS, 10)
    for _ in range(5):
        beginn = time.monotonic()
        p.sende('refreshkonfig')
        assert time.monotonic() - beginn < 2, 'answers while the script waits'
        time.sleep(1)
    warte_fenster(FEHLER, 20)
    time.sleep(0.3)
    bild('aufzeichnung-6-kein-fenster')
    p.tv_weg()
    p.warte_protokoll('fehlgeschlagen in Zeile 5: Der Befehl "fensteraktivieren,Prüf-TV" schlug fehl, da ein Fenster '
                      'mit dem Titel "Prüf-TV" 15 Sekunden lang nicht gefunden werden konnte.', 40)
    p.beende()


def haengt():
    """It stops listening in the middle: it is ended by its name."""
    p = Aufzeichner('--hang 6').ab(42, '/m')
    p.warte_tasten('07r')
    p.warte_protokoll('aufgezeichnet', 40)
    p.tv_weg()
    p.beende()


def schliesst():
    """It closes in the middle: the end fails, and says so."""
    p = Aufzeichner('--exit 6').ab(42, '/m')
    p.warte_tasten('07r')
    p.warte_protokoll('aufgezeichnet; Ende fehlgeschlagen in Zeile 10: Der Befehl "fensteraktivieren,Prüf-TV" schlug '
                      'fehl, da ein Fenster mit dem Titel "Prüf-TV" 15 Sekunden lang nicht gefunden werden konnte.', 50)
    warte_fenster(FEHLER)
    time.sleep(0.3)
    bild('aufzeichnung-7-geschlossen')
    p.beende()



def umschalten():
    """"Im TV zeigen" in the tray menu: the application is started once, then only switched."""
    p = Aufzeichner()
    p.sql("Insert Into Sender (Bezeichnung,Senderkennung,Favorit) Values ('8 Zwei','ZDF',true)",
          *("Insert Into Sendungen (SenderKennung,Beginn,Ende,Titel,Dauer) Values "
            f"('{sender}',#12/24/2012 19:45:00#,#12/24/2012 20:14:00#,'Jetzt','29')" for sender in ('ARD', 'ZDF')))
    p.ab(-300, '/m')
    warte(trayicon, 'the icon')
    x, y, breite, hoehe = trayicon()[0]
    for zeile, getippt in ((3, '07'), (4, '0708')):
        klick(x + breite // 2, y + hoehe // 2, knopf=3)
        aktiviere(warte_fenster('Lomrick - Menü'))
        taste('Home', *['Down'] * zeile, 'Menu')
        time.sleep(0.3)  # painted
        bild('aufzeichnung-9-im-tv')
        taste('i')
        p.warte_tasten(getippt)
        time.sleep(1)  # the rest of the script
    assert p.liste().count('map') == 1, p.liste()
    p.beende()


def kanal(datei, farbe, ton):
    """Some noise of this colour as an MPEG transport stream, what a receiver would give."""
    lauf('mpv', '--no-config', f'av://lavfi:color={farbe}:size=320x240:rate=25:duration=60,noise=alls=40:allf=t',
         f'--audio-file=av://lavfi:sine=frequency={ton}:duration=60', '--vf=fps=25', '--o=' + datei, '--of=mpegts',
         '--ovc=mpeg2video', '--ovcopts=b=800k', '--oac=mp2', frist=60)


def spieler(name, titel, dateiname):
    """The example script with a real player: the second channel is in the file, and the file plays."""
    if not all(shutil.which(programm) for programm in ('mpv', name)):
        skip(f'{name} is not installed')
    p = Aufzeichner()
    for nummer, farbe in enumerate(('red', 'blue'), 1):
        kanal(f'{p.ordner}/{farbe}.ts', farbe, nummer * 440)
        with open(f'{p.ordner}/0{nummer}.m3u', 'w') as einer, open(p.ordner + '/sender.m3u', 'a') as alle:
            einer.write(farbe + '.ts\n')
            alle.write(farbe + '.ts\n')
    shutil.copy(os.path.join(SKRIPTE, 'mpv-tasten.conf'), p.ordner)
    p.quillon(Skript=os.path.abspath(os.path.join(SKRIPTE, name + '.cfs')))
    p.sql("Update Sender Set Bezeichnung='02 Das Zweite'")
    p.ab(20, '/m')
    warte_aktiv(titel, 20)
    p.waechst(20)
    p.waechst(20)
    bild('aufzeichnung-8-' + name)
    p.warte_protokoll('aufgezeichnet', 40)
    warte_weg(titel)
    p.beende()
    (datei,) = glob.glob(p.rec + '/*')
    assert re.fullmatch(dateiname, os.path.basename(datei)), datei
    lauf('mpv', '--no-config', '--ao=null', '--vo=image', '--vo-image-outdir=' + p.ordner, '--start=1', '--frames=1',
         datei, frist=30)
    farbe = lauf('convert', p.ordner + '/00000001.jpg', '-resize', '1x1!', '-format',
                 '%[fx:int(255*r)] %[fx:int(255*b)]', 'info:')
    rot, blau = map(int, farbe.split())
    assert blau > 100 > rot, f'not the second channel: {farbe}'


def mpv():
    spieler('mpv', 'Lomrick TV mit mpv', r'20121224-2015\d\d-Tatort--Der-Fall-2\.ts')


def vlc():
    spieler('vlc', 'Lomrick TV mit VLC Tatort--Der-Fall-2 - VLC media player',
            r'vlc-record-.*-Lomrick TV mit VLC Tatort--Der-Fall-2-\.ts')


FAELLE = {'abend': [abend], 'abbruch': [abbruch, umschalten], 'pannen': [nie, haengt, schliesst], 'mpv': [mpv], 'vlc': [vlc]}
if __name__ == '__main__':
    pruefe_alle(*FAELLE[sys.argv[1]])
