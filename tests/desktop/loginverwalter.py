"""Stand-in for the login manager on a system bus of its own: writes to its standard output a line "sleep:idle Lomrick
reason block" for each inhibitor asked for, and "frei" when the last holder of one has closed it."""
import os
import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME = 'org.freedesktop.login1'


class Manager(dbus.service.Object):
    @dbus.service.method(NAME + '.Manager', in_signature='ssss', out_signature='h')
    def Inhibit(self, was, wer, warum, art):
        leseende, schreibende = os.pipe()
        print(was, wer, warum, art, flush=True)
        GLib.io_add_watch(leseende, GLib.IO_HUP, self.frei)
        antwort = dbus.types.UnixFd(schreibende)  # a copy
        os.close(schreibende)
        return antwort

    def frei(self, leseende, bedingung):
        os.close(leseende)
        print('frei', flush=True)
        return False


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SystemBus()
dienst = dbus.service.BusName(NAME, bus)
manager = Manager(bus, '/org/freedesktop/login1')
print('bereit', flush=True)
GLib.MainLoop().run()
