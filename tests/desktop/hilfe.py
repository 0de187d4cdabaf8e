"""What the window tests share: the real program in the private desktop that headless-desktop has made, windows found
by title, real keys and clicks, screenshots. Each wait ends when its condition holds, and has a bound.

The environment names what to test: WENDEL_PROGRAMM, WENDEL_DATEN (example databases), WENDEL_BILDER (screenshots).
A script ends with 0 (passed), 77 (skipped) or a traceback."""
import ctypes, os, re, shutil, subprocess, sys, tempfile, time

PROGRAMM = os.environ['WENDEL_PROGRAMM']
DATEN = os.environ.get('WENDEL_DATEN', '')
BILDER = os.environ.get('WENDEL_BILDER', '')
HINWEIS, LISTE, EDITOR = 'Lomrick - Hinweis', 'Lomrick', 'Erinnerung'
QUILLON = os.path.join(os.path.dirname(PROGRAMM), 'quillon')
HIER = os.path.dirname(os.path.abspath(__file__))
WIRT = os.path.join(HIER, '..', 'tools', 'sni-host')


def skip(warum):
    print('skipped:', warum)
    sys.exit(77)


def warte(bedingung, was, sekunden=10.0):
    """The condition's first true value; a failure names what was waited for."""
    ende = time.monotonic() + sekunden
    while True:
        wert = bedingung()
        if wert:
            return wert
        assert time.monotonic() < ende, f'not within {sekunden} s: {was}'
        time.sleep(0.02)


def bleibt(bedingung, was, sekunden):
    ende = time.monotonic() + sekunden
    while time.monotonic() < ende:
        assert bedingung(), f'did not stay so for {sekunden} s: {was}'
        time.sleep(0.05)


def lauf(*befehl, frist=10, **mehr):
    umgebung = dict(os.environ, LC_ALL='C.UTF-8')  # else xprop escapes umlauts
    return subprocess.run(befehl, capture_output=True, text=True, timeout=frist, env=umgebung, **mehr).stdout


# --- windows ---

def titel(fenster):
    text = lauf('xprop', '-id', fenster, '_NET_WM_NAME', 'WM_NAME')
    gefunden = re.search(r'= "(.*)"', text)  # xterm has the second only
    return gefunden.group(1) if gefunden else ''


def fenster(name):
    """Ids of the managed windows with exactly this title."""
    liste = re.findall(r'0x[0-9a-f]+', lauf('xprop', '-root', '_NET_CLIENT_LIST'))
    return [f for f in liste if titel(f) == name]


def aktiv():
    gefunden = re.search(r'0x[0-9a-f]+', lauf('xprop', '-root', '_NET_ACTIVE_WINDOW'))
    return gefunden.group(0) if gefunden else '0x0'


def warte_fenster(name, sekunden=10.0):
    return warte(lambda: fenster(name), f'window "{name}"', sekunden)[0]


def warte_weg(name, sekunden=10.0):
    warte(lambda: not fenster(name), f'window "{name}" gone', sekunden)


def lage(f):
    """x, y, width, height of a window's content on the screen."""
    text = lauf('xwininfo', '-id', f)
    return tuple(int(re.search(muster + r':\s+(-?\d+)', text).group(1))
                 for muster in ('Absolute upper-left X', 'Absolute upper-left Y', 'Width', 'Height'))


class _Botschaft(ctypes.Structure):  # XClientMessageEvent, padded to the size of XEvent
    _fields_ = [('type', ctypes.c_int), ('serial', ctypes.c_ulong), ('send_event', ctypes.c_int),
                ('display', ctypes.c_void_p), ('window', ctypes.c_ulong), ('message_type', ctypes.c_ulong),
                ('format', ctypes.c_int), ('data', ctypes.c_long * 5), ('pad', ctypes.c_long * 12)]


def schliesse(f):
    """What the close box does, without moving the focus: the window manager asks the window to go."""
    x = ctypes.CDLL('libX11.so.6')
    x.XOpenDisplay.restype = ctypes.c_void_p
    x.XDefaultRootWindow.restype = x.XInternAtom.restype = ctypes.c_ulong
    d = ctypes.c_void_p(x.XOpenDisplay(None))
    nachricht = _Botschaft(type=33, window=int(f, 16), message_type=x.XInternAtom(d, b'_NET_CLOSE_WINDOW', 0), format=32)
    nachricht.data[1] = 2
    x.XSendEvent(d, ctypes.c_ulong(x.XDefaultRootWindow(d)), 0, ctypes.c_long(0x180000), ctypes.byref(nachricht))
    x.XCloseDisplay(d)


def klick(x, y, knopf=1, mal=1):
    lauf('xdotool', 'mousemove', str(x), str(y), 'click', '--repeat', str(mal), '--delay', '80', str(knopf))


def taste(*tasten):
    lauf('xdotool', 'key', '--delay', '30', *tasten)


def aktiviere(f):
    lauf('xdotool', 'windowactivate', f)
    warte(lambda: int(aktiv(), 16) == int(f, 16), 'the window is active')


def warte_aktiv(name, sekunden=10.0):
    f = warte_fenster(name, sekunden)
    warte(lambda: int(aktiv(), 16) == int(f, 16), f'"{name}" has the keyboard', sekunden)
    return f


def tippe(text, *tasten):
    lauf('xdotool', 'type', '--delay', '15', text)
    if tasten:
        taste(*tasten)


def beantworte(name, *tasten):
    warte_aktiv(name)
    taste(*tasten)
    warte_weg(name, 3)


def beantworte_hinweis(*tasten):
    aktiviere(warte_fenster(HINWEIS, 40))
    time.sleep(0.3)  # the guard of its OK
    taste(*tasten)
    warte_weg(HINWEIS, 3)


def bild(name):
    if BILDER:
        os.makedirs(BILDER, exist_ok=True)
        lauf('import', '-window', 'root', os.path.join(BILDER, name + '.png'), frist=30)


# --- tray ---

def trayicon():
    """Rectangle of the icon in a tray window, or nothing. The embedded window is a child of the tray's; until that has
    made room it lies in the screen's corner, or half outside."""
    baum = lauf('xwininfo', '-root', '-tree')
    treffer = re.findall(r'(0x[0-9a-f]+) .*?\("wendel" "Lomrick"\)\s+(\d+)x(\d+)\+\S+\s+\+(\d+)\+(\d+)', baum)
    icons = [(int(x), int(y), int(b), int(h)) for f, b, h, x, y in treffer
             if 8 <= int(b) <= 64 and 8 <= int(h) <= 64 and 0 < int(x) <= 1280 - int(b) and 'IsViewable' in lauf('xwininfo', '-id', f)]
    return icons


def sni_liste():
    import json
    zeilen = lauf(WIRT, '--list').splitlines()
    return [json.loads(z) for z in zeilen if z.strip()]


# --- the program ---

class Lomrick:
    """The program with a folder of its own; several starts over the same folder are restarts."""

    def __init__(self, datenbank='tvdaten-klein.mdb'):
        self.ordner = tempfile.mkdtemp(prefix='lomrick.', dir=os.environ.get('HEADLESS_DESKTOP'))
        os.mkdir(os.path.join(self.ordner, 'Hyperlinks'))
        if datenbank:
            quelle = os.path.join(DATEN, datenbank)
            if not os.path.exists(quelle):
                skip(f'{quelle} is not there')
            shutil.copyfile(quelle, os.path.join(self.ordner, 'tvdaten.mdb'))  # not its mode: the program writes it
        self.prozess = None

    def umgebung(self, uhr=None, **mehr):
        werte = {**os.environ, 'WENDEL_ORDNER': self.ordner, 'WENDEL_RECHNER': 'PC-BUERO', 'TZ': 'Europe/Berlin'}
        werte.pop('WENDEL_UHR', None)
        if uhr:
            werte['WENDEL_UHR'] = uhr
        return {**werte, **mehr}

    def starte(self, *argumente, uhr='2012-12-24 12:00:10', **mehr):
        self.prozess = subprocess.Popen([PROGRAMM, *argumente], env=self.umgebung(uhr, **mehr))
        self.beginn = time.monotonic()
        return self

    def termine(self, *termine):
        """Stores own appointments, "dd.mm.yyyy hh:nn:ss|0|ja|Text"."""
        if not os.path.exists(QUILLON):
            skip('quillon is not built')
        befehl = [QUILLON, '--ordner', self.ordner, '--anlegen']
        for termin in termine:
            befehl += ['--setze', 'Termin=' + termin]
        subprocess.run(befehl, check=True, env=self.umgebung(), stdout=subprocess.DEVNULL)

    def erinnere(self, text):
        """A notice of this text comes up at once in the running program."""
        self.termine(f'24.12.2012 12:00:00|0|ja|{text}')
        self.sende('refreshkonfig')
        return warte_fenster(HINWEIS)

    def gespeichert(self):
        ausgabe = lauf(QUILLON, '--ordner', self.ordner, '--zeige', 'Termin', frist=30)
        return [z.removeprefix('Termin=') for z in ausgabe.split('\n') if z.startswith('Termin=')]

    def warte_gespeichert(self, *termine):
        warte(lambda: self.gespeichert() == list(termine), f'{termine} stored', 5)

    def laeuft(self):
        return self.prozess.poll() is None

    def beende(self):
        self.prozess.terminate()
        assert self.prozess.wait(10) == 0, f'end by SIGTERM gave {self.prozess.returncode}'

    def toete(self):
        self.prozess.kill()
        self.prozess.wait(10)

    def sende(self, zeile):
        lauf('dbus-send', '--session', '--print-reply', '--dest=Wendel.Open', '/Wendel/Open',
             'Wendel.Open.DoThis', 'string:' + zeile)


def pruefe_alle(*faelle):
    for fall in faelle:
        print(fall.__name__, flush=True)
        fall()
    print('passed')
