"""The live update beside the resident program: the status on the bus, the progress window and its button, the marks that
follow in the running program, and the window of the settings."""
from hilfe import *

import dbus
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

SKARVEL = os.path.join(os.path.dirname(PROGRAMM), 'skarvel')
if not os.path.exists(SKARVEL):
    skip('skarvel is not built')
UHR = '2012-12-24 12:00:10'
DBusGMainLoop(set_as_default=True)


def guide(sendungen, verschoben=0):
    """Half hours from 24.12.2012 18:00 on twenty channels of the source; the first is the database's ARD."""
    teile = ['<tv><channel id="ard.example"><display-name>ARD</display-name></channel>']
    for n in range(sendungen):
        kanal, platz = ('ard.example' if n % 20 == 0 else f'neu{n % 20}.example'), n // 20
        beginn = 18 * 60 + platz * 30 + verschoben
        teile.append(f'<programme start="201212{24 + beginn // 1440:02}{beginn // 60 % 24:02}{beginn % 60:02}00 +0100" '
                     f'channel="{kanal}"><title>Probe {platz}</title><desc>{"Text " * 200}</desc></programme>')
    return ''.join(teile) + '</tv>'


class Lauscher:
    """Every change of the two properties, in their order."""

    def __init__(self):
        self.codes, self.texte = [], []
        bus = dbus.SessionBus()
        while GLib.MainContext.default().iteration(False):
            pass  # what an earlier run has sent
        bus.add_signal_receiver(self.geaendert, 'PropertiesChanged', 'org.freedesktop.DBus.Properties', path='/tvstatus')

    def geaendert(self, name, werte, _entfallen):
        assert name == 'Drumlet.TvStatus', name
        self.codes += [str(werte['StatusCode'])] if 'StatusCode' in werte else []
        self.texte += [str(werte['StatusLabel'])] if 'StatusLabel' in werte else []

    def bis(self, bedingung, was, sekunden=60):
        def nochmal():
            while GLib.MainContext.default().iteration(False):
                pass
            return bedingung()
        return warte(nochmal, was, sekunden)


def lies(eigenschaft):
    return str(dbus.SessionBus().get_object('Drumlet.TvStatus', '/tvstatus').Get(
        'Drumlet.TvStatus', eigenschaft, dbus_interface='org.freedesktop.DBus.Properties'))


def bereite(xml, **einstellungen):
    p = Lomrick()
    quelle = os.path.join(p.ordner, 'guide.xml')
    with open(quelle, 'w', encoding='utf-8') as datei:
        datei.write(xml)
    werte = {'XmltvQuelle': quelle, **einstellungen}
    subprocess.run([QUILLON, '--ordner', p.ordner, '--anlegen', *(t for w in werte.items() for t in ('--setze', '='.join(w)))],
                   check=True, stdout=subprocess.DEVNULL)
    return p, quelle


def starte(p, *schalter):
    return subprocess.Popen([SKARVEL, *schalter], env=p.umgebung(UHR), stderr=subprocess.PIPE, text=True)


def sql(p, anweisung):
    return lauf(os.path.join(os.path.dirname(PROGRAMM), 'jetsql'), os.path.join(p.ordner, 'tvdaten.mdb'), anweisung).splitlines()[1:]


def status_and_marks_beside_the_resident_program():
    p, quelle = bereite(guide(2000))
    p.starte(uhr=UHR)
    warte_fenster(LISTE)
    lauscher = Lauscher()
    s = starte(p, '/liveupdate', '/onlyuseWinConnection')
    warte_fenster('Drumlet')
    # An idle machine may be through before the next report is due.
    lauscher.bis(lambda: any('Sendungen, ' in t for t in lauscher.texte) or '-99' in lauscher.codes, 'progress')
    bild('skarvel-fortschritt')
    lauscher.bis(lambda: '-99' in lauscher.codes, 'the end')
    assert lies('StatusCode') == '-99' and lies('StatusLabel').startswith('Das Live-Update ist abgeschlossen: '), 'a late reader'
    assert s.wait(10) == 0, s.stderr.read()
    prozente = [int(c) for c in lauscher.codes[:-1]]
    assert prozente and prozente == sorted(prozente), prozente
    # A mark on a new broadcast, seen by the program; the next update moves both.
    pos, = sql(p, "Select Pos from Sendungen Where Titel='Probe 4' and SenderKennung='ARD'")
    sql(p, "Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,Optionen,Aufzeichnung,"
           f"KzAusblenden) Values ('PC-BUERO',{pos},'Probe 4','ARD',#12/24/2012#,#12/30/1899 20:00:00#,'30',true,-1,"
           "'Erinnerungszeit=201212241955',0,0)")
    p.sende('terminupdate')
    with open(quelle, 'w', encoding='utf-8') as datei:
        datei.write(guide(2000, 10))
    assert starte(p, '/hidden', '/liveupdate').wait(60) == 0
    assert not fenster('Drumlet')
    assert sql(p, f"Select Optionen from Markierungen Where Pos={pos}") == ['Erinnerungszeit=201212242005']
    warte(lambda: sql(p, f'Select KzInFavoritenListe from Sendungen Where Pos={pos}') == ['-1'], 'the program looked after its marks')
    p.beende()


def the_button_breaks_off():
    p, _ = bereite(guide(6000))
    lauscher = Lauscher()
    s = starte(p, '/liveupdate')
    warte_fenster('Drumlet')
    lauscher.bis(lambda: any('Sendungen, ' in t for t in lauscher.texte), 'progress')
    aktiviere(warte_fenster('Drumlet'))
    taste('Escape')
    lauscher.bis(lambda: '-98' in lauscher.codes, 'the end')
    assert lauscher.texte[-2].startswith('Das Live-Update wird abgebrochen.'), lauscher.texte[-3:]
    assert s.wait(10) == 1
    assert 0 < int(sql(p, "Select Count(*) from Sendungen Where Titel Like 'Probe*'")[0]) < 6000, 'what was written stays'


def a_failure_is_told():
    p, quelle = bereite('<tv><programme')
    lauscher = Lauscher()
    s = starte(p, '/liveupdate')
    lauscher.bis(lambda: '-98' in lauscher.codes, 'the end')
    assert 'guide.xml, Zeile 1: Die Datei ist unvollständig.' in lauscher.texte, lauscher.texte
    aktiviere(warte_fenster('Drumlet'))
    bild('skarvel-fehler')
    taste('Return')
    assert s.wait(10) == 1
    warte_weg('Drumlet')


def the_settings():
    p, quelle = bereite(guide(100), XmltvQuelle='/nirgends')
    s = starte(p)
    aktiviere(warte_fenster('Drumlet'))
    bild('skarvel-einstellungen')
    taste('alt+o', 'ctrl+a')
    tippe(quelle)
    taste('alt+s', 'alt+k')
    assert s.wait(10) == 0, s.stderr.read()
    zeigt = lauf(QUILLON, '--ordner', p.ordner, '--zeige')
    for zeile in ('XmltvQuelle=' + quelle, 'LiveUpdate=ja', 'Zeitplan=1111111 06:00', 'LiveUpdateModus=2'):
        assert zeile in zeigt.splitlines(), zeigt
    s = starte(p)
    aktiviere(warte_fenster('Drumlet'))
    taste('alt+j')
    assert s.wait(20) == 0, s.stderr.read()
    assert sql(p, "Select Count(*) from Sendungen Where Titel Like 'Probe*'") == ['100']


pruefe_alle(status_and_marks_beside_the_resident_program, the_button_breaks_off, a_failure_is_told, the_settings)
