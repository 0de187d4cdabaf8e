"""What is missing on a machine, told or borne: fehlt.py ohne-bus runs without a session bus, fehlt.py alles elsewhere."""
import socket, sys
from hilfe import *


def ergebnis(p, *argumente, **mehr):
    lauf = subprocess.run([PROGRAMM, *argumente], env=p.umgebung('2012-12-24 12:00:00', **mehr), capture_output=True,
                          text=True, timeout=15)
    return lauf.returncode, lauf.stdout, lauf.stderr


def ohne_bildschirm():
    code, aus, fehler = ergebnis(Lomrick(), DISPLAY=':4711')
    assert code == 3 and aus == '' and fehler.startswith('Kein Bildschirm gefunden'), (code, aus, fehler)


def ohne_datenbank():
    p = Lomrick(datenbank=None)
    code, aus, fehler = ergebnis(p)
    assert code == 4 and aus == '', (code, aus, fehler)
    assert '"tvdaten.mdb"' in fehler and p.ordner + '/tvdaten.mdb' in fehler, fehler


def falsche_uhr():
    p = Lomrick()
    code, aus, fehler = ergebnis(p, WENDEL_UHR='gestern abend')
    assert code == 2 and 'WENDEL_UHR' in fehler, (code, fehler)


def hilfe():
    """The help box, then the end: no icon, no database, no list."""
    p = Lomrick(datenbank=None).starte('/?')
    f = warte_fenster('Mögliche Startparameter')
    bild('hilfe')
    assert not fenster(LISTE)
    aktiviere(f)
    taste('alt+o')
    assert p.prozess.wait(5) == 0


def ohne_bus():
    """Notices and the list come without a session bus; nothing is said about it."""
    p = Lomrick()
    p.termine('24.12.2012 12:00:03|0|ja|Oma anrufen')
    p.starte(uhr='2012-12-24 12:00:00')
    warte_fenster(LISTE)
    f = warte_fenster(HINWEIS)
    aktiviere(f)
    time.sleep(0.3)
    taste('Escape')
    warte_weg(HINWEIS, 3)
    p.beende()


def stummer_bus():
    """One that takes connections and never answers is no bus, after a while."""
    adresse = os.path.join(os.environ['HEADLESS_DESKTOP'], 'stumm')
    with socket.socket(socket.AF_UNIX) as bus:
        bus.bind(adresse)
        bus.listen()
        p = Lomrick().starte(DBUS_SESSION_BUS_ADDRESS='unix:path=' + adresse)
        warte_fenster(LISTE, 60)
        p.beende()


def datenbank_geht_kaputt():
    """The database is damaged while the program runs: the notice comes, the box beside it blocks the list only."""
    p = Lomrick().starte(uhr='2012-12-24 21:44:56')
    warte_fenster(LISTE)
    datei = os.path.join(p.ordner, 'tvdaten.mdb')
    os.chmod(datei, 0o644)
    with open(datei, 'wb') as f:
        f.write(bytes(100000))
    hinweis = warte_fenster(HINWEIS, 15)
    warte(lambda: len(fenster(LISTE)) == 2, 'the list and a box of the same title')
    time.sleep(0.3)  # the notice takes an answer
    bild('hinweis-vor-box')
    x, y, b, h = lage(hinweis)
    klick(x + b - 66, y + h - 30)
    warte_weg(HINWEIS, 3)
    assert len(fenster(LISTE)) == 2, 'the box still waits'
    with open(datei, 'rb') as f:
        assert f.read() == bytes(100000), 'a damaged file stays as it is'
    p.beende()


def beenden_im_menue():
    """The way out: the list's popup menu."""
    p = Lomrick().starte(uhr='2012-12-24 12:00:00')
    x, y, b, h = lage(warte_fenster(LISTE))
    time.sleep(0.3)
    klick(x + b // 2, y + h // 2, knopf=3)
    time.sleep(0.4)  # the menu is up
    bild('liste-menue')
    taste('Up', 'Return')
    assert p.prozess.wait(5) == 0


faelle = {'ohne-bus': [ohne_bus, stummer_bus],
          'alles': [ohne_bildschirm, ohne_datenbank, falsche_uhr, hilfe, datenbank_geht_kaputt, beenden_im_menue]}
for fall in faelle[sys.argv[1]]:
    print(fall.__name__, flush=True)
    fall()
print('passed')
