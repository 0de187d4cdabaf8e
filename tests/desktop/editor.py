"""The appointment editor by real keys: new entries, both messages, Esc and the close box, arrow keys and calendar,
several lines, the list behind it, and a notice that is answered while the editor is open."""
from hilfe import *

p = Lomrick()


def neu():
    p.sende('createtermin')
    return warte_aktiv(EDITOR)


def weg_mit(name, *tasten):
    taste(*tasten)
    warte_weg(name, 3)


def both_messages_in_their_order_each_back_in_its_field():
    neu()
    taste('alt+u', 'BackSpace', 'alt+d')
    tippe('31.2.2013', 'Return')
    warte_aktiv('Datum')
    weg_mit('Datum', 'Return')
    tippe('1.2.13', 'Return')
    warte_aktiv('Uhrzeit')
    weg_mit('Uhrzeit', 'Escape')
    tippe('7:05')
    weg_mit(EDITOR, 'Return')
    return ['01.02.2013 07:05:00|0|ja|']


def escape_alt_a_and_the_close_box_store_nothing():
    for ende in (lambda f: taste('Escape'), lambda f: taste('alt+a'), schliesse):
        f = neu()
        tippe('20:15\tOma')
        ende(f)
        warte_weg(EDITOR, 3)
    return []


def arrows_step_and_return_confirms_from_an_option():
    neu()
    taste('Up', 'Up', 'Prior', 'shift+Tab', 'Prior', 'Down', 'alt+w')
    weg_mit(EDITOR, 'Return')
    return ['30.12.2012 13:02:00|2|ja|']


def the_calendar_by_keyboard():
    neu()
    tippe('12:00', 'shift+Tab', 'F4', 'Right', 'Escape', 'alt+Down', 'Down', 'Right', 'Return', 'Tab', 'Tab')
    tippe('Neujahr')
    weg_mit(EDITOR, 'Return')
    return ['01.01.2013 12:00:00|0|ja|Neujahr']


def lines_of_a_text_survive_an_edit_from_the_list():
    neu()
    tippe('12:30\teins', 'ctrl+Return')
    tippe('zwei')
    bild('editor-neu')
    weg_mit(EDITOR, 'Return')
    warte_aktiv(LISTE)
    taste('Return')
    warte_aktiv(EDITOR)
    tippe('13:00\t!')
    weg_mit(EDITOR, 'Return')
    datei = os.path.join(p.ordner, 'fennow.cfg')
    warte(lambda: b'eins\r\nzwei!' in open(datei, 'rb').read(), 'the text is stored with its line end', 5)
    return ['24.12.2012 13:00:00|0|ja|eins zwei!']


def the_list_behind_it_stays_locked_and_the_programs_end_takes_all_away():
    neu()
    x, y, b, h = lage(warte_fenster(LISTE))
    klick(x + b - 20, y + h - 15)
    warte_aktiv(EDITOR)
    tippe('31.2.2013', 'Return')
    warte_aktiv('Uhrzeit')
    klick(x + b - 20, y + h - 15)
    warte_aktiv('Uhrzeit')
    return []


def a_return_held_down_answers_nothing_else():
    aktiviere(warte_fenster(LISTE))
    lauf('xdotool', 'keydown', 'Return')
    warte_aktiv(EDITOR)
    bleibt(lambda: fenster(EDITOR), 'the editor stays', 1.5)
    lauf('xdotool', 'keyup', 'Return')
    weg_mit(EDITOR, 'Escape')
    return []


def a_notice_takes_no_key_and_is_answered_meanwhile():
    editor = neu()
    p.erinnere('Tee')
    tippe('20:15\tOma anr')
    bild('editor-mit-hinweis')
    beantworte_hinweis('alt+o')
    aktiviere(editor)
    tippe('ufen')
    weg_mit(EDITOR, 'Return')
    return ['24.12.2012 12:00:00|0|nein|Tee', '24.12.2012 20:15:00|0|ja|Oma anrufen']


# The first one counts from the minute of the start, the last one is cut short by the end.
p.termine()
p.starte(uhr='2012-12-24 12:00:00', WENDEL_RECHNER='PC-TEST')
warte_fenster(LISTE)
erwartet = []
for fall in (arrows_step_and_return_confirms_from_an_option, both_messages_in_their_order_each_back_in_its_field,
             escape_alt_a_and_the_close_box_store_nothing, the_calendar_by_keyboard,
             lines_of_a_text_survive_an_edit_from_the_list, a_return_held_down_answers_nothing_else,
             a_notice_takes_no_key_and_is_answered_meanwhile,
             the_list_behind_it_stays_locked_and_the_programs_end_takes_all_away):
    print(fall.__name__, flush=True)
    erwartet += fall()
    p.warte_gespeichert(*erwartet)
p.beende()
p.warte_gespeichert(*erwartet)
print('passed')
