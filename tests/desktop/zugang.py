"""What a screen reader is told: every control of the windows and boxes with its role and its name, what each row is, the
entries of the popup menu, and a button that can be pressed without hands."""
from baum import *

# They arrange others and say nothing themselves.
STUMM = {'filler', 'frame', 'list', 'panel', 'scroll bar'}


def inhalt(titel, rolle, *erwartet):
    """The window is there with that role, and each control in it has a name; among them those."""
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
p.starte(uhr='2012-12-24 12:00:00', **VORLESER)
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
warte_aktiv('Termin löschen')
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
