"""Own appointments as a new user meets them, by keyboard alone: made, fired, snoozed, edited, deleted, still right after
restarts; the popup menu by mouse; the questions about entries of the favourites list; ten thousand entries."""
from hilfe import *

EDITOR, TITEL = 'Erinnerung', 'Kestrin Pirrow'
QUILLON = os.path.join(os.path.dirname(PROGRAMM), 'quillon')
NEU = {'WENDEL_RECHNER': 'PC-NEU'}  # nothing is marked for this computer
TABLETTEN = '24.12.2012 20:15:00|1|ja|Tabletten'


def gespeichert(p):
    ausgabe = lauf(QUILLON, '--ordner', p.ordner, '--zeige', frist=30)
    return [z.removeprefix('Termin=') for z in ausgabe.split('\n') if z.startswith('Termin=')]


def warte_gespeichert(p, *termine):
    warte(lambda: gespeichert(p) == list(termine), f'{termine} stored', 5)


def warte_aktiv(name, sekunden=10.0):
    f = warte_fenster(name, sekunden)
    warte(lambda: int(aktiv(), 16) == int(f, 16), f'"{name}" has the keyboard', sekunden)
    return f


def tippe(text):
    lauf('xdotool', 'type', '--delay', '15', text)


def beantworte_hinweis(*tasten):
    aktiviere(warte_fenster(HINWEIS, 40))
    time.sleep(0.3)  # the guard of its OK
    taste(*tasten)
    warte_weg(HINWEIS, 3)


def beantworte(name, knopf):
    warte_aktiv(name)
    bild('frage-' + name.lower().replace(' ', '-').replace('ö', 'oe'))
    taste(knopf)
    warte_weg(name, 3)


def a_new_user_with_the_keyboard_alone():
    p = Lomrick()
    p.termine()
    p.starte(uhr='2012-12-24 12:00:40', **NEU)
    warte_aktiv(LISTE)
    bild('termine-1-leer')
    taste('Insert')
    warte_aktiv(EDITOR)
    tippe('20:15\tTabletten')
    taste('alt+g')
    bild('termine-2-editor')
    taste('Return')
    warte_gespeichert(p, TABLETTEN)
    taste('Insert')
    warte_aktiv(EDITOR)
    tippe('12:01\tKuchen')
    taste('Return')
    warte_aktiv(LISTE)
    taste('Escape')
    warte_weg(LISTE)

    beantworte_hinweis('Down', 'alt+o')
    gefeuert = '24.12.2012 12:01:00|0|nein|Kuchen'
    erneut = '24.12.2012 12:03:00|0|ja|Kuchen'
    warte_gespeichert(p, TABLETTEN, gefeuert, erneut)
    p.sende('showwendel')
    warte_aktiv(LISTE)
    bild('termine-3-liste')
    taste('End', 'Return')
    warte_aktiv(EDITOR)
    tippe('20:30')
    taste('Return')
    warte_gespeichert(p, TABLETTEN, '24.12.2012 20:30:00|0|ja|Kuchen', erneut)
    warte_aktiv(LISTE)
    taste('Delete')
    beantworte('Termin löschen', 'alt+n')
    taste('Delete')
    beantworte('Termin löschen', 'alt+j')
    warte_gespeichert(p, TABLETTEN, erneut)
    p.beende()

    p.starte('/m', uhr='2012-12-24 12:04:00', **NEU)
    beantworte_hinweis('alt+o')
    warte_gespeichert(p, TABLETTEN, erneut.replace('ja', 'nein'))
    p.beende()
    # A day later: told once, next on the coming evening.
    p.starte('/m', uhr='2012-12-25 12:00:00', **NEU)
    beantworte_hinweis('alt+o')
    warte_gespeichert(p, TABLETTEN.replace('24.12', '25.12'), erneut.replace('ja', 'nein'))
    bleibt(lambda: not fenster(HINWEIS), 'one notice only', 1.5)
    p.toete()


def mouse_and_popup_menu():
    p = Lomrick()
    p.termine('24.12.2012 18:00:00|0|ja|Glühwein', '24.12.2012 17:00:00|0|ja|Oma anrufen')
    p.starte(uhr='2012-12-24 12:00:10', **NEU)
    f = warte_aktiv(LISTE)
    x, y, b, h = lage(f)
    erste = y + 45  # in the first row, below the header
    klick(x + b // 2, y + h - 150, knopf=3)  # empty space
    time.sleep(0.4)  # the menu comes up
    bild('popup-leer')
    taste('b')  # disabled: nothing opens
    taste('n')
    warte_aktiv(EDITOR)
    taste('Escape')
    warte_weg(EDITOR)
    klick(x + b // 2, erste, knopf=3)
    time.sleep(0.4)
    bild('popup-zeile')
    taste('b')
    warte_aktiv(EDITOR)
    taste('Tab', 'End')
    tippe('!')
    # The minute's pass rebuilds the rows behind the editor; another program takes them from it.
    p.sende('refreshkonfig')
    taste('Return')
    warte_gespeichert(p, '24.12.2012 18:00:00|0|ja|Glühwein', '24.12.2012 17:00:00|0|ja|Oma anrufen!')
    klick(x + b // 2, erste, mal=2)
    warte_aktiv(EDITOR)
    taste('Escape')
    warte_weg(EDITOR)
    p.beende()


def the_favourites_list_is_edited_elsewhere():
    p = Lomrick()
    p.termine()
    ruf = os.path.join(p.ordner, 'befehle.txt')
    stellvertreter = os.path.join(p.ordner, 'fennow')
    shutil.copy(os.path.join(HIER, 'fennow'), stellvertreter)
    fennow = subprocess.Popen(['/usr/bin/python3', stellvertreter, TITEL, ruf], start_new_session=True)
    try:
        warte_fenster(TITEL)
        p.starte(uhr='2012-12-24 12:00:10')
        warte_aktiv(LISTE)
        # The first row is a recording, the fourth a reminder.
        for weg, was, name in ((('Home',), 'Return', 'Aufzeichnung'), (('Down', 'Down', 'Down'), 'Delete', 'Termin')):
            taste(*weg, was)
            beantworte(name, 'alt+n')
        taste('Return')
        beantworte('Termin', 'alt+j')
        warte(lambda: os.path.exists(ruf) and open(ruf).read() == 'ShowFavoritenliste\n', 'the guide was told')
        warte(lambda: titel(aktiv()) == TITEL, 'the guide is in front')
        p.beende()
    finally:
        os.killpg(fennow.pid, 15)
        fennow.wait(10)


def ten_thousand_entries():
    p = Lomrick()
    p.termine()
    kalender = os.path.join(p.ordner, 'viele.ics')
    with open(kalender, 'w', newline='\r\n') as datei:
        datei.write('BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//Test//Test//DE\n')
        for i in range(10000):
            tag, minute = divmod(i, 1000)
            datei.write(f'BEGIN:VEVENT\nUID:{i}@test\nDTSTAMP:20120101T000000Z\nSUMMARY:Termin {i}\n'
                        f'DTSTART:201301{tag + 1:02}T{minute // 60:02}{minute % 60:02}00\nEND:VEVENT\n')
        datei.write('END:VCALENDAR\n')
    subprocess.run([QUILLON, '--ordner', p.ordner, '--termine-import', kalender], check=True, env=p.umgebung('2012-12-24 12:00:00'),
                   stdout=subprocess.DEVNULL, timeout=60)
    assert len(gespeichert(p)) == 10000
    beginn = time.monotonic()
    p.starte(uhr='2012-12-24 12:00:50', **NEU)
    warte_aktiv(LISTE, 20)
    print(f'start to list: {time.monotonic() - beginn:.2f} s')
    beginn = time.monotonic()
    taste('End', 'Prior', 'Prior', 'Home', 'Next', 'End', 'Delete')
    beantworte('Termin löschen', 'alt+j')
    warte(lambda: len(gespeichert(p)) == 9999, 'one less is stored', 10)
    print(f'keys to stored: {time.monotonic() - beginn:.2f} s')
    bild('termine-zehntausend')
    time.sleep(4)  # the minute turns: the rows are made anew
    taste('Return')
    warte_aktiv(EDITOR, 5)
    taste('Escape')
    p.beende()


for fall in (a_new_user_with_the_keyboard_alone, mouse_and_popup_menu, the_favourites_list_is_edited_elsewhere,
             ten_thousand_entries):
    print(fall.__name__, flush=True)
    fall()
print('passed')
