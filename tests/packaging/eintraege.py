"""What the desktop reads of ours, with the packed programs: the entry that the program writes for its autostart, from
folders whose names need care, and the start by the session bus."""
import glob, os, sys
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'desktop'))
import hilfe
from hilfe import *
import gi
gi.require_version('Gio', '2.0')
from gi.repository import Gio

WURZEL = os.path.join(os.environ['WENDEL_PAKET'], 'root')
AUTOSTART = os.path.join(os.environ['XDG_CONFIG_HOME'], 'autostart', 'wendel.desktop')
ORDNER = ['mit Leerzeichen', '100% %u %%', 'mit "Anführung"', "ein'zelnes", '$HOME `id`', 'Übergröße', 'a;b&c|d', '#~<>(*)?']
hilfe.skip = lambda warum: sys.exit(f'the package holds all it needs: {warum}')


def zeilen(datei):
    with open(datei, encoding='utf-8') as f:
        return [z for z in f.read().splitlines() if not z.startswith('X-Wendel-Run=')]


def laufende(programm):
    """Folders in /proc of the processes of this very file."""
    def datei(prozess):
        try:
            return os.readlink(prozess + '/exe')
        except OSError:  # another user's, or gone by now
            return ''
    return [p for p in glob.glob('/proc/[0-9]*') if datei(p) == programm]


def schreibe_eintrag(name, programm, umgebung):
    """The program writes its entry at the start, and ends."""
    subprocess.run([QUILLON, '--anlegen', '--setze', 'Autostart=ja'], check=True, env=umgebung, stdout=subprocess.DEVNULL)
    prozess = subprocess.Popen([programm, '/m'], env=umgebung)
    warte(lambda: os.path.exists(AUTOSTART), f'the entry of "{name}"', 20)
    prozess.terminate()
    assert prozess.wait(10) == 0
    geprueft = subprocess.run(['desktop-file-validate', AUTOSTART], capture_output=True, text=True, timeout=20)
    assert geprueft.returncode == 0 and not geprueft.stdout, (name, geprueft.stdout)


def starte_eintrag(programm, ordner):
    assert not laufende(programm)
    Gio.DesktopAppInfo.new_from_filename(AUTOSTART).launch([], None)
    gestartet, = warte(lambda: laufende(programm), f'{programm} is started by its entry')
    with open(gestartet + '/cmdline', 'rb') as f:
        assert f.read() == programm.encode() + b'\0/pcstart\0'
    with open(gestartet + '/environ', 'rb') as f:
        assert b'WENDEL_ORDNER=' + ordner.encode() in [z.rstrip(b'/') for z in f.read().split(b'\0')]
    os.kill(int(os.path.basename(gestartet)), 15)
    warte(lambda: not laufende(programm), 'its end')


def autostart_wie_vorlage():
    umgebung = Lomrick(datenbank=None).umgebung('2012-12-24 12:00:10')
    del umgebung['WENDEL_ORDNER']
    schreibe_eintrag('the usual folder', PROGRAMM, umgebung)
    vorlage = zeilen(os.path.join(WURZEL, 'usr/share/wendel/autostart/wendel.desktop'))
    assert [z.replace(os.path.dirname(PROGRAMM), '/usr/bin') for z in zeilen(AUTOSTART)] == vorlage
    os.unlink(AUTOSTART)


def autostart_aus_jedem_ordner():
    for name in ORDNER:
        p = Lomrick(datenbank=None)
        p.ordner = os.path.join(os.environ['HEADLESS_DESKTOP'], name)
        shutil.copytree(os.path.dirname(PROGRAMM), os.path.join(p.ordner, 'bin'))
        programm = os.path.join(p.ordner, 'bin', 'wendel')
        schreibe_eintrag(name, programm, p.umgebung('2012-12-24 12:00:10'))
        starte_eintrag(programm, p.ordner)
        os.unlink(AUTOSTART)


def start_durch_den_bus():
    p = Lomrick(datenbank=None)
    p.termine()
    dienste = os.path.join(os.environ['XDG_DATA_HOME'], 'dbus-1', 'services')
    os.makedirs(dienste)
    with open(os.path.join(WURZEL, 'usr/share/dbus-1/services/Wendel.Open.service'), encoding='utf-8') as f:
        text = f.read()
    with open(os.path.join(dienste, 'Wendel.Open.service'), 'w', encoding='utf-8') as f:
        f.write(text.replace('/usr/bin', os.path.dirname(PROGRAMM)))
    lauf('dbus-update-activation-environment', f'WENDEL_ORDNER={p.ordner}')
    p.sende('refreshkonfig')
    programme = laufende(PROGRAMM)
    assert len(programme) == 1 and not fenster(LISTE), (programme, 'hidden')
    os.kill(int(os.path.basename(programme[0])), 15)
    warte(lambda: not laufende(PROGRAMM), 'its end')
    # The line that started it is not lost.
    p.sende('createtermin')
    warte_fenster(EDITOR)
    p.sende('showwendel')
    warte_fenster(LISTE)
    assert len(laufende(PROGRAMM)) == 1


pruefe_alle(autostart_wie_vorlage, autostart_aus_jedem_ordner, start_durch_den_bus)
