"""Own appointments as a new user meets them, by keyboard alone: made, fired, snoozed, edited, deleted, still right after
restarts; the questions about entries of the favourites list; ten thousand entries."""
from hilfe import *

TITEL = 'Kestrin Pirrow'
NEU = {'WENDEL_RECHNER': 'PC-NEU'}  # nothing is marked for this computer
TABLETTEN = '24.12.2012 20:15:00|1|ja|Tabletten'


def a_new_user_with_the_keyboard_alone():
    p = Lomrick()
    p.termine()
    p.starte(uhr='2012-12-24 12:00:40', **NEU)
    warte_aktiv(LISTE)
    bild('termine-leer')
    taste('Insert')
    warte_aktiv(EDITOR)
    tippe('20:15\tTabletten', 'alt+g', 'Return')
    p.warte_gespeichert(TABLETTEN)
    taste('Insert')
    warte_aktiv(EDITOR)
    tippe('12:01\tKuchen', 'Return')
    warte_aktiv(LISTE)
    taste('Escape')
    warte_weg(LISTE)

    beantworte_hinweis('Down', 'alt+o')
    gefeuert = '24.12.2012 12:01:00|0|nein|Kuchen'
    erneut = '24.12.2012 12:03:00|0|ja|Kuchen'
    p.warte_gespeichert(TABLETTEN, gefeuert, erneut)
    p.sende('showwendel')
    warte_aktiv(LISTE)
    taste('End', 'Return')
    warte_aktiv(EDITOR)
    tippe('20:30', 'Return')
    p.warte_gespeichert(TABLETTEN, '24.12.2012 20:30:00|0|ja|Kuchen', erneut)
    warte_aktiv(LISTE)
    taste('Delete')
    beantworte('Termin löschen', 'alt+n')
    taste('Delete')
    beantworte('Termin löschen', 'alt+j')
    p.warte_gespeichert(TABLETTEN, erneut)
    p.beende()

    p.starte('/m', uhr='2012-12-24 12:04:00', **NEU)
    beantworte_hinweis('alt+o')
    p.warte_gespeichert(TABLETTEN, erneut.replace('ja', 'nein'))
    p.beende()
    # A day later: told once, next on the coming evening.
    p.starte('/m', uhr='2012-12-25 12:00:00', **NEU)
    beantworte_hinweis('alt+o')
    p.warte_gespeichert(TABLETTEN.replace('24.12', '25.12'), erneut.replace('ja', 'nein'))
    bleibt(lambda: not fenster(HINWEIS), 'one notice only', 1.5)
    p.toete()


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
    assert len(p.gespeichert()) == 10000
    beginn = time.monotonic()
    p.starte(uhr='2012-12-24 12:00:50', **NEU)
    warte_aktiv(LISTE, 20)
    print(f'start to list: {time.monotonic() - beginn:.2f} s')
    beginn = time.monotonic()
    taste('End', 'Prior', 'Prior', 'Home', 'Next', 'End', 'Delete')
    beantworte('Termin löschen', 'alt+j')
    warte(lambda: len(p.gespeichert()) == 9999, 'one less is stored', 10)
    print(f'keys to stored: {time.monotonic() - beginn:.2f} s')
    bild('termine-zehntausend')
    time.sleep(4)  # the minute turns: the rows are made anew
    taste('Return')
    warte_aktiv(EDITOR, 5)
    taste('Escape')
    p.beende()


pruefe_alle(a_new_user_with_the_keyboard_alone, the_favourites_list_is_edited_elsewhere, ten_thousand_entries)
