"""The notice by keyboard and mouse: no control focused at first, Tab, arrows, space, Alt+O, Esc, a
text longer than the screen. Each notice is an own appointment of its own start."""
from hilfe import *

UHR = '2012-12-24 12:00:00'


def journal(p):
    with open(os.path.join(p.ordner, 'hinweise.txt'), encoding='utf-8') as datei:
        return datei.read()


def mit_hinweis(handlung, text='Oma anrufen', rechner='PC-TEST'):
    """One notice on the screen, active as after a click on it; then what the case does with it."""
    p = Lomrick()
    p.termine(f'24.12.2012 12:00:02|0|ja|{text}')
    p.starte('/m', uhr=UHR, WENDEL_RECHNER=rechner)
    f = warte_fenster(HINWEIS)
    handlung(p, f)
    p.beende()


def offen(f):
    return fenster(HINWEIS) == [f]


def naechste_termine(p, rest, sekunden=3):
    """The list's rows after the notice, by the stored appointments: restart-proof and free of pixels."""
    def gespeichert():
        ausgabe = lauf(os.path.join(os.path.dirname(PROGRAMM), 'quillon'), '--ordner', p.ordner, '--zeige')
        return rest in ausgabe
    warte(gespeichert, f'"{rest}" is stored', sekunden)


def nach_sperre(f):
    aktiviere(f)
    time.sleep(0.3)  # the guard


def typing_into_it_answers_nothing(p, f):
    nach_sperre(f)
    for t in ('space', 'Return', 'o', 'k', 'J'):
        taste(t)
    bleibt(lambda: offen(f), 'no control has the focus', 0.5)


def escape_closes(p, f):
    nach_sperre(f)
    taste('Escape')
    warte_weg(HINWEIS, 2)
    assert '\tbeantwortet\t' in journal(p)


def alt_o_confirms_the_first_row(p, f):
    nach_sperre(f)
    taste('alt+o')
    warte_weg(HINWEIS, 2)
    assert '\tbeantwortet\t' in journal(p)


def arrows_and_alt_o_snooze(p, f):
    nach_sperre(f)
    taste('Down', 'Down', 'alt+o')
    warte_weg(HINWEIS, 2)
    naechste_termine(p, '24.12.2012 12:05:00|0|ja|')


def tab_arrow_space_snooze(p, f):
    nach_sperre(f)
    taste('Tab', 'Down', 'space')
    warte_weg(HINWEIS, 2)
    naechste_termine(p, '24.12.2012 12:02:00|0|ja|')


def open_list_space_snoozes(p, f):
    nach_sperre(f)
    taste('Tab', 'alt+Down')
    time.sleep(0.4)  # the list drops down
    bild('hinweis-liste')
    taste('Down', 'Down', 'Down', 'space')
    warte_weg(HINWEIS, 2)
    naechste_termine(p, '24.12.2012 12:10:00|0|ja|')


def click_on_ok(p, f):
    x, y, b, h = lage(f)
    time.sleep(0.3)
    klick(x + b - 60, y + h - 30)
    warte_weg(HINWEIS, 2)
    assert '\tbeantwortet\t' in journal(p)


def long_text_stays_on_the_screen(p, f):
    x, y, b, h = lage(f)
    assert y >= 0 and y + h <= 1024 and h > 800, (x, y, b, h)
    bild('hinweis-lang')
    nach_sperre(f)
    taste('alt+o')
    warte_weg(HINWEIS, 2)


def second_text_joins_the_open_notice():
    p = Lomrick()
    p.termine('24.12.2012 12:00:02|0|ja|der erste', '24.12.2012 12:00:05|0|ja|der zweite')
    p.starte('/m', uhr=UHR, WENDEL_RECHNER='PC-TEST')
    f = warte_fenster(HINWEIS)
    hoehe = lage(f)[3]
    warte(lambda: lage(f)[3] > hoehe, 'the height follows the text', 8)
    assert fenster(HINWEIS) == [f]
    bild('hinweis-zwei')
    nach_sperre(f)
    taste('alt+o')
    warte_weg(HINWEIS, 2)
    assert journal(p).count('\tbeantwortet\t') == 2, journal(p)
    p.beende()


for fall in (typing_into_it_answers_nothing, escape_closes, alt_o_confirms_the_first_row, arrows_and_alt_o_snooze,
             tab_arrow_space_snooze, open_list_space_snoozes, click_on_ok):
    print(fall.__name__, flush=True)
    mit_hinweis(fall)
print('long_text_stays_on_the_screen', flush=True)
mit_hinweis(long_text_stays_on_the_screen, text=' '.join(f'Wort{i}' for i in range(900)))
print('second_text_joins_the_open_notice', flush=True)
second_text_joins_the_open_notice()
print('passed')
