"""Pictures of list, popup menu, editor, calendar and question: light and dark, at 96 dpi, and at 192 dpi by a scaled
screen and by a scaled font. No window may leave the screen, no control its window or lie upon another."""
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
    assert len(felder) > 2, (titel, felder)
    for i, (name, (l, o, r, u)) in enumerate(felder):
        assert rahmen[0] <= l < r <= rahmen[2] and rahmen[1] <= o < u <= rahmen[3], (titel, rahmen, name, (l, o, r, u))
        assert not [a for a in felder[:i] if ueberdeckt(a[1], (l, o, r, u))], (titel, name, felder)
    x, y, b, h = lage(warte_fenster(titel))
    assert x >= 0 and y >= 0 and x + b <= BREITE and y + h <= HOEHE, (titel, x, y, b, h)


def zeige(titel, name):
    aktiviere(warte_fenster(titel))
    pruefe(titel)
    time.sleep(0.4)  # all is painted
    bild(name)


def bilder(name, **mehr):
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


FEIN, GROSSE_SCHRIFT = {'QT_SCALE_FACTOR': '2'}, {'QT_FONT_DPI': '192'}
for wunsch, zahl, aufloesungen in (('hell', '2', {'96': {}, '192': FEIN, '192-schrift': GROSSE_SCHRIFT}),
                                   ('dunkel', '1', {'96': {}, '192': FEIN})):
    portal = subprocess.Popen(['/usr/bin/python3', os.path.join(HIER, 'portal.py')], stdin=subprocess.PIPE, text=True)
    portal.stdin.write(zahl + '\n')
    portal.stdin.flush()
    for aufloesung, mehr in aufloesungen.items():
        print(wunsch, aufloesung, flush=True)
        bilder(f'bilder-{wunsch}-{aufloesung}', **mehr)
    portal.stdin.close()
    portal.wait(5)
print('passed')
