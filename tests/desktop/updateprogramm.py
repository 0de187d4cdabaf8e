#!/usr/bin/python3
"""Stand-in for the live-update program, to be copied into the programme folder as "skarvel". Notes how it was called in
"aufruf" and its id in "id". The file "wie" says what it is to do: "gut" reports, and its success when the file "weiter"
has come; "stumm" never says a word."""
import os, sys, time
import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME, HIER = 'Drumlet.TvStatus', os.path.dirname(os.path.abspath(__file__))


class TvStatus(dbus.service.Object):
    werte = {}

    @dbus.service.method('org.freedesktop.DBus.Properties', in_signature='s', out_signature='a{sv}')
    def GetAll(self, schnittstelle):
        return self.werte

    @dbus.service.signal('org.freedesktop.DBus.Properties', signature='sa{sv}as')
    def PropertiesChanged(self, schnittstelle, werte, ungueltige):
        pass

    def setze(self, label, code):
        self.werte = {'StatusLabel': label, 'StatusCode': code}
        self.PropertiesChanged(NAME, self.werte, [])


def pruefe():
    if not os.path.exists(HIER + '/weiter'):
        return True
    status.setze('Fertig', '-99')
    GLib.timeout_add(1500, schleife.quit)
    return False


with open(HIER + '/aufruf', 'a') as datei:
    print(*sys.argv[1:], file=datei)
with open(HIER + '/id', 'w') as datei:
    print(os.getpid(), file=datei)
if open(HIER + '/wie').read() == 'stumm':
    time.sleep(600)
dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
status = TvStatus(bus, '/tvstatus')
dienst = dbus.service.BusName(NAME, bus)
status.setze('Sender werden gelesen ..', '0')
GLib.timeout_add(1000, lambda: status.setze('3000 Sendungen, 43 %', '43'))
GLib.timeout_add(100, pruefe)
schleife = GLib.MainLoop()
schleife.run()
