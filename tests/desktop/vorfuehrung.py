"""What ./run --demo shows: an evening with the program in a desktop of its own, in two scenes. Each station says in a
line what happens and leaves a picture; at the end they make up a contact sheet. The clock is placed so that whatever
needs a full minute is near; between the scenes it is put forward, the rest is real time.

tools/demo starts it, with the folder for the pictures in WENDEL_BILDER. Ends with 1 at the first station that fails."""
import contextlib, datetime
from aufzeichnung import *

MENUE, UPDATE = 'Lomrick - Menü', 'Drumlet'
SCHRIFT = '/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf'
BREITE, HOEHE, SPALTEN, RAND = 672, 420, 4, 12  # of a picture on the contact sheet
HEUTE, MORGEN = '20261204', '20261205'  # a Friday
WETTER = 'Das Wetter in 40 Sekunden'
FILM = 'Die Glasbläserin'  # marked in the example guide for the next day at 20:15
GUIDE = [  # channel, from, to, title: the news are cut short for the weather, the film is put off
    ('Turmfernsehen', HEUTE + '200000', HEUTE + '200720', 'Turm-Nachrichten'),
    ('Turmfernsehen', HEUTE + '200720', HEUTE + '200800', WETTER),
    ('Turmfernsehen', HEUTE + '200800', HEUTE + '201500', 'Brennpunkt: Der erste Schnee'),
    ('Zinnober Film', MORGEN + '201500', MORGEN + '203000', 'Vor der Premiere'),
    ('Zinnober Film', MORGEN + '203000', MORGEN + '222000', FILM)]
MARKE = ('Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Aufzeichnung,KzAusblenden,Optionen) '
         "Select 'PC-BUERO',Pos,Titel,SenderKennung,#12/4/2026#,#20:07:20#,'1',true,0,'' from Sendungen "
         f"where Titel='{WETTER}'")


class Vorfuehrung(Aufzeichner):
    """The program over the example guide, with a stand-in for the TV application and a source for the live update."""

    def umgebung(self, uhr=None, **mehr):
        return super().umgebung(uhr or '2026-12-04 20:03:10', **mehr)

    def fuelle(self):
        quelle = os.path.join(self.ordner, 'guide.xml')
        with open(quelle, 'w', encoding='utf-8') as datei:
            print('<tv>', file=datei)
            for sender in dict.fromkeys(zeile[0] for zeile in GUIDE):
                print(f'<channel id="{sender}"><display-name>{sender}</display-name></channel>', file=datei)
            for sender, von, bis, name in GUIDE:
                print(f'<programme channel="{sender}" start="{von} +0100" stop="{bis} +0100"><title>{name}</title></programme>',
                      file=datei)
            print('</tv>', file=datei)
        self.quillon('--beispiel', XmltvQuelle=quelle, LiveUpdate='ja', LiveUpdateVersteckt='nein', Zeitplan='1111111 20:06')

    def szene(self, uhrzeit):
        self.anfang = datetime.datetime.fromisoformat('2026-12-04 ' + uhrzeit)
        self.starte(uhr=str(self.anfang))

    def uhrzeit(self):
        return f'{self.anfang + datetime.timedelta(seconds=time.monotonic() - self.beginn):%H:%M:%S}'

    def letztes_update(self):
        return lauf(QUILLON, '--ordner', self.ordner, '--zeige', 'LetztesUpdate', frist=30)


class Stationen:
    def __init__(self, programm):
        self.programm = programm
        self.gezeigt = []  # file and caption
        self.aktuell = 'noch vor der ersten Station'

    @contextlib.contextmanager
    def __call__(self, name, titel, text):
        """What is on the screen at its end goes into the picture."""
        nummer = len(self.gezeigt) + 1
        self.aktuell = f'an Station {nummer} ({titel}: {text})'
        yield
        time.sleep(0.4)  # painted
        name, uhrzeit = f'{nummer:02}-{name}', self.programm.uhrzeit()
        bild(name)
        datei = os.path.join(BILDER, name + '.png')
        assert os.path.exists(datei), 'no picture'
        self.gezeigt.append((datei, f'{nummer}  {titel}  ({uhrzeit})'))
        print(f'{nummer:2}  {uhrzeit}  {titel}: {text} [{name}.png]', flush=True)

    def kontaktbogen(self):
        self.aktuell = 'am Kontaktbogen'
        datei = os.path.join(BILDER, 'kontaktbogen.png')
        teile = [t for einzelbild, unterschrift in self.gezeigt for t in ('-label', unterschrift, einzelbild)]
        lauf('montage', '-font', SCHRIFT, '-pointsize', '18', '-background', '#f3f5f8', '-fill', '#1d2b3a', *teile, '-tile', f'{SPALTEN}x',
             '-geometry', f'{BREITE}x{HOEHE}+{RAND}+{RAND}', '-depth', '8', '-title', 'Lomrick: ein Abend in zwei Minuten', datei, frist=60)
        breite, hoehe = map(int, lauf('identify', '-format', '%w %h', datei).split())
        assert breite > SPALTEN * BREITE and hoehe > -(-len(self.gezeigt) // SPALTEN) * HOEHE, f'{breite}x{hoehe}'
        return datei


def male(f, *befehl):
    """A picture of ImageMagick's making as the background of a window, or of the desktop ("root")."""
    datei = os.path.join(os.environ['HEADLESS_DESKTOP'], 'hintergrund.png')
    lauf('convert', *befehl, datei, frist=30)
    lauf('display', '-window', f, datei, frist=30)


def testbild(text, *mehr):
    balken = [t for farbe in ('c8c8c8', 'c8c800', '00c8c8', '00c800', 'c800c8', 'c80000', '0000c8')
              for t in ('(', '-size', '58x250', 'xc:#' + farbe, ')')]
    male(fenster(TV)[0], *balken, '+append', '-crop', '400x250+0+0', '+repage', '-font', SCHRIFT, '-pointsize', '18', '-fill', 'white',
         '-undercolor', '#000000c0', '-gravity', 'south', '-annotate', '+0+14', f' {text} ', *mehr)


def zeige_auf_icon():
    x, y, b, h = warte(trayicon, 'the icon')[0]
    for i in range(3):  # the toolkit wants to see the pointer move before it shows a tooltip
        lauf('xdotool', 'mousemove', str(x + b // 2 - 3 + i), str(y + h // 2))
        time.sleep(0.1)
    return x + b // 2, y + h // 2


def oeffne_menue():
    klick(*zeige_auf_icon(), knopf=3)
    warte_aktiv(MENUE)


def menues(anzahl):
    warte(lambda: len(fenster(MENUE)) == anzahl, f'{anzahl} menu windows')


def untermenue(*tasten):
    taste(*tasten, 'Right')
    menues(2)


def schliesse_untermenue():
    taste('Escape')
    menues(1)
    warte_aktiv(MENUE)


def erste_szene(p, station):
    with station('symbol', 'Lomrick läuft', 'im Infobereich das Symbol mit dem nächsten Termin, daneben die Terminliste'):
        p.szene('20:04:44')
        warte_aktiv(LISTE)
        zeige_auf_icon()
        time.sleep(1.0)  # until the tooltip comes
    lauf('xdotool', 'mousemove', '20', '20')
    with station('hinweis', 'Erinnerung', 'die markierte Sendung meldet sich, zur vorgesehenen Sekunde'):
        warte_fenster(HINWEIS, 40)
    with station('schlummern', 'Erneut erinnern', 'in zwei Minuten noch einmal, bitte'):
        aktiviere(fenster(HINWEIS)[0])
        time.sleep(0.3)  # the guard of its OK
        taste('alt+Down', 'Down')
    taste('Return', 'alt+o')
    warte_weg(HINWEIS)
    with station('termin', 'Eigener Termin', 'jede Woche um diese Zeit, im Editor der Terminliste'):
        aktiviere(fenster(LISTE)[0])
        taste('Insert')
        warte_aktiv(EDITOR)
        tippe('21:30\tAnruf bei Oma', 'alt+c')
    taste('Return')
    warte_weg(EDITOR)
    with station('menue', 'Das Menü', 'der Tagestipp, was jetzt auf den Lieblingssendern läuft, und mehr'):
        oeffne_menue()
    with station('untermenue', 'Heute um 20:15', 'ein Untermenü, mit Bewertungen und dem Herz der Merkliste'):
        untermenue('Home', 'Down')
    with station('kurzzeit', 'Kurzzeiterinnerung', '"Erinnern in .. 3 Minuten", für die Nudeln'):
        schliesse_untermenue()
        untermenue('End', 'Up')
    taste('Return')
    menues(0)


def zweite_szene(p, station):
    vorher = p.letztes_update()
    with station('update', 'Live-Update', 'es ist Zeit dafür: skarvel holt das neue Programm'):
        p.szene('20:06:38')
        warte_fenster(UPDATE, 20)
        time.sleep(0.8)  # until the list knows the balance too; the window stays for two seconds
    with station('neues', 'Neues Programm', 'gleich kommt das Wetter, und der Film morgen, den die Liste kennt, beginnt später'):
        warte(lambda: p.letztes_update() != vorher, 'the update has succeeded', 30)
        warte_weg(UPDATE)
        oeffne_menue()
        untermenue('Home', 'Down', 'Down')
    schliesse_untermenue()
    taste('Escape')
    menues(0)
    p.sql(MARKE)  # what the guide does when its user marks a broadcast for recording
    p.sende('terminupdate')
    with station('angekuendigt', 'Aufzeichnung angekündigt', 'gerade im Programmführer markiert, beginnt sie in einer Minute'):
        warte_fenster(NOTIZ)
    with station('erneut', 'Und noch einmal', 'die zwei Minuten sind um, die Erinnerung ist wieder da'):
        warte_fenster(HINWEIS, 60)
    beantworte_hinweis('alt+o')
    with station('aufnahme', 'Aufnahme', 'das Skript startet die TV-Anwendung (hier einen Ersatz), schaltet um und nimmt auf'):
        warte_aktiv(TV, 60)
        p.warte_tasten('01r')
        testbild('1  Turmfernsehen', '-fill', '#ff2020', '-draw', 'circle 24,24 24,14')
        p.waechst()
    with station('schritte', 'Aufzeichnung läuft', 'so steht es in der Liste; das kleine Fenster kennt jeden Schritt des Skripts'):
        x, y, b, h = lage(warte_fenster(STATUS))
        aktiviere(fenster(LISTE)[0])
        klick(x + b // 2, y + h // 2)
    taste('Escape')
    with station('verlauf', 'Aufgezeichnet', 'die TV-Anwendung ist beendet, der Verlauf sagt, was aus der Aufzeichnung wurde'):
        p.warte_tasten('01rrq', 90)
        p.tv_weg()
        warte_weg(STATUS)
        aktiviere(fenster(LISTE)[0])
        taste('ctrl+h')
        warte_fenster(VERLAUF)
    taste('Escape')
    warte_weg(VERLAUF)
    with station('nudeln', 'Kurzzeiterinnerung', 'die Nudeln sind fertig'):
        warte_fenster(HINWEIS, 90)
    beantworte_hinweis('alt+o')
    with station('ende', 'Beenden', 'Symbol und Fenster verschwinden, die Termine sind gespeichert'):
        oeffne_menue()
        taste('End')
    taste('Return')
    assert p.prozess.wait(10) == 0, p.prozess.returncode
    warte(lambda: not trayicon(), 'the icon is gone')
    assert '04.12.2026 21:30:00|3|ja|Anruf bei Oma' in p.gespeichert(), p.gespeichert()


def fuehre_vor(p, stationen):
    male('root', '-size', '1024x640', 'gradient:#1f3a5c-#7f9fbf')
    erste_szene(p, stationen)
    p.beende()
    print('    Die Uhr wird vorgestellt, Lomrick startet neu und kennt alle Termine noch.', flush=True)
    zweite_szene(p, stationen)
    print('Kontaktbogen:', stationen.kontaktbogen())


stationen = Stationen(Vorfuehrung())
try:
    fuehre_vor(stationen.programm, stationen)
except Exception as fehler:
    bild('gescheitert')
    sys.exit(f'Die Vorführung ist gescheitert, {stationen.aktuell}.\nEinzelheit: {fehler or type(fehler).__name__}\n'
             f'Was zu sehen war: {os.path.join(BILDER, "gescheitert.png")}')
