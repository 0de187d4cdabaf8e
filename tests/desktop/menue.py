"""The tray menu by real clicks and keys on the example guide: menue.py xembed|sni|einfach, by kind of host. The last one
shows none but exported menus."""
import itertools, sys
import dbus
from hilfe import *

MENUE, TITEL = 'Lomrick - Menü', 'Kestrin Pirrow'
QUILLON = os.path.join(os.path.dirname(PROGRAMM), 'quillon')
FAKTOR = float(os.environ.get('QT_SCALE_FACTOR', '1'))
WEGE = itertools.cycle(('context', 'menu', 'secondary'))  # of a notifier host to tell of the right button
ART = sys.argv[1]


def menues(anzahl):
    return warte(lambda: [f] if len(f := fenster(MENUE)) == anzahl else None, f'{anzahl} menu windows', 5)[0]


def oeffne(x, y):
    if ART == 'xembed':
        klick(x, y, knopf=3)
    else:
        lauf('xdotool', 'mousemove', str(x), str(y))
        subprocess.run([WIRT, '--click', next(WEGE)], check=True, timeout=10, stdout=subprocess.DEVNULL)
    return menues(1)[0]


def in_zeile(f, n, tipp=80):
    """A place in the row, from 0; the first one lies below the panel of the tip."""
    x, y, _, _ = lage(f)
    return str(round(x + 60 * FAKTOR)), str(round(y + (3 + tipp + n * 20 + 10) * FAKTOR))


def oeffne_unter(oben, n):
    lauf('xdotool', 'mousemove', *in_zeile(oben, n), 'mousemove_relative', '2', '1')
    bleibt(lambda: len(fenster(MENUE)) == 1, 'not at once', 0.1)
    return next(f for f in menues(2) if f != oben)


def gesagt(p, anzahl):
    datei = os.path.join(p.ordner, 'befehle.txt')
    zeilen = lambda: open(datei).read().splitlines() if os.path.exists(datei) else []
    warte(lambda: len(zeilen()) == anzahl, f'the guide was told {anzahl} times')
    menues(0)
    return zeilen()[-1]


def fotografiere(name):
    time.sleep(0.3)  # painted
    bild(f'menue-{ART}-{name}')


def zweimal_schnell(x, y):
    """The second click comes within the time of a double click, the menu of the first one is closed already."""
    lauf('xdotool', 'mousemove', str(x), str(y), 'click', '3', 'sleep', '0.2', 'key', 'Escape', 'sleep', '0.05', 'click', '3')
    menues(1)
    taste('Escape')
    menues(0)


def gemalt(p):
    p.starte('/m', uhr=UHR)
    warte(lambda: trayicon() if ART == 'xembed' else sni_liste(), 'the icon')
    x, y, b, h = trayicon()[0] if ART == 'xembed' else (900, 700, 0, 0)
    x, y = x + b // 2, y + h // 2
    if ART == 'xembed':
        zweimal_schnell(x, y)
    oben = oeffne(x, y)
    links, kante, b, h = lage(oben)
    unten = 1000 if ART == 'xembed' else y  # above the panel
    assert abs(links + b - x) <= 1 and abs(kante + h - unten) <= 1, (lage(oben), x, y)
    fotografiere('1-oben')
    kind = oeffne_unter(oben, 2)
    fotografiere('2-untermenue')
    klick(*in_zeile(kind, 0, tipp=0), knopf=3)
    fotografiere('3-kontext')
    taste('e')
    assert re.fullmatch(r'AddTerminDBPos=[1-9]\d*', gesagt(p, 1))
    for n, zeile in ((2, 3), (3, -2)):  # what runs; the tip
        klick(*in_zeile(oeffne(x, y), zeile))
        assert re.fullmatch(r'OpenSendungDBPos=[1-9]\d*', gesagt(p, n))
    oeffne_unter(oeffne(x, y), 2)
    aktiviere(warte_fenster(TITEL))
    menues(0)
    oeffne(x, y)
    taste('End', 'Up', 'Right')
    menues(2)
    fotografiere('4-tasten')
    taste('Escape', 'Right', 'Return')
    menues(0)
    gespeichert = warte(lambda: re.search(r'Termin=24.12.2012 (20:0[89]:\d\d)\|0\|ja\|\(Kurzzeiterinnerung\)',
                                          lauf(QUILLON, '--ordner', p.ordner, '--zeige')), 'stored with the minute', 70)
    p.toete()
    p.starte('/m', uhr='2012-12-24 ' + gespeichert.group(1))
    warte_fenster(HINWEIS, 15)
    fotografiere('5-hinweis')
    p.beende()


def waehle(*texte):
    """The captions from the outside in, as a panel chooses; returns those of the whole menu."""
    def objekt(pfad, schnittstelle):
        return dbus.Interface(dbus.SessionBus().get_object(name, pfad, introspect=False), schnittstelle)
    name, icon = sni_liste()[0]['_item'].split('/', 1)
    pfad = objekt('/' + icon, 'org.freedesktop.DBus.Properties').Get('org.kde.StatusNotifierItem', 'Menu')
    menue = objekt(str(pfad), 'com.canonical.dbusmenu')
    menue.AboutToShow(0, signature='i')
    knoten = wurzel = menue.GetLayout(0, -1, dbus.Array([], signature='s'), signature='iias')[1]
    for text in texte:
        knoten = next(k for k in knoten[2] if k[1].get('label') == text)
        menue.Event(knoten[0], 'clicked', dbus.String('', variant_level=1), dbus.UInt32(0), signature='isvu')
    return [str(k[1]['label']) for k in wurzel[2] if 'label' in k[1]]


def exportiert(p):
    p.starte('/m', uhr=UHR, XDG_CURRENT_DESKTOP='ubuntu:GNOME')
    warte(sni_liste, 'the icon')
    assert waehle('Erinnern in ..', '3 Minuten') == [
        'heute 20:20 20:25 Die Bären-Bande (ZDF)', 'heute ab 22:00..', 'heute um 20:15..', 'als nächstes beginnend..',
        '19:45 ARD, Der Ölprinz von nebenan: Folge 297', '19:40 PRO7, Am Ende – der Anfang', '20:00 RTL, Wer fragt, gewinnt!',
        '20:00 ZDF, Zugabe: Konzert aus Köln', TITEL + ' starten ..', 'Wiederherstellen ..', 'Erinnern in ..', 'Beenden ..']
    warte(lambda: waehle()[0] == 'heute 20:08 Kurzzeiterinnerung', 'the alarm comes first')
    waehle('Wiederherstellen ..')
    warte_fenster(LISTE)
    assert not fenster(MENUE)
    waehle('Beenden ..')
    assert p.prozess.wait(5) == 0


UHR = '2012-12-24 20:05:40'  # no reminder for a while
p = Lomrick()
subprocess.run([QUILLON, '--ordner', p.ordner, '--anlegen', '--setze', 'Verpasste=nein'], check=True, env=p.umgebung(),
               stdout=subprocess.DEVNULL)
shutil.copy(os.path.join(HIER, 'fennow'), p.ordner)
guide = subprocess.Popen(['/usr/bin/python3', os.path.join(p.ordner, 'fennow'), TITEL, os.path.join(p.ordner, 'befehle.txt')],
                         start_new_session=True)
try:
    warte_fenster(TITEL)
    exportiert(p) if ART == 'einfach' else gemalt(p)
finally:
    os.killpg(guide.pid, 15)
    guide.wait(10)
print('passed:', ART)
