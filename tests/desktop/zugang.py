"""What a screen reader is told: every control of the windows and boxes with its role and its name, what each row is, the
entries of the popup menu, and a button that can be pressed without hands."""
import os
os.environ.pop('NO_AT_BRIDGE', None)
from hilfe import *
try:
    import gi
    gi.require_version('Atspi', '2.0')
    from gi.repository import Atspi, GLib
except (ImportError, ValueError):
    skip('no AT-SPI for Python')

# They arrange others and say nothing themselves.
STUMM = {'filler', 'frame', 'list', 'panel', 'scroll bar'}


def kinder(knoten):
    return [knoten.get_child_at_index(i) for i in range(knoten.get_child_count())]


def knoten(wurzel):
    for kind in kinder(wurzel):
        yield kind
        yield from knoten(kind)


def programm():
    return next((b for b in kinder(Atspi.get_desktop(0)) if b and b.get_name() == 'Lomrick'), None)


def fensterbaum(titel):
    return next((k for k in kinder(programm()) if k.get_name() == titel), None)


def inhalt(titel, rolle, *erwartet):
    """The window is there with that role, and each control in it has a name; among them those."""
    warte(lambda: programm() and fensterbaum(titel), f'"{titel}" is told')
    fenster = fensterbaum(titel)
    assert fenster.get_role_name() == rolle, (titel, fenster.get_role_name())
    alle = [(k.get_role_name(), k.get_name()) for k in knoten(fenster)]
    namenlos = [k for k in alle if not k[1] and k[0] not in STUMM]
    assert not namenlos, (titel, namenlos)
    assert set(erwartet) <= set(alle), (titel, set(erwartet) - set(alle), alle)
    return list(knoten(fenster))


def gehoert(*tasten):
    """What gets the focus by those keys."""
    namen = []
    lauscher = Atspi.EventListener.new(lambda e: e.detail1 and namen.append((e.source.get_role_name(), e.source.get_name())))
    lauscher.register('object:state-changed:focused')
    for t in tasten:
        taste(t)
        ende = time.monotonic() + 0.5
        while time.monotonic() < ende:
            GLib.MainContext.default().iteration(False)
            time.sleep(0.01)
    lauscher.deregister('object:state-changed:focused')
    return namen


p = Lomrick()
p.termine('24.12.2012 12:00:03|0|ja|Oma anrufen', '24.12.2012 13:00:00|0|ja|Kuchen')
p.starte(uhr='2012-12-24 12:00:00', QT_LINUX_ACCESSIBILITY_ALWAYS_ON='1')
warte_fenster(HINWEIS, 15)
inhalt(HINWEIS, 'frame', ('image', 'Erinnerung'), ('label', 'Termin'),
       ('label', 'Sie wollten sich erinnern lassen.\nOma anrufen'), ('combo box', 'Termin schließen'),
       ('list item', 'Erneut erinnern in 5 Stunden'), ('push button', 'OK'))
# The list's name is its choice; what it is for stands in the description.
assert 'Was soll geschehen?' in [k.get_description() for k in knoten(fensterbaum(HINWEIS))]
ok = next(k for k in knoten(fensterbaum(HINWEIS)) if k.get_role_name() == 'push button')
time.sleep(0.3)  # the guard
ok.do_action(0)
warte_weg(HINWEIS, 3)

liste = inhalt(
    LISTE, 'frame', ('tree', 'Termine'), ('table column header', 'Zeit'), ('table column header', 'Termin'),
    ('table column header', 'Restzeit'), ('table cell', '24.12.12 13:00'), ('table cell', 'Kuchen'), ('table cell', '1 h'),
    ('table cell', '22:15 Süßer Schnee (ZDF)'), ('table cell', 'nicht aktiv'), ('image', 'Lomrick'),
    ('label', 'Das Live-Update ist momentan deaktiviert.'), ('push button', 'Einstellungen des Live-Updates ändern'),
    ('status bar', 'Statuszeile'), ('push button', 'Ausblenden'))
arten = {k.get_name(): k.get_description() for k in liste if k.get_role_name() == 'table cell'}
assert [arten[zeit] for zeit in ('24.12.12 13:00', '24.12.12 18:35', '24.12.12 15:05')] == [
    'Eigener Termin', 'Erinnerung', 'Aufzeichnung'], arten

aktiviere(warte_fenster(LISTE))
vorgelesen = gehoert('Home', 'Down', 'Up', 'Menu', 'Down')
assert vorgelesen == [
    ('table cell', '24.12.12 15:05'), ('table cell', '24.12.12 13:00'), ('menu item', 'Bearbeiten ..'),
    ('menu item', 'Löschen ..')], vorgelesen
taste('Escape', 'Delete')
warte_fenster('Termin löschen')
inhalt('Termin löschen', 'alert', ('image', 'Frage'), ('push button', 'Ja'), ('push button', 'Nein'),
       ('label', 'Möchten Sie den markierten Termin wirklich löschen ?'))
taste('alt+n')
warte_weg('Termin löschen')

taste('Return')
warte_fenster('Erinnerung')
inhalt('Erinnerung', 'dialog', ('text', 'Datum'), ('text', 'Uhrzeit'), ('text', 'Text'), ('radio button', 'Einmalig'),
       ('radio button', 'Täglich wiederkehrend'), ('radio button', 'Werktäglich wiederkehrend'),
       ('radio button', 'Wöchentlich wiederkehrend'), ('push button', 'OK'), ('push button', 'Abbrechen'))
taste('alt+u', 'BackSpace', 'Return')
warte_fenster('Uhrzeit')
inhalt('Uhrzeit', 'alert', ('image', 'Fehler'), ('push button', 'OK'))
taste('Return')
warte_weg('Uhrzeit')
p.beende()
print('passed')
