"""The measurement behind ruhe.sh: ruhe.py NOTICES, inside a private desktop.

Counted from outside, out of /proc, over all threads of the process; the program does not know that it is measured."""
import glob, os, re, sys, time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'tests', 'desktop'))
from hilfe import *

NOTICES = int(sys.argv[1])
SECONDS = 60
SETTLE = 10   # after the start and after the last notice, until what they began has ended
INTERVAL = 3  # between two notices
MIB = 1024.0  # /proc counts in KiB

# Name, unit, bar.
SWITCHES = ('voluntary context switches in 60 s', '', 66)
CPU = ('processor time in 60 s', 'ms', 20)
RSS = ('resident memory (VmRSS)', 'MiB', 45)
PRIVATE = ('private memory (smaps_rollup)', 'MiB', 15)
GROWN_RSS = ('VmRSS grown by the notices', 'MiB', 1)
# Written pages only: whether a page of a library is private depends on what else starts and ends meanwhile.
GROWN_WRITTEN = ('written memory grown by the notices', 'MiB', 1)


def read(path):
    with open(path) as file:
        return file.read()


def number(text, name):
    return int(re.search(rf'^{name}:\s+(\d+)', text, re.M).group(1))


def threads(pid):
    """Per thread: voluntary switches, nanoseconds on a processor."""
    values = {}
    for folder in glob.glob(f'/proc/{pid}/task/*'):
        try:
            values[folder] = (number(read(folder + '/status'), 'voluntary_ctxt_switches'),
                              int(read(folder + '/schedstat').split()[0]))
        except FileNotFoundError:  # the thread has just ended
            continue
    return values


def idle_costs(pid):
    before = threads(pid)
    time.sleep(SECONDS)
    after = threads(pid)
    gone = before.keys() - after.keys()
    if gone:
        print(f'note: {len(gone)} threads ended meanwhile and are not counted')
    spent = [[now - then for now, then in zip(after[thread], before.get(thread, (0, 0)))] for thread in after]
    return len(after), sum(s[0] for s in spent), sum(s[1] for s in spent) / 1e6


class Memory:
    """In MiB: resident, private, and that part of the private pages which the process wrote itself."""

    def __init__(self, pid):
        rollup = read(f'/proc/{pid}/smaps_rollup')
        self.rss = number(read(f'/proc/{pid}/status'), 'VmRSS') / MIB
        self.written = number(rollup, 'Private_Dirty') / MIB
        self.private = self.written + (number(rollup, 'Private_Clean') + number(rollup, 'Private_Hugetlb')) / MIB

    def __str__(self):
        return f'VmRSS {self.rss:.1f} MiB, private {self.private:.1f} MiB (written {self.written:.1f})'


missed = []


def report(what, value):
    name, unit, bar = what
    good = value <= bar
    if not good:
        missed.append(name)
    print(f'{"ok    " if good else "MISSED"} {name:38} {value:8.1f} {unit:3}  bar {bar} {unit}')


def clock(seconds):
    return f'{seconds // 3600:02}:{seconds // 60 % 60:02}:{seconds % 60:02}'


program = Lomrick(datenbank='tvdaten-gross.mdb')
# The measured minute holds a full minute and a five-minute moment with its process list and its query; the
# appointments begin well after it.
start = 12 * 3600 + 4 * 60 + 20
first = start + SETTLE + SECONDS + 20
program.termine(*[f'24.12.2012 {clock(first + i * INTERVAL)}|0|ja|Termin {i + 1}' for i in range(NOTICES)])
program.starte('/m', uhr=f'2012-12-24 {clock(start)}', WENDEL_RECHNER='PC-MESSUNG')
pid = program.prozess.pid
time.sleep(SETTLE)
assert program.laeuft(), 'the program has ended'

count, switches, cpu = idle_costs(pid)
alone = Memory(pid)
bare = subprocess.Popen([os.environ['WENDEL_LEER']])
time.sleep(3)
before, baseline = Memory(pid), Memory(bare.pid)
print(f'at rest, {count} threads, tvdaten-gross.mdb:')
report(SWITCHES, switches)
report(CPU, cpu)
report(RSS, before.rss)
report(PRIVATE, before.private)
print(f'       in all {before}')
print(f'       a bare tray program beside it: {baseline}')
print(f'       ours when it alone has the toolkit: {alone}')

for i in range(NOTICES):
    window = warte_fenster(HINWEIS, 60)
    time.sleep(0.3)  # the guard against answers that were meant for something else
    schliesse(window)
    warte_weg(HINWEIS, 5)
    if i == 0:
        time.sleep(0.2)
        once = Memory(pid)
time.sleep(SETTLE)
after = Memory(pid)
print(f'after {NOTICES} notices:')
report(GROWN_RSS, after.rss - before.rss)
report(GROWN_WRITTEN, after.written - before.written)
print(f'       after the first: {once}')
print(f'       after the last:  {after}')
bare.terminate()
program.beende()
sys.exit(1 if missed else 0)
