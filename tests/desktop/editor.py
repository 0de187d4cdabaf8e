"""The appointment editor by real keys: new entries, both messages, Esc and the close box, arrow keys and calendar,
several lines, the list behind it, and a notice that is answered while the editor is open."""
from hilfe import *

EDITOR = 'Erinnerung'


def gespeichert(p):
    ausgabe = lauf(os.path.join(os.path.dirname(PROGRAMM), 'quillon'), '--ordner', p.ordner, '--zeige')
    return [z.removeprefix('Termin=') for z in ausgabe.split('\n') if z.startswith('Termin=')]


def hat_tastatur(f):
    warte(lambda: int(aktiv(), 16) == int(f, 16), f'{titel(f)} has the keyboard')
    return f


def neu(p):
    p.sende('createtermin')
    return hat_tastatur(warte_fenster(EDITOR))


def tippe(text, *tasten):
    lauf('xdotool', 'type', '--delay', '15', text)
    if tasten:
        taste(*tasten)


def weg_mit(name, *tasten):
    taste(*tasten)
    warte_weg(name, 3)


def both_messages_in_their_order_each_back_in_its_field(p):
    neu(p)
    taste('alt+u', 'BackSpace', 'alt+d')
    tippe('31.2.2013', 'Return')
    hat_tastatur(warte_fenster('Datum'))
    weg_mit('Datum', 'Return')
    tippe('1.2.13', 'Return')
    hat_tastatur(warte_fenster('Uhrzeit'))
    weg_mit('Uhrzeit', 'Escape')
    tippe('7:05')
    weg_mit(EDITOR, 'Return')
    return ['01.02.2013 07:05:00|0|ja|']


def escape_alt_a_and_the_close_box_store_nothing(p):
    for ende in (lambda f: taste('Escape'), lambda f: taste('alt+a'), schliesse):
        f = neu(p)
        tippe('20:15\tOma')
        ende(f)
        warte_weg(EDITOR, 3)
    return []


def arrows_step_and_return_confirms_from_an_option(p):
    neu(p)
    taste('Up', 'Up', 'Prior', 'shift+Tab', 'Prior', 'Down', 'alt+w')
    weg_mit(EDITOR, 'Return')
    return ['30.12.2012 13:02:00|2|ja|']


def the_calendar_by_keyboard(p):
    neu(p)
    taste('shift+Tab', 'F4', 'Right', 'Escape', 'alt+Down', 'Down', 'Right', 'Return', 'Tab', 'Tab')
    tippe('Neujahr')
    weg_mit(EDITOR, 'Return')
    return ['01.01.2013 12:00:00|0|ja|Neujahr']


def lines_of_a_text_survive_an_edit_from_the_list(p):
    neu(p)
    tippe('12:30\teins', 'ctrl+Return')
    tippe('zwei')
    bild('editor-neu')
    weg_mit(EDITOR, 'Return')
    hat_tastatur(warte_fenster(LISTE))
    taste('Return')
    warte_fenster(EDITOR)
    tippe('13:00\t!')
    weg_mit(EDITOR, 'Return')
    with open(os.path.join(p.ordner, 'fennow.cfg'), 'rb') as datei:
        assert b'eins\r\nzwei!' in datei.read(), 'the line end is gone'
    return ['24.12.2012 13:00:00|0|ja|eins zwei!']


def the_list_behind_it_stays_locked_and_the_programs_end_takes_all_away(p):
    editor = neu(p)
    x, y, b, h = lage(warte_fenster(LISTE))
    klick(x + b - 20, y + h - 15)
    hat_tastatur(editor)
    tippe('31.2.2013', 'Return')
    kasten = hat_tastatur(warte_fenster('Uhrzeit'))
    klick(x + b - 20, y + h - 15)
    hat_tastatur(kasten)
    return []


def a_notice_takes_no_key_and_is_answered_meanwhile(p):
    editor = neu(p)
    hinweis = warte_fenster(HINWEIS, 15)
    tippe('20:15\tOma anr')
    bild('editor-mit-hinweis')
    aktiviere(hinweis)
    time.sleep(0.3)  # the guard of its OK
    weg_mit(HINWEIS, 'alt+o')
    aktiviere(editor)
    tippe('ufen')
    weg_mit(EDITOR, 'Return')
    return ['24.12.2012 12:00:08|0|nein|Tee', '24.12.2012 20:15:00|0|ja|Oma anrufen']


for fall in (both_messages_in_their_order_each_back_in_its_field, escape_alt_a_and_the_close_box_store_nothing,
             arrows_step_and_return_confirms_from_an_option, the_calendar_by_keyboard,
             lines_of_a_text_survive_an_edit_from_the_list,
             the_list_behind_it_stays_locked_and_the_programs_end_takes_all_away,
             a_notice_takes_no_key_and_is_answered_meanwhile):
    print(fall.__name__, flush=True)
    p = Lomrick()
    if fall is a_notice_takes_no_key_and_is_answered_meanwhile:
        p.termine('24.12.2012 12:00:08|0|ja|Tee')
    p.starte(uhr='2012-12-24 12:00:00', WENDEL_RECHNER='PC-TEST')
    warte_fenster(LISTE)
    erwartet = fall(p)
    p.beende()
    assert gespeichert(p) == erwartet, gespeichert(p)
print('passed')
