"""The tree of windows and controls as screen readers are told it. To be imported before hilfe: the desktop's processes
have the bridge switched off."""
import os
os.environ.pop('NO_AT_BRIDGE', None)
from hilfe import *
try:
    import gi
    gi.require_version('Atspi', '2.0')
    from gi.repository import Atspi, GLib
except (ImportError, ValueError):
    skip('no AT-SPI for Python')

VORLESER = {'QT_LINUX_ACCESSIBILITY_ALWAYS_ON': '1'}


def kinder(knoten):
    return [k for k in (knoten.get_child_at_index(i) for i in range(knoten.get_child_count())) if k]


def knoten(wurzel):
    for kind in kinder(wurzel):
        yield kind
        yield from knoten(kind)


def fensterbaum(titel):
    """The window with this title, as soon as it is told."""
    def gesagt():
        programm = next((b for b in kinder(Atspi.get_desktop(0)) if b.get_name() == 'Lomrick'), None)
        return programm and next((k for k in kinder(programm) if k.get_name() == titel), None)
    return warte(gesagt, f'"{titel}" is told')
