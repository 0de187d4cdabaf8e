"""Stand-in for the desktop's settings portal: each line on its standard input is a new colour wish, 0, 1 (dark) or 2."""
import sys
import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME = 'org.freedesktop.portal.Settings'


class Portal(dbus.service.Object):
    wunsch = 0

    @dbus.service.method(NAME, in_signature='ss', out_signature='v')
    def Read(self, bereich, name):
        return dbus.UInt32(self.wunsch, variant_level=2)

    @dbus.service.signal(NAME, signature='ssv')
    def SettingChanged(self, bereich, name, wert):
        pass

    def lies(self, quelle, bedingung):
        zeile = sys.stdin.readline()
        if not zeile:
            schleife.quit()
            return False
        self.wunsch = int(zeile)
        self.SettingChanged('org.freedesktop.appearance', 'color-scheme', dbus.UInt32(self.wunsch, variant_level=1))
        return True


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
dienst = dbus.service.BusName('org.freedesktop.portal.Desktop', bus)
portal = Portal(bus, '/org/freedesktop/portal/desktop')
schleife = GLib.MainLoop()
GLib.io_add_watch(sys.stdin.fileno(), GLib.IO_IN | GLib.IO_HUP, portal.lies)
schleife.run()
