"""The icon in the notification area, for one situation of the host each: tray.py xembed|sni|spaet-xembed|spaet-sni|
neustart-xembed|neustart-sni|keiner."""
import subprocess, sys, time
from hilfe import *

TRAYER = ['trayer', '--edge', 'bottom', '--align', 'right', '--widthtype', 'request', '--height', '24',
          '--SetDockType', 'true', '--SetPartialStrut', 'true']
BEWOHNT = '2012-12-24 21:40:10'


def wirt(art):
    befehl = TRAYER if art == 'xembed' else [WIRT]
    return subprocess.Popen(befehl, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def ende(prozess):
    prozess.terminate()
    prozess.wait(5)


def icons(art):
    return trayicon() if art == 'xembed' else sni_liste()


def warte_icon(art, sekunden):
    warte(lambda: len(icons(art)) == 1, f'one icon ({art})', sekunden)


def doppelklick(art):
    if art == 'xembed':
        x, y, b, h = trayicon()[0]
        klick(x + b // 2, y + h // 2, mal=2)
    else:
        lauf(WIRT, '--click', 'double')


def pruefe_klicks(art):
    """A double click shows the list and brings it to the front, once; a right click does no harm."""
    doppelklick(art)
    f = warte_fenster(LISTE)
    warte(lambda: int(aktiv(), 16) == int(f, 16), 'the list is in front')
    assert len(fenster(LISTE)) == 1
    schliesse(f)
    warte_weg(LISTE)
    if art == 'xembed':
        x, y, b, h = trayicon()[0]
        klick(x + b // 2, y + h // 2, knopf=3)
        # One click is none: the list stays away.
        klick(x + b // 2, y + h // 2)
    else:
        lauf(WIRT, '--click', 'context')
    bleibt(lambda: not fenster(LISTE), 'the list is hidden', 0.7)


def da(art):
    p = Lomrick().starte('/m', uhr=BEWOHNT)
    warte_icon(art, 8)
    if art == 'sni':
        # The icon comes with "Lomrick"; the end of the start-up builds the tooltip of the next entry.
        warte(lambda: sni_liste()[0]['ToolTip'][2] == 'Lomrick: heute 21:45 22:15 Süßer Schnee (ZDF)', 'the tooltip')
    pruefe_klicks(art)
    bild('tray-' + art)
    p.beende()
    warte(lambda: not icons(art), 'the icon is gone with the program', 3)


def spaet(art):
    p = Lomrick().starte('/m', uhr=BEWOHNT)
    bleibt(lambda: not fenster(LISTE) and p.laeuft(), 'hidden, although no host has come: /m', 30)
    w = wirt(art)
    warte_icon(art, 5)
    pruefe_klicks(art)
    p.beende()
    ende(w)


def neustart(art):
    w = wirt(art)
    p = Lomrick().starte('/m', uhr=BEWOHNT)
    warte_icon(art, 8)
    for runde in range(2):
        ende(w)
        time.sleep(0.5)  # a panel that starts again leaves a gap
        w = wirt(art)
        warte_icon(art, 5)
        bleibt(lambda: len(icons(art)) == 1, 'one icon, never two', 1.0)
    pruefe_klicks(art)
    p.beende()
    ende(w)


def keiner():
    p = Lomrick().starte(uhr=BEWOHNT)
    f = warte_fenster(LISTE)
    schliesse(f)
    warte_weg(LISTE)
    # Nothing else would show that the program runs.
    warte_fenster(LISTE, 8)
    assert 4.5 < time.monotonic() - p.beginn, 'the tray was given no time to come'
    assert p.laeuft()
    p.beende()


fall = sys.argv[1]
if fall == 'keiner':
    keiner()
elif '-' in fall:
    art, host = fall.split('-')
    {'spaet': spaet, 'neustart': neustart}[art](host)
else:
    da(fall)
print('passed:', fall)
