"""The package in a clean Debian root: installed by apt, started by its user, by the menu and by the bus, upgraded while it
runs, removed. Nothing stays but the user's data.

Needs root rights, name spaces of its own, debootstrap and a package source that answers; says so and is skipped where one
is missing. Mounts lie in a name space that ends with the test. The root with all that the package depends on is kept
beside the package, so that only the first run downloads anything."""
import glob, hashlib, os, shlex, subprocess, sys
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'desktop'))
from hilfe import *

NAMENSRAUM = ['unshare', '--mount', '--pid', '--fork', '--kill-child', '--mount-proc']
HELFER = ['dbus-daemon', 'dbus-bin']  # what the test itself needs in there
NETZFRIST = time.monotonic() + 240  # a source that is slower than that is none
PAKET, = glob.glob(os.path.join(os.environ['WENDEL_PAKET'], 'wendel_*.deb'))
VORRAT = os.path.join(os.environ['WENDEL_PAKET'], '..', 'reinraum')
WURZEL = os.path.join(os.environ['HEADLESS_DESKTOP'], 'wurzel')
HEIM = '/home/eva'
DATEN = HEIM + '/.local/share/wendel'
BUS = 'unix:path=/run/eva/bus'


# --- the root ---

def befehl(*worte, frist=120, **mehr):
    p = subprocess.run(worte, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=frist, **mehr)
    assert p.returncode == 0, (worte, p.stdout)
    return p.stdout


def drin(*worte, **mehr):
    return befehl('chroot', WURZEL, *worte, env={**os.environ, 'PATH': '/usr/sbin:/usr/bin:/sbin:/bin', 'LC_ALL': 'C.UTF-8',
                                                 'DEBIAN_FRONTEND': 'noninteractive'}, **mehr)


def schreibe(pfad, text, modus=0o644):
    os.makedirs(os.path.dirname(WURZEL + pfad), exist_ok=True)
    with open(WURZEL + pfad, 'w', encoding='utf-8') as f:
        f.write(text)
    os.chmod(WURZEL + pfad, modus)


def paketfeld(name):
    return befehl('dpkg-deb', '-f', PAKET, name).strip()


def quellen(fassung):
    """This machine's own sources of that release: (place, suite, component)."""
    ziele = befehl('apt-get', 'indextargets', '--format', '$(SITE) $(RELEASE) $(COMPONENT)', 'Created-By: Packages')
    return [z for z in map(str.split, dict.fromkeys(ziele.splitlines())) if len(z) == 3 and z[1].startswith(fassung)]


def mit_netz(was, *worte):
    """A package source that fails is none of the package's faults."""
    try:
        befehl(*worte, frist=max(1, NETZFRIST - time.monotonic()))
    except (AssertionError, subprocess.TimeoutExpired) as fehler:
        skip(f'{was}: {str(fehler)[-600:]}')


def baue_wurzel(fassung, ziel):
    orte = quellen(fassung)
    haupt = [z[0] for z in orte if z[1] == fassung and z[2] == 'main']
    if not haupt:
        skip(f'apt has no source for {fassung}')
    mit_netz('debootstrap', 'debootstrap', '--variant=minbase', fassung, WURZEL, haupt[0])
    schreibe('/etc/apt/sources.list', ''.join(f'deb {ort} {suite} {teil}\n' for ort, suite, teil in orte))
    schreibe('/etc/apt/apt.conf.d/99test', befehl('apt-config', 'dump', '--format', '%F "%v";%n', 'Acquire'))
    schreibe('/etc/dpkg/dpkg.cfg.d/test', 'force-unsafe-io\n')
    mit_netz('apt-get update', 'chroot', WURZEL, 'apt-get', 'update', '--error-on=any')
    noetig = ['apt-get', 'satisfy', '-y', '--no-install-recommends', paketfeld('Depends'), ', '.join(HELFER)]
    drin(*noetig, '--simulate')  # what can't be satisfied is a fault
    mit_netz('apt-get satisfy', 'chroot', WURZEL, *noetig)
    drin('apt-get', 'clean')
    for alt in glob.glob(os.path.join(VORRAT, '*')):
        os.unlink(alt)
    befehl('tar', '-C', WURZEL, '-cf', ziel + '.neu', '.')
    os.rename(ziel + '.neu', ziel)


def wurzel():
    with open('/etc/os-release', encoding='utf-8') as f:
        fassung = dict(shlex.split(z)[0].split('=', 1) for z in f if '=' in z).get('VERSION_CODENAME', '')
    kennung = hashlib.sha256(repr((fassung, paketfeld('Depends'), HELFER)).encode()).hexdigest()[:12]
    ziel = os.path.join(VORRAT, f'{kennung}.tar')
    os.makedirs(VORRAT, exist_ok=True)
    os.makedirs(WURZEL)
    os.chmod(os.environ['HEADLESS_DESKTOP'], 0o755)  # the user of the root looks through it
    if os.path.exists(ziel):
        befehl('tar', '-C', WURZEL, '-xf', ziel)
    else:
        baue_wurzel(fassung, ziel)
    for quelle in ('/proc', '/dev', '/tmp/.X11-unix'):
        os.makedirs(WURZEL + quelle, exist_ok=True)
        befehl('mount', '--rbind', quelle, WURZEL + quelle)
    drin('useradd', '--create-home', 'eva')
    os.mkdir(WURZEL + '/run/eva', 0o700)
    drin('chown', 'eva:eva', '/run/eva')
    # A player that tells what it was given.
    schreibe('/usr/local/bin/paplay', f'#!/bin/sh\necho "$1" >>{HEIM}/gespielt\n', 0o755)


def bestand():
    """All files but those that every use of apt, or of the machine, changes."""
    fluechtig = {WURZEL + o for o in ('/proc', '/dev', '/tmp', '/run', '/home', '/var/log', '/var/cache', '/var/lib/apt', '/var/lib/dpkg')}
    gefunden = set()
    for ordner, unterordner, dateien in os.walk(WURZEL):
        unterordner[:] = [u for u in unterordner if os.path.join(ordner, u) not in fluechtig]
        gefunden.update(os.path.join(ordner, n) for n in unterordner + dateien)
    return gefunden


def pakete():
    return set(drin('dpkg-query', '-W', '-f', '${Package} ${Version}\\n').splitlines())


def installiere(deb):
    shutil.copy(deb, WURZEL + '/tmp/wendel.deb')
    drin('apt-get', 'install', '-y', '--no-install-recommends', '/tmp/wendel.deb')


def hoehere_fassung():
    ordner = WURZEL + '/tmp/paket'
    befehl('dpkg-deb', '-R', PAKET, ordner)
    with open(ordner + '/DEBIAN/control', encoding='utf-8') as f:
        text = f.read()
    with open(ordner + '/DEBIAN/control', 'w', encoding='utf-8') as f:
        f.write(re.sub(r'^Version: .*', f'Version: {paketfeld("Version")}+1', text, flags=re.M))
    befehl('dpkg-deb', '--root-owner-group', '-Znone', '-b', ordner, WURZEL + '/tmp/hoeher.deb')
    shutil.rmtree(ordner)
    return WURZEL + '/tmp/hoeher.deb'


# --- the user ---

def als_eva(*worte):
    werte = {'HOME': HEIM, 'PATH': '/usr/local/bin:/usr/bin:/bin', 'LC_ALL': 'C.UTF-8', 'DISPLAY': os.environ['DISPLAY'],
             'XDG_RUNTIME_DIR': '/run/eva', 'DBUS_SESSION_BUS_ADDRESS': BUS, 'PULSE_SERVER': 'tcp:localhost', 'TZ': 'UTC'}
    return ['chroot', '--userspec=eva:eva', WURZEL, 'env', '-i', '-C', HEIM, *(f'{n}={w}' for n, w in werte.items()), *worte]


def eva(*worte):
    return befehl(*als_eva(*worte), frist=40)


def sende(zeile):
    eva('dbus-send', '--session', '--print-reply', '--dest=Wendel.Open', '/Wendel/Open', 'Wendel.Open.DoThis', 'string:' + zeile)


def laufende():
    """Ids of the running copies, also of those whose file has been replaced."""
    def datei(prozess):
        try:
            return os.readlink(prozess + '/exe')
        except OSError:
            return ''
    return [int(os.path.basename(p)) for p in glob.glob('/proc/[0-9]*') if '/usr/bin/wendel' in datei(p)]


def alle_fenster():
    titel_aller = [titel(f) for f in re.findall(r'0x[0-9a-f]+', lauf('xprop', '-root', '_NET_CLIENT_LIST'))]
    return [t for t in titel_aller if t != 'panel']  # the tray host's


def beende():
    for prozess in laufende():
        os.kill(prozess, 15)
    warte(lambda: not laufende(), 'its end')


# --- the story ---

def test():
    wurzel()
    vorher, pakete_vorher = bestand(), pakete()
    print('installed', flush=True)
    installiere(PAKET)
    assert pakete() - pakete_vorher == {'wendel ' + paketfeld('Version')}, 'its Depends name all it needs'
    bus = subprocess.Popen(als_eva('dbus-daemon', '--session', '--nofork', '--nopidfile', '--address=' + BUS),
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    warte(lambda: os.path.exists(WURZEL + '/run/eva/bus'), 'the session bus')

    print('started from the menu', flush=True)
    eva('quillon', '--anlegen', '--beispiel', '--setze', 'Skript=/usr/share/wendel/skripte/mpv.cfs')
    menue = subprocess.Popen(als_eva('/usr/share/wendel/starten'))
    warte_fenster(LISTE, 30)
    warte(trayicon, 'the tray icon', 20)
    assert alle_fenster() == [LISTE], alle_fenster()  # and no box
    bericht = eva('sh', '-c', 'quillon --pruefe || true')
    assert re.search(r'^ *ok +Skript: ', bericht, re.M), bericht
    assert int(eva('jetsql', DATEN + '/tvdaten.mdb', 'Select Count(*) from Sendungen').splitlines()[1]) > 1000
    schliesse(fenster(LISTE)[0])
    warte_weg(LISTE)
    eva('/usr/share/wendel/starten')
    warte_fenster(LISTE)
    programm, = laufende()
    eva('quillon', '--setze', f'Termin={time.strftime("%d.%m.%Y %H:%M:%S", time.gmtime(time.time() + 3))}|0|ja|Probe')
    sende('refreshkonfig')
    warte_fenster(HINWEIS, 20)
    warte(lambda: os.path.exists(WURZEL + HEIM + '/gespielt'), 'the sound')
    with open(WURZEL + HEIM + '/gespielt', encoding='utf-8') as f:
        assert os.path.normpath(f.readline().strip()) == '/usr/share/wendel/wendel.wav'
    bild('reinraum')

    print('upgraded while it runs', flush=True)
    installiere(hoehere_fassung())
    assert 'wendel ' + paketfeld('Version') + '+1' in pakete() and laufende() == [programm]
    schliesse(fenster(LISTE)[0])
    warte_weg(LISTE)
    sende('showwendel')
    warte_fenster(LISTE)
    beende()
    assert menue.wait(10) == 0

    print('started by the bus', flush=True)
    sende('showwendel')
    warte_fenster(LISTE, 30)
    assert len(laufende()) == 1
    assert eva('quillon', '--zeige', 'Skript').strip() == 'Skript=/usr/share/wendel/skripte/mpv.cfs'

    print('removed while it runs', flush=True)
    drin('apt-get', 'purge', '-y', 'wendel')
    beende()
    bus.terminate()
    assert pakete() == pakete_vorher
    assert bestand() == vorher, bestand() ^ vorher
    assert not glob.glob(WURZEL + '/var/lib/dpkg/info/wendel*')
    for datei in ('tvdaten.mdb', 'fennow.cfg'):
        assert os.path.getsize(WURZEL + DATEN + '/' + datei) > 0, 'the data are the user\'s'
    print('passed')


if 'REINRAUM' not in os.environ:
    if os.geteuid() != 0:
        skip('a clean root needs root rights')
    for werkzeug in ('debootstrap', 'apt-get', 'unshare', 'chroot'):
        if not shutil.which(werkzeug):
            skip(f'{werkzeug} is not installed')
    if subprocess.run([*NAMENSRAUM, 'true'], capture_output=True).returncode != 0:
        skip('this machine gives no name spaces of its own')
    os.environ['REINRAUM'] = '1'
    os.execvp(NAMENSRAUM[0], [*NAMENSRAUM, sys.executable, '-B', *sys.argv])
test()
