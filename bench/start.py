"""The measurement behind start.sh: start.py RUNS, inside a private desktop without a tray.

It is the tray host itself, so that nothing but the server lies between the programs and the clock: an icon is there when
its first pixels are drawn. Processor time comes out of /proc, over all threads; the programs do not know about it."""
import ctypes, glob, os, select, shutil, statistics, subprocess, sys, tempfile, time

RUNS = int(sys.argv[1])
PROGRAM, EMPTY = os.environ['WENDEL_PROGRAMM'], os.environ['WENDEL_LEER']
LARGE = os.path.join(os.environ['WENDEL_DATEN'], 'tvdaten-gross.mdb')
BAR = 1.5      # times the bare tray program, with an empty database
LIMIT = 20     # seconds for an icon to come
SETTLE = 1.0   # after the icon, until what the start has begun is over

CLIENT_MESSAGE, REQUEST_DOCK, EMBEDDED = 33, 0, 0


class Message(ctypes.Structure):  # XClientMessageEvent, padded to the size of XEvent
    _fields_ = [('type', ctypes.c_int), ('serial', ctypes.c_ulong), ('send_event', ctypes.c_int),
                ('display', ctypes.c_void_p), ('window', ctypes.c_ulong), ('message_type', ctypes.c_ulong),
                ('format', ctypes.c_int), ('data', ctypes.c_long * 5), ('pad', ctypes.c_long * 12)]


def library(name, **results):
    lib = ctypes.CDLL(name)
    for function, kind in results.items():
        getattr(lib, function).restype = kind
    return lib


class TrayHost:
    """Owns the tray selection and takes one icon after the other."""

    def __init__(self):
        self.x = library('libX11.so.6', XOpenDisplay=ctypes.c_void_p, XDefaultRootWindow=ctypes.c_ulong,
                         XInternAtom=ctypes.c_ulong, XCreateSimpleWindow=ctypes.c_ulong)
        self.damage = library('libXdamage.so.1', XDamageCreate=ctypes.c_ulong)
        self.display = ctypes.c_void_p(self.x.XOpenDisplay(None))
        # Icons that end with their programs leave requests that come too late; not our concern.
        self.silence = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)(lambda *_: 0)
        self.x.XSetErrorHandler(self.silence)
        first, error = ctypes.c_int(), ctypes.c_int()
        assert self.damage.XDamageQueryExtension(self.display, ctypes.byref(first), ctypes.byref(error))
        self.damaged = first.value
        root = ctypes.c_ulong(self.x.XDefaultRootWindow(self.display))
        self.window = ctypes.c_ulong(self.x.XCreateSimpleWindow(self.display, root, 0, 0, 24, 24, 0, 0, 0))
        self.x.XMapWindow(self.display, self.window)
        tray, manager = self.atom('_NET_SYSTEM_TRAY_S0'), self.atom('MANAGER')
        self.opcode, self.xembed = self.atom('_NET_SYSTEM_TRAY_OPCODE'), self.atom('_XEMBED')
        self.x.XSetSelectionOwner(self.display, tray, self.window, ctypes.c_ulong(0))
        self.send(root, manager, 0, tray.value, self.window.value, 0, 0, mask=0x20000)

    def atom(self, name):
        return ctypes.c_ulong(self.x.XInternAtom(self.display, name.encode(), 0))

    def send(self, to, kind, *data, mask=0):
        message = Message(type=CLIENT_MESSAGE, window=to.value, message_type=kind.value, format=32)
        message.data[:] = data
        self.x.XSendEvent(self.display, to, 0, ctypes.c_long(mask), ctypes.byref(message))
        self.x.XFlush(self.display)

    def events(self, until):
        event = Message()
        while time.monotonic() < until:
            while self.x.XPending(self.display):
                self.x.XNextEvent(self.display, ctypes.byref(event))
                yield event
            select.select([self.x.XConnectionNumber(self.display)], [], [], max(0, until - time.monotonic()))

    def take_icon(self):
        """The moment in which the next icon that asks for a place is drawn."""
        for event in self.events(time.monotonic() + LIMIT):
            if event.type == CLIENT_MESSAGE and event.message_type == self.opcode.value and event.data[1] == REQUEST_DOCK:
                icon = ctypes.c_ulong(event.data[2])
                self.damage.XDamageCreate(self.display, icon, 0)
                self.x.XResizeWindow(self.display, icon, 24, 24)
                self.x.XReparentWindow(self.display, icon, self.window, 0, 0)
                self.x.XMapRaised(self.display, icon)
                self.send(icon, self.xembed, 0, EMBEDDED, 0, self.window.value, 0)
            elif event.type == self.damaged:
                return time.monotonic()
        raise SystemExit('start: no icon came')


def processor_ms(pid):
    total = 0
    for file in glob.glob(f'/proc/{pid}/task/*/schedstat'):
        with open(file) as text:
            total += int(text.read().split()[0])
    return total / 1e6


class Candidate:
    def __init__(self, name, command, folder=None):
        self.name, self.command, self.folder = name, command, folder
        self.icon, self.icon_cpu, self.rest_cpu = [], [], []

    def run(self, host, keep):
        surroundings = {**os.environ, 'WENDEL_ORDNER': self.folder or '', 'WENDEL_UHR': '2012-12-24 12:00:10',
                        'WENDEL_RECHNER': 'PC-BUERO', 'TZ': 'Europe/Berlin'}
        begin = time.monotonic()
        process = subprocess.Popen(self.command, env=surroundings, close_fds=False)
        end = host.take_icon()
        icon_cpu = processor_ms(process.pid)
        for _ in host.events(time.monotonic() + SETTLE):
            pass
        rest_cpu = processor_ms(process.pid)
        process.terminate()
        process.wait(10)
        if keep:
            self.icon.append((end - begin) * 1000)
            self.icon_cpu.append(icon_cpu)
            self.rest_cpu.append(rest_cpu)


def folder(name, database=None):
    path = tempfile.mkdtemp(prefix=name + '.', dir=os.environ['HEADLESS_DESKTOP'])
    if database:
        shutil.copyfile(database, os.path.join(path, 'tvdaten.mdb'))
    quillon = os.path.join(os.path.dirname(PROGRAM), 'quillon')
    subprocess.run([quillon, '--ordner', path, '--anlegen'], check=True, stdout=subprocess.DEVNULL)
    return path


def line(what, values, base):
    low, middle, high = statistics.quantiles(values, n=4)
    ratio = middle / statistics.median(base)
    print(f'    {what:34} {middle:7.1f} ms ({low:.1f} to {high:.1f}), {ratio:.2f} times the bare one')
    return ratio


host = TrayHost()
bare = Candidate('a bare tray program', [EMPTY])
candidates = [bare, Candidate('wendel, empty database', [PROGRAM, '/m'], folder('leer')),
              Candidate('wendel, tvdaten-gross.mdb', [PROGRAM, '/m'], folder('gross', LARGE))]
candidates += [Candidate(path, [path, '/m'], candidates[1].folder) for path in sys.argv[2:]]
for number in range(RUNS + 1):  # the first one fills the page cache and is thrown away
    for candidate in candidates:
        candidate.run(host, keep=number > 0)

print(f'{RUNS} starts each, by turns; median (quartiles); load {os.getloadavg()[0]:.1f}')
ratios = {}
for candidate in candidates:
    print(candidate.name)
    ratios[candidate.name] = line('until the icon is drawn', candidate.icon, bare.icon)
    line('processor time until then', candidate.icon_cpu, bare.icon_cpu)
    line('processor time until it rests', candidate.rest_cpu, bare.rest_cpu)
good = ratios['wendel, empty database'] <= BAR
print(f'{"ok    " if good else "MISSED"} empty database: {ratios["wendel, empty database"]:.2f} times, bar {BAR}')
sys.exit(0 if good else 1)
