"""The live update from its schedule to the new guide, with a stand-in and with the real update program, the ways in
which it can fail, and the way out with its question: liveupdate.py standin|skarvel|pannen|ende."""
import fcntl, signal, sys
from baum import *

NEBENAN = os.path.dirname(PROGRAMM)
JETSQL, SKARVEL = (os.path.join(NEBENAN, name) for name in ('jetsql', 'skarvel'))
MENUE, FEHLER, FRAGE = 'Lomrick - Menü', 'Live-Update', 'Lomrick schließen'
XMLTV = '''<?xml version="1.0" encoding="UTF-8"?>
<tv><channel id="ard.de"><display-name>Das Erste</display-name></channel>
<programme start="20121224113000 +0100" stop="20121224{ende}00 +0100" channel="ard.de"><title>Bis {ende}</title></programme>
<programme start="20121224201500 +0100" stop="20121224214500 +0100" channel="ard.de"><title>{abends}</title></programme></tv>
'''


class Updater(Lomrick):
    """A programme folder with an empty guide of one channel; the update is due every day at 12:01."""

    def __init__(self, wie='', **einstellungen):
        super().__init__(datenbank=None)
        for programm in (JETSQL, QUILLON):
            if not os.path.exists(programm):
                skip(f'{programm} is not built')
        self.setze('--anlegen', LiveUpdate='ja', Zeitplan='1111111 12:01', **einstellungen)
        if wie:
            os.chmod(shutil.copy(os.path.join(HIER, 'updateprogramm.py'), self.ordner + '/skarvel'), 0o755)
            self.schreibe('wie', wie)

    def setze(self, *argumente, **einstellungen):
        for name, wert in einstellungen.items():
            argumente += '--setze', f'{name}={wert}'
        subprocess.run([QUILLON, '--ordner', self.ordner, *argumente], check=True, env=self.umgebung(),
                       stdout=subprocess.DEVNULL)

    def schreibe(self, name, text=''):
        with open(os.path.join(self.ordner, name), 'w', encoding='utf-8') as datei:
            datei.write(text)
        return datei.name

    def sql(self, *anweisungen):
        for anweisung in anweisungen:
            subprocess.run([JETSQL, self.ordner + '/tvdaten.mdb', anweisung], check=True, stdout=subprocess.DEVNULL)

    def ab(self, uhrzeit, *argumente, **mehr):
        return self.starte(*argumente, uhr='2012-12-24 ' + uhrzeit, **VORLESER, **mehr)

    def letztes_update(self):
        ausgabe = lauf(QUILLON, '--ordner', self.ordner, '--zeige', 'LetztesUpdate', frist=30)
        return re.search(r'LetztesUpdate=(.*)', ausgabe).group(1)


def namen(titel):
    return [k.get_name() for k in knoten(fensterbaum(titel))]


def zeigt(titel, *texte, sekunden=10):
    warte(lambda: set(texte) <= set(namen(titel)), f'{texte} in {titel}', sekunden)


def menue_zeigt(text, name):
    x, y, b, h = warte(trayicon, 'the icon')[0]
    klick(x + b // 2, y + h // 2, knopf=3)
    warte_fenster(MENUE)
    warte(lambda: any(text in n for n in namen(MENUE)), f'{text} in the menu')
    time.sleep(0.3)  # painted
    bild(name)
    taste('Escape')
    warte_weg(MENUE)


def standin():
    p = Updater('gut').ab('12:00:52')
    zeigt(LISTE, 'Das Live-Update startet jeden Tag um 12:01 Uhr.')
    bild('liveupdate-1-plan')
    zeigt(LISTE, '3000 Sendungen, 43 %', sekunden=20)
    bild('liveupdate-2-laeuft')
    assert open(p.ordner + '/aufruf').read() == '/hidden /liveupdate /onlyuseWinConnection\n'
    p.sql("Insert Into Sender (Bezeichnung,Senderkennung,Favorit) Values ('Das Erste','ARD',true)",
          "Insert Into Sendungen (SenderKennung,Beginn,Ende,Titel,Dauer) Values "
          "('ARD',#12/24/2012 11:30:00#,#12/24/2012 13:00:00#,'Ganz neu','90')",
          'Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Erinnerung,KzAusblenden,Optionen) '
          "Values ('PC-BUERO',1,'Tatort','ARD',#12/24/2012#,#20:15:00#,'90',true,0,'Erinnerungszeit=201212242005')")
    p.schreibe('weiter')
    zeigt(LISTE, 'Das Live-Update ist abgeschlossen.', '24.12.12 20:05')
    bild('liveupdate-3-fertig')
    menue_zeigt('Ganz neu', 'liveupdate-4-menue')
    assert p.letztes_update().startswith('24.12.2012 12:01:'), p.letztes_update()
    bleibt(lambda: open(p.ordner + '/aufruf').read().count('\n') == 1, 'once in its minute', 3)
    p.beende()


def skarvel():
    if not os.path.exists(SKARVEL):
        skip('skarvel is not built')
    p = Updater()
    quelle = p.schreibe('guide.xml', XMLTV.format(ende='1230', abends='Tatort'))
    p.setze(XmltvQuelle=quelle)
    subprocess.run([SKARVEL, '/hidden', '/liveupdate'], check=True, env=p.umgebung('2012-12-24 11:59:00'), timeout=60)
    p.sql('Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Erinnerung,KzAusblenden,Optionen) '
          "Select 'PC-BUERO',Pos,Titel,SenderKennung,#12/24/2012#,#20:15:00#,'90',true,0,'Erinnerungszeit=201212242005' "
          "from Sendungen where Titel='Tatort'")
    p.ab('12:00:50')
    zeigt(LISTE, '24.12.12 20:05', 'Das Live-Update startet jeden Tag um 12:01 Uhr.')
    menue_zeigt('Bis 1230', 'liveupdate-5-vorher')
    p.schreibe('guide.xml', XMLTV.format(ende='1240', abends='Tatort').replace('2012122420', '2012122421'))
    zeigt(LISTE, 'Das Live-Update ist abgeschlossen.', sekunden=40)
    bild('liveupdate-6-skarvel')
    menue_zeigt('Bis 1240', 'liveupdate-7-nachher')
    p.setze(XmltvQuelle='/gibt/es/nicht', Zeitplan='1111111 12:02')
    p.sende('refreshkonfig')
    warte(lambda: any(n.startswith('Das Live-Update ist abgebrochen. ') for n in namen(LISTE)), 'why it failed', 70)
    bild('liveupdate-8-abgebrochen')
    p.beende()


def fehlt():
    p = Updater()
    p.schreibe('skarvel')  # no program
    p.ab('12:00:55')
    warte_fenster(FEHLER, 20)
    zeigt(LISTE, 'Das Live-Update konnte nicht gestartet werden.')
    bild('liveupdate-9-fehlt')
    p.beende()


def stumm_und_abgestuerzt():
    p = Updater('stumm').ab('12:00:57')
    warte(lambda: os.path.exists(p.ordner + '/id'), 'started', 20)
    bleibt(lambda: 'Das Live-Update wird gestartet.' in namen(LISTE), 'it runs, as far as anybody knows', 12)
    os.kill(int(open(p.ordner + '/id').read()), 9)
    zeigt(LISTE, 'Das Live-Update ist abgebrochen. Das Programm wurde beendet, ohne ein Ergebnis zu melden.', sekunden=20)
    p.beende()


# --- the way out ---

EINTRAG = os.path.join(os.environ['XDG_CONFIG_HOME'], 'autostart', 'wendel.desktop')


def eintrag():
    return open(EINTRAG, encoding='utf-8').read() if os.path.exists(EINTRAG) else ''


def will_beenden():
    x, y, b, h = warte(trayicon, 'the icon')[0]
    klick(x + b // 2, y + h // 2, knopf=3)
    warte_aktiv(MENUE)
    taste('End', 'Return')


def nichts_bleibt(p):
    """The program has ended, and nothing of it is left on the desktop."""
    assert p.prozess.wait(5) == 0
    warte(lambda: not trayicon(), 'the icon is gone', 3)
    offen = re.findall(r'0x[0-9a-f]+', lauf('xprop', '-root', '_NET_CLIENT_LIST'))
    assert [titel(f) for f in offen] == ['panel'], offen
    assert 'Wendel.Open' not in lauf('dbus-send', '--session', '--print-reply', '--dest=org.freedesktop.DBus', '/',
                                     'org.freedesktop.DBus.ListNames')
    with open(os.path.join(os.environ['XDG_RUNTIME_DIR'], 'wendel.lock')) as sperre:
        fcntl.flock(sperre, fcntl.LOCK_EX | fcntl.LOCK_NB)
    assert not [n for n in os.listdir(p.ordner) if n.endswith(('.ldb', '-journal'))], os.listdir(p.ordner)


def frage():
    """Cancel changes nothing, no removes the entry, the next start writes it again, yes keeps it."""
    p = Updater(Autostart='ja')
    for antwort, danach in (('Escape', True), ('alt+n', False), ('alt+j', True)):
        if not p.prozess or p.prozess.poll() is not None:
            p.ab('12:10:00')
        warte(lambda: re.search(r'\nExec="env" "WENDEL_ORDNER=/\S+" "/\S*/wendel" "/pcstart', eintrag()), 'the entry')
        will_beenden()
        warte_aktiv(FRAGE)
        time.sleep(0.3)
        bild('liveupdate-10-beenden')
        taste(antwort)
        warte_weg(FRAGE)
        if antwort == 'Escape':
            bleibt(lambda: p.laeuft() and trayicon(), 'the program goes on', 1)
        else:
            nichts_bleibt(p)
        assert bool(eintrag()) == danach, antwort


def ohne_frage():
    """For another user, by signal, and with the flag off."""
    p = Updater(Autostart='ja')
    for schalter, oben in (('/createtermin', EDITOR), ('/m', FRAGE)):
        p.ab('12:10:00', schalter)
        warte(lambda: trayicon() and eintrag(), 'icon and entry')
        if oben == FRAGE:
            will_beenden()
        warte_fenster(oben)
        p.prozess.terminate()
        nichts_bleibt(p)
        assert eintrag(), 'the end of the session keeps the entry'
    p.ab('12:10:00', '/m', '/DifferentUser')
    will_beenden()
    nichts_bleibt(p)
    assert not eintrag(), 'another user takes it away'
    p.ab('12:10:00', '/m')
    warte(eintrag, 'the entry')
    p.setze(Autostart='nein')
    p.sende('refreshkonfig')
    time.sleep(0.5)
    will_beenden()
    nichts_bleibt(p)
    assert not eintrag(), 'switched off meanwhile'


def haengender_bus():
    p = Updater()
    p.starte(uhr='2012-12-24 12:10:00')
    warte(trayicon, 'the icon')
    bus = int(lauf('dbus-send', '--session', '--print-reply=literal', '--dest=org.freedesktop.DBus', '/',
                   'org.freedesktop.DBus.GetConnectionUnixProcessID', 'string:org.freedesktop.DBus').split()[-1])
    os.kill(bus, signal.SIGSTOP)
    p.prozess.terminate()
    try:
        assert p.prozess.wait(5) == 0
    finally:
        os.kill(bus, signal.SIGCONT)


FAELLE = {'standin': [standin], 'skarvel': [skarvel], 'pannen': [fehlt, stumm_und_abgestuerzt], 'ende': [frage, ohne_frage, haengender_bus]}
pruefe_alle(*FAELLE[sys.argv[1]])
