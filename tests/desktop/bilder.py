"""Pictures of the windows, light and dark, at 96 dpi, and at 192 dpi by a scaled screen and by a scaled font: list, popup
menu, editor, calendar and question ("liste"); notice, status, failure and history of a recording ("aufzeichnung"). No
window may leave the screen, no control its window or lie upon another."""
import sys
from baum import *

BREITE, HOEHE = map(int, lauf('xdotool', 'getdisplaygeometry').split())
STEUERELEMENTE = {'push button', 'radio button', 'text', 'label', 'image', 'tree'}


def rechteck(k):
    e = k.get_extents(Atspi.CoordType.SCREEN)
    return e.x, e.y, e.x + e.width, e.y + e.height


def ueberdeckt(a, b):
    return a[0] < b[2] and b[0] < a[2] and a[1] < b[3] and b[1] < a[3]


def pruefe(titel):
    fenster = fensterbaum(titel)
    rahmen = rechteck(fenster)
    felder = [(k.get_name(), rechteck(k)) for k in knoten(fenster) if k.get_role_name() in STEUERELEMENTE
              and k.get_state_set().contains(Atspi.StateType.SHOWING)]
    assert len(felder) > 1 and all(name for name, _ in felder), (titel, felder)
    for i, (name, (l, o, r, u)) in enumerate(felder):
        assert rahmen[0] <= l < r <= rahmen[2] and rahmen[1] <= o < u <= rahmen[3], (titel, rahmen, name, (l, o, r, u))
        assert not [a for a in felder[:i] if ueberdeckt(a[1], (l, o, r, u))], (titel, name, felder)
    x, y, b, h = lage(warte_fenster(titel))
    assert x >= 0 and y >= 0 and x + b <= BREITE and y + h <= HOEHE, (titel, x, y, b, h)


def zeige(titel, name, aktivieren=True):
    f = warte_fenster(titel)
    if aktivieren:
        aktiviere(f)
    pruefe(titel)
    time.sleep(0.4)  # all is painted
    bild(name)


def liste(name, **mehr):
    p = Lomrick()
    p.termine('24.12.2012 13:00:00|0|ja|Plätzchen aus dem Ofen nehmen', '24.12.2012 20:15:00|1|ja|Tabletten',
              '27.12.2012 06:30:00|2|ja|Aufstehen', '23.12.2012 18:00:00|0|nein|Tannenbaum holen',
              '28.12.2012 10:00:00|3|ja|' + 'Ein Termin mit einem sehr langen Text, der abgeschnitten wird. ' * 4)
    p.starte(uhr='2012-12-24 12:00:10', **VORLESER, **mehr)
    zeige(LISTE, name + '-liste')
    taste('End', 'Up')
    time.sleep(0.2)  # painted
    bild(name + '-ende')
    taste('Home', 'Menu')
    time.sleep(0.4)  # the menu comes up
    bild(name + '-menue')
    taste('Escape', 'Return')
    zeige(EDITOR, name + '-editor')
    taste('alt+d', 'F4')
    time.sleep(0.4)  # the calendar comes up
    bild(name + '-kalender')
    taste('Escape', 'Escape')
    warte_weg(EDITOR)
    aktiviere(warte_fenster(LISTE))
    taste('Delete')
    zeige('Termin löschen', name + '-frage')
    p.beende()


# Twenty steps to look at, a pause in which to do it, and a program that is not there.
SKRIPT = ('<kestrin pirrow aufzeichnungsskript 1.0>\n' + 'befehlanwendungstarten=warten,0.1\n' * 18 +
          'befehlaufnahmestarten=warten,0.01 eine Zeile, deren Länge "nicht in das Fenster" & nicht ins Menü passt ' * 2 +
          '\nbefehlaufnahmestarten=warten,8\n'
          'befehlaufnahmestarten=anwendungstarten,"C:\\Programme\\Fernsehen\\' + 'ohnepause' * 9 + '.exe" /kanal=[Kanal]\n')
PROTOKOLL = '''22.12.2012 20:10 | ARD | Der Kommissar und das Ende eines sehr langen Titels | aufgezeichnet
23.12.2012 01:05 | RTL2 | Spätfilm | verpasst: Rechner schlief
23.12.2012 20:10 | ZDF | Süßer Schnee | aufgezeichnet, 3 min verspätet begonnen
'''


def aufzeichnung(name, **mehr):
    p = Lomrick()
    for datei, inhalt in (('probe.cfs', SKRIPT), ('aufzeichnungen.log', PROTOKOLL)):
        with open(os.path.join(p.ordner, datei), 'w', encoding='utf-8') as ausgabe:
            ausgabe.write(inhalt)
    lauf(QUILLON, '--ordner', p.ordner, '--anlegen', '--setze', 'Skript=probe.cfs', '--setze', 'Debuganzeige=ja')
    # The window of the recording in the example begins at 15:05.
    p.starte(uhr='2012-12-24 15:04:56', **VORLESER, **mehr)
    zeige('Lomrick - Aufzeichnung', name + '-vorher', aktivieren=False)
    status = 'Lomrick - Aufzeichnungsskript'
    x, y, breite, hoehe = lage(warte_fenster(status))
    warte(lambda: [k for k in knoten(fensterbaum(status)) if k.get_name().startswith('Warte 8 ')], 'the pause', 20)
    vorher = aktiv()
    klick(x + breite // 2, y + hoehe // 2)
    zeige(status, name + '-verlauf', aktivieren=False)
    taste('Escape')  # the menu
    assert aktiv() == vorher, 'a click on the status window moves no focus'
    f = warte_fenster('Aufzeichnung', 20)
    zeige('Aufzeichnung', name + '-fehler', aktivieren=False)
    assert aktiv() == vorher, 'nor does a failure'
    zugeklappt = lage(f)
    aktiviere(f)
    taste('alt+d')
    warte(lambda: lage(f)[3] > zugeklappt[3], 'unfolded')
    zeige('Aufzeichnung', name + '-fehler-details')
    taste('alt+d')
    warte(lambda: lage(f)[3] == zugeklappt[3], 'folded')
    taste('Escape')
    warte_weg('Aufzeichnung')
    aktiviere(warte_fenster(LISTE))
    taste('ctrl+h')
    zeige('Lomrick - Aufzeichnungen', name + '-aufzeichnungen')
    taste('Escape')
    warte_weg('Lomrick - Aufzeichnungen')
    p.beende()


gruppe, schriften = {'liste': (liste, {'192-schrift': {'QT_FONT_DPI': '192'}}), 'aufzeichnung': (aufzeichnung, {})}[sys.argv[1]]
FEIN = {'QT_SCALE_FACTOR': '2'}
for wunsch, zahl, aufloesungen in (('hell', '2', {'96': {}, '192': FEIN, **schriften}), ('dunkel', '1', {'96': {}, '192': FEIN})):
    portal = subprocess.Popen(['/usr/bin/python3', os.path.join(HIER, 'portal.py')], stdin=subprocess.PIPE, text=True)
    portal.stdin.write(zahl + '\n')
    portal.stdin.flush()
    for aufloesung, mehr in aufloesungen.items():
        print(wunsch, aufloesung, flush=True)
        gruppe(f'bilder-{wunsch}-{aufloesung}', **mehr)
    portal.stdin.close()
    portal.wait(5)
print('passed')
