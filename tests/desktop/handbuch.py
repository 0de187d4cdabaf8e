"""The pictures of the handbook, taken of the real program on the example guide and cut to the windows that they show. Those
in docs/bilder, which the documents show, must still be made here, each in much the same size. To take new ones there:
cp build/screenshots/handbuch/*.png docs/bilder"""
from hilfe import *

DOKU = os.path.join(HIER, '..', '..', 'docs')
ZIEL = os.path.join(BILDER, 'handbuch')
NEBENAN = os.path.dirname(PROGRAMM)
JETSQL, SKARVEL = os.path.join(NEBENAN, 'jetsql'), os.path.join(NEBENAN, 'skarvel')
MENUE, NOTIZ, STATUS, VERLAUF, FEHLER = ('Lomrick - Menü', 'Lomrick - Aufzeichnung', 'Lomrick - Aufzeichnungsskript',
                                         'Lomrick - Aufzeichnungen', 'Aufzeichnung')
BREITE, HOEHE = map(int, lauf('xdotool', 'getdisplaygeometry').split())
RAND = 12  # around what a picture shows
GRUND = 0x8fa7bd  # the empty desktop
SKRIPT = '''<kestrin pirrow aufzeichnungsskript 1.0>
tvanwendungtitel=mpv
befehlanwendungstarten=anwendungstarten,mpv sender.m3u
befehlkanalwechseln=warten,0.5
befehlkanalwechseln=warten,8
befehlaufnahmestarten=anwendungstarten,aufnahme --los
'''
PROTOKOLL = '''28.11.2026 20:10 | KLEEBL | Taxi nach Triest | aufgezeichnet
29.11.2026 16:05 | MOSAIK | Wege der Sehnsucht | verpasst: Rechner schlief
30.11.2026 22:40 | RUBIN | Nachteulen | aufgezeichnet, 3 min verspätet begonnen
'''
gemacht = {}


def faerbe_grund():
    x = ctypes.CDLL('libX11.so.6')
    x.XOpenDisplay.restype = ctypes.c_void_p
    x.XDefaultRootWindow.restype = ctypes.c_ulong
    d = ctypes.c_void_p(x.XOpenDisplay(None))
    wurzel = ctypes.c_ulong(x.XDefaultRootWindow(d))
    x.XSetWindowBackground(d, wurzel, ctypes.c_ulong(GRUND))
    x.XClearWindow(d, wurzel)
    x.XCloseDisplay(d)


def groesse(datei):
    """Width, height, and number of colours."""
    return tuple(map(int, lauf('identify', '-format', '%w %h %k', datei).split()))


def foto(name, *rechtecke, rand=RAND):
    """The smallest picture with all these rectangles in it; of few colours, as a document wants it small."""
    time.sleep(0.5)  # painted
    links, oben = (max(0, min(r[i] for r in rechtecke) - rand) for i in (0, 1))
    rechts = min(BREITE, max(x + b for x, _, b, _ in rechtecke) + rand)
    unten = min(HOEHE, max(y + h for _, y, _, h in rechtecke) + rand)
    datei = os.path.join(ZIEL, name + '.png')
    lauf('import', '-window', 'root', '-crop', f'{rechts - links}x{unten - oben}+{links}+{oben}', '+repage', '-strip',
         '-depth', '8', '-treedepth', '8', '+dither', '-colors', '256', '-define', 'png:compression-level=9',
         '-define', 'png:compression-filter=0', 'png8:' + datei, frist=30)
    gemacht[name + '.png'] = groesse(datei)


def ganz(f):
    """Of a window with its title and edges."""
    x, y, b, h = lage(f)
    links, rechts, oben, unten = map(int, re.findall(r'\d+', lauf('xprop', '-id', f, '_NET_FRAME_EXTENTS')))
    return x - links, y - oben, b + links + rechts, h + oben + unten


def stelle(f, x, y):
    lauf('xdotool', 'windowmove', f, str(x), str(y))
    warte(lambda: abs(lage(f)[0] - x) < 9, 'the window has moved')
    return f


def icon():
    return warte(trayicon, 'the icon')[0]


def zeige_auf(x, y):
    for i in range(3):  # the toolkit wants to see the pointer move
        lauf('xdotool', 'mousemove', str(x - 3 + i), str(y))
        time.sleep(0.1)


def menues(anzahl):
    return warte(lambda: [f] if len(f := fenster(MENUE)) == anzahl else None, f'{anzahl} menu windows')[0]


def in_menue(f, zeile, tipp=80):
    x, y, _, _ = lage(f)
    return x + 60, y + 3 + tipp + zeile * 20 + 10


def oeffne_menue():
    x, y, b, h = icon()
    klick(x + b // 2, y + h // 2, knopf=3)
    return menues(1)[0]


def untermenue(oben, zeile):
    zeige_auf(*in_menue(oben, zeile))
    return next(f for f in menues(2) if f != oben)


def ueberblick_und_liste(p):
    p.starte(uhr='2026-12-01 19:12:20')
    liste = stelle(warte_aktiv(LISTE), 20, 40)
    klick(330, 178, knopf=3)
    foto('liste-menue', ganz(liste))
    taste('Escape')
    oben = oeffne_menue()
    kind = untermenue(oben, 1)
    foto('ueberblick', ganz(liste), lage(oben), lage(kind), icon())
    klick(5, HOEHE - 10)
    menues(0)
    aktiviere(liste)
    taste('ctrl+h')
    foto('aufzeichnungen', ganz(stelle(warte_aktiv(VERLAUF), 40, 60)), rand=0)
    taste('Escape')
    warte_weg(VERLAUF)


def editor(p):
    p.sende('createtermin')
    f = warte_aktiv(EDITOR)
    taste('shift+Tab', 'ctrl+a')
    tippe('3.12.2026\t19:30\tChorprobe', 'alt+c')
    foto('editor', ganz(f), rand=0)
    taste('alt+d', 'F4')
    foto('kalender', ganz(f), rand=0)
    taste('Escape', 'Escape')
    warte_weg(EDITOR)
    schliesse(warte_fenster(LISTE))
    warte_weg(LISTE)


def icon_und_menue():
    x, y, b, h = icon()
    zeige_auf(x + b // 2, y + h // 2)
    time.sleep(1)
    foto('tipp', (x - 410, y - 30, 410 + b, 30 + h), rand=0)
    oben = oeffne_menue()
    kind = untermenue(oben, 1)
    klick(*in_menue(kind, 2, tipp=0), knopf=3)
    foto('menue', lage(oben), lage(kind), icon())
    taste('Escape')  # of the entry; the click leaves the others
    klick(20, 20)
    menues(0)
    oben = oeffne_menue()
    kind = untermenue(oben, (lage(oben)[3] - 86) // 20 - 2)
    foto('kurzzeit', lage(oben), lage(kind), icon())
    klick(20, 20)
    menues(0)


def hinweis(p):
    quillon(p, Termin='01.12.2026 19:12:00|0|ja|Kuchen aus dem Ofen nehmen')
    p.sende('refreshkonfig')
    f = stelle(warte_fenster(HINWEIS), 300, 100)
    foto('hinweis', ganz(f))
    aktiviere(f)
    time.sleep(0.3)  # the guard of its OK
    taste('Tab', 'alt+Down')
    x, y, b, h = ganz(f)
    foto('schlummern', (x, y, b, h + 235))
    taste('Escape', 'alt+o')
    warte_weg(HINWEIS)


def aufzeichnung(p):
    quillon(p, Verpasste='nein')
    p.starte('/m', uhr='2026-12-01 20:09:48')
    foto('aufzeichnung-hinweis', ganz(warte_fenster(NOTIZ)))
    status = warte_fenster(STATUS, 20)
    warte_weg(NOTIZ)
    time.sleep(2)  # some steps
    x, y, b, h = lage(status)
    klick(x + b // 2, y + h // 2)
    foto('aufzeichnung-skript', (x, y - 130, b, h + 130), icon())
    taste('Escape')
    f = warte_fenster(FEHLER, 20)
    foto('aufzeichnung-fehler', ganz(f))
    aktiviere(f)
    taste('Return')
    warte_weg(FEHLER)


def live_update(p):
    s = subprocess.Popen([SKARVEL], env=p.umgebung('2026-12-01 19:12:20'))
    foto('liveupdate', ganz(warte_aktiv('Drumlet')))
    taste('Escape')
    assert s.wait(10) == 0


def ende(p):
    p.sende('showwendel')
    warte_aktiv(LISTE)
    taste('Menu', 'e')
    foto('beenden', ganz(warte_aktiv('Lomrick schließen')), rand=0)
    taste('alt+n')
    assert p.prozess.wait(10) == 0


def quillon(p, *argumente, **einstellungen):
    for name, wert in einstellungen.items():
        argumente += '--setze', f'{name}={wert}'
    subprocess.run([QUILLON, '--ordner', p.ordner, *argumente], check=True, env=p.umgebung('2026-12-01 18:00:00'),
                   stdout=subprocess.DEVNULL)


def neu():
    """The example guide as it is made on that evening, some more marks, and appointments of every kind."""
    p = Lomrick(datenbank=None)
    quillon(p, '--anlegen', '--beispiel', Skript='mpv.cfs', Debuganzeige='ja', LiveUpdate='ja', Autostart='ja',
            XmltvBefehl='tv_grab_ch_search --days 14')
    for termin in ('02.12.2026 06:30:00|2|ja|Aufstehen', '01.12.2026 21:00:00|1|ja|Tabletten nehmen',
                   '06.12.2026 09:00:00|0|ja|Stiefel vor die Tür stellen', '07.12.2026 17:45:00|3|ja|Mülltonne an die Straße',
                   '30.11.2026 18:00:00|0|nein|Adventskranz holen'):
        quillon(p, Termin=termin)
    for anweisung in ("Update Markierungen Set Aufzeichnung=true Where Sendung='Der Schatten am Pass'",
                      "Update Markierungen Set Erinnerung=true Where Sendung='Abend der Stimmen'",
                      "Delete from Markierungen Where Sendung='Wege der Sehnsucht'"):
        lauf(JETSQL, os.path.join(p.ordner, 'tvdaten.mdb'), anweisung)
    for datei, inhalt in (('mpv.cfs', SKRIPT), ('aufzeichnungen.log', PROTOKOLL), ('mpv', '#!/bin/sh\nexec sleep 60\n')):
        with open(os.path.join(p.ordner, datei), 'w', encoding='utf-8') as ausgabe:
            ausgabe.write(inhalt)
    os.chmod(os.path.join(p.ordner, 'mpv'), 0o755)
    return p


def pruefe_dokumente():
    bilder = os.path.join(DOKU, 'bilder')
    seiten = [os.path.join(DOKU, name) for name in os.listdir(DOKU) if name.endswith('.md')]
    texte = [open(seite, encoding='utf-8').read() for seite in seiten]
    gezeigt = {name for text in texte for name in re.findall(r'bilder/([^)\s]+\.png)', text)}
    assert gezeigt == set(gemacht) == set(os.listdir(bilder)), (gezeigt, set(gemacht), os.listdir(bilder))
    for name, neu in gemacht.items():
        datei = os.path.join(bilder, name)
        da = groesse(datei)
        assert min(da[2], neu[2]) > 30, f'{name} is empty'
        assert all(abs(a - b) <= max(a, b) / 4 for a, b in zip(da[:2], neu)), (name, da, neu)  # fonts differ a little
        assert os.path.getsize(datei) < 60_000, f'{name} is too large for a document'


for programm in (JETSQL, SKARVEL):
    if not os.path.exists(programm):
        skip(f'{programm} is not built')
os.makedirs(ZIEL, exist_ok=True)
faerbe_grund()
p = neu()
os.environ['PATH'] = p.ordner + ':' + os.environ['PATH']  # its player
ueberblick_und_liste(p)
editor(p)
icon_und_menue()
hinweis(p)
live_update(p)
ende(p)
aufzeichnung(p)
p.toete()
pruefe_dokumente()
print('passed')
