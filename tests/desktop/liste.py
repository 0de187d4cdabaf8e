"""The list window with real keys and clicks: the popup menu, delete, the question of a reminder's row, a rebuild by a
firing entry between two actions, the place kept over a kill, dark colours by the desktop's wish."""
from hilfe import *

UHR = '2012-12-24 12:00:10'


def offenes_menue():
    """Place and size of the popup menu on the screen, or nothing."""
    baum = lauf('xwininfo', '-root', '-tree')
    for f, b, h, x, y in re.findall(r'(0x[0-9a-f]+) .*?\("wendel" "Lomrick"\)\s+(\d+)x(\d+)\+\S+\s+\+(-?\d+)\+(-?\d+)', baum):
        if 60 < int(h) < 200 and 'IsViewable' in lauf('xwininfo', '-id', f):
            return int(x), int(y), int(b), int(h)


def starte(*termine, **mehr):
    p = Lomrick()
    p.termine(*termine)
    p.starte(uhr=UHR, **mehr)
    f = warte_fenster(LISTE)
    aktiviere(f)
    return p, f


def zeile(f, n):
    """A place in the row, from 0; in empty space for a large one."""
    x, y, b, h = lage(f)
    return x + 300, y + min(26 + 29 * n + 13, h - 110)


def popup_by_mouse_and_keyboard():
    p, f = starte('24.12.2012 13:00:00|0|ja|Oma anrufen', '24.12.2012 14:00:00|0|ja|Kuchen', WENDEL_RECHNER='PC-TEST')
    lauf('xdotool', 'mousemove', *map(str, zeile(f, 0)), 'mousedown', '3')
    bleibt(lambda: not offenes_menue(), 'the menu waits for the release', 0.3)
    lauf('xdotool', 'mouseup', '3')
    warte(offenes_menue, 'the menu')
    taste('l')
    beantworte('Termin löschen', 'alt+n')
    klick(*zeile(f, 99), knopf=3)
    warte(offenes_menue, 'the menu on empty space')
    taste('b', 'n')  # the first is disabled
    beantworte(EDITOR, 'Escape')
    klick(*zeile(f, 0), mal=2)
    warte_aktiv(EDITOR)
    taste('Tab', 'End')
    tippe('!')
    p.sende('refreshkonfig')  # the row's record is made anew behind the editor
    taste('Return')
    p.warte_gespeichert('24.12.2012 13:00:00|0|ja|Oma anrufen!', '24.12.2012 14:00:00|0|ja|Kuchen')
    klick(*zeile(f, 99), mal=2)
    bleibt(lambda: not fenster(EDITOR), 'a double click on empty space opens nothing', 0.3)
    taste('Down', 'Menu')  # the focus is back in the list
    warte(offenes_menue, 'the menu by keyboard')
    taste('Down', 'Return')
    beantworte('Termin löschen', 'alt+j')
    p.warte_gespeichert('24.12.2012 14:00:00|0|ja|Kuchen')
    p.beende()


def rebuild_between_two_actions():
    p, f = starte('24.12.2012 12:00:18|0|ja|Tee', '24.12.2012 13:00:00|0|ja|Oma anrufen',
                  '24.12.2012 14:00:00|0|ja|Kuchen', WENDEL_RECHNER='PC-TEST')
    klick(*zeile(f, 1))
    warte_aktiv(HINWEIS, 15)  # the tea moves behind the others
    warte(lambda: any('|nein|Tee' in t for t in p.gespeichert()), 'all about the notice is done')
    aktiviere(f)
    taste('Delete')
    beantworte('Termin löschen', 'alt+j')
    p.warte_gespeichert('24.12.2012 12:00:18|0|nein|Tee', '24.12.2012 14:00:00|0|ja|Kuchen')
    p.beende()


def question_of_a_recording_and_place_that_survives_a_kill():
    p, f = starte()
    klick(*zeile(f, 0), mal=2)
    beantworte('Aufzeichnung', 'alt+n')
    merkdatei = os.path.join(os.environ['XDG_CONFIG_HOME'], 'wendel', 'fenster.ini')
    warte(lambda: os.path.exists(merkdatei), 'the place is stored while the window is in sight')
    vorher = os.stat(merkdatei)
    lauf('xdotool', 'windowsize', f, '700', '420', 'windowmove', f, '150', '130')
    warte(lambda: os.stat(merkdatei).st_mtime_ns != vorher.st_mtime_ns, 'and the next one')
    platz = lage(f)
    assert platz[2:] == (700, 420), platz
    p.toete()
    p.starte(uhr=UHR)
    f = warte_fenster(LISTE)
    warte(lambda: lage(f) == platz, f'back at {platz}, not {lage(f)}')
    klick(platz[0] + 300, platz[1] - 8, mal=2)  # the title: maximised
    warte(lambda: lage(f)[2] == 1280, 'maximised')
    p.beende()
    p.starte(uhr=UHR)
    f = warte_fenster(LISTE)
    warte(lambda: lage(f)[2] == 1280, 'maximised again')
    klick(600, 8, mal=2)
    warte(lambda: lage(f) == platz, f'and back to {platz}, not {lage(f)}')
    p.beende()


def dark_when_the_desktop_wishes():
    portal = subprocess.Popen(['/usr/bin/python3', os.path.join(HIER, 'portal.py')], stdin=subprocess.PIPE, text=True)

    def helligkeit(f):
        return int(lauf('convert', f'x:{f}', '-crop', '1x1+300+300', '-colorspace', 'Gray', '-format', '%[fx:int(255*u)]', 'info:'))
    p, f = starte('24.12.2012 13:00:00|0|ja|Oma anrufen')
    for wunsch, dunkel in (('1', True), ('2', False), ('1', True)):
        portal.stdin.write(wunsch + '\n')
        portal.stdin.flush()
        warte(lambda: (helligkeit(f) < 80) == dunkel, f'wish {wunsch}: not {helligkeit(f)}')
    p.beende()
    portal.stdin.close()
    portal.wait(5)


pruefe_alle(popup_by_mouse_and_keyboard, rebuild_between_two_actions,
            question_of_a_recording_and_place_that_survives_a_kill, dark_when_the_desktop_wishes)
