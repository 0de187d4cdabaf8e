"""The measurement behind ruhe.sh: ruhe.py NOTICES, inside a private desktop.

Counted from outside, out of /proc, over all threads of the process; the program does not know that it is measured."""
import glob, os, sys, time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, '..', 'tests', 'desktop')]
from hilfe import *
from speicher import Bars, Memory, number, read

NOTICES = int(sys.argv[1])
SECONDS = 60
SETTLE = 10   # after the start and after the last notice, until what they began has ended
INTERVAL = 3  # between two notices

# Name, unit, bar.
SWITCHES = ('voluntary context switches in 60 s', '', 66)
CPU = ('processor time in 60 s', 'ms', 20)
RSS = ('resident memory (VmRSS)', 'MiB', 45)
PRIVATE = ('private memory (smaps_rollup)', 'MiB', 15)
# From the first notice on: that one makes the window and loads the fonts.
GROWN_RSS = ('VmRSS grown by the notices', 'MiB', 1)
# Written pages only: whether a page of a library is private depends on what else starts and ends meanwhile.
GROWN_WRITTEN = ('written memory grown by the notices', 'MiB', 1)


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
bars = Bars()
bars.report(*SWITCHES, switches)
bars.report(*CPU, cpu)
bars.report(*RSS, before.rss)
bars.report(*PRIVATE, before.private)
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
bars.report(*GROWN_RSS, after.rss - once.rss)
bars.report(*GROWN_WRITTEN, after.written - once.written)
print(f'       after the first: {once}')
print(f'       after the last:  {after}')
bare.terminate()
program.beende()
sys.exit(bars.missed)
