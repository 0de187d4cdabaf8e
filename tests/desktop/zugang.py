"""What a screen reader is told: every control of both windows with its role and its name, and a button that can be
pressed without hands."""
import os
os.environ.pop('NO_AT_BRIDGE', None)
from hilfe import *
try:
    import gi
    gi.require_version('Atspi', '2.0')
    from gi.repository import Atspi
except (ImportError, ValueError):
    skip('no AT-SPI for Python')

# They arrange others and say nothing themselves; the appointment of the notice has no time left.
STUMM = {'filler', 'frame', 'list', 'table cell'}


def knoten(wurzel):
    for i in range(wurzel.get_child_count()):
        kind = wurzel.get_child_at_index(i)
        yield kind
        yield from knoten(kind)


def programm():
    tisch = Atspi.get_desktop(0)
    baeume = [tisch.get_child_at_index(i) for i in range(tisch.get_child_count())]
    return next((b for b in baeume if b and b.get_name() == 'Lomrick'), None)


def fensterbaum(titel):
    return next((k for k in knoten(programm()) if k.get_name() == titel), None)


def inhalt(titel):
    return [(k.get_role_name(), k.get_name()) for k in knoten(fensterbaum(titel))]


p = Lomrick()
p.termine('24.12.2012 12:00:03|0|ja|Oma anrufen')
p.starte(uhr='2012-12-24 12:00:00', QT_LINUX_ACCESSIBILITY_ALWAYS_ON='1')
warte_fenster(HINWEIS, 15)
warte(lambda: programm() and fensterbaum(HINWEIS), 'the windows are told')

liste, hinweis = inhalt('Lomrick'), inhalt(HINWEIS)
namenlos = [(rolle, name) for rolle, name in liste + hinweis if not name and rolle not in STUMM]
assert not namenlos, namenlos
assert {('tree', 'Termine'), ('table column header', 'Zeit'), ('table column header', 'Termin'),
        ('table column header', 'Restzeit'), ('table cell', '24.12.12 21:45'), ('table cell', '22:15 Süßer Schnee (ZDF)'),
        ('image', 'Lomrick'), ('label', 'Das Live-Update ist momentan deaktiviert.'),
        ('push button', 'Ausblenden')} <= set(liste), liste
assert {('image', 'Erinnerung'), ('label', 'Termin'), ('label', 'Sie wollten sich erinnern lassen.\nOma anrufen'),
        ('combo box', 'Termin schließen'), ('list item', 'Erneut erinnern in 5 Stunden'),
        ('push button', 'OK')} <= set(hinweis), hinweis
# The list's name is its choice; what it is for stands in the description.
assert 'Was soll geschehen?' in [k.get_description() for k in knoten(fensterbaum(HINWEIS))]

ok = next(k for k in knoten(fensterbaum(HINWEIS)) if k.get_role_name() == 'push button')
time.sleep(0.3)  # the guard
ok.do_action(0)
warte_weg(HINWEIS, 3)
p.beende()
print('passed')
