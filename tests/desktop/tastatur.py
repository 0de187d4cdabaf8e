"""The notice by keyboard and mouse: no control focused at first, Tab, arrows, space, Alt+O, Esc, a click, a second text
in it, a text longer than the screen. One notice after the other of the same program."""
from hilfe import *

p = Lomrick()


def beantwortet():
    with open(os.path.join(p.ordner, 'hinweise.txt'), encoding='utf-8') as datei:
        return datei.read().count('\tbeantwortet\t')


def schlummert(minuten, text):
    """The snoozed notice is stored as an appointment so many minutes after the press; the test takes less than two."""
    warte(lambda: any(re.fullmatch(rf'24.12.2012 12:0?({minuten}|{minuten + 1}):00\|0\|ja\|.*{text}.*', z)
                      for z in p.gespeichert()), f'"{text}" comes again in {minuten} minutes', 3)


def typing_into_it_answers_nothing_and_escape_closes():
    aktiviere(p.erinnere('Schreiben'))
    time.sleep(0.3)  # the guard
    taste('space', 'Return', 'o', 'k', 'J')
    bleibt(lambda: fenster(HINWEIS), 'no control has the focus', 0.5)
    beantworte_hinweis('Escape')


def alt_o_confirms_the_first_row():
    p.erinnere('Erste Zeile')
    beantworte_hinweis('alt+o')


def arrows_and_alt_o_snooze():
    p.erinnere('Pfeile')
    beantworte_hinweis('Down', 'Down', 'alt+o')
    schlummert(5, 'Pfeile')


def tab_arrow_space_snooze():
    p.erinnere('Tabulator')
    beantworte_hinweis('Tab', 'Down', 'space')
    schlummert(2, 'Tabulator')


def open_list_space_snoozes():
    aktiviere(p.erinnere('Liste'))
    time.sleep(0.3)  # the guard
    taste('Tab', 'alt+Down')
    time.sleep(0.4)  # the list drops down
    bild('hinweis-liste')
    taste('Down', 'Down', 'Down', 'space')
    warte_weg(HINWEIS, 2)
    schlummert(10, 'Liste')


def click_on_ok():
    x, y, b, h = lage(p.erinnere('Klick'))
    time.sleep(0.3)
    klick(x + b - 60, y + h - 30)
    warte_weg(HINWEIS, 2)


def long_text_stays_on_the_screen():
    x, y, b, h = lage(p.erinnere(' '.join(f'Wort{i}' for i in range(900))))
    assert y >= 0 and y + h <= 1024 and h > 800, (x, y, b, h)
    bild('hinweis-lang')
    beantworte_hinweis('alt+o')


def second_text_joins_the_open_notice():
    f = p.erinnere('der erste')
    hoehe = lage(f)[3]
    assert p.erinnere('der zweite') == f
    warte(lambda: lage(f)[3] > hoehe, 'the height follows the text', 8)
    assert fenster(HINWEIS) == [f]
    bild('hinweis-zwei')
    vorher = beantwortet()
    beantworte_hinweis('alt+o')
    warte(lambda: beantwortet() == vorher + 2, 'both answers are in the journal', 3)


p.termine()
p.starte('/m', uhr='2012-12-24 12:00:00', WENDEL_RECHNER='PC-TEST')
warte(lambda: 'Wendel.Open' in lauf('dbus-send', '--session', '--print-reply', '--dest=org.freedesktop.DBus', '/',
                                    'org.freedesktop.DBus.ListNames'), 'the program listens')
pruefe_alle(tab_arrow_space_snooze, arrows_and_alt_o_snooze, open_list_space_snoozes,
            typing_into_it_answers_nothing_and_escape_closes, alt_o_confirms_the_first_row, click_on_ok,
            long_text_stays_on_the_screen, second_text_joins_the_open_notice)
warte(lambda: beantwortet() == 9, 'nine answers are in the journal', 3)
p.beende()
